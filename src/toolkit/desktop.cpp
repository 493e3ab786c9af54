#include "toolkit/desktop.h"

namespace toolkit {

int RunModal(Desktop& desktop, Dialog& dialog, Window parent) {
  dialog.Handle(Opened{});
  if (dialog.IsOpen()) desktop.Run(dialog, parent);
  dialog.Rethrow();
  return dialog.result();
}

}  // namespace toolkit
