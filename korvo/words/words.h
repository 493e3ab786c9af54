// Small things about words and lines. All texts are Windows-1252.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/clock.h"

namespace korvo {

std::string_view Trim(std::string_view text);

/// Takes the first word off the front of `rest`, with the blanks around it.
std::string_view TakeWord(std::string_view* rest);

/// What is meant by a value on a command line: blanks around it do not count, quotes around it keep its own.
std::string Unquote(std::string_view text);

/// Nothing unless the whole text is a decimal number that fits.
std::optional<int> ToNumber(std::string_view text);

/// A length in metres, with a point or a comma.
std::optional<double> ToMetres(std::string_view text);

/// "TT.MM.JJJJ"; whether the calendar has such a day is for the dialog to say.
std::optional<platform::CivilTime> ToDay(std::string_view text);
std::string DayText(const platform::CivilTime& day);

/// A text as one line of UTF-8: control characters as visible signs.
std::string OneLine(std::string_view ansi);

/// A text as lines, still Windows-1252. Any of "\r\r\n", "\r\n", "\n\r", "\n" and "\r" ends a line, a tab is four
/// blanks.
std::vector<std::string> Lines(std::string_view ansi);

/// Position of the one label that is meant by a text: the first that equals it, else the only one that begins with it
/// regardless of case, else the position behind "#" (from 1). Nothing where no or more than one label fits.
std::optional<int> PositionOf(const std::vector<std::string>& labels, std::string_view meant);

}  // namespace korvo
