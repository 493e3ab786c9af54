#include "dialogs/adopt_data_dialog.h"

#include <array>
#include <cstddef>
#include <initializer_list>
#include <memory>
#include <string_view>

#include "base/bounded.h"
#include "base/text.h"
#include "catalog/catalog_store.h"
#include "catalog/number.h"
#include "catalog/original_file.h"
#include "entry/host/desktop.h"
#include "nas/order_file.h"
#include "store/object_types.h"
#include "store/point_table.h"

namespace pktaus {
namespace {

using namespace text::literals;

constexpr toolkit::ControlId kAttributes = 7000;
constexpr toolkit::ControlId kAll = 7002;
constexpr toolkit::ControlId kNone = 7003;
constexpr toolkit::ControlId kFetch = 7070;

/// What a row of the list stands for.
enum Row : std::int32_t { kType = 1, kIdentifier = 2, kAbm = 3, kBza = 4, kKst = 5, kGid = 6 };

std::string WithoutPadding(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(' ');
  return begin == std::string_view::npos ? std::string()
                                         : std::string(text.substr(begin, text.find_last_not_of(' ') - begin + 1));
}

/// The texts in front of the first four commas; all empty where there are fewer.
std::array<std::string, 4> InFrontOfCommas(std::string_view text) {
  std::array<std::string, 4> parts;
  for (std::string& part : parts) {
    const std::size_t comma = text.find(',');
    if (comma == std::string_view::npos) return {};
    part = text.substr(0, comma);
    text.remove_prefix(comma + 1);
  }
  return parts;
}

const CatalogEntry* EntryOf(const CatalogTable& values, std::int32_t code) {
  const CatalogEntry* entry = values.entries;
  while (entry != nullptr && entry->code != code) entry = entry->next;
  return entry;
}

}  // namespace

CAdoptDataDlg::CAdoptDataDlg(const char* pkn_abm_bza, const char* nastable, const char* gid, PointRecord* record)
    : Dialog(7009, "Sachdaten übernehmen"_ansi),
      fetch_text_(0, "", toolkit::TextField::Form::kReadOnly),
      fetch_(kFetch, "Daten aus XML holen"),
      adopt_text_(0, "", toolkit::TextField::Form::kReadOnly),
      attributes_(kAttributes, ""),
      all_(kAll, "Alle "),
      none_(kNone, "Keine"),
      adopt_(toolkit::kOk, "Übernehmen"_ansi),
      cancel_(toolkit::kCancel, "Abbruch"),
      nastable_(WithoutPadding(nastable)),
      type_(FindObjectTypeRow(nastable_)),
      gid_(gid),
      record_(record) {
  fetch_text_.text =
      "Eine ObjektID wurde bei einem ALKIS Import hinterlegt.  Bitte holen Sie die vollständigen Daten direkt aus der XML"_ansi;
  adopt_text_.text =
      "Oder übernehmen sie hinterlegte Daten, machen Sie einen Haken an die Attribute die Sie übernehmen möchten. "_ansi;
  const std::array<std::string, 4> parts = InFrontOfCommas(pkn_abm_bza);
  identifier_ = parts[0];
  abm_ = ReadNumber(parts[1]);
  bza_ = ReadNumber(parts[2]);
  kst_ = ReadNumber(parts[3]);
  for (toolkit::Control* control : std::initializer_list<toolkit::Control*>{
           &fetch_text_, &fetch_, &adopt_text_, &attributes_, &all_, &none_, &adopt_, &cancel_}) {
    Add(control);
  }
}

void CAdoptDataDlg::OnOpened() {
  attributes_.Add({.label = "Objektart:                " + (type_ < 0 ? nastable_ : std::string(object_types[type_])),
                   .value = kType});
  fetch_.visible = !gid_.empty();
  if (!gid_.empty()) attributes_.Add({.label = "GID(Objekt ändern oder löschen) :       "_ansi + gid_, .value = kGid});
  identifier_.erase(0, identifier_.find_first_not_of(' '));
  if (!identifier_.empty()) attributes_.Add({.label = "Punktkennung:       " + identifier_, .value = kIdentifier});
  const CatalogObject* type = CatalogObjectOfRow(type_);
  if (type == nullptr) return;
  AddCode("Abmarkung Marke: ", kAbm, type->abmarkung_Marke != nullptr ? type->abmarkung_Marke : type->vermarkung_Marke,
          abm_);
  AddCode("Bem.zur Abmarkung", kBza, type->bemerkungZurAbmarkung, bza_);
  if (type->ort != nullptr) AddCode("Koordinatenstatus:  ", kKst, type->ort->koordinatenstatus, kst_);
}

void CAdoptDataDlg::AddCode(const char* label, std::int32_t row, const CatalogTable* values, std::int32_t code) {
  if (values == nullptr || code < 1) return;
  const CatalogEntry* entry = EntryOf(*values, code);
  attributes_.Add(
      {.label = label + (entry != nullptr ? std::string(entry->text) : std::to_string(code)), .value = row});
}

void CAdoptDataDlg::OnPressed(toolkit::ControlId id) {
  switch (id) {
    case kAll:
    case kNone:
      return attributes_.TickAll(id == kAll);
    case kFetch:
      return FetchFromOriginal();
    case toolkit::kOk:
      return Adopt();
    case toolkit::kCancel:
      return End(toolkit::kCancel);
    default:
      return;
  }
}

void CAdoptDataDlg::Adopt() {
  for (const toolkit::TickList::Row& row : attributes_.rows()) {
    if (!row.ticked) continue;
    switch (row.value) {
      case kType:
        if (type_ >= 0) record_->oa = type_;
        break;
      case kGid:
        put(record_->gmlid, gid_.c_str());
        break;
      case kIdentifier:
        put(record_->pkn, identifier_.c_str());
        break;
      case kAbm:
        record_->abm = abm_;
        break;
      case kBza:
        record_->bza = bza_;
        break;
      case kKst:
        record_->kst = kst_;
        break;
      default:
        break;
    }
  }
  record_->aktion = kAktionReplace;
  End(toolkit::kOk);
}

void CAdoptDataDlg::FetchFromOriginal() {
  std::string path;
  if (!GetOriginalFile(&path)) return;
  const std::unique_ptr<PointRecord> found = SearchOriginalFile(path, gid_.c_str(), nullptr);
  if (found == nullptr) {
    free_text_view("Gefunden Objekt ist", "Objekt nicht gefunden");
    return;
  }
  put(record_->obgid, found->obgid);
  put(record_->gmlid, found->gmlid);
  if (found->pkn[0] != '\0') put(record_->pkn, found->pkn);
  for (const auto field :
       {&PointRecord::oa, &PointRecord::po, &PointRecord::abm, &PointRecord::bza, &PointRecord::zst, &PointRecord::kst,
        &PointRecord::hin, &PointRecord::her, &PointRecord::gst, &PointRecord::vtw, &PointRecord::lzv}) {
    record_->*field = found.get()->*field;
  }
  if (found->wepo[0] != '\0') put(record_->wepo, found->wepo);
  record_->aktion = kAktionReplace;
  End(toolkit::kOk);
}

int adopt_dialog(const char* /*point_number*/, const char* pkn_abm_bza, const char* nastable, const char* gid,
                 PointRecord* record) {
  CAdoptDataDlg dialog(pkn_abm_bza, nastable, gid, record);
  return RunUnderHost(dialog);
}

int point_adopt_imported(const char* point_number, PointRecord* record) {
  ImportedData data;
  if (!point_read_imported(point_number, &data)) return 0;
  const int result = adopt_dialog(point_number, data.pkn_abm_bza, data.nastable.c_str(), data.gid, record);
  return result == toolkit::kOk ? 0 : -1;
}

}  // namespace pktaus
