// The commands that a person has in a dialog.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "korvo/console/dialog_view.h"
#include "korvo/console/terminal.h"
#include "toolkit/desktop.h"
#include "toolkit/dialog.h"

namespace korvo {

/// What they are, in lines.
const char* DialogHelp();

class DialogCommands {
 public:
  /// How an event reaches the dialog.
  using Deliver = std::function<toolkit::Answer(const toolkit::Event&)>;
  DialogCommands(Terminal& terminal, const toolkit::Dialog& dialog, DialogView& view, const platform::Clock& clock,
                 Deliver deliver)
      : terminal_(terminal), dialog_(dialog), view_(view), clock_(clock), deliver_(std::move(deliver)) {}

  /// Carries out one command or says what is wrong with it.
  void Do(std::string_view command);

 private:
  void Send(toolkit::ControlId id, const toolkit::Event& event);
  void Set(toolkit::ControlId id, std::string_view value);
  void Cancel();
  void Choose(toolkit::ControlId id, std::string_view label);
  void Tick(toolkit::ControlId id, std::string_view rest);
  void SelectRow(toolkit::ControlId id, std::string_view row);
  void SetDay(toolkit::ControlId id, std::string_view day);
  void TurnPage(std::string_view rest);
  void Press(std::string_view what);
  void Show(std::string_view rest);

  Terminal& terminal_;
  const toolkit::Dialog& dialog_;
  DialogView& view_;
  const platform::Clock& clock_;
  Deliver deliver_;
};

}  // namespace korvo
