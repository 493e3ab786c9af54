// Texts on their way between the Windows-1252 of the model and the widgets.
#pragma once

#include <QString>
#include <string>
#include <string_view>

namespace korvo {

/// As it is, each byte a character; for paths and file names.
QString FromAnsi(std::string_view ansi);
/// Back; nothing is lost for what FromAnsi gave. A character that Windows-1252 lacks becomes '?'.
std::string ToAnsi(const QString& text);

/// As one line for a person: each control character, a line break too, as a visible sign of its own.
QString AsLine(std::string_view ansi);
/// Back; nothing is lost for what AsLine gave. Line breaks, which only the clipboard can bring, are left out.
std::string FromLine(QString text);
/// What AsLine does, for a text that is Unicode from the start.
QString WithSigns(QString text);
/// As lines for a person: any of "\r\r\n", "\r\n", "\n\r", "\n" and "\r" is one line break.
QString AsLines(std::string_view ansi);
/// As running text for a person: a line break is a blank.
QString AsRunningText(std::string_view ansi);
/// A long text for the tip that the mouse brings, plain and in lines of bounded length; empty for a short one.
QString AsTip(const QString& text, qsizetype short_size = 40);
/// As one line on a widget that would take '&' for the mark of a short cut letter.
QString AsCaption(std::string_view ansi);

}  // namespace korvo
