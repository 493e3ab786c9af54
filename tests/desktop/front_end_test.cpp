#include <QAbstractButton>
#include <QAction>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QSettings>
#include <QSignalSpy>
#include <QToolButton>
#include <QTreeView>
#include <memory>
#include <stdexcept>
#include <utility>

#include "base/failure.h"
#include "base/text.h"
#include "entry/guard.h"
#include "entry/host/host.h"
#include "korvo/desktop/application.h"
#include "korvo/desktop/settings.h"
#include "korvo/desktop/text.h"
#include "korvo/words/words.h"
#include "tests/desktop/desktop_case.h"
#include "tests/desktop/pilot/hands.h"
#include "tests/support/fault_leaks.h"
#include "tests/support/temp_folder.h"

namespace {

using namespace text::literals;
using toolkit::TextField;

class Application : public testing::Environment {
  void SetUp() override {
    application_ = std::make_unique<QApplication>(none_, arguments_);
    korvo::SetUpApplication(*application_);
    for (const QSettings::Format format : {QSettings::IniFormat, QSettings::NativeFormat}) {
      QSettings::setPath(format, QSettings::UserScope, QString::fromStdString(settings_.path()));
    }
  }
  void TearDown() override { application_.reset(); }

  support::TempFolder settings_;
  int none_ = 1;
  char name_[8] = "desktop";
  char* arguments_[2] = {name_, nullptr};
  std::unique_ptr<QApplication> application_;
};

const auto* const kApplication = testing::AddGlobalTestEnvironment(new Application);

TEST(Text, GoesToTheScreenAndBack) {
  std::string all;
  for (int byte = 0; byte < 256; ++byte) all += static_cast<char>(byte);
  EXPECT_EQ(korvo::ToAnsi(korvo::FromAnsi(all)), all);
  EXPECT_EQ(korvo::FromLine(korvo::AsLine(all)), all);
  EXPECT_EQ(korvo::AsLine("1\r\n\x7f\x81"), QStringLiteral("1←↵␡\uE081"));
  EXPECT_EQ(korvo::FromLine(QStringLiteral("4711\r\n")), "4711") << "a cell from the clipboard";
  EXPECT_EQ(korvo::FromAnsi("\x80"), QStringLiteral("€"));
  EXPECT_EQ(korvo::ToAnsi(QStringLiteral("a\u0142\U0001F600b")), "a??b");
  EXPECT_EQ(korvo::AsLines("1\r\r\n2\n\r3\r\n4\n\n5\tx\x1b"), QStringLiteral("1\n2\n3\n4\n\n5    x␛"));
  EXPECT_EQ(korvo::AsCaption("A&B\r\n"), QStringLiteral("A&&B←↵"));
}

class Windows : public DesktopCase {};

TEST_F(Windows, ShowTextsAsTheyAreAndStayForAStubbornRule) {
  TextField off(9000, "Gesperrt:");
  TextField edit(9001, "Suchen & <i>finden</i>:");
  TextField line(9002, "", TextField::Form::kReadOnly);
  TextField lines(9003, "Zeilen:", TextField::Form::kReadOnlyLines);
  toolkit::Button ok(toolkit::kOk, "OK");
  edit.text = "1\r\r\n2";
  line.text = "<b>10 & 20</b>\n\r" + std::string(10000, 'x');
  lines.text = "<b>eins</b>\r\r\nzwei";
  off.enabled = false;
  PlayedDlg dialog({&off, &edit, &line, &lines, &ok});
  dialog.stubborn = true;
  Run(dialog, [&](korvo::DialogWindow& window) {
    auto* const field = pilot::Find<QLineEdit>(window, 9001);
    EXPECT_EQ(window.windowTitle(), QStringLiteral("Prüfen & <b>mehr</b>"));
    EXPECT_EQ(window.focusWidget(), field);
    EXPECT_LT(window.height(), 800);
    EXPECT_EQ(pilot::Find<QLabel>(window, 9002)->textFormat(), Qt::PlainText);
    EXPECT_TRUE(pilot::Find<QLabel>(window, 9002)->text().startsWith(QStringLiteral("<b>10 & 20</b> x")));
    const QString tip = pilot::Find<QLabel>(window, 9002)->toolTip();
    EXPECT_EQ(tip.count(QChar(u'x')), 10000);
    EXPECT_TRUE(tip.contains(QStringLiteral(">&lt;b&gt;10 &amp; 20&lt;/b&gt; x")));
    EXPECT_EQ(pilot::Find<QPlainTextEdit>(window, 9003)->toPlainText(), QStringLiteral("<b>eins</b>\nzwei"));
    QTest::keyClick(field, Qt::Key_Home);
    QTest::sendKeyEvent(QTest::Click, field, Qt::Key_unknown, QStringLiteral("äł"), {});
    EXPECT_EQ(edit.text, "ä?1\r\r\n2"_ansi);
    EXPECT_EQ(field->text(), QStringLiteral("ä?1←←↵2"));
    QTest::keyClick(field, Qt::Key_Return);
    QTest::keyClick(field, Qt::Key_Tab);
    EXPECT_EQ(window.focusWidget(), pilot::Find(window, 9003));
    QTest::keyClick(window.focusWidget(), Qt::Key_Tab);
    EXPECT_EQ(window.focusWidget(), pilot::Find(window, toolkit::kOk));
    QTest::keyClick(field, Qt::Key_Escape);
    window.close();
    EXPECT_TRUE(window.isVisible()) << "the rule has not ended the dialog";
    EXPECT_EQ(dialog.pressed, "1 2 2 ");
    EXPECT_EQ(pilot::Difference(window), "");
    window.resize(777, 555);
    dialog.stubborn = false;
  });
  Run(dialog, [](korvo::DialogWindow& window) { EXPECT_EQ(window.size(), QSize(777, 555)); });
}

TEST_F(Windows, OpenWithRoomForWhatTheyHold) {
  korvo::Remembered().clear();
  int height = 0;
  for (const int count : {2, 15, 1000}) {
    TextField lines(9001, "", TextField::Form::kReadOnlyLines);
    for (int i = 0; i < count; ++i) lines.text += "Zeile\r\r\n";
    PlayedDlg dialog({&lines});
    Run(dialog, [&](korvo::DialogWindow& window) {
      EXPECT_GT(window.height(), std::exchange(height, window.height()));
      EXPECT_LT(window.height(), count == 1000 ? 801 : 400) << "which was larger on another screen";
      EXPECT_EQ(pilot::Find<QPlainTextEdit>(window, 9001)->verticalScrollBar()->isVisible(), count == 1000);
      EXPECT_LE(window.width(), window.screen()->size().width());
    });
    if (count == 15) korvo::Remembered().setValue(QStringLiteral("dialoge/9000/groesse"), QSize(9000, 9000));
  }
}

TEST_F(Windows, AreWorkedByTheKeyboardAlone) {
  TextField application(9001, "Antrag");
  toolkit::Pages pages(9002, {"Objekt", "Ort"});
  TextField art(9003, "Art");
  toolkit::Button other(9004, "Neu");
  TextField area(9005, "Art");
  toolkit::RadioGroup action(9006, "Aktion", {"Neupunkt", "Nichts", "Punkt"}, {9007, 9008, 9009});
  toolkit::Button remove(9010, "Entfernen");
  art.pages_id = other.pages_id = area.pages_id = 9002;
  area.page = 1;
  other.beside = true;
  PlayedDlg dialog({&application, &pages, &art, &other, &area, &action, &remove});
  dialog.rule = [&](toolkit::ControlId id) {
    if (id == 9010) remove.SetLabel("Antrag weg");
  };
  const struct {
    Qt::Key key;
    Qt::KeyboardModifiers with;
    const char* focus;  ///< where the keyboard is then, and what stands by then
    const char* stands;
  } kSteps[] = {
      {Qt::Key_A, Qt::AltModifier, "9001", "0 -1 "},
      {Qt::Key_R, Qt::AltModifier, "9003", "0 -1 "},  // of both pages, the one in front
      {Qt::Key_Tab, {}, "9004", "0 -1 "},
      {Qt::Key_Tab, {}, "9007", "0 -1 "},
      {Qt::Key_Tab, {}, "9010", "0 -1 "},  // nothing is chosen yet, and still it is one stop
      {Qt::Key_R, Qt::AltModifier, "9003", "0 -1 "},
      {Qt::Key_Tab, Qt::ControlModifier, "9005", "1 -1 "},
      {Qt::Key_Tab, Qt::ControlModifier, "9003", "0 -1 "},  // behind the last page comes the first
      {Qt::Key_T, Qt::AltModifier, "9005", "1 -1 "},        // the tab "Ort": its other letters are taken
      {Qt::Key_A, Qt::AltModifier, "9001", "1 -1 "},
      {Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier, "9001", "0 -1 "},
      {Qt::Key_N, Qt::AltModifier, "9007", "0 0 "},
      {Qt::Key_Down, {}, "9008", "0 1 "},
      {Qt::Key_Tab, {}, "9010", "0 1 "},
      {Qt::Key_Backtab, Qt::ShiftModifier, "9008", "0 1 "},
      {Qt::Key_P, Qt::AltModifier, "9009", "0 2 "},
      {Qt::Key_E, Qt::AltModifier, "9009", "0 2 9010 "},
      {Qt::Key_E, Qt::AltModifier, "9009", "0 2 9010 "},  // given back with the caption
      {Qt::Key_W, Qt::AltModifier, "9009", "0 2 9010 9010 "},
      {Qt::Key_A, Qt::AltModifier, "9001", "0 2 9010 9010 "},
      {Qt::Key_R, Qt::AltModifier, "9003", "0 2 9010 9010 "},
      {Qt::Key_X, {}, "9003", "0 2 9010 9010 "},
      {Qt::Key_Return, {}, "9003", "0 2 9010 9010 9004 "},  // what was typed is for the button beside it
      {Qt::Key_Return, {}, "9003", "0 2 9010 9010 9004 "},
  };
  Run(dialog, [&](korvo::DialogWindow& window) {
    for (const auto& step : kSteps) {
      SCOPED_TRACE(&step - kSteps);
      QTest::keyClick(window.focusWidget(), step.key, step.with);
      // A button shows for a moment that it is pressed.
      const QList<QAbstractButton*> buttons = window.findChildren<QAbstractButton*>();
      const auto is_down = [](const QAbstractButton* one) { return one->isDown(); };
      EXPECT_TRUE(QTest::qWaitFor([&] { return std::none_of(buttons.begin(), buttons.end(), is_down); }));
      EXPECT_EQ(window.focusWidget()->objectName().toStdString(), step.focus);
      const std::string stands = std::to_string(pages.current) + " " + std::to_string(action.chosen) + " ";
      EXPECT_EQ(stands + dialog.pressed, step.stands);
      EXPECT_EQ(pilot::Difference(window), "");
    }
  });
}

TEST_F(Windows, ConfirmNoTextThatIsNoDay) {
  const struct {
    const char* typed;
    bool has_box, is_ticked, by_enter;
    const char *shown, *holds;
    bool goes;  ///< whether the window can be confirmed
  } kCases[] = {
      {"29.2.24", false, false, false, "29.02.2024", "29.02.2024", true},
      {"29.2.24", true, false, true, "29.02.2024", "29.02.2024", true},
      {"31.02.2024", false, false, false, "31.02.2024", "23.11.2026", false},
      {"31.02.2024", true, true, true, "31.02.2024", "23.11.2026", false},
      {"", true, true, false, "", "23.11.2026", false},
      {"", true, false, true, "", "23.11.2026", true},
      {"31.02.2024", true, false, false, "31.02.2024", "23.11.2026", true},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(&c - kCases);
    toolkit::Pages pages(9001, {"Objekt", "Ort"});
    toolkit::TickBox box(9004, "Zählt");
    toolkit::DateField day(9002, "Tag:", c.has_box ? &box : nullptr);
    box.ticked = c.is_ticked;
    toolkit::Button change(9003, "Ander");
    toolkit::Button ok(toolkit::kOk, "OK");
    day.pages_id = 9001;
    day.page = 1;
    day.day = {2026, 11, 23};
    PlayedDlg dialog({&pages, &box, &day, &change, &ok});
    dialog.rule = [&](toolkit::ControlId id) {
      if (id == 9003) day.day = {2020, 1, 2};
    };
    Run(dialog, [&](korvo::DialogWindow& window) {
      pilot::Do(window, toolkit::PageTurned{9001, 1});
      auto* const edit = pilot::Find<QLineEdit>(window, 9002);
      auto* const fault = window.findChild<QLabel*>(QStringLiteral("9002.fehler"));
      edit->setFocus();
      edit->selectAll();
      QTest::keyClick(edit, Qt::Key_Delete);
      QTest::keyClicks(edit, QString::fromUtf8(c.typed));
      EXPECT_FALSE(fault->isVisible()) << "not while it is being typed";
      if (!c.by_enter) {
        QTest::keyClick(edit, Qt::Key_Tab);
        EXPECT_EQ(window.focusWidget()->objectName(), QStringLiteral("9002.kalender"));
        EXPECT_EQ(fault->isVisible(), !c.goes);
        pilot::Do(window, toolkit::PageTurned{9001, 0});
      }
      c.by_enter ? QTest::keyClick(edit, Qt::Key_Return) : QTest::mouseClick(pilot::Find(window, 1), Qt::LeftButton);
      EXPECT_EQ(dialog.pressed, c.goes ? "1 " : "");
      EXPECT_EQ(edit->text(), QString::fromUtf8(c.shown));
      EXPECT_EQ(korvo::DayText(day.day), c.holds);
      EXPECT_TRUE(c.goes || (window.focusWidget() == edit && fault->isVisible()));
      if (!c.goes) {
        QTest::mouseClick(pilot::Find(window, 9003), Qt::LeftButton);
        EXPECT_EQ(edit->text(), QStringLiteral("02.01.2020")) << "what a rule sets stands";
        EXPECT_FALSE(fault->isVisible());
        QTest::keyClick(edit, Qt::Key_X);
      }
      QTest::keyClick(&window, Qt::Key_Escape);
      EXPECT_FALSE(dialog.IsOpen());
    });
  }
}

TEST_F(Windows, ListsOfManyRowsAreToldOfChangesAtOnce) {
  constexpr int kRows = 100000;
  toolkit::ChoiceList choice(9001, "Wahl:", false);
  toolkit::TickList list(9002, "");
  toolkit::Button all(9003, "Alle an");
  toolkit::Button fewer(9004, "Weniger");
  std::vector<toolkit::ChoiceList::Entry> entries;
  for (int i = 0; i < kRows; ++i) {
    list.Add({std::to_string(i), i, false});
    entries.push_back({std::to_string(i), i, ""});
  }
  choice.Fill(std::move(entries));
  choice.Select(kRows - 1);
  PlayedDlg dialog({&choice, &list, &all, &fewer});
  dialog.rule = [&](toolkit::ControlId id) {
    if (id == 9003) list.TickAll(true);
    if (id == 9004) list.Clear();
    if (id == 9004) list.Add({"eins", 1, false});
  };
  Run(dialog, [&](korvo::DialogWindow& window) {
    auto* const view = pilot::Find<QListView>(window, 9002);
    QSignalSpy ticks(view->model(), &QAbstractItemModel::dataChanged);
    QSignalSpy resets(view->model(), &QAbstractItemModel::modelReset);
    auto* const box = pilot::Find<QComboBox>(window, 9001);
    EXPECT_EQ(box->currentText(), QStringLiteral("99999"));
    box->showPopup();
    EXPECT_LE(box->view()->window()->height(), 13 * box->view()->sizeHintForRow(0));
    box->hidePopup();
    QTest::mouseClick(pilot::Find(window, 9003), Qt::LeftButton);
    EXPECT_EQ(ticks.count(), 1);
    EXPECT_EQ(resets.count(), 0);
    EXPECT_EQ(pilot::Difference(window), "");
    QTest::mouseClick(pilot::Find(window, 9004), Qt::LeftButton);
    EXPECT_EQ(view->model()->rowCount(), 1);
    EXPECT_EQ(resets.count(), 1);
  });
}

TEST_F(Windows, WhatARuleThrowsComesOutBehindTheLoop) {
  const std::pair<std::function<void()>, const char*> kClauses[] = {
      {[] { throw CException("Wert"); }, "Wert"},
      {[] { throw(errno = EACCES, 1); }, "Zugriff verweigert."},
      {[] { __builtin_trap(); }, "Unbekannter Fehler"},
  };
  const support::FaultLeaks leaks;
  for (const auto& [rule, text] : kClauses) {
    SCOPED_TRACE(text);
    toolkit::Button outer_button(9001, "Weiter");
    toolkit::Button inner_button(9001, "Werfen");
    PlayedDlg outer({&outer_button});
    PlayedDlg inner({&inner_button});
    outer.rule = [&](toolkit::ControlId) { Run(inner); };
    inner.rule = [&, &throw_it = rule](toolkit::ControlId) { throw_it(); };
    const auto press = [](QWidget* window) { QTest::mouseClick(pilot::Find(*window, 9001), Qt::LeftButton); };
    Then(press);
    Then(press);
    Then([&, &said = text](QWidget* window) {
      auto* const box = qobject_cast<QMessageBox*>(window);
      ASSERT_NE(box, nullptr);
      EXPECT_TRUE(box->text().contains(QString::fromUtf8(said))) << box->text().toStdString();
      QTest::keyClick(box, Qt::Key_Return);
    });
    pktaus::RunGuarded([&] { Run(outer); }, "a.cpp", 7);
    EXPECT_FALSE(outer.IsOpen() || inner.IsOpen());
  }
}

TEST_F(Windows, FaultOfTheToolkitItselfEndsTheProgram) {
  PlayedDlg dialog({});
  const auto fault_in_loop = [&] {
    Then([](QWidget*) { __builtin_trap(); });
    pktaus::RunGuarded([&] { Run(dialog); }, "a.cpp", 7);
    std::_Exit(0);
  };
  EXPECT_DEATH(fault_in_loop(), "");
  // What a callback of the host throws is not lost either.
  Then([&](QWidget*) { waits.AtEdge([] { throw std::runtime_error("Karte"); }); });
  EXPECT_THROW(Run(dialog), std::runtime_error);
}

TEST_F(Windows, ThrowNothingThroughTheToolkit) {
  TextField edit(9001, "");
  toolkit::TickBox box(9002, "");
  toolkit::Button button(9003, "");
  int caught = 0;
  const korvo::ControlView::Ways ways{korvo::Edge([&] { ++caught; }), [](const toolkit::Event&) { throw 7; }};
  for (const toolkit::Control* control : std::initializer_list<const toolkit::Control*>{&edit, &box, &button}) {
    const auto view = korvo::MakeView(*control, &shell.window, ways);
    EXPECT_NO_THROW(QTest::keyClick(view->widget(), Qt::Key_Space)) << control->id();
  }
  EXPECT_EQ(caught, 3);

  korvo::Waits::Wait wait(waits, [] {});
  PlayedDlg dialog({});
  dialog.Handle(toolkit::Opened{});
  korvo::DialogWindow window(dialog, waits, nullptr, [] { throw std::runtime_error("Ende"); });
  EXPECT_NO_THROW(window.reject());
  EXPECT_THROW(wait.Run(), std::runtime_error);
}

TEST_F(Windows, LeavingClosesAllThatIsOpenAndThenTheMenu) {
  const korvo::Menu menu = {"PKTAUMEN", "Menü"_ansi, {{2, "Zwei"}, {0, "Ende"}}};
  toolkit::Button ask(9001, "Fragen");
  PlayedDlg dialog({&ask});
  int answer = -1;
  dialog.stubborn = true;
  dialog.rule = [&](toolkit::ControlId id) {
    if (id == 9001) answer = desktop.ShowBox("Wirklich?", "Frage", toolkit::kBoxYesNo, 0);
  };
  std::vector<int> chosen;
  const auto plugin = [&] {
    while ((chosen.push_back(desktop.ChooseFromMenu(menu)), chosen.back()) != 0) Run(dialog);
    HostPoint point;
    EXPECT_FALSE(desktop.PickPoint(&point));
  };
  QTimer::singleShot(0, [&] {
    EXPECT_FALSE(waits.RunPlugin([] {})) << "one at a time";
    waits.Pick(1);
    waits.Choose(2);
    waits.Choose(2);
  });
  Then([&](QWidget* window) { QTest::mouseClick(pilot::Find(*window, 9001), Qt::LeftButton); });
  Then([&](QWidget*) { waits.Leave(); });
  Then([&](QWidget* window) {
    EXPECT_NE(dynamic_cast<korvo::DialogWindow*>(window), nullptr) << "it stays, and with it the plug-in";
    EXPECT_EQ(answer, toolkit::kAnswerCancel);
    dialog.stubborn = false;
    waits.Leave();
  });
  EXPECT_TRUE(waits.RunPlugin(plugin));
  EXPECT_EQ(chosen, (std::vector{2, 0}));
  EXPECT_EQ(shell.told, "PKTAUMEN - PKTAUMEN - pick - ");
  EXPECT_FALSE(waits.RunPlugin([] {})) << "nobody has left this one";
}

TEST_F(Windows, LeavingClosesPopupsWithLoopsOfTheirOwn) {
  toolkit::DateField day(9001, "Tag:");
  PlayedDlg dialog({&day});
  const auto open_menu = [](QWidget* in, const char* button) {
    QTest::mouseClick(in->findChild<QToolButton*>(QString::fromLatin1(button)), Qt::LeftButton);
  };
  Then([&](QWidget* window) { open_menu(window, "9001.kalender"); });
  Then([&](QWidget*) { open_menu(QApplication::activePopupWidget(), "qt_calendar_monthbutton"); });
  Then([&](QWidget*) {
    waits.Leave();
    EXPECT_TRUE(QTest::qWaitFor([&] { return !dialog.IsOpen(); }));
    while (QApplication::activePopupWidget() != nullptr) {
      ADD_FAILURE() << "it stays, and with it the program";
      QApplication::activePopupWidget()->close();
    }
  });
  EXPECT_TRUE(waits.RunPlugin([&] { Run(dialog); }));
}

TEST_F(Windows, LeavingAPickerThatAsksDoesNothingToTheFile) {
  const support::TempFolder folder;
  const std::string file = folder.Write("alt.XML", "alt");
  for (const Qt::Key key : {Qt::Key_Delete, Qt::Key_Return, Qt::Key_Menu, Qt::Key_F2, Qt::Key_Cancel}) {
    const bool by_click = key == Qt::Key_Cancel;
    Then([&, key, by_click](QWidget* window) {
      auto* const files = window->findChild<QTreeView*>();
      static_cast<QFileDialog*>(window)->setDirectory(QString::fromStdString(folder.path()));
      EXPECT_TRUE(QTest::qWaitFor([&] { return files->model()->rowCount(files->rootIndex()) == 1; }));
      files->setFocus();
      files->setCurrentIndex(files->model()->index(0, 0, files->rootIndex()));
      if (key == Qt::Key_F2 || by_click) {
        QTest::keyClick(files, Qt::Key_F2);
        QTest::keyClicks(window->focusWidget(), QStringLiteral("anders"));
        if (!by_click) return static_cast<void>(waits.Leave());
        auto* const cancel = window->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Cancel);
        return QTest::mouseClick(static_cast<QWidget*>(cancel), Qt::LeftButton);
      }
      Then([&](QWidget* question) {
        EXPECT_TRUE(qobject_cast<QMessageBox*>(question) != nullptr || QApplication::activePopupWidget() != nullptr);
        waits.Leave();
      });
      if (key != Qt::Key_Menu) return QTest::keyClick(files, key);
      QTest::mouseClick(window->windowHandle(), Qt::RightButton, {}, files->mapTo(window, files->rect().center()));
    });
    std::string path;
    const bool left = waits.RunPlugin([&] {
      EXPECT_FALSE(desktop.PickFile({.save = true, .title = "", .path = "", .filters = {}, .default_extension = "*"},
                                    &path, nullptr));
    });
    EXPECT_NE(left, by_click);
    EXPECT_TRUE(QFileInfo::exists(QString::fromStdString(file)));
  }
}

