// What stands between the plug-in and its host: no failure passes, each ends in a box.
#pragma once

#include <functional>

namespace pktaus {

/// Runs `work` and comes back in every case. An exception or a machine fault that ends it is shown in a message box, a
/// failure of the database layer also goes to the log file `strassedb.log` in the folder for temporary files.
/// Exceptions thrown as pointers are deleted. `file` and `line` are the place that the boxes name.
void RunGuarded(const std::function<void()>& work, const char* file, int line) noexcept;

}  // namespace pktaus
