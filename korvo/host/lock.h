// The lock of a project: a file beside its table that says who works on it.
#pragma once

#include <string>
#include <string_view>

#include "platform/file.h"

namespace korvo {

/// Held from Take to Release or to the end of the process, however that comes; the file that a crash leaves behind
/// blocks nobody.
class ProjectLock {
 public:
  ~ProjectLock() { Release(); }

  /// False with the reason in German: who holds the lock, or why it cannot be had.
  bool Take(std::string_view folder, std::string* why);
  void Release();

 private:
  platform::File file_;
};

}  // namespace korvo
