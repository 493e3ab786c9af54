#include "dialogs/point_sheet.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <limits>
#include <utility>
#include <vector>

#include "base/bounded.h"
#include "base/path.h"
#include "base/text.h"
#include "catalog/catalog_store.h"
#include "catalog/reserved_numbers.h"
#include "dialogs/point_identifier.h"
#include "dialogs/state_files.h"
#include "entry/host/desktop.h"
#include "platform/clock.h"
#include "platform/system.h"
#include "store/object_types.h"

namespace pktaus {
namespace {

using namespace text::literals;
using toolkit::TextField;

constexpr toolkit::ControlId kStates = 7006;
constexpr toolkit::ControlId kTypes = 7008;
constexpr toolkit::ControlId kAction = 7066;
constexpr toolkit::ControlId kOriginalXml = 7076;
constexpr toolkit::ControlId kReserved = 7077;
constexpr toolkit::ControlId kRemove = 7071;

constexpr const char* kLineBreak = "\r\r\n";
constexpr const char* kGivenLater = "Wird automatisch vergeben";
constexpr const char* kOriginalXmlCaption = "Original XML ...";
constexpr const char* kReservedCaption = "Reservierte PKTN. ...";
constexpr const char* kRemoveWarning =
    "Achtung, von diesem Vermessungspunkt werden die PKT_AUS Einstellungen entfernt.\n\rDer Dialog schließt danach "
    "automatisch"_ansi;

/// Code of "not marked" in the lists of marks.
constexpr std::int32_t kNotMarkedCode = 9500;
/// The state in which a point may go without an identifier.
constexpr std::int32_t kThueringen = 16;
/// Values of `dat` up to this are no date.
constexpr std::int32_t kLastNoDate = 10000;

/// One text of the further position objects, as long as a record may hold it.
std::string PositionText(std::string_view text) {
  char field[40];
  put(field, std::string(text).c_str());
  return field;
}

/// Shows "class|gml:id|" pairs, each text on a line of its own.
std::string MorePositions(std::string_view pairs) {
  std::string lines;
  for (std::size_t bar = pairs.find('|'); bar != std::string_view::npos; bar = pairs.find('|')) {
    lines += PositionText(pairs.substr(0, bar)) + kLineBreak;
    pairs.remove_prefix(bar + 1);
    const std::size_t end = std::min(pairs.find('|'), pairs.size());
    lines += PositionText(pairs.substr(0, end)) + kLineBreak;
    pairs.remove_prefix(std::min(end + 1, pairs.size()));
  }
  return lines;
}

std::string PathCaption(const std::string& path, const char* otherwise) {
  return path.empty() ? otherwise : std::string(path::FileName(path));
}

std::int32_t PoOf(std::string_view position_type, std::int32_t otherwise) {
  if (position_type == "PunktortTA") return kPoTA;
  if (position_type == "PunktortAU") return kPoAU;
  if (position_type == "PunktortAG") return kPoAG;
  return otherwise;
}

void ReportMissingCatalogue(std::int32_t state) {
  char file_name[16];
  std::snprintf(file_name, sizeof file_name, "%02d.ini", state);
  message_box("Ini Datei nicht gefunden", file_name);
}

bool FitsTable(std::int64_t date) { return date > kLastNoDate && date <= std::numeric_limits<std::int32_t>::max(); }

void ShowReserved(const std::string& title, const ReservedNumber* reserved) {
  std::string lines;
  for (; reserved != nullptr; reserved = reserved->next) lines.append(reserved->number).append(kLineBreak);
  free_text_view(title.c_str(), lines.c_str());
}

}  // namespace

CPointSheetDlg::CPointSheetDlg(const char* point_number, double east, double north, PointRecord* record,
                               std::int32_t state)
    : Dialog(7020, "Einstellungen"),
      one_point_(point_number != nullptr && *point_number != '\0'),
      point_number_(one_point_ ? point_number : ""),
      east_(east),
      north_(north),
      state_(state),
      target_(record),
      record_(*record),
      text_line_(7021, "", TextField::Form::kReadOnly),
      application_(7004, "Antragsnummer:"),
      order_(7005, "Auftragsnummer:"),
      states_(kStates, "Bundesland", /*sorted=*/true),
      organisation_(7011, "Organisationsname"),
      types_(kTypes, "Objektart:", /*sorted=*/false),
      action_(kAction, "Aktion", {"Neupunkt", "Punkt ersetzen", "Punkt löschen"_ansi}, {7063, 7064, 7065}),
      more_positions_(7074, "Weitere Punktorte", TextField::Form::kReadOnlyLines),
      original_xml_button_(kOriginalXml, kOriginalXmlCaption),
      reserved_button_(kReserved, kReservedCaption),
      remove_(kRemove, "Entfernen"),
      ok_(toolkit::kOk, "OK"),
      cancel_(toolkit::kCancel, "Abbruch"),
      attributes_{{
          {&object_.abm, &PointRecord::abm,
           [](const CatalogObject& type) {
             return type.abmarkung_Marke ? type.abmarkung_Marke : type.vermarkung_Marke;
           },
           Attribute::Otherwise::kNotMarked},
          {&object_.art, &PointRecord::art, [](const CatalogObject& type) { return type.art; }},
          {&object_.bza, &PointRecord::bza, [](const CatalogObject& type) { return type.bemerkungZurAbmarkung; }},
          {&object_.zst, &PointRecord::zst, [](const CatalogObject& type) { return type.zustaendige_stelle; }},
          {&position_.gst, &PointRecord::gst, [](const CatalogObject& type) { return type.ort->genauigkeitsstufe; }},
          {&position_.hin, &PointRecord::hin, [](const CatalogObject& type) { return type.ort->hinweise; },
           Attribute::Otherwise::kFirst},
          {&position_.her, &PointRecord::her, [](const CatalogObject& type) { return type.ort->herkunft; }},
          {&position_.kst, &PointRecord::kst, [](const CatalogObject& type) { return type.ort->koordinatenstatus; }},
          {&position_.vtw, &PointRecord::vtw,
           [](const CatalogObject& type) { return type.ort->vertrauenswuerdigkeit; }},
      }} {
  if (one_point_) {
    text_line_.value = "Für den Vermessungspunkt: "_ansi + point_number_;
    more_positions_.value = MorePositions({record_.wepo, strnlen(record_.wepo, sizeof record_.wepo)});
  } else {
    text_line_.value =
        "In den TABs stellen Sie Defaultwerte für alle Vermessungspunkte ein. Diese werden verwendet wenn Sie einen "
        "Vermessungspunkt zum ersten mal bearbeiten."_ansi;
  }
  AddControls();
}

void CPointSheetDlg::AddControls() {
  order_.field.beside = organisation_.field.beside = true;
  for (toolkit::Control* control : std::initializer_list<toolkit::Control*>{
           &text_line_.field, &application_.field, &order_.field, &states_, &organisation_.field, &types_, &pages_}) {
    Add(control);
  }
  std::vector<SheetPage*> pages = {&object_, &position_};
  if (one_point_) pages.insert(pages.end(), {&more_, &host_});
  for (const SheetPage* page : pages) {
    for (toolkit::Control* control : page->controls) Add(control);
  }
  for (toolkit::Control* control : std::initializer_list<toolkit::Control*>{
           &action_, &more_positions_.field, &original_xml_button_, &reserved_button_, &remove_, &ok_, &cancel_}) {
    Add(control);
  }
}

void CPointSheetDlg::OnOpened() {
  const CCatalogStore& store = *get_catalog_store();
  remove_.visible = state_ != 1;
  if (one_point_) pages_.captions.insert(pages_.captions.end(), {"Weitere", "V2 Daten"});
  FillStates();
  reserved_folder_ = store.point_xml_folder;
  OpenMode();
  application_.value = record_.antragn;
  order_.value = record_.auftrag;
  if (one_point_ && *record_.obgid == '\0' && record_.oa < 0) record_.oa = store.defaults.oa;

  // Until a catalogue tells otherwise. In the settings they stay hidden.
  object_.ShowIdentifierGroup(false);
  position_.lzv.visible = false;
  position_.ShowCheckDate(false);
  LoadBundeslandCatalogue();
  types_.Select(record_.oa);

  position_.has_date = record_.dat > kLastNoDate;
  position_.date = position_.has_date ? record_.dat : platform::CurrentClock().Now();
  OpenAction();
  AdaptToObjectType();
  ShowTexts();
  position_.Show();
}

void CPointSheetDlg::FillStates() {
  CCatalogStore& store = *get_catalog_store();
  for (const StateFile& state : ListStateFiles()) {
    const std::size_t position = states_.Add({.label = state.name, .value = state.number, .text = {}});
    if (state.number != store.defaults.bundesland) continue;
    states_.Select(static_cast<int>(position));
    if (!store.LoadCatalog(state.number)) ReportMissingCatalogue(state.number);
  }
}

void CPointSheetDlg::OpenMode() {
  const CCatalogStore& store = *get_catalog_store();
  states_.enabled = !one_point_;
  organisation_.field.visible = original_xml_button_.visible = reserved_button_.visible = !one_point_;
  if (one_point_) {
    host_.Fill(point_number_, east_, north_);
    return;
  }
  organisation_.value = store.organisation;
  original_xml_ = store.orig_xml;
  original_xml_button_.SetLabel(PathCaption(original_xml_, kOriginalXmlCaption));
  reserved_button_.SetLabel(PathCaption(reserved_folder_, kReservedCaption));
}

void CPointSheetDlg::OpenAction() {
  action_.visible = object_.gid.field.visible = position_.gid.field.visible = one_point_;
  if (!one_point_) return;
  action_.chosen = std::clamp<int>(record_.aktion, kAktionNew, kAktionDelete);
  ShowGids(action_.chosen != kAktionNew);
}

void CPointSheetDlg::LoadBundeslandCatalogue() {
  const toolkit::ChoiceList::Entry* state = states_.selection();
  // A state without a template is not in the list; nobody has chosen it here.
  if (state == nullptr) return;
  if (!get_catalog_store()->LoadCatalog(state->value)) return ReportMissingCatalogue(state->value);

  const std::string before = types_.selection() != nullptr ? types_.selection()->label : "";
  types_.Clear();
  int kept = -1;
  int row = 0;
  for (const CatalogObject* type = FirstCatalogObject(); type != nullptr; type = type->next, ++row) {
    types_.Add({.label = type->name, .value = row, .text = {}});
    if (kept < 0 && before == type->name) kept = row;
  }
  types_.Select(std::max(kept, 0));
  AdaptToObjectType();
}

void CPointSheetDlg::AdaptToObjectType() {
  ShowTexts();
  // What was shown may have been built since; OK reads what is shown.
  object_.pkn.value = record_.pkn;
  const CatalogObject* type = SelectedType();
  if (type == nullptr || type->ort == nullptr) return;

  for (const Attribute& attribute : attributes_) FillAttribute(attribute, *type);
  object_.ShowIdentifierGroup(type->has_punktkennung && one_point_);
  position_.lzv.visible = type->ort->lagezuverlaessigkeit && one_point_;
  position_.ShowCheckDate(type->ort->ueberpruefungsdatum && one_point_);
  pages_.captions[TabWerte::kPosition] = type->ort->name;
  position_.SelectLzv(record_.lzv);
}

void CPointSheetDlg::FillAttribute(const Attribute& attribute, const CatalogObject& type) {
  toolkit::ChoiceList& list = *attribute.list;
  const CatalogTable* values = attribute.values(type);
  list.visible = values != nullptr;
  // A hidden list keeps its choice, which is stored as before.
  if (values == nullptr) return;
  std::vector<toolkit::ChoiceList::Entry> entries;
  for (const CatalogEntry* entry = values->entries; entry != nullptr; entry = entry->next) {
    entries.push_back({.label = entry->text, .value = entry->code, .text = {}});
  }
  list.Fill(std::move(entries));
  list.SelectValue(record_.*attribute.field);
  if (list.selection() != nullptr) return;
  if (attribute.otherwise == Attribute::Otherwise::kNotMarked) list.SelectValue(kNotMarkedCode);
  if (attribute.otherwise == Attribute::Otherwise::kFirst) list.Select(0);
}

void CPointSheetDlg::ShowTexts() {
  for (HeldText* text : {&text_line_, &application_, &order_, &organisation_, &more_positions_}) text->Show();
  object_.Show();
  position_.ShowTexts();
}

void CPointSheetDlg::ShowGids(bool of_existing_object) {
  object_.gid.value = of_existing_object ? record_.obgid : kGivenLater;
  position_.gid.value = of_existing_object ? record_.gmlid : kGivenLater;
  for (HeldText* gid : {&object_.gid, &position_.gid}) {
    gid->field.enabled = of_existing_object;
    gid->Show();
  }
}

const CatalogObject* CPointSheetDlg::SelectedType() const { return CatalogObjectOfRow(types_.selected()); }

std::string_view CPointSheetDlg::Pattern() const {
  const CatalogObject* type = SelectedType();
  return type != nullptr ? type->punktkennung : std::string_view();
}

void CPointSheetDlg::OnChanged(toolkit::ControlId id) {
  if (id == kStates) LoadBundeslandCatalogue();
  if (id == kTypes) AdaptToObjectType();
  if (id == kAction) ShowGids(action_.chosen != kAktionNew);
}

void CPointSheetDlg::OnPressed(toolkit::ControlId id) {
  switch (id) {
    case TlbPktAusWerte::kAsk:
      return AskForIdentifier();
    case TlbPktAusWerte::kFromPointNumber:
      return BuildPointIdentifier(true);
    case TlbPktAusWerte::kCheckReservation:
      return CheckReservation();
    case TlbPktAusW2::kExplain:
      return ShowHinExplanation();
    case kOriginalXml:
      return ChooseOriginalXml();
    case kReserved:
      return ChooseReservedFolder();
    case kRemove:
      return Remove();
    case toolkit::kOk:
      return Accept();
    case toolkit::kCancel:
      return End(toolkit::kCancel);
    default:
      return;
  }
}

void CPointSheetDlg::BuildPointIdentifier(bool use_point_number) {
  const std::string_view pattern = Pattern();
  object_.pkn.value = MakePointIdentifier(pattern, MakeIdentifierDigits(pattern, east_, north_),
                                          use_point_number ? point_number_.c_str() : nullptr);
  object_.pkn.Show();
}

bool CPointSheetDlg::CheckPointIdentifier(std::string_view identifier, std::string_view pattern) const {
  return FitsPointIdentifier(identifier, pattern, MakeIdentifierDigits(pattern, east_, north_));
}

void CPointSheetDlg::AskForIdentifier() {
  char question[512];
  my_sprintf(question, sizeof question,
             "Pflicht für alle gemessenen oder berechneten Punkte einer Liegenschaftsvermessung\nMuster: %s\n\n"
             "Soll ein neues Punktkennzeichen erstellt werden?"_ansi,
             std::string(Pattern()).c_str());
  if (message_box(question, "HINWEIS und FRAGE", toolkit::kBoxYesNo) == toolkit::kAnswerYes)
    BuildPointIdentifier(false);
}

/// Looks the identifier up among those that the cadastre office has reserved for the application.
void CPointSheetDlg::CheckReservation() {
  object_.Read();
  const ReservedNumbers reserved = ReadReservedNumbers(reserved_folder_, application_.value);
  bool found = false;
  for (const ReservedNumber* one = reserved.get(); one != nullptr && !found; one = one->next) {
    found = object_.pkn.value == one->number;
  }
  if (found) {
    message_box("Erfolg", "Die Punktnummer ist reserviert");
  } else {
    ShowReserved("Nicht gefunden, Diese sind reserviert für "_ansi + application_.value, reserved.get());
  }
}

void CPointSheetDlg::ChooseOriginalXml() {
  std::string path;
  file_dialog(/*save=*/false, "Original NAS Datei ", &path, "*.XML\0*.XML\0");
  original_xml_ = path;
  original_xml_button_.SetLabel(PathCaption(original_xml_, kOriginalXmlCaption));
}

void CPointSheetDlg::ChooseReservedFolder() {
  std::string folder;
  if (!folder_dialog(host_window(), &folder, "Verzeichnis mit reservierten Punktummern-XMLs")) {
    reserved_button_.SetLabel(kReservedCaption);
    return;
  }
  const bool is_root = folder.size() == 1;
  if (!is_root && (folder.back() == path::kSeparator || folder.back() == '\\')) folder.pop_back();
  reserved_folder_ = folder;
  reserved_button_.SetLabel(PathCaption(reserved_folder_, kReservedCaption));
  const ReservedNumbers reserved = ReadReservedNumbers(reserved_folder_, application_.value);
  ShowReserved("Reservierte Punktnummern für "_ansi + application_.value, reserved.get());
}

void CPointSheetDlg::Remove() {
  constexpr unsigned kFlags = toolkit::kBoxOkCancel | toolkit::kBoxWarning;
  if (message_box(kRemoveWarning, "Warnung!", kFlags) != toolkit::kAnswerOk) return;
  remove_confirmed_ = true;
  End(toolkit::kCancel);
}

std::string CPointSheetDlg::Fault() const {
  const CatalogObject* type = SelectedType();
  if (type == nullptr || type->ort == nullptr) return "Objektart fehlt. Bitte prüfen"_ansi;
  if (one_point_) {
    const std::string& identifier = object_.pkn.value;
    if (identifier.empty() && states_.SelectedValue() != kThueringen) {
      return "Punktkennzeichen muß angegeben werden. Bitte prüfen"_ansi;
    }
    if (!identifier.empty() && !CheckPointIdentifier(identifier, type->punktkennung)) {
      return "Punktkennzeichen ist nicht korrekt. Bitte prüfen"_ansi;
    }
  }
  // A day beyond would come back as another one, or as none. Nobody sees that of a type without the attribute.
  if (position_.has_date && position_.day.visible && !FitsTable(position_.date))
    return "Das Prüfdatum liegt nicht zwischen 1970 und 2038. Bitte prüfen"_ansi;
  return {};
}

void CPointSheetDlg::Accept() {
  for (HeldText* text : {&application_, &order_, &organisation_}) text->Read();
  object_.Read();
  position_.Read();
  const std::string fault = Fault();
  if (!fault.empty()) {
    message_box(fault, "Fehler");
    return;
  }
  if (!one_point_) ReplaceQuotes();
  StoreFields();
  *target_ = record_;
  if (!one_point_) SaveSettings();
  End(toolkit::kOk);
}

/// A double quote ends a value of the settings file: there it would come back as two, with every start.
void CPointSheetDlg::ReplaceQuotes() {
  std::string* const texts[] = {&application_.value, &order_.value, &organisation_.value, &original_xml_,
                                &reserved_folder_};
  std::string replaced;
  for (std::string* text : texts) {
    if (text->find('"') == std::string::npos) continue;
    std::replace(text->begin(), text->end(), '"', '\'');
    replaced.append("\n").append(*text);
  }
  if (replaced.empty()) return;
  message_box(
      "Die Einstellungen können kein doppeltes Anführungszeichen enthalten. Es wurde durch ein einfaches ersetzt:"_ansi +
          replaced,
      "Hinweis");
}

void CPointSheetDlg::SaveSettings() {
  CCatalogStore& store = *get_catalog_store();
  store.defaults = record_;
  store.orig_xml = original_xml_;
  store.point_xml_folder = reserved_folder_;
  store.organisation = organisation_.value;
  if (store.SaveSettings() || settings_failure_told) return;
  settings_failure_told = true;
  message_box("Die Einstellungen konnten nicht in die Datei '"_ansi + SettingsPath() + "' geschrieben werden: "_ansi +
                  platform::SystemErrorText(platform::LastSystemError()) +
                  " Sie gelten nur bis zum Ende des Programms."_ansi,
              "Fehler");
}

void CPointSheetDlg::StoreFields() {
  record_.bundesland = states_.SelectedValue();
  record_.oa = types_.selected();
  put(record_.pkn, object_.pkn.value.c_str());
  put(record_.obgid, action_.chosen != kAktionNew ? object_.gid.value.c_str() : "");
  if (action_.chosen > kAktionNew) put(record_.gmlid, position_.gid.value.c_str());
  record_.po = PoOf(SelectedType()->ort->name, record_.po);
  put(record_.antragn, application_.value.substr(0, kOrderNumberLength).c_str());
  put(record_.auftrag, order_.value.substr(0, kOrderNumberLength).c_str());
  for (const Attribute& attribute : attributes_) record_.*attribute.field = attribute.list->SelectedValue();
  record_.lzv = position_.Lzv();
  record_.dat = position_.has_date && FitsTable(position_.date) ? static_cast<std::int32_t>(position_.date) : 0;
  if (one_point_) record_.aktion = action_.chosen;
}

int point_sheet(const char* point_number, double east, double north, PointRecord* record, std::int32_t state) {
  CPointSheetDlg dialog(point_number, east, north, record, state);
  const int result = RunUnderHost(dialog);
  return result == toolkit::kCancel && dialog.remove_confirmed() ? kSheetRemove : result;
}

}  // namespace pktaus
