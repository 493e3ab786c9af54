#include "dialogs/gid_search_dialog.h"

#include <initializer_list>
#include <string>

#include "base/bounded.h"
#include "base/text.h"
#include "entry/host/desktop.h"
#include "store/point_table.h"

namespace pktaus {
namespace {

constexpr toolkit::ControlId kSearch = 7067;
constexpr toolkit::ControlId kGid = 7068;
constexpr toolkit::ControlId kResult = 7069;

}  // namespace

CGidSearchDlg::CGidSearchDlg(double* east, double* north)
    : Dialog(7019, "GID Suchen"),
      gid_(kGid, "Suchen nach GID:"),
      search_(kSearch, "Suchen"),
      result_(kResult, "", toolkit::TextField::Form::kReadOnlyLines),
      edit_(toolkit::kOk, "Bearbeiten"),
      cancel_(toolkit::kCancel, "Cancel"),
      east_(east),
      north_(north) {
  edit_.enabled = false;
  search_.beside = true;
  for (toolkit::Control* control :
       std::initializer_list<toolkit::Control*>{&gid_, &search_, &result_, &edit_, &cancel_}) {
    Add(control);
  }
}

void CGidSearchDlg::OnPressed(toolkit::ControlId id) {
  if (id == kSearch) return Search();
  confirmed_ = id == toolkit::kOk;
  End(id);
}

void CGidSearchDlg::Search() {
  edit_.enabled = point_find_by_gid(gid_.text.c_str(), point_number_, east_, north_, sizeof point_number_) == 1;
  result_.text = edit_.enabled ? std::string("Punktnummer: ") + point_number_ + "\r\n, " + text::Decimal(*east_, 6) +
                                     "," + text::Decimal(*north_, 6)
                               : "Nicht gefunden";
}

char* gid_search(double* east, double* north, char* point_number, std::size_t size) {
  CGidSearchDlg dialog(east, north);
  RunUnderHost(dialog);
  return dialog.confirmed() ? my_strcpy(point_number, dialog.point_number(), size) : nullptr;
}

}  // namespace pktaus
