// korvo-pilot: plays a script of the console through the windows of the desktop, read from stdin. The arguments are the
// console's.
#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPointer>
#include <QSettings>
#include <QTest>
#include <QTimer>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "base/path.h"
#include "base/text.h"
#include "entry/host/host.h"
#include "korvo/console/dialog_commands.h"
#include "korvo/console/dialog_view.h"
#include "korvo/console/terminal.h"
#include "korvo/desktop/application.h"
#include "korvo/desktop/desktop_front_end.h"
#include "korvo/desktop/dialog_window.h"
#include "korvo/desktop/text.h"
#include "korvo/host/plugin.h"
#include "korvo/host/points.h"
#include "korvo/host/project.h"
#include "korvo/words/words.h"
#include "tests/desktop/pilot/hands.h"

namespace {

using namespace text::literals;

/// A main window without a map.
class BareShell : public korvo::Shell {
 public:
  BareShell() {
    window_.setWindowTitle(korvo::FromAnsi("Korvo – "_ansi + korvo::ProjectName()));
    window_.show();
  }
  QWidget* Widget() override { return &window_; }
  void ShowMenu(const korvo::Menu& shown) override { menu = &shown; }
  void HideMenu() override { menu = nullptr; }
  void BeginPick() override { picking = true; }
  void EndPick() override { picking = false; }
  void PointChanged(std::int32_t) override {}
  void ShowMessage(const QString&) override {}
  void FileSaved(const QString&) override {}

  const korvo::Menu* menu = nullptr;
  bool picking = false;

 private:
  QWidget window_;
};

class Pilot {
 public:
  Pilot(korvo::Terminal& terminal, BareShell& shell, korvo::Waits& waits, const platform::Clock& clock)
      : terminal_(terminal), shell_(shell), waits_(waits), clock_(clock) {}

  void Fly(const std::string& library) {
    while (const auto command = terminal_.Ask("Korvo> ", korvo::Terminal::AtEnd::kGoOn)) {
      if (*command == "ende") break;
      if (*command != "start") continue;
      std::string why;
      Soon();
      waits_.RunPlugin([&] {
        if (!korvo::RunPlugin(library, &why)) terminal_.Refuse(why);
      });
      ++flight_;
    }
    terminal_.EndOfScript();
  }

 private:
  struct Session {
    Session(korvo::Terminal& terminal, korvo::DialogWindow& opened, const platform::Clock& clock)
        : window(&opened),
          view(terminal, opened.dialog()),
          commands(terminal, opened.dialog(), view, clock,
                   [&opened](const toolkit::Event& event) { return pilot::Do(opened, event); }) {}
    QPointer<korvo::DialogWindow> window;
    korvo::DialogView view;
    korvo::DialogCommands commands;
    bool met = false;
  };

  void Soon() {
    QTimer::singleShot(0, [this, flight = flight_] {
      if (flight == flight_) Step();
    });
  }

  void Step() {
    // What a step does may open a loop of its own, in which the next one has to come.
    Soon();
    QWidget* const top = QApplication::activeModalWidget();
    if (auto* window = dynamic_cast<korvo::DialogWindow*>(top)) return InDialog(*window);
    if (auto* box = qobject_cast<QMessageBox*>(top)) return InBox(*box);
    if (auto* picker = qobject_cast<QFileDialog*>(top)) return InPicker(*picker);
    if (shell_.menu != nullptr) return InMenu(*shell_.menu);
    if (shell_.picking) InPick();
  }

  void InDialog(korvo::DialogWindow& window) {
    std::erase_if(sessions_, [](const auto& session) { return session->window == nullptr; });
    if (sessions_.empty() || sessions_.back()->window != &window) {
      sessions_.push_back(std::make_unique<Session>(terminal_, window, clock_));
    }
    Session& session = *sessions_.back();
    std::exchange(session.met, true) ? session.view.ShowChanges() : session.view.ShowAll();
    const std::string difference = pilot::Difference(window);
    if (!difference.empty()) terminal_.Refuse("Das Fenster zeigt etwas anderes: "_ansi + difference);
    session.commands.Do(*terminal_.Ask("> "));
  }

