// How every file of the system gets to disk: the old file or the new one, never half of either.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "platform/file.h"

namespace platform {

/// Streams a complete new file beside the target and puts it in the target's place in one step.
///
/// Open finds out whether the target (links followed) may be written; then Write as often as needed; Commit syncs,
/// closes and renames. Mode and owner of an existing target are kept. Where the folder or the ownership forbids a new
/// file beside it, the bytes go into the target in place at Commit, after a look at the free space. Without a Commit
/// that gave true the target stands as before (but for a fault in the middle of a write in place).
class FileSaver {
 public:
  FileSaver();
  ~FileSaver();  ///< drops what was not committed
  FileSaver(const FileSaver&) = delete;
  FileSaver& operator=(const FileSaver&) = delete;

  /// Form inside. False where the target cannot be opened for writing; it is untouched then.
  bool Open(std::string_view path);
  /// Buffered; false once any write has failed. Nothing need be asked before Commit, which tells it again.
  bool Write(const void* data, std::size_t size);
  bool Write(std::string_view text) { return Write(text.data(), text.size()); }
  /// The one answer that counts: true, and the new file stands at the target; false, and the old one does.
  bool Commit();

 private:
  struct Work;
  std::unique_ptr<Work> work_;
};

}  // namespace platform
