// How a member of a transaction grows: row by row, in the order of the file, each row with its depth.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "tree/document.h"

namespace pktaus {

/// Builds one member. Depth 0 is the member itself, each further row goes under the last row of the depth above:
///
///   MemberRows row(document);
///   row(0, "wfs:Insert");
///   row(1, "AX_PunktortAG")->SetAttribute("gml:id", id);
///   row(2, "kartendarstellung", "true");
///   return row.member();
class MemberRows {
 public:
  explicit MemberRows(CTreeDocument* document) : document_(document) {}

  /// Adds an element; its node, for attributes.
  CTreeNode* operator()(int depth, std::string_view name, std::string_view text = {});
  /// Adds a node made elsewhere.
  CTreeNode* operator()(int depth, CTreeNode* node);

  /// The member, not linked yet.
  CTreeNode* member() const { return open_[0]; }

 private:
  CTreeDocument* document_;
  std::array<CTreeNode*, 12> open_{};  // the last row of each depth
};

// Rows that objects and position objects have in common. Each begins at the depth at which its first element stands in
// every class.

/// gml:identifier.
void RowsOfIdentifier(MemberRows& row, std::string_view id);

/// lebenszeitintervall, with the present time as its begin.
void RowsOfLebenszeitintervall(MemberRows& row);

/// modellart.
void RowsOfModellart(MemberRows& row);

/// zustaendigeStelle.
void RowsOfZustaendigeStelle(MemberRows& row, std::string_view land, std::string_view stelle);

/// istTeilVon: the object that a position object belongs to.
void RowsOfIstTeilVon(MemberRows& row, std::string_view objid);

/// position, as the next gml:Point of the file; `point_counter` rises by 1.
void RowsOfPosition(MemberRows& row, std::string_view coordinates);

/// qualitaetsangaben down to the description of the process step; rows of the step and of the quality follow.
void RowsOfProcessStep(MemberRows& row);

/// The source of the process step, down to its description.
void RowsOfSource(MemberRows& row);

/// The text of gml:pos from east and north with three decimals. In both the first "," becomes "."; of the east value
/// the zone in front of its six integer digits falls away.
std::string CoordinateText(std::string* east, std::string* north);

}  // namespace pktaus
