// What has to be set once for the whole program.
#pragma once

class QApplication;

namespace korvo {

/// German texts of the toolkit's own dialogs, German days, drop-down lists of bounded height, and no end of the program
/// with the last window: it ends when the main window says so, which may be behind a plug-in that still runs.
void SetUpApplication(QApplication& application);

}  // namespace korvo
