#include "dialogs/order_export_dialog.h"

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <utility>

#include "base/text.h"
#include "entry/host/desktop.h"
#include "nas/order_file.h"
#include "store/point_record.h"
#include "store/point_table.h"

namespace pktaus {
namespace {

using namespace text::literals;

constexpr toolkit::ControlId kPoints = 7000;
constexpr toolkit::ControlId kAllOn = 7002;
constexpr toolkit::ControlId kAllOff = 7003;
constexpr toolkit::ControlId kOrders = 7006;
constexpr toolkit::ControlId kCount = 7010;
constexpr toolkit::ControlId kApplication = 7021;
constexpr toolkit::ControlId kRemove = 7071;

constexpr const char* kRemoveWarning =
    "Achtung, von den markierten Punkten werden die PKT_AUS Einstellungen entfernt.\n\r"
    "Der Dialog schließt danach automatisch"_ansi;

/// More points than any order has.
constexpr std::int32_t kLimit = 1000000;

const char* StatusWord(std::int32_t aktion) {
  switch (aktion) {
    case kAktionNew:
      return "Neupunkt ";
    case kAktionReplace:
      return "ersetzen ";
    case kAktionDelete:
      return "Löschen  "_ansi;
    default:
      return "";
  }
}

std::string LabelOf(const PointRecord& point, const std::string& number) {
  std::string label = StatusWord(point.aktion);
  label += point.pkn[0] == '\0' ? " ohne Punktkennung :" : " " + std::string(point.pkn) + " - :";
  return label + number;
}

const OrderEntry* FindOrder(const std::string& auftrag) {
  const OrderEntry* order = get_catalog_store()->orders;
  while (order != nullptr && order->auftrag != auftrag) order = order->next;
  return order;
}

}  // namespace

COrderExportDlg::COrderExportDlg()
    : Dialog(7003, "Vermessungspunkte Auftragsweise ausgeben"),
      orders_(kOrders, "Auftragsnummer:", /*sorted=*/true),
      application_(kApplication, "", toolkit::TextField::Form::kReadOnly),
      points_(kPoints, ""),
      all_on_(kAllOn, "Alle an"),
      all_off_(kAllOff, "Alle aus"),
      count_(kCount, "", toolkit::TextField::Form::kReadOnly),
      remove_(kRemove, "Entfernen"),
      write_(toolkit::kOk, "Speichern ..."),
      cancel_(toolkit::kCancel, "Abbruch") {
  all_off_.beside = count_.beside = true;
  for (toolkit::Control* control : std::initializer_list<toolkit::Control*>{
           &orders_, &application_, &points_, &all_on_, &all_off_, &count_, &remove_, &write_, &cancel_}) {
    Add(control);
  }
}

void COrderExportDlg::OnOpened() {
  std::vector<toolkit::ChoiceList::Entry> entries;
  for (const OrderEntry* order = get_catalog_store()->orders; order != nullptr; order = order->next)
    entries.push_back({.label = order->auftrag, .text = {}});
  orders_.Fill(std::move(entries));
  orders_.Select(0);
  List();
}

void COrderExportDlg::OnPressed(toolkit::ControlId id) {
  switch (id) {
    case kAllOn:
    case kAllOff:
      points_.TickAll(id == kAllOn);
      return ShowCount();
    case kRemove:
      return Remove();
    case toolkit::kOk:
      return Write();
    case toolkit::kCancel:
      return End(toolkit::kCancel);
    default:
      return;
  }
}

void COrderExportDlg::OnChanged(toolkit::ControlId id) {
  // The order that is shown already keeps its ticks.
  if (id == kOrders && orders_.selected() != listed_) List();
}

void COrderExportDlg::List() {
  points_.Clear();
  numbers_.clear();
  listed_ = orders_.selected();
  const toolkit::ChoiceList::Entry* chosen = orders_.selection();
  const OrderEntry* order = chosen != nullptr ? FindOrder(chosen->label) : nullptr;
  if (order == nullptr) {
    application_.text += "Keine Aufträge vorhanden"_ansi;
  } else {
    ListPoints(*order);
  }
  ShowCount();
}

/// One file carries one application: that of the first point.
void COrderExportDlg::ListPoints(const OrderEntry& order) {
  std::string application;
  bool left_out = false;
  for (const OrderPoint* point = order.points; point != nullptr; point = point->next) {
    if (application.empty()) application = point->antragn;
    if (application == point->antragn) {
      numbers_.emplace_back(point->pt_no);
    } else {
      left_out = true;
    }
  }
  std::vector<std::string> labels(numbers_.size());
  for (std::size_t i = 0; i < labels.size(); ++i) labels[i] = LabelOf(PointRecord{}, numbers_[i]);
  point_read_all(numbers_, [&](std::size_t i, const PointRecord& point) { labels[i] = LabelOf(point, numbers_[i]); });
  for (std::string& label : labels) points_.Add({.label = std::move(label)});
  application_.text = "Antrag: " + application + (left_out ? " andere ausgeblendet" : "");
}

void COrderExportDlg::ShowCount() {
  count_.text = std::to_string(points_.ticked()) + " von " + std::to_string(points_.rows().size());
}

std::vector<std::string> COrderExportDlg::TickedPoints() const {
  std::vector<std::string> ticked;
  for (std::size_t i = 0; i < numbers_.size(); ++i) {
    if (points_.rows()[i].ticked) ticked.push_back(numbers_[i]);
  }
  return ticked;
}

void COrderExportDlg::Write() {
  std::string path;
  if (file_dialog(/*save=*/true, "PKT AUS Datei anlegen", &path, "*.XML\0*.XML\0") != 0) return;
  const CCatalogStore& store = *get_catalog_store();
  const std::vector<std::string> ticked = TickedPoints();
  std::vector<PointRecord> records(ticked.size());
  for (PointRecord& record : records) record.po = -1;
  point_read_all(ticked, [&](std::size_t i, const PointRecord& point) { records[i] = point; });
  PointRecord* head = nullptr;
  for (PointRecord& record : records) {
    // A point that the table no longer has is left out with those that have no kind.
    if (record.po < 0) continue;
    record.bundesland = store.catalog_number;
    record.next = head;
    head = &record;
  }
  const std::string message =
      WriteOrderFile(path, store.header_name, head, kLimit, store.organisation, std::to_string(store.catalog_number));
  message_box(message, "Datei anlegen Info");
  if (message.find("Erfolgreich") != std::string::npos) End(toolkit::kOk);
}

void COrderExportDlg::Remove() {
  if (!point_refusal().empty()) {
    message_box(point_refusal(), "Fehler");
    return;
  }
  constexpr unsigned kFlags = toolkit::kBoxOkCancel | toolkit::kBoxWarning;
  if (message_box(kRemoveWarning, "Warnung!", kFlags) != toolkit::kAnswerOk) return;
  point_remove_all(TickedPoints());
  End(toolkit::kOk);
}

void order_export_dialog() {
  COrderExportDlg dialog;
  RunUnderHost(dialog);
}

}  // namespace pktaus
