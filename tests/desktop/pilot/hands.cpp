#include "tests/desktop/pilot/hands.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QDateEdit>
#include <QLineEdit>
#include <QListView>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QTabBar>
#include <QTest>
#include <type_traits>
#include <variant>

#include "korvo/desktop/text.h"

namespace pilot {

namespace {

using toolkit::Answer;

bool by_mouse = false;

/// Mouse and keyboard in turn.
void Press(QAbstractButton* button) {
  by_mouse = !by_mouse;
  if (by_mouse) return QTest::mouseClick(button, Qt::LeftButton, {}, {8, button->height() / 2});
  button->setFocus();
  QTest::keyClick(button, Qt::Key_Space);
}

Answer Do(QLineEdit* edit, const std::string& text) {
  if (edit->isReadOnly()) return Answer::kReadOnly;
  QTest::mouseClick(edit, Qt::LeftButton);
  QTest::keyClick(edit, Qt::Key_A, Qt::ControlModifier);
  QTest::keyClick(edit, Qt::Key_Delete);
  for (const QChar c : korvo::FromAnsi(text)) QTest::sendKeyEvent(QTest::Click, edit, Qt::Key_unknown, c, {});
  return Answer::kTaken;
}

Answer Choose(QComboBox* box, int position) {
  if (position < 0 || position >= box->count()) return Answer::kNoSuchEntry;
  box->setFocus();
  QTest::keyClick(box, Qt::Key_Down, Qt::AltModifier);
  box->view()->setCurrentIndex(box->model()->index(position, 0));
  QTest::keyClick(box->view(), Qt::Key_Return);
  return Answer::kTaken;
}

Answer Tick(QListView* list, int row, bool on) {
  const QModelIndex index = list->model()->index(row, 0);
  if (!index.isValid()) return Answer::kNoSuchEntry;
  if ((index.data(Qt::CheckStateRole).toInt() == Qt::Checked) == on) return Answer::kTaken;
  list->scrollTo(index);
  by_mouse = !by_mouse;
  if (by_mouse) {
    const QRect place = list->visualRect(index);
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, {place.left() + 10, place.center().y()});
  } else {
    list->setCurrentIndex(index);
    QTest::keyClick(list, Qt::Key_Space);
  }
  return Answer::kTaken;
}

Answer SetDay(QWidget* window, QDateEdit* edit, const toolkit::DaySet& event) {
  auto* box = window->findChild<QAbstractButton*>(edit->objectName() + QStringLiteral(".an"));
  if (box != nullptr && box->isChecked() != event.on) Press(box);
  if (!event.on) return Answer::kTaken;
  const QDate day(event.day.year, event.day.month, event.day.day);
  if (!day.isValid()) return Answer::kNoSuchEntry;
  edit->setFocus();
  edit->setSelectedSection(QDateTimeEdit::DaySection);
  QTest::keyClicks(edit, day.toString(QStringLiteral("ddMMyyyy")));
  return Answer::kTaken;
}

}  // namespace

