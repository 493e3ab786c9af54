// korvo-pilot: plays a script of the console through the windows of the desktop, read from stdin. The arguments are the
// console's.
#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QRegularExpression>
#include <QSettings>
#include <QTest>
#include <QTimer>
#include <QToolBar>
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
#include "korvo/desktop/main_window.h"
#include "korvo/desktop/nas_window.h"
#include "korvo/desktop/text.h"
#include "korvo/host/menus.h"
#include "korvo/host/points.h"
#include "korvo/host/project.h"
#include "korvo/words/words.h"
#include "tests/desktop/pilot/hands.h"

namespace {

using namespace text::literals;

/// Keeps a picture of each window as it was last seen, under its number, page and title.
class Pictures {
 public:
  explicit Pictures(const std::string& folder) : folder_(QString::fromStdString(folder)) {}

  void Take(QWidget& window, const QString& name) const {
    if (folder_.isEmpty()) return;
    for (int round = 0; round < 3; ++round) QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    static const QRegularExpression others(QStringLiteral("\\W+"), QRegularExpression::UseUnicodePropertiesOption);
    const QString file = QString(name).replace(others, QStringLiteral("_"));
    if (!window.grab().save(folder_ + QChar(u'/') + file + QStringLiteral(".png"))) std::perror("korvo-pilot");
  }
  void Take(korvo::DialogWindow& window) const {
    QString page;
    for (const toolkit::Control* control : window.dialog().controls()) {
      if (control->kind() != toolkit::Kind::kPages || !window.dialog().Shows(*control)) continue;
      page = QString::number(static_cast<const toolkit::Pages*>(control)->current + 1);
    }
    Take(window, QString::number(window.dialog().number()) + QChar(u' ') + page + QChar(u' ') + window.windowTitle());
  }

 private:
  QString folder_;
};

/// Characters of a box's text that tell it from others.
constexpr qsizetype kNamed = 20;

class Pilot {
 public:
  Pilot(korvo::Terminal& terminal, korvo::MainWindow& main, korvo::Waits& waits, const korvo::DesktopFrontEnd& desktop,
        const platform::Clock& clock, const std::string& pictures)
      : terminal_(terminal), main_(main), waits_(waits), desktop_(desktop), clock_(clock), pictures_(pictures) {}

