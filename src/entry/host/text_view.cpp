#include "entry/host/text_view.h"

namespace pktaus {

CTextViewDlg::CTextViewDlg(const char* title, const char* text)
    : Dialog(7010, ""), shown_title_(title), shown_text_(text) {
  Add(&field_);
  Add(&ok_);
}

void CTextViewDlg::OnOpened() {
  SetTitle(shown_title_);
  field_.text = shown_text_;
}

void CTextViewDlg::OnPressed(toolkit::ControlId id) { End(id); }

}  // namespace pktaus
