// Copies of XML files with CR LF line ends in the folder for temporary files.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace pktaus {

/// Whether a line of the file ends without CR: the first one, or with `scan_all` any. False for a file that cannot be
/// read.
bool NeedsStaging(std::string_view path, bool scan_all);

/// Copies the file to "<name>.2Dos" in the folder for temporary files, with CR LF for each lone LF, and gives the
/// copy's path; nothing where it could not be made whole. An older copy is replaced; a link that lies there is removed,
/// never followed. The copy stays.
std::optional<std::string> StageFile(std::string_view path);

}  // namespace pktaus
