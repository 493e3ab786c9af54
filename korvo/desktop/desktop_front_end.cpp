#include "korvo/desktop/desktop_front_end.h"

#include <QApplication>
#include <QCloseEvent>
#include <QFileInfo>
#include <QKeyEvent>
#include <QMessageBox>
#include <QPushButton>
#include <algorithm>
#include <utility>

#include "base/path.h"
#include "base/text.h"
#include "entry/host/host.h"
#include "korvo/desktop/dialog_window.h"
#include "korvo/desktop/modal_guard.h"
#include "korvo/desktop/picker.h"
#include "korvo/desktop/text.h"
#include "korvo/host/points.h"

namespace korvo {

using namespace text::literals;

namespace {

constexpr const char* kMainClass = "GD_WIN32";
constexpr const char* kOtherClass = "Dialog";
/// Longer texts of a box would make it larger than the screen; they can be unfolded.
constexpr qsizetype kLongestText = 1500;
constexpr qsizetype kMostLines = 30;
constexpr const char* kStrangePath = "Der Pfad enthält Zeichen, die Korvo nicht kennt (nicht in Windows-1252): "_ansi;

toolkit::Window HandleOf(const QWidget* widget) { return reinterpret_cast<toolkit::Window>(widget); }

QWidget* WidgetOf(toolkit::Window window) {
  const QWidgetList all = QApplication::topLevelWidgets();
  for (QWidget* widget : all) {
    if (HandleOf(widget) == window) return widget;
  }
  return nullptr;
}

struct BoxButton {
  const char16_t* caption;
  QMessageBox::StandardButton button;
  int answer;
};
constexpr BoxButton kBoxButtons[] = {
    {u"OK", QMessageBox::Ok, toolkit::kAnswerOk},
    {u"&Ja", QMessageBox::Yes, toolkit::kAnswerYes},
    {u"&Nein", QMessageBox::No, toolkit::kAnswerNo},
    {u"Abbrechen", QMessageBox::Cancel, toolkit::kAnswerCancel},
};

QMessageBox::StandardButtons ButtonsOf(unsigned flags) {
  switch (flags & 0x0FU) {
    case toolkit::kBoxOkCancel:
      return QMessageBox::Ok | QMessageBox::Cancel;
    case toolkit::kBoxYesNoCancel:
      return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
    case toolkit::kBoxYesNo:
      return QMessageBox::Yes | QMessageBox::No;
    default:
      return QMessageBox::Ok;
  }
}

QMessageBox::Icon IconOf(unsigned flags) {
  switch (flags & 0xF0U) {
    case toolkit::kBoxError:
      return QMessageBox::Critical;
    case toolkit::kBoxQuestion:
      return QMessageBox::Question;
    case toolkit::kBoxWarning:
      return QMessageBox::Warning;
    case toolkit::kBoxInformation:
      return QMessageBox::Information;
    default:
      return QMessageBox::NoIcon;
  }
}

void SetText(QMessageBox* box, const QString& text) {
  const bool is_long = text.size() > kLongestText || text.count(QChar(u'\n')) > kMostLines;
  const QString front = text.section(QChar(u'\n'), 0, kMostLines).left(kLongestText);
  box->setTextFormat(Qt::PlainText);
  box->setText(is_long ? front + QChar(u'…') : text);
  if (is_long) box->setDetailedText(text);
}

class Box : public QMessageBox {
 public:
  using QMessageBox::QMessageBox;
  /// Neither Escape nor the window's own way out answers for the person.
  void MustBeAnswered() {
    must_be_answered_ = true;
    setWindowFlag(Qt::WindowCloseButtonHint, false);
  }

 protected:
  void keyPressEvent(QKeyEvent* event) override {
    if (!must_be_answered_ || event->key() != Qt::Key_Escape) QMessageBox::keyPressEvent(event);
  }
  void closeEvent(QCloseEvent* event) override { must_be_answered_ ? event->ignore() : QMessageBox::closeEvent(event); }

