// Everything that is known about the form of a path. Paths are Windows-1252 inside and UTF-8 on disk.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace path {

/// What stands between folder and name on this platform. Both '\' and '/' are understood when a path is taken apart.
inline constexpr char kSeparator = '/';

/// The part behind the last '\', without one behind the last '/', without either the whole path.
std::string_view FileName(std::string_view path);

/// The part in front of the separator that FileName counts from; empty where there is none, the separator itself for
/// the root.
std::string_view Folder(std::string_view path);

/// Begins with a separator, or with a drive letter, ':' and a separator.
bool IsAbsolute(std::string_view path);

/// Folder, one separator and name; the name alone where the folder is empty.
std::string Join(std::string_view folder, std::string_view name);

/// Whether a file name fits a pattern of plain characters, '*' and '?', regardless of the case of A to Z.
bool Matches(std::string_view name, std::string_view pattern);

/// The form on disk. Every Windows-1252 path has one.
std::string ToDisk(std::string_view path);

/// The form inside; nothing for a name that Windows-1252 cannot say, which nobody inside can then open by mistake.
std::optional<std::string> FromDisk(std::string_view disk);

}  // namespace path
