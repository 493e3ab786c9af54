#include "base/path.h"

#include "base/text.h"

namespace path {
namespace {

std::size_t LastSeparator(std::string_view path) {
  const std::size_t back = path.rfind('\\');
  return back != std::string_view::npos ? back : path.rfind('/');
}

bool IsSeparator(char c) { return c == '\\' || c == '/'; }

}  // namespace

std::string_view FileName(std::string_view path) {
  const std::size_t at = LastSeparator(path);
  return at == std::string_view::npos ? path : path.substr(at + 1);
}

std::string_view Folder(std::string_view path) {
  const std::size_t at = LastSeparator(path);
  if (at == std::string_view::npos) return {};
  return path.substr(0, at == 0 ? 1 : at);
}

bool IsAbsolute(std::string_view path) {
  if (!path.empty() && IsSeparator(path[0])) return true;
  const bool letter = !path.empty() && ((path[0] >= 'A' && path[0] <= 'Z') || (path[0] >= 'a' && path[0] <= 'z'));
  return letter && path.size() > 2 && path[1] == ':' && IsSeparator(path[2]);
}

std::string Join(std::string_view folder, std::string_view name) {
  std::string joined(folder);
  if (!joined.empty() && !IsSeparator(joined.back())) joined.push_back(kSeparator);
  return joined.append(name);
}

bool Matches(std::string_view name, std::string_view pattern) {
  const auto same = [](char a, char b) { return text::EqualIgnoringCase({&a, 1}, {&b, 1}); };
  // One '*' at a time: a later one makes every choice for an earlier one final.
  std::size_t n = 0;
  std::size_t p = 0;
  std::size_t star = std::string_view::npos;
  std::size_t retry = 0;
  while (n < name.size()) {
    if (p < pattern.size() && pattern[p] == '*') {
      star = p++;
      retry = n;
    } else if (p < pattern.size() && (pattern[p] == '?' || same(pattern[p], name[n]))) {
      ++p;
      ++n;
    } else if (star != std::string_view::npos) {
      p = star + 1;
      n = ++retry;
    } else {
      return false;
    }
  }
  return pattern.find_first_not_of('*', p) == std::string_view::npos;
}

std::string ToDisk(std::string_view path) { return text::ToUtf8(path); }

std::optional<std::string> FromDisk(std::string_view disk) { return text::FromUtf8(disk); }

}  // namespace path
