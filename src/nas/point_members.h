// The members of a transaction that carry one attributed survey point: its object, its position object, or their end.
#pragma once

#include <string>
#include <string_view>

#include "catalog/original_file.h"
#include "store/point_record.h"

namespace pktaus {

class CTreeDocument;
class CTreeNode;

/// The member of the survey-point object, not linked yet: insert, replace or delete by `aktion`. Sets `objid` of an
/// inserted or replaced point, so it comes before WritePunktortMember. `land` is the federal state's code as text.
/// `extract` is needed by the delete form alone. The record's object type must stand in the catalogue.
CTreeNode* WriteObjectMember(CTreeDocument* document, PointRecord* record, std::string_view land,
                             std::string_view application_number, const OriginalExtract* extract);

/// The member of the position object, not linked yet; null where `po` names no class. With an extract the position is
/// the original file's text, without one it is made of the record's coordinates.
CTreeNode* WritePunktortMember(CTreeDocument* document, const PointRecord& record, std::string_view organisation,
                               std::string_view land, const OriginalExtract* extract);

/// The member that deletes one version of an object, not linked yet.
CTreeNode* WriteDeleteMember(CTreeDocument* document, std::string_view class_name, std::string_view id,
                             std::string_view beginnt);

/// The key of an object's version: identifier and begin time without "-" and ":".
std::string MakeDeleteRid(std::string_view id, std::string_view beginnt);

}  // namespace pktaus
