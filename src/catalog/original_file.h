// The original NAS file, which holds the objects as the cadastre has them: what it says of a position object and of the
// object that this one belongs to.
#pragma once

#include <memory>
#include <string>

#include "store/point_record.h"

namespace pktaus {

/// What a NAS writer needs of the original file beside the record. Plain; texts are NUL-terminated.
struct OriginalExtract {
  char pos_xml[2000];         ///< lines of the gml:Point, with their line ends
  char object_beginnt[32];    ///< begin of the object that the position object belongs to
  char punktort_beginnt[32];  ///< begin of the position object
};

/// The original file for the searches of one operation. However many there are, the file is read a constant number of
/// times; each search gives what it would give alone, on the file as it is at that moment.
class OriginalFile {
 public:
  explicit OriginalFile(std::string path);
  ~OriginalFile();

  /// A new record with the values of the position object `gml_id` and of its owner; null where the file cannot be
  /// opened, an object is not in it or its layout is not one object a member. `extract` may be null.
  std::unique_ptr<PointRecord> Search(const char* gml_id, OriginalExtract* extract);

 private:
  struct Index;
  std::string path_;
  std::unique_ptr<Index> index_;
};

/// A single search.
std::unique_ptr<PointRecord> SearchOriginalFile(const std::string& path, const char* gml_id, OriginalExtract* extract);

}  // namespace pktaus
