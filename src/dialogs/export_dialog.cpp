#include "dialogs/export_dialog.h"

#include <initializer_list>
#include <iterator>
#include <string>
#include <string_view>
#include <unordered_map>

#include "base/path.h"
#include "base/text.h"
#include "dialogs/state_files.h"
#include "entry/host/desktop.h"
#include "store/point_table.h"

namespace pktaus {
namespace {

using namespace text::literals;

constexpr toolkit::ControlId kPoints = 7000;
constexpr toolkit::ControlId kFilter = 7001;
constexpr toolkit::ControlId kAllOn = 7002;
constexpr toolkit::ControlId kAllOff = 7003;
constexpr toolkit::ControlId kApplicationNumber = 7004;
constexpr toolkit::ControlId kOrderNumber = 7005;
constexpr toolkit::ControlId kState = 7006;
constexpr toolkit::ControlId kApplyFilter = 7007;
constexpr toolkit::ControlId kCount = 7010;
constexpr toolkit::ControlId kKst = 7013;
constexpr toolkit::ControlId kHer = 7014;
constexpr toolkit::ControlId kGst = 7015;
constexpr toolkit::ControlId kZst = 7016;

std::string_view Trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\n\v\f\r";
  const std::size_t begin = text.find_first_not_of(kBlanks);
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1);
}

struct TablePoint {
  char name[kBatchTextSize];
  double east;
  double north;
};

bool ReadPoint(std::int32_t record, TablePoint* point) {
  double elev = 0;
  return point_read_at(record, &point->east, &point->north, &elev, point->name, sizeof point->name) == 1;
}

}  // namespace

CExportDlg::CExportDlg()
    : Dialog(7000, "Vermessungspunkte Exportieren"),
      points_(kPoints, ""),
      filter_(kFilter, "Filter:"),
      apply_filter_(kApplyFilter, "Filtern"),
      all_on_(kAllOn, "Alle an"),
      all_off_(kAllOff, "Alle aus"),
      count_(kCount, "", toolkit::TextField::Form::kReadOnly),
      application_number_(kApplicationNumber, "Antragsnummer:"),
      order_number_(kOrderNumber, "Auftragsnummer:"),
      state_(kState, "Bundesland", /*sorted=*/true),
      kst_(kKst, "Koordinatenstatus ( KST ) "),
      her_(kHer, "Datenerhebung ( DES ) "),
      gst_(kGst, "Genauigkeitsstufe ( GST ) "),
      zst_(kZst, "Dienststelle schlüssel ( ZST ) "_ansi),
      write_(toolkit::kOk, "Ausgeben und Ende"),
      cancel_(toolkit::kCancel, "Abbruch") {
  for (toolkit::TextField* field : {&application_number_, &order_number_, &kst_, &her_, &gst_, &zst_}) {
    field->text = "?";
  }
  for (toolkit::TextField* field : {&kst_, &her_, &gst_, &zst_}) field->group = "Standardwerte";
  for (toolkit::Control* control :
       std::initializer_list<toolkit::Control*>{&apply_filter_, &all_off_, &count_, &order_number_, &her_, &zst_}) {
    control->beside = true;
  }
  for (toolkit::Control* control : std::initializer_list<toolkit::Control*>{
           &points_, &filter_, &apply_filter_, &all_on_, &all_off_, &count_, &application_number_, &order_number_,
           &state_, &kst_, &her_, &gst_, &zst_, &write_, &cancel_}) {
    Add(control);
  }
}

void CExportDlg::OnOpened() {
  FillStates();
  ReadTable();
  Filter();
}

void CExportDlg::OnPressed(toolkit::ControlId id) {
  switch (id) {
    case kApplyFilter:
      return Filter();
    case kAllOn:
      return TickAll(true);
    case kAllOff:
      return TickAll(false);
    case toolkit::kOk:
      return WriteAndEnd();
    case toolkit::kCancel:
      return End(toolkit::kCancel);
    default:
      return;
  }
}

void CExportDlg::OnChanged(toolkit::ControlId id) {
  if (id == kPoints) ShowCount();
}