 private:
  bool must_be_answered_ = false;
};

}  // namespace

DesktopFrontEnd::DesktopFrontEnd(Shell& shell, Waits& waits, const platform::Clock& clock)
    : shell_(shell), waits_(waits), clock_(clock), guard_(shell.Guard()) {}

DesktopFrontEnd::~DesktopFrontEnd() = default;

QDialog* DesktopFrontEnd::front() const { return guard_.front(); }

int DesktopFrontEnd::ChooseFromMenu(const Menu& menu) { return waits_.WaitForChoice(shell_, menu); }

bool DesktopFrontEnd::PickPoint(HostPoint* point) {
  for (;;) {
    const std::int32_t record = waits_.WaitForPick(shell_);
    if (record == 0) return false;
    // The plug-in knows a point by its number alone: where it stands more than once, its first point is meant.
    HostPoint picked;
    if (!ReadPoint(record, &picked) || FindPoint(picked.pt_no, &picked) == 0) continue;
    *point = picked;
    return true;
  }
}

void DesktopFrontEnd::PointChanged(std::int32_t number) {
  const UnderHandlers hosts(waits_.hosts_handlers());
  shell_.PointChanged(number);
}

QWidget* DesktopFrontEnd::Below(toolkit::Window parent) const {
  if (front() != nullptr) return front();
  QWidget* const asked = WidgetOf(parent);
  return asked != nullptr ? asked : shell_.Widget();
}

void DesktopFrontEnd::ShowDialogs() {
  for (DialogWindow* window : windows_) window->ShowControls();
}

void DesktopFrontEnd::Run(toolkit::Dialog& dialog, toolkit::Window parent) {
  DialogWindow* shown = nullptr;
  Waits::Wait wait(waits_, [&] {
    if (shown != nullptr) shown->reject();
    if (dialog.IsOpen()) waits_.StopLeaving();
  });
  ShowDialogs();
  DialogWindow window(dialog, waits_, Below(parent), [&] { wait.Stop(); });
  shown = &window;
  const ModalGuard::Hold hold(guard_, window);
  windows_.push_back(&window);
  window.show();
  try {
    wait.Run();
  } catch (...) {
    windows_.pop_back();
    throw;
  }
  windows_.pop_back();
}

int DesktopFrontEnd::ShowBox(const std::string& text, const std::string& title, unsigned flags,
                             toolkit::Window parent) {
  Box* shown = nullptr;
  Waits::Wait wait(waits_, [&] { shown->done(0); });
  ShowDialogs();
  Box box(Below(parent));
  shown = &box;
  const ModalGuard::Hold hold(guard_, box);
  box.setWindowTitle(AsLine(title));
  box.setIcon(IconOf(flags));
  SetText(&box, AsLines(text));
  const QMessageBox::StandardButtons buttons = ButtonsOf(flags);
  box.setStandardButtons(buttons);
  int before_default = (flags & toolkit::kBoxSecondIsDefault) != 0 ? 1 : 0;
  for (const BoxButton& one : kBoxButtons) {
    if (!buttons.testFlag(one.button)) continue;
    box.button(one.button)->setText(QString::fromUtf16(one.caption));
    if (before_default-- == 0) box.setDefaultButton(one.button);
  }
  if ((buttons & (QMessageBox::Ok | QMessageBox::Cancel)) == 0) box.MustBeAnswered();
  QObject::connect(&box, &QDialog::finished, &box, [&] { wait.Stop(); });
  box.show();
  wait.Run();
  int answer = buttons == QMessageBox::Ok ? toolkit::kAnswerOk : toolkit::kAnswerCancel;
  for (const BoxButton& one : kBoxButtons) {
    if (box.clickedButton() != nullptr && box.clickedButton() == box.button(one.button)) answer = one.answer;
  }
  TellSaved();
  return answer;
}

bool DesktopFrontEnd::CanTell(const QString& path) {
  if (path::FromDisk(path.toStdString())) return true;
  ShowBox(kStrangePath + text::FromUtf8Lossy(path.toStdString()), "Korvo", toolkit::kBoxWarning, 0);
  return false;
}

bool DesktopFrontEnd::MayOverwrite(const QString& path) {
  constexpr unsigned kFlags = toolkit::kBoxYesNo | toolkit::kBoxWarning | toolkit::kBoxSecondIsDefault;
  const QFileInfo file(path);
  if (!file.exists()) return true;
  const std::string question =
      ToAnsi(QStringLiteral("Die Datei „%1“ gibt es schon.\nSoll sie überschrieben werden?").arg(file.fileName()));
  return ShowBox(question, "Korvo", kFlags, 0) == toolkit::kAnswerYes;
}

QString DesktopFrontEnd::RunPicker(Picker* picker, bool ask_before_overwrite, std::string* path) {
  picker->takes = [&](const QString& chosen) {
    bool taken = false;
    waits_.AtEdge([&] { taken = CanTell(chosen) && (!ask_before_overwrite || MayOverwrite(chosen)); });
    return taken;
  };
  QString chosen = picker->Ask(waits_, guard_);
  if (!chosen.isEmpty()) *path = path::FromDisk(chosen.toStdString()).value();
  return chosen;
}

bool DesktopFrontEnd::PickFile(const toolkit::FilePick& pick, std::string* path, int* filter) {
  const UnderHandlers hosts(waits_.hosts_handlers());
  ShowDialogs();
  Picker picker(Below(pick.owner), AsLine(pick.title));
  picker.setAcceptMode(pick.save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
  picker.setFileMode(pick.save ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
  picker.setOption(QFileDialog::DontConfirmOverwrite);
  QStringList filters;
  for (const toolkit::FileFilter& one : pick.filters) {
    const QString pattern = QString(FromAnsi(one.pattern)).replace(QChar(u';'), QChar(u' '));
    filters +=
        one.description == one.pattern ? pattern : FromAnsi(one.description) + QStringLiteral(" (%1)").arg(pattern);
  }
  if (!filters.isEmpty()) picker.setNameFilters(filters);
  if (pick.save && pick.default_extension != "*") picker.setDefaultSuffix(FromAnsi(pick.default_extension));
  if (!pick.path.empty()) picker.selectFile(FromAnsi(pick.path));
  const QString chosen = RunPicker(&picker, pick.save && pick.ask_before_overwrite, path);
  if (chosen.isEmpty()) return false;
  if (filter != nullptr)
    *filter = static_cast<int>(std::max<qsizetype>(filters.indexOf(picker.selectedNameFilter()), 0));
  if (pick.save) {
    saved_path_ = chosen;
    saved_before_ = QFileInfo(chosen).lastModified();
  } else {
    Picker::Remember(chosen);
  }
  return true;
}

bool DesktopFrontEnd::PickFolder(const std::string& title, toolkit::Window parent, std::string* path) {
  const UnderHandlers hosts(waits_.hosts_handlers());
  ShowDialogs();
  Picker picker(Below(parent), AsLine(title));
  picker.setOption(QFileDialog::ShowDirsOnly);
  picker.setFileMode(QFileDialog::Directory);
  const QString chosen = RunPicker(&picker, false, path);
  if (!chosen.isEmpty()) Picker::Remember(chosen);
  return !chosen.isEmpty();
}

void DesktopFrontEnd::TellSaved() {
  if (saved_path_.isEmpty()) return;
  const QFileInfo file(saved_path_);
  if (!file.exists() || file.lastModified() == saved_before_) return;
  Picker::Remember(saved_path_);
  shell_.FileSaved(std::exchange(saved_path_, QString()));
}

std::vector<toolkit::WindowInfo> DesktopFrontEnd::TopLevelWindows() {
  std::vector<toolkit::WindowInfo> windows;
  const QWidgetList all = QApplication::topLevelWidgets();
  for (const QWidget* widget : all) {
    const bool is_main = widget == shell_.Widget();
    if (!is_main && !widget->isVisible()) continue;
    windows.push_back({HandleOf(widget), ToAnsi(widget->windowTitle()), is_main ? kMainClass : kOtherClass});
  }
  return windows;
}

toolkit::Window DesktopFrontEnd::FindWindow(const std::string& class_name, const std::string& title) {
  for (const toolkit::WindowInfo& info : TopLevelWindows()) {
    if (info.class_name == class_name && info.title == title) return info.window;
  }
  return 0;
}

toolkit::Window DesktopFrontEnd::ForegroundWindow() { return HandleOf(QApplication::activeWindow()); }

}  // namespace korvo
