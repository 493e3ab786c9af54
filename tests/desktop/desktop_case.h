// Windows of the desktop in a test's own event loop, and a person who works in whatever is in front.
#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QTest>
#include <QTimer>
#include <deque>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "korvo/desktop/desktop_front_end.h"
#include "korvo/desktop/dialog_window.h"
#include "korvo/desktop/modal_guard.h"
#include "korvo/desktop/text.h"

/// A main window that only keeps what it is told.
class KeptShell : public korvo::Shell {
 public:
  QWidget* Widget() override { return &window; }
  korvo::ModalGuard& Guard() override { return guard; }
  void ShowMenu(const korvo::Menu& menu) override { told += menu.name + " "; }
  void HideMenu() override { told += "- "; }
  void BeginPick() override { told += "pick "; }
  void EndPick() override { told += "- "; }
  void PointChanged(std::int32_t number) override { told += "point " + std::to_string(number) + " "; }
  void ShowMessage(const QString& text) override { told += text.toStdString() + " "; }
  void FileSaved(const QString& path) override { told += "saved " + path.toStdString() + " "; }

  QWidget window;
  korvo::ModalGuard guard{window};
  std::string told;
};

/// A dialog with a test's own rule for what is pressed.
class PlayedDlg : public toolkit::Dialog {
 public:
  explicit PlayedDlg(std::vector<toolkit::Control*> controls)
      : Dialog(9000, korvo::ToAnsi(QStringLiteral("Prüfen & <b>mehr</b>"))) {
    for (toolkit::Control* control : controls) Add(control);
  }
  std::string pressed;  ///< so far, with a blank behind each
  std::function<void(toolkit::ControlId)> rule = [](toolkit::ControlId) {};
  bool stubborn = false;  ///< stays open for all that the person does

 private:
  void OnPressed(toolkit::ControlId id) override {
    pressed += std::to_string(id) + " ";
    rule(id);
    if (id == toolkit::kCancel && !stubborn) End(id);
  }
  void OnRowSelected(toolkit::ControlId id) override { OnPressed(id); }
};

class DesktopCase : public testing::Test {
 protected:
  DesktopCase() {
    korvo::SetFrontEnd(&desktop);
    shell.window.show();
  }
  ~DesktopCase() override {
    korvo::SetFrontEnd(nullptr);
    EXPECT_TRUE(person_.empty());
  }

  /// What the person does, one after the other, each time with the window in front.
  void Then(std::function<void(QWidget*)> act) {
    person_.push_back(std::move(act));
    if (person_.size() == 1) Soon();
  }
  int Run(toolkit::Dialog& dialog) { return toolkit::RunModal(desktop, dialog, 0); }
  /// The dialog with what the person does first in it, and then closes it.
  void Run(toolkit::Dialog& dialog, const std::function<void(korvo::DialogWindow&)>& act) {
    Then([&](QWidget* window) {
      act(static_cast<korvo::DialogWindow&>(*window));
      window->close();
    });
    EXPECT_EQ(Run(dialog), toolkit::kCancel);
  }

  KeptShell shell;
  korvo::Waits waits;
  korvo::DesktopFrontEnd desktop{shell, waits, platform::SystemClock()};

 private:
  void Soon() {
    QTimer::singleShot(1, [this] {
      QWidget* const front = desktop.front();
      if (front == nullptr || !front->isActiveWindow()) return Soon();
      EXPECT_EQ(QGuiApplication::modalWindow(), nullptr) << "or the main window could not be closed";
      const std::function<void(QWidget*)> act = std::move(person_.front());
      person_.pop_front();
      // The act may open a loop, in which the next one comes.
      if (!person_.empty()) Soon();
      act(front);
    });
  }

  std::deque<std::function<void(QWidget*)>> person_;
};

inline void Close(QWidget* window) { window->close(); }
