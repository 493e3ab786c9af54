// The lock of a project: a file beside its table that says who works on it.
#pragma once

#include <string>

#include "platform/file.h"

namespace korvo {

/// What is said of a drive whose files cannot be locked.
inline constexpr const char* kNoLocks =
    "Dieses Laufwerk kennt keine Sperren: Niemand sonst darf das Projekt zugleich bearbeiten.";

/// Held from Take to Release or to the end of the process, however that comes; the file that a crash leaves behind
/// blocks nobody.
class ProjectLock {
 public:
  ~ProjectLock() { Release(); }

  /// Takes the lock of a table (form on disk), which lies beside the table itself: projects that lead to one table
  /// through links share it. False with the reason in German: who holds the lock, or why it cannot be had. On a
  /// drive that knows no locks it gives true and says so in `why`, which is empty otherwise.
  bool Take(const std::string& table_on_disk, std::string* why);
  void Release();

 private:
  platform::File file_;
};

}  // namespace korvo
