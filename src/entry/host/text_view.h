// The display of a text, for reports, lists and explanations.
#pragma once

#include <string>

#include "toolkit/control.h"
#include "toolkit/dialog.h"

namespace pktaus {

/// Shows a title and a text as they are. Both must outlive the dialog. See text_view in entry/host/desktop.h for the
/// usual way to run it.
class CTextViewDlg : public toolkit::Dialog {
 public:
  static constexpr toolkit::ControlId kText = 7021;

  CTextViewDlg(const char* title, const char* text);

 protected:
  void OnOpened() override;
  void OnPressed(toolkit::ControlId id) override;

 private:
  const char* shown_title_;
  const char* shown_text_;
  toolkit::TextField field_{kText, "", toolkit::TextField::Form::kReadOnlyLines};
  toolkit::Button ok_{toolkit::kOk, "OK"};
};

}  // namespace pktaus
