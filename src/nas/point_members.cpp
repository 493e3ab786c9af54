#include "nas/point_members.h"

#include <algorithm>
#include <array>

#include "base/bounded.h"
#include "base/text.h"
#include "catalog/catalog.h"
#include "nas/identifiers.h"
#include "nas/member.h"
#include "tree/document.h"

namespace pktaus {
namespace {

constexpr const char* kRoleCodes = "http://www.isotc211.org/2005/resources/CodeList/gmxCodelists.xml#CI_RoleCode";

bool IsWritten(std::int32_t aktion) { return aktion == kAktionNew || aktion == kAktionReplace; }

std::string MemberName(std::int32_t aktion) { return aktion == kAktionNew ? "wfs:Insert" : "wfs:Replace"; }

std::string ClassName(const CatalogObject& type) { return std::string("AX_") + type.name; }

/// The class of a position object; null for none.
const char* PunktortClass(std::int32_t po) {
  constexpr std::array<const char*, 4> kClasses = {nullptr, "AX_PunktortTA", "AX_PunktortAU", "AX_PunktortAG"};
  return po >= 0 && po < static_cast<std::int32_t>(kClasses.size()) ? kClasses.at(po) : nullptr;
}

/// A row with a code of the catalogue, where the object type has the attribute and a value was chosen.
void RowOfCode(MemberRows& row, int depth, std::string_view name, const CatalogTable* values, std::int32_t code) {
  if (values != nullptr && code > kNoChoice) row(depth, name, std::to_string(code));
}

/// Offices are known by four digits at least.
std::string StelleText(std::int32_t zst) {
  constexpr std::size_t kDigits = 4;
  std::string text = std::to_string(zst);
  text.insert(0, kDigits - std::min(kDigits, text.size()), '0');
  return text;
}

/// The last four digits of the origin's code.
std::string HerkunftText(std::int32_t her) {
  const std::string text = "0000" + std::to_string(her);
  return text.substr(text.size() - 4);
}

void RowsOfExternes(MemberRows& row, std::string_view application_number) {
  row(2, "zeigtAufExternes");
  row(3, "AA_Fachdatenverbindung");
  row(4, "art", "urn:th:fdv:0001");
  row(4, "fachdatenobjekt");
  row(5, "AA_Fachdatenobjekt");
  row(6, "name", application_number);
}

void RowsOfProcessor(MemberRows& row, std::string_view organisation) {
  row(8, "gmd:processor");
  row(9, "gmd:CI_ResponsibleParty");
  row(10, "gmd:organisationName");
  row(11, "gco:CharacterString", organisation);
  row(10, "gmd:role");
  CTreeNode* role = row(11, "gmd:CI_RoleCode", "processor");
  role->SetAttribute("codeList", kRoleCodes);
  role->SetAttribute("codeListValue", "processor");
}

}  // namespace

CTreeNode* WriteObjectMember(CTreeDocument* document, PointRecord* record, std::string_view land,
                             std::string_view application_number, const OriginalExtract* extract) {
  const CatalogObject& type = *CatalogObjectOfRow(record->oa);
  if (!IsWritten(record->aktion)) {
    return WriteDeleteMember(document, ClassName(type), record->obgid, extract->object_beginnt);
  }
  put(record->objid, record->aktion == kAktionNew ? NewObjectId().c_str() : record->obgid);
  MemberRows row(document);
  row(0, MemberName(record->aktion));
  row(1, ClassName(type))->SetAttribute("gml:id", record->objid);
  RowsOfIdentifier(row, record->objid);
  RowsOfLebenszeitintervall(row);
  RowsOfModellart(row);
  row(2, NewAnlassNode(document, land));
  if (land == kThuringia) RowsOfExternes(row, application_number);
  if (type.has_punktkennung && record->pkn[0] != '\0') row(2, "punktkennung", record->pkn);
  if (type.zustaendige_stelle != nullptr && record->zst > kNoChoice)
    RowsOfZustaendigeStelle(row, std::to_string(record->bundesland), StelleText(record->zst));
  RowOfCode(row, 2, "abmarkung_Marke", type.abmarkung_Marke, record->abm);
  RowOfCode(row, 2, "vermarkung_Marke", type.vermarkung_Marke, record->abm);
  RowOfCode(row, 2, "bemerkungZurAbmarkung", type.bemerkungZurAbmarkung, record->bza);
  return row.member();
}

CTreeNode* WritePunktortMember(CTreeDocument* document, const PointRecord& record, std::string_view organisation,
                               std::string_view land, const OriginalExtract* extract) {
  const char* const class_name = PunktortClass(record.po);
  if (class_name == nullptr) return nullptr;
  if (!IsWritten(record.aktion)) {
    return WriteDeleteMember(document, class_name, record.gmlid, extract->punktort_beginnt);
  }
  const CatalogPunktort& ort = *CatalogObjectOfRow(record.oa)->ort;
  const std::string id = record.aktion == kAktionNew ? NewObjectId() : record.gmlid;
  MemberRows row(document);
  row(0, MemberName(record.aktion));
  row(1, class_name)->SetAttribute("gml:id", id);
  RowsOfIdentifier(row, id);
  RowsOfLebenszeitintervall(row);
  RowsOfModellart(row);
  RowsOfIstTeilVon(row, record.objid);
  if (extract != nullptr) {
    row(2, "position", extract->pos_xml);
  } else {
    std::string east = text::Decimal(record.east, 3);
    std::string north = text::Decimal(record.north, 3);
    RowsOfPosition(row, CoordinateText(&east, &north));
  }
  row(2, "kartendarstellung", extract != nullptr ? "false" : "true");
  RowOfCode(row, 2, "koordinatenstatus", ort.koordinatenstatus, record.kst);
  RowOfCode(row, 2, "hinweise", ort.hinweise, record.hin);
  // Before 1970 stands no day that anybody chose.
  if (ort.ueberpruefungsdatum && record.dat > 0) row(2, "ueberpruefungsdatum", DayText(record.dat));
  RowsOfProcessStep(row);
  if (land != kThuringia) RowsOfProcessor(row, organisation);
  RowsOfSource(row);
  if (land == kThuringia) row(11, "AX_Datenerhebung_Punktort", HerkunftText(record.her));
  RowOfCode(row, 4, "genauigkeitsstufe", ort.genauigkeitsstufe, record.gst);
  RowOfCode(row, 4, "vertrauenswuerdigkeit", ort.vertrauenswuerdigkeit, record.vtw);
  if (ort.lagezuverlaessigkeit && (record.lzv == kLzvTrue || record.lzv == kLzvFalse))
    row(4, "lagezuverlaessigkeit", record.lzv == kLzvTrue ? "true" : "false");
  return row.member();
}

CTreeNode* WriteDeleteMember(CTreeDocument* document, std::string_view class_name, std::string_view id,
                             std::string_view beginnt) {
  MemberRows row(document);
  row(0, "wfs:Delete")->SetAttribute("typeName", class_name);
  row(1, "fes:Filter");
  row(2, "fes:ResourceId")->SetAttribute("rid", MakeDeleteRid(id, beginnt));
  return row.member();
}

std::string MakeDeleteRid(std::string_view id, std::string_view beginnt) {
  std::string rid = std::string(id).append(beginnt);
  std::erase_if(rid, [](char c) { return c == '-' || c == ':'; });
  return rid;
}

}  // namespace pktaus
