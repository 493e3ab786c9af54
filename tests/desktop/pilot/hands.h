// What a person does to the window of a dialog: the events of the toolkit by mouse and keyboard.
#pragma once

#include <QWidget>
#include <string>

#include "korvo/desktop/dialog_window.h"

namespace pilot {

/// The visible widget of that number, or null.
template <class Widget = QWidget>
Widget* Find(const QWidget& window, int id) {
  for (Widget* widget : window.findChildren<Widget*>(QString::number(id))) {
    if (widget->isVisible()) return widget;
  }
  return nullptr;
}

/// Does what the event means. What no person can do to the window as it stands is not done and answered as such.
toolkit::Answer Do(korvo::DialogWindow& window, const toolkit::Event& event);

/// Types the path, or a part of one, into a picker and confirms it.
void PickFile(QWidget* picker, const QString& path);

/// Where the window shows something else than its controls hold; empty for nowhere.
std::string Difference(const korvo::DialogWindow& window);

}  // namespace pilot