Answer Do(korvo::DialogWindow& window, const toolkit::Event& event) {
  if (std::holds_alternative<toolkit::Closed>(event)) {
    window.close();
    return Answer::kTaken;
  }
  return std::visit(
      [&]<class E>(const E& e) {
        if constexpr (std::is_same_v<E, toolkit::Opened> || std::is_same_v<E, toolkit::Closed>) {
          return Answer::kBusy;
        } else {
          QWidget* const widget = Find(window, e.id);
          if (widget == nullptr)
            return window.dialog().Find(e.id) != nullptr ? Answer::kHidden : Answer::kNoSuchControl;
          if (!widget->isEnabled()) return Answer::kDisabled;
          auto* const button = qobject_cast<QAbstractButton*>(widget);
          if constexpr (std::is_same_v<E, toolkit::Typed>) {
            if (auto* edit = qobject_cast<QLineEdit*>(widget)) return Do(edit, e.text);
          } else if constexpr (std::is_same_v<E, toolkit::Pressed>) {
            if (button == nullptr) return Answer::kWrongKind;
            if (e.id == toolkit::kCancel) {
              QTest::keyClick(&window, Qt::Key_Escape);
            } else {
              Press(button);
            }
            return Answer::kTaken;
          } else if constexpr (std::is_same_v<E, toolkit::BoxTicked>) {
            if (button != nullptr && button->isChecked() != e.on) Press(button);
            if (button != nullptr) return Answer::kTaken;
          } else if constexpr (std::is_same_v<E, toolkit::OptionChosen>) {
            QRadioButton* const option = widget->findChildren<QRadioButton*>().value(e.option);
            if (option == nullptr) return Answer::kNoSuchEntry;
            Press(option);
            return Answer::kTaken;
          } else if constexpr (std::is_same_v<E, toolkit::DaySet>) {
            if (auto* edit = qobject_cast<QDateEdit*>(widget)) return SetDay(&window, edit, e);
          } else if constexpr (std::is_same_v<E, toolkit::EntrySelected>) {
            if (auto* box = qobject_cast<QComboBox*>(widget)) return Choose(box, e.position);
          } else if constexpr (std::is_same_v<E, toolkit::RowTicked>) {
            if (auto* list = qobject_cast<QListView*>(widget)) return Tick(list, e.row, e.on);
          } else if constexpr (std::is_same_v<E, toolkit::RowSelected>) {
            if (auto* list = qobject_cast<QListView*>(widget)) {
              list->setCurrentIndex(list->model()->index(e.row, 0));
              return Answer::kTaken;
            }
          } else {
            auto* const tabs = qobject_cast<QTabWidget*>(widget);
            if (tabs != nullptr && (e.page < 0 || e.page >= tabs->count())) return Answer::kNoSuchEntry;
            if (tabs != nullptr) {
              QTest::mouseClick(tabs->tabBar(), Qt::LeftButton, {}, tabs->tabBar()->tabRect(e.page).center());
              return Answer::kTaken;
            }
          }
          return Answer::kWrongKind;
        }
      },
      event);
}

std::string Difference(const korvo::DialogWindow& window) {
  for (const toolkit::Control* control : window.dialog().controls()) {
    const QList<QWidget*> all = window.findChildren<QWidget*>(QString::number(control->id()));
    const auto shown = std::count_if(all.begin(), all.end(), [](const QWidget* one) { return one->isVisible(); });
    const auto& controls = window.dialog().controls();
    const auto meant = std::count_if(controls.begin(), controls.end(), [&](const toolkit::Control* one) {
      return one->id() == control->id() && window.dialog().Shows(*one);
    });
    const std::string name = std::to_string(control->id());
    if (shown != meant) return name + ": sichtbar";
    const QWidget* widget = window.dialog().Shows(*control) ? Find(window, control->id()) : nullptr;
    if (widget == nullptr) continue;
    if (widget->isEnabled() != control->enabled) return name + ": gesperrt";
    const auto* text = static_cast<const toolkit::TextField*>(control);
    const auto* edit = qobject_cast<const QLineEdit*>(widget);
    if (edit != nullptr && edit->text() != korvo::FromAnsi(text->text)) return name + ": Text";
    const auto* lines = qobject_cast<const QPlainTextEdit*>(widget);
    if (lines != nullptr && lines->toPlainText() != korvo::AsLines(text->text)) return name + ": Zeilen";
    const auto* check = qobject_cast<const QAbstractButton*>(widget);
    if (check != nullptr && check->isCheckable() != (control->kind() == toolkit::Kind::kTickBox)) return name;
    if (check != nullptr && check->isCheckable() &&
        check->isChecked() != static_cast<const toolkit::TickBox*>(control)->ticked) {
      return name + ": Haken";
    }
    const auto* box = qobject_cast<const QComboBox*>(widget);
    const auto* list = static_cast<const toolkit::ChoiceList*>(control);
    if (box != nullptr &&
        (box->currentIndex() != list->selected() || box->count() != static_cast<int>(list->entries().size()) ||
         box->currentText() != korvo::AsLine(list->selection() ? list->selection()->label : ""))) {
      return name + ": Auswahl";
    }
    const auto* view = qobject_cast<const QListView*>(widget);
    const auto* rows = static_cast<const toolkit::TickList*>(control);
    if (view != nullptr && view->model()->rowCount() != static_cast<int>(rows->rows().size())) return name + ": Zeilen";
    const auto* tabs = qobject_cast<const QTabWidget*>(widget);
    const auto* pages = static_cast<const toolkit::Pages*>(control);
    for (int i = 0; tabs != nullptr && i < static_cast<int>(pages->captions.size()); ++i) {
      if (tabs->tabText(i) != korvo::AsCaption(pages->captions[static_cast<std::size_t>(i)])) return name + ": Seite";
    }
  }
  return {};
}

}  // namespace pilot
