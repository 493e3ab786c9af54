// Lines in and lines out: of a person at a terminal, or of a script that has to fit exactly.
#pragma once

#include <cstdio>
#include <deque>
#include <optional>
#include <string>
#include <string_view>

namespace korvo {

/// Exit codes of the program.
inline constexpr int kExitNotStarted = 1;  ///< options or project
inline constexpr int kExitNoMemory = 3;
inline constexpr int kExitScript = 2;  ///< the script did not fit what happened

/// Texts are Windows-1252 on this side and UTF-8 on the other. A line that is blank or begins with '#' is no command,
/// and "erwarte TEXT" is taken here wherever it stands.
///
/// What a person gets wrong is said and asked again. A script that gets something wrong, or ends too early, ends the
/// program at once with kExitScript and a message on stderr: going on would do something else than its author meant.
class Terminal {
 public:
  Terminal(std::FILE* in, bool person) : in_(in), person_(person) {}

  bool person() const { return person_; }

  /// Shows a text as one line.
  void Say(std::string_view text);
  /// Shows a text as many lines as it has, each behind `margin`.
  void SayLines(std::string_view text, std::string_view margin);

  enum class AtEnd { kStop, kGoOn };
  /// The next command, blanks around it removed. Nothing at the end of the input: always for a person, for a script
  /// only with kGoOn; otherwise that stops it. With `enter`, an empty line of a person is an answer too.
  std::optional<std::string> Ask(const std::string& prompt, AtEnd at_end = AtEnd::kStop, bool enter = false);

  /// Says what is wrong with the last command.
  void Refuse(const std::string& why);
  /// A box has appeared. In a script the next "erwarte" has to name a part of it; takes that back.
  void MeetBox(const std::string& title, const std::string& text);
  /// The script is over: stops it if a box that it expects did not come.
  void EndOfScript();

 private:
  std::optional<std::string> ReadLine(const std::string& prompt);
  [[noreturn]] void Stop(const std::string& why) const;

  std::FILE* in_;
  bool person_;
  int line_ = 0;
  int ends_ = 0;
  std::deque<std::string> expected_;
};

}  // namespace korvo