void CExportDlg::OnRowSelected(toolkit::ControlId id) {
  if (id == kPoints) ShowCount();
}

void CExportDlg::FillStates() {
  for (const StateFile& state : ListStateFiles()) {
    state_.Add({.label = state.name, .text = state.file_name});
    state_.Select(0);
  }
}

void CExportDlg::ReadTable() {
  const std::int32_t count = point_count();
  table_.assign(count > 0 ? count : 0, {});
  rows_in_use_ = 0;
  TablePoint point;
  for (std::int32_t record = 1; record <= count; ++record) {
    if (!ReadPoint(record, &point)) continue;
    BatchPoint& row = table_[record - 1];
    row.name = point.name;
    PutBatchText(&row.east, text::Decimal(point.east, 3).c_str());
    PutBatchText(&row.north, text::Decimal(point.north, 3).c_str());
    row.filled = 1;
    rows_in_use_ = record;
  }
}

void CExportDlg::Filter() {
  points_.Clear();
  const std::int32_t count = point_count();
  TablePoint point;
  for (std::int32_t record = 1; record <= count; ++record) {
    if (!ReadPoint(record, &point)) continue;
    if (Trimmed(point.name).find(filter_.text) == std::string_view::npos) continue;
    points_.Add({.label = point.name, .value = record});
  }
  ShowCount();
}

void CExportDlg::TickAll(bool on) {
  points_.TickAll(on);
  ShowCount();
}

void CExportDlg::ShowCount() {
  count_.text = std::to_string(points_.ticked()) + " von " + std::to_string(points_.rows().size());
}

/// Links the rows of the ticked points in the order of the list and gives them the default values that they lack.
/// Where points share a number, the first row of the table stands for all of them and is linked once.
BatchPoint* CExportDlg::LinkTickedRows() {
  std::unordered_map<std::string_view, BatchPoint*> by_name;
  by_name.reserve(rows_in_use_);
  for (std::size_t i = 0; i < rows_in_use_; ++i) {
    table_[i].next = nullptr;
    if (table_[i].filled != 0) by_name.emplace(table_[i].name, &table_[i]);
  }

  struct Default {
    std::string BatchPoint::*field;
    std::string text;
  };
  Default defaults[] = {{&BatchPoint::kst, {}}, {&BatchPoint::her, {}}, {&BatchPoint::zst, {}}, {&BatchPoint::gst, {}}};
  const toolkit::TextField* fields[] = {&kst_, &her_, &zst_, &gst_};
  for (std::size_t i = 0; i < std::size(defaults); ++i) PutBatchText(&defaults[i].text, fields[i]->text.c_str());

  BatchPoint* head = nullptr;
  BatchPoint** tail = &head;
  for (const toolkit::TickList::Row& entry : points_.rows()) {
    const auto found = entry.ticked ? by_name.find(entry.label) : by_name.end();
    if (found == by_name.end()) continue;
    BatchPoint* row = found->second;
    by_name.erase(found);
    *tail = row;
    tail = &row->next;
    for (const Default& value : defaults) {
      if ((row->*value.field).empty()) row->*value.field = value.text;
    }
  }
  return head;
}

void CExportDlg::WriteAndEnd() {
  const toolkit::ChoiceList::Entry* state = state_.selection();
  if (state == nullptr) {
    message_box(state_.entries().empty() ? "Keine Landesdatei gefunden" : "Bitte ein Bundesland auswählen"_ansi,
                "Hinweis");
    return;
  }
  BatchPoint* points = LinkTickedRows();
  std::string path;
  if (file_dialog(/*save=*/true, "PKT AUS Datei anlegen", &path, "*.XML\0*.XML\0") != 0) return;
  const std::string template_path = path::Join(plugin_folder(), state->text);
  const std::string land = state->text.substr(0, 2);
  const std::string message =
      WriteBatchFile(points, path, template_path, land, application_number_.text, order_number_.text);
  message_box(message, "Datei anlegen Info");
  if (message.find("Erfolgreich") != std::string::npos) End(toolkit::kOk);
}

void export_dialog() {
  CExportDlg dialog;
  RunUnderHost(dialog);
}

}  // namespace pktaus