TEST_F(Windows, OnlyTheOneInFrontTakesInputButTheMainOneCanBeClosed) {
  auto* const behind = new QPushButton(&shell.window);
  QAction own;
  own.setShortcut(Qt::Key_F2);
  shell.window.addAction(&own);
  QSignalSpy clicked(behind, &QPushButton::clicked);
  QSignalSpy triggered(&own, &QAction::triggered);
  QObject::connect(qApp, &QGuiApplication::focusWindowChanged, &own, [&](QWindow* window) {
    if (window == shell.window.windowHandle()) QTest::keyClick(window, Qt::Key_F2);
  });
  behind->show();
  QDialog beside(&shell.window);
  beside.show();
  toolkit::TickList rows(9001, "");
  for (int i = 0; i < 50; ++i) rows.Add({std::to_string(i), i, false});
  PlayedDlg dialog({&rows});
  dialog.rule = [&](toolkit::ControlId id) {
    if (id != 9001) return;
    EXPECT_EQ(desktop.ShowBox("Wirklich?", "Frage", toolkit::kBoxYesNo, 0), toolkit::kAnswerNo);
  };
  const auto middle = [](const QWidget* widget) { return widget->mapTo(widget->window(), widget->rect().center()); };
  QWidget* list = nullptr;
  Then([&](QWidget* window) {
    list = pilot::Find(*window, 9001);
    // The box opens while the button is down.
    QTest::mousePress(window->windowHandle(), Qt::LeftButton, {}, middle(list));
  });
  Then([&](QWidget* box) {
    triggered.clear();
    for (QWidget* widget : {static_cast<QWidget*>(behind), list}) {
      widget->activateWindow();
      widget->setFocus();
      QTest::mouseClick(widget->window()->windowHandle(), Qt::LeftButton, {},
                        middle(widget) + QPoint(0, widget == list ? 30 : 0));
      QTest::keyClick(widget->window()->windowHandle(), Qt::Key_Space);
      QTest::keyClick(widget, Qt::Key_Space);
      EXPECT_TRUE(QTest::qWaitFor([&] { return box->isActiveWindow(); }));
    }
    EXPECT_EQ(clicked.count() + triggered.count(), 0);
    EXPECT_EQ(dialog.pressed, "9001 ");
    EXPECT_EQ(rows.ticked(), 0U);
    EXPECT_FALSE(beside.close());
    EXPECT_TRUE(shell.window.close());
    shell.window.show();
    Then(Close);
    const QWidget* const no = static_cast<QMessageBox*>(box)->button(QMessageBox::No);
    QTest::mouseClick(box->windowHandle(), Qt::LeftButton, {}, middle(no));
    EXPECT_FALSE(box->isVisible());
  });
  EXPECT_EQ(Run(dialog), toolkit::kCancel);
  QTest::mouseClick(behind, Qt::LeftButton);
  EXPECT_EQ(clicked.count(), 1);
  shell.window.activateWindow();
  EXPECT_TRUE(QTest::qWaitFor([&] { return triggered.count() > 0; }));
}

