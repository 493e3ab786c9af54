#include "nas/order_file.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string_view>

#include "base/bounded.h"
#include "base/path.h"
#include "base/text.h"
#include "catalog/catalog.h"
#include "catalog/catalog_store.h"
#include "catalog/original_file.h"
#include "entry/host/desktop.h"
#include "nas/frame.h"
#include "nas/point_members.h"
#include "tree/document.h"

namespace pktaus {
namespace {

/// A further position object of a point, as `wepo` tells it.
struct FurtherPosition {
  char class_name[40];
  char gml_id[40];
};

/// Takes the first pair "class|gml:id|" off the front; the last bar may be missing. False where there is no pair.
bool TakePair(std::string_view* rest, FurtherPosition* further) {
  const std::size_t bar = rest->find('|');
  if (bar == std::string_view::npos) return false;
  put(further->class_name, std::string(rest->substr(0, bar)).c_str());
  rest->remove_prefix(bar + 1);
  const std::size_t end = rest->find('|');
  put(further->gml_id, std::string(rest->substr(0, end)).c_str());
  rest->remove_prefix(end == std::string_view::npos ? rest->size() : end + 1);
  return true;
}

/// How the surveyor knows a point.
std::string NameOf(const PointRecord& point) {
  if (point.pkn[0] != '\0') return point.pkn;
  if (point.obgid[0] != '\0') return point.obgid;
  return text::Decimal(point.east, 3) + " " + text::Decimal(point.north, 3);
}

/// Why the point cannot be written; empty where it can. What is written about it comes from the catalogue.
std::string FaultOf(const PointRecord& point) {
  const CatalogObject* type = CatalogObjectOfRow(point.oa);
  if (type == nullptr || type->ort == nullptr)
    return "Fehler: Objektart des Punktes " + NameOf(point) + " ist im Katalog nicht vorhanden";
  if (point.aktion < kAktionNew || point.aktion > kAktionDelete)
    return "Fehler: Aktion des Punktes " + NameOf(point) + " ist unbekannt";
  return {};
}

/// Where a walk over the points stands.
enum class Walk {
  kOn,
  kStop,  ///< the file ends here, with what stands in it
  kFail,  ///< nothing is saved
};

class OrderWriter {
 public:
  OrderWriter(Frame* frame, std::string application_number, const std::string& organisation, const std::string& land)
      : document_(frame->document()),
        frame_(*frame),
        application_number_(std::move(application_number)),
        organisation_(organisation),
        land_(land) {}

  /// Appends all members of a point.
  Walk Append(PointRecord* point);
  /// The message behind kFail.
  const std::string& failure() const { return failure_; }

 private:
  Walk AppendFurther(const PointRecord& point);
  Walk Fail(std::string message) {
    failure_ = std::move(message);
    return Walk::kFail;
  }
  /// What the original file says of a position object; null, shown to the surveyor, where it says nothing. `place`
  /// tells the two users of this apart.
  std::unique_ptr<PointRecord> Search(const char* gml_id, const char* place, OriginalExtract* extract);

  CTreeDocument* document_;
  Frame& frame_;
  const std::string application_number_;
  const std::string& organisation_;
  const std::string& land_;
  std::optional<OriginalFile> original_;
  std::string failure_;
};

std::unique_ptr<PointRecord> OrderWriter::Search(const char* gml_id, const char* place, OriginalExtract* extract) {
  std::string path;
  if (!GetOriginalFile(&path)) {
    text_view("abbruch", place);
    return nullptr;
  }
  if (!original_) original_.emplace(path);
  std::unique_ptr<PointRecord> found = original_->Search(gml_id, extract);
  if (found == nullptr) text_view("found", "nicht gefunden");
  return found;
}

Walk OrderWriter::Append(PointRecord* point) {
  std::string fault = FaultOf(*point);
  if (!fault.empty()) return Fail(std::move(fault));
  OriginalExtract extract;
  const bool deleted = point->aktion == kAktionDelete;
  if (deleted && Search(point->gmlid, "1", &extract) == nullptr) return Walk::kStop;
  const OriginalExtract* needed = deleted ? &extract : nullptr;
  frame_.Append(WriteObjectMember(document_, point, land_, application_number_, needed));
  frame_.Append(WritePunktortMember(document_, *point, organisation_, land_, needed));
  return point->aktion == kAktionNew ? Walk::kOn : AppendFurther(*point);
}

Walk OrderWriter::AppendFurther(const PointRecord& point) {
  std::string_view rest = point.wepo;
  FurtherPosition further;
  while (TakePair(&rest, &further)) {
    OriginalExtract extract;
    const std::unique_ptr<PointRecord> found = Search(further.gml_id, "2", &extract);
    if (found == nullptr) return Fail(kNothingFound);
    if (point.aktion == kAktionDelete) {
      frame_.Append(WriteDeleteMember(document_, further.class_name, further.gml_id, extract.punktort_beginnt));
      continue;
    }
    found->aktion = kAktionReplace;
    put(found->objid, point.objid);
    std::string fault = FaultOf(*found);
    if (!fault.empty()) return Fail(std::move(fault));
    frame_.Append(WritePunktortMember(document_, *found, organisation_, land_, &extract));
  }
  return Walk::kOn;
}

/// A path with a drive or from this platform's root is complete; anything else lies beside the library.
std::string TemplatePath(const std::string& header_name) {
  const bool complete = header_name.find(':') != std::string::npos || header_name.starts_with(path::kSeparator);
  return complete ? header_name : path::Join(plugin_folder(), header_name);
}

}  // namespace

std::string WriteOrderFile(const std::string& output_path, const std::string& header_name, PointRecord* points,
                           std::int32_t limit, const std::string& organisation, const std::string& land) {
  Frame frame;
  if (points == nullptr) return "Fehler: Kein objekt in der Liste";
  std::string error = frame.Open(TemplatePath(header_name), points->antragn, points->auftrag);
  if (!error.empty()) return error;
  if (!frame.TakesMembers()) return kNothingFound;
  OrderWriter writer(&frame, points->antragn, organisation, land);
  std::int32_t count = 0;
  for (PointRecord* point = points; point != nullptr && count <= limit; point = point->next) {
    const Walk walk = writer.Append(point);
    if (walk == Walk::kFail) return writer.failure();
    if (walk == Walk::kStop) break;
    ++count;
  }
  if (output_path.empty() && count > 0) return WrittenMessage(count);
  return frame.Close(output_path, count);
}

bool GetOriginalFile(std::string* path) {
  *path = get_catalog_store()->orig_xml;
  if (!path->empty()) return true;
  message_box("Bitte zuerst in den Einstellungen die Original XML einstellen", "Hinweis");
  return false;
}

}  // namespace pktaus
