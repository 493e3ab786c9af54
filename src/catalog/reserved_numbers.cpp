#include "catalog/reserved_numbers.h"

#include <cstddef>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "base/bounded.h"
#include "base/path.h"
#include "catalog/line_scan.h"
#include "platform/file.h"

namespace pktaus {
namespace {

constexpr std::string_view kApplicationTag = "<antragsnummer>";
constexpr std::string_view kNumberTag = "<reservierteNummern>";

struct Tags {
  bool application = false;
  bool number = false;
};

Tags FindTags(std::string_view line) {
  Tags tags;
  for (std::size_t at = line.find('<'); at != std::string_view::npos; at = line.find('<', at + 1)) {
    const std::string_view rest = line.substr(at);
    tags.application = tags.application || rest.starts_with(kApplicationTag);
    tags.number = tags.number || rest.starts_with(kNumberTag);
  }
  return tags;
}

/// What stands between the first ">" of a line with a tag and the next "<"; nothing where the value goes on in the next
/// line.
std::optional<std::string> Value(std::string_view line) {
  const std::size_t begin = line.find('>') + 1;
  const std::size_t end = line.find('<', begin);
  if (end == std::string_view::npos) return std::nullopt;
  return std::string(line.substr(begin, end - begin));
}

/// Links the numbers of one file at the head of the list.
void ReadFile(LineScan* lines, const std::string& antragsnummer, ReservedNumbers* first) {
  LinePiece piece;
  while (lines->Next(&piece)) {
    const std::string_view line = piece.text;
    const Tags tags = FindTags(line);
    if (!tags.application && !tags.number) continue;
    const std::optional<std::string> value = Value(line);
    if (!value) continue;
    if (tags.application) {
      char application[48];
      if (put(application, value->c_str()) != antragsnummer) return;
      continue;  // the line counts as ended at this value
    }
    ReservedNumbers entry(new ReservedNumber{});
    put(entry->number, value->c_str());
    entry->next = first->release();
    *first = std::move(entry);
  }
}

}  // namespace

ReservedNumbers ReadReservedNumbers(const std::string& folder, const std::string& antragsnummer) {
  ReservedNumbers first;
  if (folder.empty()) return first;
  std::vector<char> buffer;
  for (const std::string& name : platform::ListFiles(folder, "*.xml")) {
    LineScan lines(&buffer);
    if (lines.Open(path::Join(folder, name))) ReadFile(&lines, antragsnummer, &first);
  }
  return first;
}

void FreeReservedNumbers(ReservedNumber* first) {
  while (first != nullptr) {
    ReservedNumber* next = first->next;
    delete first;
    first = next;
  }
}

}  // namespace pktaus
