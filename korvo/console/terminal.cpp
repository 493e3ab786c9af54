#include "korvo/console/terminal.h"

#include <cstdlib>

#include "base/text.h"
#include "korvo/words/words.h"

namespace korvo {

using namespace text::literals;

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
// A terminal that has gone away answers every question with its end.
constexpr int kMostEnds = 20;

void Put(std::string_view utf8) { std::fwrite(utf8.data(), 1, utf8.size(), stdout); }

}  // namespace

void Terminal::Say(std::string_view text) {
  Put(OneLine(text));
  Put("\n");
}

void Terminal::SayLines(std::string_view text, std::string_view margin) {
  for (const std::string& line : Lines(text)) Say(std::string(margin) + line);
}

void Terminal::Stop(const std::string& why) const {
  std::fflush(stdout);
  std::fprintf(stderr, "korvo-console: Zeile %d: %s\n", line_, OneLine(why).c_str());
  std::fflush(stderr);
  std::_Exit(kExitScript);  // the plug-in stands on the stack: nothing of it runs on
}

void Terminal::Refuse(const std::string& why) {
  if (!person_) Stop(why);
  Say("! " + why);
}

std::optional<std::string> Terminal::ReadLine(const std::string& prompt) {
  Put(OneLine(prompt));
  std::fflush(stdout);
  std::string bytes;
  int c = 0;
  while ((c = std::getc(in_)) != EOF && c != '\n') bytes.push_back(static_cast<char>(c));
  if (c == EOF && std::ferror(in_) != 0 && !person_) Stop("Das Skript lässt sich nicht lesen."_ansi);
  if (c == EOF && bytes.empty()) {
    Put("\n");
    std::clearerr(in_);
    return std::nullopt;
  }
  if (++line_ == 1 && bytes.starts_with(kByteOrderMark)) bytes.erase(0, kByteOrderMark.size());
  if (!bytes.empty() && bytes.back() == '\r') bytes.pop_back();
  std::optional<std::string> line = text::FromUtf8(bytes);
  if (!person_) Say(line ? *line : text::FromUtf8Lossy(bytes));
  if (line) return line;
  Refuse("Die Zeile enthält Zeichen, die Korvo nicht kennt (nicht in Windows-1252)."_ansi);
  return "#";
}

std::optional<std::string> Terminal::Ask(const std::string& prompt, AtEnd at_end, bool enter) {
  for (;;) {
    const std::optional<std::string> line = ReadLine(prompt);
    if (!line) {
      if (!person_ && at_end == AtEnd::kStop)
        Stop("Das Skript ist zu Ende, es steht aber noch etwas offen ("_ansi + prompt + ").");
      if (person_ && ++ends_ > kMostEnds) std::_Exit(kExitScript);
      return std::nullopt;
    }
    ends_ = 0;
    const std::string_view command = Trim(*line);
    if (command.empty() && person_ && enter) return std::string();
    if (command.empty() || command.front() == '#') continue;
    std::string_view rest = command;
    if (TakeWord(&rest) != "erwarte") return std::string(command);
    if (rest.empty()) {
      Refuse("erwarte TEXT: es fehlt der Text."_ansi);
    } else {
      expected_.push_back(Unquote(rest));
    }
  }
}

void Terminal::MeetBox(const std::string& title, const std::string& text) {
  if (expected_.empty()) {
    if (!person_) Stop("Diese Meldung hat das Skript nicht erwartet: "_ansi + title + ": " + text);
    return;
  }
  const std::string expected = expected_.front();
  expected_.pop_front();
  if (title.find(expected) != std::string::npos || text.find(expected) != std::string::npos) return;
  const std::string why =
      "Erwartet war die Meldung \""_ansi + expected + "\", erschienen ist: "_ansi + title + ": " + text;
  if (!person_) Stop(why);
  Say("! " + why);
}

void Terminal::EndOfScript() {
  if (!person_ && !expected_.empty()) Stop("Diese Meldung ist nicht erschienen: "_ansi + expected_.front());
}

}  // namespace korvo
