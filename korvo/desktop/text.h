// Texts on their way between the Windows-1252 of the model and the widgets.
#pragma once

#include <QString>
#include <string>
#include <string_view>

namespace korvo {

/// As it is, each byte a character; for paths, file names and what is edited.
QString FromAnsi(std::string_view ansi);
/// Back; nothing is lost for what FromAnsi gave. A character that Windows-1252 lacks becomes '?'.
std::string ToAnsi(const QString& text);

/// As one line for a person: control characters as visible signs.
QString AsLine(std::string_view ansi);
/// As lines for a person: any of "\r\r\n", "\r\n", "\n\r", "\n" and "\r" is one line break.
QString AsLines(std::string_view ansi);
/// As one line on a widget that would take '&' for the mark of a short cut letter.
QString AsCaption(std::string_view ansi);

}  // namespace korvo
