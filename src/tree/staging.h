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
/// copy's path; nothing, with the last system error set, where it could not be made whole. The copy is for the eyes of
/// this user alone, and it stays. An older one of this user is replaced; where the name is another's the copy gets one
/// with this user's number. A link that lies there is removed, never followed.
std::optional<std::string> StageFile(std::string_view path);

}  // namespace pktaus