TEST_F(Windows, BoxesAnswerInGerman) {
  const struct {
    unsigned flags;
    std::vector<Qt::Key> keys;
    int answer;
    const char* captions;
  } kCases[] = {
      {toolkit::kBoxOk, {Qt::Key_Escape}, toolkit::kAnswerOk, "OK "},
      {toolkit::kBoxOkCancel | toolkit::kBoxWarning, {Qt::Key_Return}, toolkit::kAnswerOk, "OK Abbrechen "},
      {toolkit::kBoxOkCancel, {Qt::Key_Escape}, toolkit::kAnswerCancel, "OK Abbrechen "},
      {toolkit::kBoxYesNo, {Qt::Key_J}, toolkit::kAnswerYes, "&Ja &Nein "},
      {toolkit::kBoxYesNo, {Qt::Key_Escape, Qt::Key_Return}, toolkit::kAnswerYes, "&Ja &Nein "},
      {toolkit::kBoxYesNo, {Qt::Key_Tab, Qt::Key_Return}, toolkit::kAnswerNo, "&Ja &Nein "},
      {toolkit::kBoxYesNo | toolkit::kBoxSecondIsDefault, {Qt::Key_Return}, toolkit::kAnswerNo, "&Ja &Nein "},
      {toolkit::kBoxYesNoCancel, {Qt::Key_N}, toolkit::kAnswerNo, "Abbrechen &Ja &Nein "},
  };
  for (const auto& c : kCases) {
    Then([&](QWidget* window) {
      std::string captions;
      for (const QAbstractButton* button : static_cast<QMessageBox*>(window)->buttons()) {
        captions += button->text().toStdString() + " ";
      }
      EXPECT_EQ(captions, c.captions);
      EXPECT_EQ(static_cast<QMessageBox*>(window)->text(), QStringLiteral("<b>&amp;</b>\nzwei"));
      EXPECT_EQ(static_cast<QMessageBox*>(window)->textFormat(), Qt::PlainText);
      if ((c.flags & 0x0FU) == toolkit::kBoxYesNo) window->close();
      for (const Qt::Key key : c.keys) {
        QTest::keyClick(window, key, key <= Qt::Key_Z ? Qt::AltModifier : Qt::NoModifier);
      }
    });
    EXPECT_EQ(desktop.ShowBox("<b>&amp;</b>\n\rzwei", "Titel", c.flags, 0), c.answer);
  }
  Then([](QWidget* window) {
    EXPECT_LT(window->sizeHint().height(), 900);
    Close(window);
  });
  desktop.ShowBox(std::string(5000, '\n') + std::string(10000, 'x'), "Lang", 0, 0);
}

