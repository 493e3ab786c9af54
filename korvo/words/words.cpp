#include "korvo/words/words.h"

#include <algorithm>
#include <charconv>
#include <cstdio>

#include "base/text.h"

namespace korvo {

namespace {

constexpr std::string_view kBlanks = " \t";

bool IsOpenByte(unsigned char c) { return c == 0x81 || c == 0x8D || c == 0x8F || c == 0x90 || c == 0x9D; }

/// UTF-8 of one byte, as a sign that a terminal does not take for an order to itself.
std::string Visible(char c) {
  const auto byte = static_cast<unsigned char>(c);
  if (byte < 0x20) return {'\xE2', '\x90', static_cast<char>(0x80 + byte)};  // U+2400 and on: pictures of controls
  if (byte == 0x7F) return "\xE2\x90\xA1";
  if (IsOpenByte(byte)) return "\xEF\xBF\xBD";
  return text::ToUtf8({&c, 1});
}

template <typename Number>
std::optional<Number> Whole(std::string_view text) {
  Number number{};
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || stop != end) return std::nullopt;
  return number;
}

bool BeginsWith(std::string_view text, std::string_view front) {
  return text.size() >= front.size() && text::EqualIgnoringCase(text.substr(0, front.size()), front);
}

}  // namespace

std::string_view Trim(std::string_view text) {
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::string_view TakeWord(std::string_view* rest) {
  *rest = Trim(*rest);
  const std::string_view word = rest->substr(0, rest->find_first_of(kBlanks));
  *rest = Trim(rest->substr(word.size()));
  return word;
}

std::string Unquote(std::string_view text) {
  text = Trim(text);
  const bool quoted = text.size() >= 2 && text.front() == '"' && text.back() == '"';
  return std::string(quoted ? text.substr(1, text.size() - 2) : text);
}

std::optional<int> ToNumber(std::string_view text) { return Whole<int>(text); }

std::optional<double> ToMetres(std::string_view text) {
  std::string with_point(text);
  std::replace(with_point.begin(), with_point.end(), ',', '.');
  return Whole<double>(with_point);
}

std::optional<platform::CivilTime> ToDay(std::string_view text) {
  const std::size_t first = text.find('.');
  const std::size_t second = first == std::string_view::npos ? first : text.find('.', first + 1);
  if (second == std::string_view::npos) return std::nullopt;
  const std::optional<int> day = ToNumber(text.substr(0, first));
  const std::optional<int> month = ToNumber(text.substr(first + 1, second - first - 1));
  const std::optional<int> year = ToNumber(text.substr(second + 1));
  if (!day || !month || !year) return std::nullopt;
  return platform::CivilTime{*year, *month, *day, 0, 0, 0};
}

std::string DayText(const platform::CivilTime& day) {
  char text[40];
  std::snprintf(text, sizeof text, "%02d.%02d.%04d", day.day, day.month, day.year);
  return text;
}

std::string OneLine(std::string_view ansi) {
  std::string line;
  for (const char c : ansi) line += Visible(c);
  return line;
}

std::vector<std::string> Lines(std::string_view ansi) {
  std::vector<std::string> lines(1);
  for (std::size_t i = 0; i < ansi.size(); ++i) {
    std::size_t feed = i;
    while (feed < ansi.size() && ansi[feed] == '\r') ++feed;
    if (feed < ansi.size() && ansi[feed] == '\n') {
      i = feed + 1 < ansi.size() && ansi[feed + 1] == '\r' ? feed + 1 : feed;
      // "\n\r\n" is two ends of lines: the "\r" belongs to the second.
      if (i > feed && i + 1 < ansi.size() && ansi[i + 1] == '\n') i = feed;
      lines.emplace_back();
    } else if (ansi[i] == '\r') {
      lines.emplace_back();
    } else {
      lines.back() += ansi[i] == '\t' ? std::string(4, ' ') : std::string(1, ansi[i]);
    }
  }
  if (lines.size() > 1 && lines.back().empty()) lines.pop_back();
  return lines;
}

std::optional<int> PositionOf(const std::vector<std::string>& labels, std::string_view meant) {
  std::optional<int> found;
  int fitting = 0;
  for (std::size_t i = 0; i < labels.size(); ++i) {
    if (Trim(labels[i]) == Trim(meant)) return static_cast<int>(i);
    if (Trim(meant).empty() || !BeginsWith(Trim(labels[i]), Trim(meant))) continue;
    found = static_cast<int>(i);
    ++fitting;
  }
  if (fitting == 1) return found;
  const std::optional<int> number =
      fitting == 0 && !meant.empty() && meant.front() == '#' ? ToNumber(meant.substr(1)) : std::nullopt;
  if (!number || *number < 1 || *number > static_cast<int>(labels.size())) return std::nullopt;
  return *number - 1;
}

}  // namespace korvo
