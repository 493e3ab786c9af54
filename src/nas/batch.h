// NAS file of plain building points: every point a new AX_BesondererGebaeudepunkt with an AX_PunktortAG.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace pktaus {

class CTreeDocument;
class CTreeNode;

/// A building point, all values as finished text of at most 254 characters (see PutBatchText) in Windows-1252.
struct BatchPoint {
  std::string name;            ///< the host's point number, written as punktkennung
  std::string east;            ///< metres with three decimals
  std::string north;           ///< likewise
  std::string gst;             ///< genauigkeitsstufe
  std::string kst;             ///< koordinatenstatus
  std::string her;             ///< AX_Datenerhebung_Punktort
  std::string zst;             ///< stelle
  std::string objid;           ///< identifier of the object, set by WriteBatchObject
  std::int32_t filled = 0;     ///< 1 where the row holds a point
  BatchPoint* next = nullptr;  ///< link of the list that is written; not owned
};

/// Size of the widest text of a BatchPoint with its terminator.
inline constexpr std::size_t kBatchTextSize = 255;

/// Sets a text of a BatchPoint; one that is too long is cut and reported by my_strcpy.
void PutBatchText(std::string* field, const char* text);

/// Writes the points of the list (null for none) into a copy of the template, both paths complete. Gives the message
/// for the user: "Erfolgreich: ..." when the file stands at `output_path`, otherwise "Fehler: ..." and what stood there
/// still does. `land` is the federal state's code as text.
std::string WriteBatchFile(BatchPoint* points, const std::string& output_path, const std::string& template_path,
                           const std::string& land, const std::string& application_number,
                           const std::string& order_number);

/// The transaction member of the object, not linked yet; sets `objid` of the point.
CTreeNode* WriteBatchObject(CTreeDocument* document, BatchPoint* point, const std::string& land);

/// The transaction member of the position object, not linked yet. Comes behind WriteBatchObject of the point.
/// In its coordinates the first "," becomes ".".
CTreeNode* WriteBatchPunktort(CTreeDocument* document, BatchPoint* point);

}  // namespace pktaus