TEST_F(Windows, PickersRememberTheirFolderAndTellOfWhatWasSaved) {
  const support::TempFolder folder;
  const std::string target = folder.Write("schon da.XML", "alt");
  toolkit::FilePick pick;
  pick.save = true;
  pick.title = "PKT AUS Datei anlegen";
  pick.filters = {{"*.XML", "*.XML"}};
  pick.default_extension = "*";
  const auto type = [&](const std::string& text) {
    return [text](QWidget* picker) { pilot::PickFile(picker, QString::fromStdString(text)); };
  };
  std::string path = "unberührt"_ansi;
  int filter = 7;
  Then([](QWidget* window) {
    window->resize(701, 481);
    Close(window);
  });
  EXPECT_FALSE(desktop.PickFile(pick, &path, &filter));
  EXPECT_EQ(path + std::to_string(filter), "unberührt7"_ansi);

  const auto overwrite = [](QMessageBox::StandardButton answer) {
    return [answer](QWidget* window) {
      QTest::mouseClick(static_cast<QWidget*>(static_cast<QMessageBox*>(window)->button(answer)), Qt::LeftButton);
    };
  };
  Then(type(folder.File("\u0142.XML")));
  Then([](QWidget* window) {
    EXPECT_TRUE(static_cast<QMessageBox*>(window)->text().contains(QStringLiteral("Zeichen")));
    Close(window);
  });
  Then(type(target));
  Then(overwrite(QMessageBox::No));
  Then(type(target));
  Then(overwrite(QMessageBox::Yes));
  EXPECT_TRUE(desktop.PickFile(pick, &path, &filter));
  EXPECT_EQ(path, target);
  EXPECT_EQ(filter, 0);
  Then(Close);
  desktop.ShowBox("Fehler", "nicht geschrieben", 0, 0);
  EXPECT_EQ(shell.told, "");
  EXPECT_FALSE(korvo::Remembered()
                   .value(QStringLiteral("ordner/letzter"))
                   .toString()
                   .contains(QString::fromStdString(folder.path())));
  QTest::qWait(5);
  folder.Write("schon da.XML", "neu");
  for (int i = 0; i < 2; ++i) {
    Then(Close);
    desktop.ShowBox("Erfolgreich", "geschrieben", 0, 0);
  }
  EXPECT_EQ(shell.told, "saved " + target + " ");

  Then([&](QWidget* window) {
    auto* const picker = static_cast<QFileDialog*>(window);
    EXPECT_EQ(picker->directory().absolutePath().toStdString(), folder.path());
    EXPECT_EQ(picker->labelText(QFileDialog::Reject), QStringLiteral("Abbrechen"));
    EXPECT_EQ(picker->size(), QSize(701, 481));
    Close(window);
  });
  EXPECT_FALSE(desktop.PickFolder("Verzeichnis", 0, &path));
}

TEST_F(Windows, MainWindowIsFoundByItsClassAlone) {
  shell.window.setWindowTitle(QStringLiteral("Korvo – Ä"));
  const toolkit::Window main = desktop.FindWindow("GD_WIN32", "Korvo – Ä"_ansi);
  EXPECT_NE(main, 0);
  Then([&](QWidget* window) {
    EXPECT_EQ(desktop.FindWindow("GD_WIN32", "Korvo"), 0);
    EXPECT_EQ(desktop.TopLevelWindows().size(), 2U);
    EXPECT_NE(desktop.ForegroundWindow(), main);
    Close(window);
  });
  desktop.ShowBox("Text", "Korvo", 0, main);
}

}  // namespace
