// Shows any dialog as lines, from nothing but its controls.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "korvo/console/terminal.h"
#include "toolkit/dialog.h"

namespace korvo {

class DialogView {
 public:
  DialogView(Terminal& terminal, const toolkit::Dialog& dialog) : terminal_(terminal), dialog_(dialog) {}

  /// The whole window.
  void ShowAll();
  /// What is different from what was shown last.
  void ShowChanges();
  /// One control, a list from its row `from` (from 0) with `count` rows; that part stays the one shown.
  void Show(const toolkit::Control& control, int from, int count);

 private:
  struct Part {
    int from = 0;
    int count = 10;
  };
  std::vector<std::string> Render(const toolkit::Control& control);
  void RenderRows(const toolkit::TickList& list, std::vector<std::string>* lines);
  void RenderEntries(const toolkit::ChoiceList& list, std::vector<std::string>* lines);
  std::string Front() const;

  Terminal& terminal_;
  const toolkit::Dialog& dialog_;
  // By control: pages may use a number twice.
  std::map<const toolkit::Control*, Part> parts_;
  std::map<const toolkit::Control*, std::vector<std::string>> shown_;
  std::string shown_front_;
};

}  // namespace korvo