  void InBox(QMessageBox& box) {
    terminal_.SayLines(korvo::ToAnsi(box.windowTitle()), "+-- ");
    terminal_.SayLines(korvo::ToAnsi(box.text()), "| ");
    const bool asks_to_overwrite = qobject_cast<QFileDialog*>(box.parentWidget()) != nullptr;
    if (!asks_to_overwrite) terminal_.MeetBox(korvo::ToAnsi(box.windowTitle()), korvo::ToAnsi(box.text()));
    const std::string word = *terminal_.Ask("> ");
    const QMessageBox::StandardButton meant = word == "ja"     ? QMessageBox::Yes
                                              : word == "nein" ? QMessageBox::No
                                              : word == "ok"   ? QMessageBox::Ok
                                                               : QMessageBox::Cancel;
    QAbstractButton* const button = box.button(meant);
    if (button == nullptr) return terminal_.Refuse(word);
    QTest::mouseClick(button, Qt::LeftButton);
  }

  void InPicker(QFileDialog& picker) {
    const std::string command = *terminal_.Ask("Datei> ");
    if (command == "abbruch") {
      QTest::keyClick(&picker, Qt::Key_Escape);
      return;
    }
    auto* const name = picker.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
    // A bare name is for the picker to find a folder for, once it has one to remember.
    const QString path = korvo::FromAnsi(korvo::Unquote(command));
    const bool bare = std::exchange(picked_, true) && !path.contains(QChar(u'/'));
    name->setText(bare ? path : QDir::current().absoluteFilePath(path));
    QTest::keyClick(name, Qt::Key_Return);
  }

  void InMenu(const korvo::Menu& menu) {
    terminal_.Say("--- " + menu.title + " ---");
    waits_.Choose(korvo::ToNumber(*terminal_.Ask("Menü> "_ansi)).value_or(-1));
  }

  void InPick() {
    const std::string command = *terminal_.Ask("Punkt> ");
    HostPoint point;
    const std::int32_t record = command == "ende" ? 0 : korvo::FindPoint(korvo::Unquote(command), &point);
    if (record == 0 && command != "ende") return terminal_.Refuse(command);
    waits_.Pick(record);
  }

  korvo::Terminal& terminal_;
  BareShell& shell_;
  korvo::Waits& waits_;
  const platform::Clock& clock_;
  std::vector<std::unique_ptr<Session>> sessions_;
  int flight_ = 0;
  bool picked_ = false;
};

}  // namespace

int main(int count, char** arguments) {
  int none = 1;  // of the arguments: Qt would take some of them for its own
  QApplication application(none, arguments);
  korvo::SetUpApplication(application);
  const char* const wanted = std::getenv("LC_ALL");
  if (wanted != nullptr && std::string_view(wanted).starts_with("de_DE") && *std::localeconv()->decimal_point != ',') {
    std::fputs("korvo-pilot: Das Gebietsschema fehlt.\n", stderr);
    return korvo::kExitNotStarted;
  }
  std::map<std::string, std::string> options;
  for (int i = 1; i + 1 < count; i += 2) options[arguments[i]] = arguments[i + 1];
  for (const QSettings::Format format : {QSettings::IniFormat, QSettings::NativeFormat}) {
    QSettings::setPath(format, QSettings::UserScope,
                       QString::fromLocal8Bit(arguments[count - 1]) + QStringLiteral("/korvo"));
  }
  const std::unique_ptr<platform::Clock> clock(
      platform::NewStandingClock(options["--clock"].c_str(), options["--zone"].c_str()));
  korvo::Terminal terminal(stdin, false);
  const korvo::OpenedProject opened = korvo::OpenProject(arguments[count - 1]);
  if (!opened.open || clock == nullptr) return korvo::kExitNotStarted;
  if (!opened.note.empty()) terminal.SayLines(opened.note, "! ");
  {
    BareShell shell;
    korvo::Waits waits;
    korvo::DesktopFrontEnd front_end(shell, waits, *clock);
    korvo::SetFrontEnd(&front_end);
    Pilot(terminal, shell, waits, *clock).Fly(options["--plugin"]);
  }
  korvo::CloseProject();
  korvo::SetFrontEnd(nullptr);
  return 0;
}
