#include "catalog/reserved_numbers.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <optional>
#include <string_view>
#include <vector>

#include "base/bounded.h"
#include "base/path.h"
#include "platform/file.h"

namespace pktaus {
namespace {

constexpr std::string_view kApplicationTag = "<antragsnummer>";
constexpr std::string_view kNumberTag = "<reservierteNummern>";
constexpr std::size_t kPieceLimit = 1998;  // bytes of a line that are taken at once, the LF included
constexpr std::size_t kBlock = 1 << 18;

/// A file in pieces of lines, without their line ends. CR LF counts as one byte.
class LineScan {
 public:
  explicit LineScan(std::vector<char>* buffer) : buffer_(*buffer) {}
  bool Open(const std::string& path) { return file_.Open(path, platform::OpenMode::kRead); }

  /// False at the end of the file. The piece is valid until the next call.
  bool Next(std::string_view* piece) {
    // CR and LF behind a full piece decide whether it is one.
    if (end_ - begin_ < kPieceLimit + 2) Fill();
    if (begin_ == end_) return false;
    const char* start = buffer_.data() + begin_;
    const std::size_t window = std::min(end_ - begin_, kPieceLimit + 1);
    const auto* line_end = static_cast<const char*>(std::memchr(start, '\n', window));
    std::size_t length = line_end != nullptr ? static_cast<std::size_t>(line_end - start) : window;
    std::size_t used = length;
    if (line_end != nullptr) {
      ++used;
      if (length > 0 && start[length - 1] == '\r') --length;
    }
    if (length + (line_end != nullptr ? 1 : 0) > kPieceLimit) used = length = kPieceLimit;
    begin_ += used;
    *piece = {start, length};
    return true;
  }

 private:
  void Fill() {
    if (at_end_) return;
    std::copy(buffer_.begin() + static_cast<std::ptrdiff_t>(begin_),
              buffer_.begin() + static_cast<std::ptrdiff_t>(end_), buffer_.begin());
    end_ -= begin_;
    begin_ = 0;
    const std::int64_t got = file_.Read(buffer_.data() + end_, buffer_.size() - end_);
    at_end_ = got < static_cast<std::int64_t>(buffer_.size() - end_);
    if (got > 0) end_ += static_cast<std::size_t>(got);
  }

  platform::File file_;
  std::vector<char>& buffer_;
  std::size_t begin_ = 0;
  std::size_t end_ = 0;
  bool at_end_ = false;
};

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
void ReadFile(LineScan* lines, const std::string& antragsnummer, ReservedNumber** first) {
  std::string_view line;
  while (lines->Next(&line)) {
    const Tags tags = FindTags(line);
    if (!tags.application && !tags.number) continue;
    const std::optional<std::string> value = Value(line);
    if (!value) continue;
    if (tags.application) {
      char application[48];
      if (put(application, value->c_str()) != antragsnummer) return;
      continue;  // the line counts as ended at this value
    }
    auto* entry = new ReservedNumber{};
    put(entry->number, value->c_str());
    entry->next = *first;
    *first = entry;
  }
}

}  // namespace

ReservedNumber* ReadReservedNumbers(const std::string& folder, const std::string& antragsnummer) {
  ReservedNumber* first = nullptr;
  if (folder.empty()) return first;
  std::vector<char> buffer(kBlock);
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
