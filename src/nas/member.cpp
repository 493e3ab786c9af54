#include "nas/member.h"

#include "nas/identifiers.h"

namespace pktaus {

CTreeNode* MemberRows::operator()(int depth, CTreeNode* node) {
  // Where the row above has children, the last row of this depth is the last of them.
  if (depth > 0) open_.at(depth - 1)->AddChildAfter(node, open_.at(depth));
  return open_.at(depth) = node;
}

CTreeNode* MemberRows::operator()(int depth, std::string_view name, std::string_view text) {
  return (*this)(depth, document_->NewTextNode(name, text));
}

void RowsOfIdentifier(MemberRows& row, std::string_view id) {
  row(2, "gml:identifier", "urn:adv:oid:" + std::string(id))->SetAttribute("codeSpace", "http://www.adv-online.de/");
}

void RowsOfLebenszeitintervall(MemberRows& row) {
  row(2, "lebenszeitintervall");
  row(3, "AA_Lebenszeitintervall");
  row(4, "beginnt", NowStamp());
}

void RowsOfModellart(MemberRows& row) {
  row(2, "modellart");
  row(3, "AA_Modellart");
  row(4, "advStandardModell", "DLKM");
}

void RowsOfZustaendigeStelle(MemberRows& row, std::string_view land, std::string_view stelle) {
  row(2, "zustaendigeStelle");
  row(3, "AX_Dienststelle_Schluessel");
  row(4, "land", land);
  row(4, "stelle", stelle);
}

void RowsOfIstTeilVon(MemberRows& row, std::string_view objid) {
  row(2, "istTeilVon")->SetAttribute("xlink:href", "urn:adv:oid:" + std::string(objid));
}

void RowsOfPosition(MemberRows& row, std::string_view coordinates) {
  row(2, "position");
  CTreeNode* point = row(3, "gml:Point");
  point->SetAttribute("srsName", "urn:adv:crs:ETRS89_UTM32");
  point->SetAttribute("gml:id", "P" + std::to_string(point_counter++));
  row(4, "gml:pos", coordinates);
}

void RowsOfProcessStep(MemberRows& row) {
  row(2, "qualitaetsangaben");
  row(3, "AX_DQPunktort");
  row(4, "herkunft");
  row(5, "gmd:LI_Lineage");
  row(6, "gmd:processStep");
  row(7, "gmd:LI_ProcessStep");
  row(8, "gmd:description");
  row(9, "AX_LI_ProcessStep_Punktort_Description", "Erhebung");
}

void RowsOfSource(MemberRows& row) {
  row(8, "gmd:source");
  row(9, "gmd:LI_Source");
  row(10, "gmd:description");
}

std::string CoordinateText(std::string* east, std::string* north) {
  for (std::string* text : {east, north}) {
    const std::size_t comma = text->find(',');
    if (comma != std::string::npos) (*text)[comma] = '.';
  }
  constexpr std::size_t kEastDigits = 6;
  const std::size_t point = east->find('.');
  const bool has_zone = point != std::string::npos && point > kEastDigits;
  return east->substr(has_zone ? point - kEastDigits : 0) + " " + *north;
}

}  // namespace pktaus