  void Fly() {
    while (const auto command = terminal_.Ask("Korvo> ", korvo::Terminal::AtEnd::kGoOn)) {
      if (*command == "ende") break;
      if (*command != "start") continue;
      Soon();
      main_.StartPlugin();
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

  /// By a timer and an event: a loop that ends now ends between the two, so that the step finds what comes behind it.
  void Soon() {
    const auto step = [this, flight = flight_] {
      if (flight == flight_) Step();
    };
    QTimer::singleShot(0, &main_, [this, step] { QMetaObject::invokeMethod(&main_, step, Qt::QueuedConnection); });
  }

  void Step() {
    // What a step does may open a loop of its own, in which the next one has to come.
    Soon();
    QWidget* const top = desktop_.front();
    if (auto* window = dynamic_cast<korvo::DialogWindow*>(top)) return InDialog(*window);
    if (auto* box = qobject_cast<QMessageBox*>(top)) return InBox(*box);
    if (auto* picker = qobject_cast<QFileDialog*>(top)) return InPicker(*picker);
    if (main_.findChild<QWidget*>(QStringLiteral("end_pick"))->isVisible()) return InPick();
    if (Entry(0)->isEnabled()) InMenu();
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
    pictures_.Take(window);
    session.commands.Do(*terminal_.Ask("> "));
  }

  void InBox(QMessageBox& box) {
    terminal_.SayLines(korvo::ToAnsi(box.windowTitle()), "+-- ");
    terminal_.SayLines(korvo::ToAnsi(box.text()), "| ");
    const bool asks_to_overwrite = qobject_cast<QFileDialog*>(box.parentWidget()) != nullptr;
    if (!asks_to_overwrite) terminal_.MeetBox(korvo::ToAnsi(box.windowTitle()), korvo::ToAnsi(box.text()));
    pictures_.Take(box, QStringLiteral("Meldung ") + box.windowTitle() + QChar(u' ') + box.text().left(kNamed));
    const std::string word = terminal_.Ask("> ").value_or(std::string());
    const QMessageBox::StandardButton meant = word == "ja"     ? QMessageBox::Yes
                                              : word == "nein" ? QMessageBox::No
                                              : word == "ok"   ? QMessageBox::Ok
                                                               : QMessageBox::Cancel;
    QAbstractButton* const button = box.button(meant);
    if (button == nullptr) return terminal_.Refuse(word);
    QTest::mouseClick(button, Qt::LeftButton);
  }

  void InPicker(QFileDialog& picker) {
    pictures_.Take(picker, QStringLiteral("Auswahl ") + picker.windowTitle());
    const std::string command = *terminal_.Ask("Datei> ");
    if (command == "abbruch") {
      QTest::keyClick(&picker, Qt::Key_Escape);
      return;
    }
    // A bare name is for the picker to find a folder for, once it has one to remember.
    const QString path = korvo::FromAnsi(korvo::Unquote(command));
    const bool bare = std::exchange(picked_, true) && !path.contains(QChar(u'/'));
    pilot::PickFile(&picker, bare ? path : QDir::current().absoluteFilePath(path));
  }

  QAction* Entry(int number) { return main_.findChild<QAction*>(QStringLiteral("command_%1").arg(number)); }

  void InMenu() {
    const korvo::Menu& menu = *korvo::FindMenu("PKTAUMEN");
    terminal_.Say("--- " + menu.title + " ---");
    LookAtSavedFile();
    pictures_.Take(main_, QStringLiteral("Fenster Menü"));
    const int number = korvo::ToNumber(*terminal_.Ask("Menü> "_ansi)).value_or(-1);
    QAction* const entry = Entry(number);
    if (entry == nullptr) return waits_.Choose(number);
    QTest::mouseClick(main_.findChild<QToolBar*>(QStringLiteral("commands_bar"))->widgetForAction(entry),
                      Qt::LeftButton);
  }

  void InPick() {
    pictures_.Take(main_, QStringLiteral("Fenster Punkt wählen"));
    const std::string command = *terminal_.Ask("Punkt> ");
    if (command == "ende") {
      QTest::mouseClick(main_.findChild<QPushButton*>(QStringLiteral("end_pick")), Qt::LeftButton);
      return;
    }
    const int point = main_.points().Find(korvo::Unquote(command));
    if (point < 0) return terminal_.Refuse(command);
    auto* const number = main_.findChild<QLineEdit*>(QStringLiteral("find"));
    QTest::keyClicks(number, korvo::FromAnsi(korvo::Unquote(command)));
    QTest::keyClick(number, Qt::Key_Return);
  }

  /// Takes up the window's offer to look into the file that was written.
  void LookAtSavedFile() {
    QWidget* const notice = main_.findChild<QWidget*>(QStringLiteral("file_notice"));
    if (!notice->isVisible()) return;
    pictures_.Take(main_, QStringLiteral("Fenster Datei geschrieben"));
    QTest::mouseClick(notice->findChild<QPushButton*>(), Qt::LeftButton);
    auto* const nas = main_.findChild<korvo::NasWindow*>();
    if (nas == nullptr) return terminal_.Refuse("Die Datei wird nicht gezeigt.");
    pictures_.Take(*nas, nas->windowTitle());
    pictures_.Take(main_, QStringLiteral("Fenster ") + nas->windowTitle());
    nas->close();
    delete nas;
  }

  korvo::Terminal& terminal_;
  korvo::MainWindow& main_;
  korvo::Waits& waits_;
  const korvo::DesktopFrontEnd& desktop_;
  const platform::Clock& clock_;
  Pictures pictures_;
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
  if (clock == nullptr) return korvo::kExitNotStarted;
  {
    korvo::Waits waits;
    korvo::MainWindow main(waits, options["--plugin"]);
    korvo::DesktopFrontEnd front_end(main, waits, *clock);
    korvo::SetFrontEnd(&front_end);
    main.show();
    main.Open(QString::fromLocal8Bit(arguments[count - 1]));
    if (korvo::ProjectFolder().empty()) return korvo::kExitNotStarted;
    Pilot(terminal, main, waits, front_end, *clock, options["--pictures"]).Fly();
  }
  korvo::CloseProject();
  korvo::SetFrontEnd(nullptr);
  return 0;
}
