// Loads plug-ins with the run-time loader and calls them.
#pragma once

#include <string>

namespace korvo {

/// Calls `pkt_aus` of the library (path in the form on disk) on the open project and waits until it returns. A library
/// stays loaded for the life of the process. False, with the reason in Windows-1252, where it was not called.
bool RunPlugin(const std::string& library_on_disk, std::string* why);

}  // namespace korvo
