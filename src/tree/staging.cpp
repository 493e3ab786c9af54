#include "tree/staging.h"

#include <cerrno>
#include <cstring>
#include <vector>

#include "base/path.h"
#include "platform/file.h"
#include "platform/system.h"

namespace pktaus {
namespace {

using platform::File;
using platform::OpenMode;

constexpr std::size_t kBlock = 128 * 1024;

// Appends `size` bytes with CR LF for each LF that follows no CR; `after_cr` goes on from block to block.
std::size_t ToCrLf(const char* from, std::size_t size, char* to, bool* after_cr) {
  const char* const end = from + size;
  char* const start = to;
  while (from < end) {
    const auto* lf = static_cast<const char*>(std::memchr(from, '\n', static_cast<std::size_t>(end - from)));
    const std::size_t run = static_cast<std::size_t>((lf == nullptr ? end : lf) - from);
    std::memcpy(to, from, run);
    to += run;
    from += run;
    if (run > 0) *after_cr = from[-1] == '\r';
    if (lf == nullptr) break;
    if (!*after_cr) *to++ = '\r';
    *to++ = *from++;
    *after_cr = false;
  }
  return static_cast<std::size_t>(to - start);
}

bool CopyWithCrLf(File* source, File* copy) {
  std::vector<char> in(kBlock);
  std::vector<char> out(2 * kBlock);
  bool after_cr = false;
  for (;;) {
    const std::int64_t got = source->Read(in.data(), in.size());
    if (got < 0) return false;
    const std::size_t size = static_cast<std::size_t>(got);
    if (!copy->Write(out.data(), ToCrLf(in.data(), size, out.data(), &after_cr))) return false;
    if (size < in.size()) return true;
  }
}

}  // namespace

bool NeedsStaging(std::string_view path, bool scan_all) {
  File file;
  if (!file.Open(path, OpenMode::kRead)) return false;
  std::vector<char> block(kBlock);
  bool saw_cr = false;
  for (;;) {
    const std::int64_t got = file.Read(block.data(), block.size());
    if (got <= 0) return false;
    for (std::int64_t i = 0; i < got; ++i) {
      const char c = block[static_cast<std::size_t>(i)];
      if (c != '\n') {
        saw_cr = c == '\r';
      } else if (!saw_cr) {
        return true;
      } else if (!scan_all) {
        return false;
      }
    }
  }
}

std::optional<std::string> StageFile(std::string_view path) {
  constexpr int kMostAttempts = 20;
  const std::string stem = platform::TempFolder() + std::string(path::FileName(path));
  File source;
  if (!source.Open(path, OpenMode::kRead)) return std::nullopt;
  File copy;
  std::string copy_path = stem + ".2Dos";
  for (int i = 0;; ++i) {
    // Only a name that is free: what somebody lays there between the two steps is not written to.
    platform::DeleteIfThere(copy_path);
    if (copy.Open(copy_path, OpenMode::kCreatePrivate)) break;
    if (platform::LastSystemError() != EEXIST || i == kMostAttempts) return std::nullopt;
    // The copy of another user lies there and stays.
    copy_path = stem + "." + platform::OwnUser() + "-" + std::to_string(i) + ".2Dos";
  }
  if (CopyWithCrLf(&source, &copy) && copy.Close()) return copy_path;
  const platform::KeepSystemError keep;
  copy.Close();
  platform::DeleteIfThere(copy_path);
  return std::nullopt;
}

}  // namespace pktaus
