#include "tests/desktop/pilot/hands.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLineEdit>
#include <QListView>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QRegularExpression>
#include <QTabBar>
#include <QTest>
#include <variant>

#include "korvo/desktop/text.h"
#include "korvo/words/words.h"

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

Answer Act(QLineEdit* edit, const toolkit::Typed& e) {
  if (edit->isReadOnly()) return Answer::kReadOnly;
  QTest::mouseClick(edit, Qt::LeftButton);
  QTest::keyClick(edit, Qt::Key_A, Qt::ControlModifier);
  QTest::keyClick(edit, Qt::Key_Delete);
  for (const QChar c : korvo::FromAnsi(e.text)) QTest::sendKeyEvent(QTest::Click, edit, Qt::Key_unknown, c, {});
  return Answer::kTaken;
}

Answer Act(QLineEdit* edit, const toolkit::DaySet& e) { return Act(edit, toolkit::Typed{e.id, korvo::DayText(e.day)}); }

Answer Act(QAbstractButton* button, const toolkit::Pressed& e) {
  e.id == toolkit::kCancel ? QTest::keyClick(button->window(), Qt::Key_Escape) : Press(button);
  return Answer::kTaken;
}

Answer Act(QAbstractButton* box, const toolkit::BoxTicked& e) {
  if (box->isChecked() != e.on) Press(box);
  return Answer::kTaken;
}

Answer Act(QWidget* group, const toolkit::OptionChosen& e) {
  QRadioButton* const option = group->findChildren<QRadioButton*>().value(e.option);
  return option != nullptr ? (Press(option), Answer::kTaken) : Answer::kNoSuchEntry;
}

Answer Act(QComboBox* box, const toolkit::EntrySelected& e) {
  if (e.position < 0 || e.position >= box->count()) return Answer::kNoSuchEntry;
  box->setFocus();
  QTest::keyClick(box, Qt::Key_Down, Qt::AltModifier);
  box->view()->setCurrentIndex(box->model()->index(e.position, 0));
  QTest::keyClick(box->view(), Qt::Key_Return);
  return Answer::kTaken;
}

Answer Act(QListView* list, const toolkit::RowTicked& e) {
  const QModelIndex index = list->model()->index(e.row, 0);
  if (!index.isValid()) return Answer::kNoSuchEntry;
  if ((index.data(Qt::CheckStateRole).toInt() == Qt::Checked) == e.on) return Answer::kTaken;
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

Answer Act(QListView* list, const toolkit::RowSelected& e) {
  list->setCurrentIndex(list->model()->index(e.row, 0));
  return Answer::kTaken;
}

Answer Act(QTabWidget* tabs, const toolkit::PageTurned& e) {
  if (e.page < 0 || e.page >= tabs->count()) return Answer::kNoSuchEntry;
  QTest::mouseClick(tabs->tabBar(), Qt::LeftButton, {}, tabs->tabBar()->tabRect(e.page).center());
  return Answer::kTaken;
}

/// Picks the act for the event, and with it the kind of widget.
template <class Event, class Widget>
Answer ActOn(QWidget* any, const Event& e, Answer (*act)(Widget*, const Event&)) {
  auto* const widget = qobject_cast<Widget*>(any);
  return widget != nullptr ? act(widget, e) : Answer::kWrongKind;
}

template <class C>
const C& As(const toolkit::Control& control) {
  return static_cast<const C&>(control);
}

/// A caption as the person reads it.
QString Unmarked(const QString& caption) {
  static const QRegularExpression mark(QStringLiteral("&(.)"));
  return QString(caption).replace(mark, QStringLiteral("\\1"));
}

bool ShowsContents(const toolkit::Control& control, const QWidget& widget) {
  const auto* const edit = qobject_cast<const QLineEdit*>(&widget);
  const auto* const lines = qobject_cast<const QPlainTextEdit*>(&widget);
  switch (control.kind()) {
    case toolkit::Kind::kText: {
      const std::string& text = As<toolkit::TextField>(control).text;
      if (edit != nullptr) return edit->text() == korvo::AsLine(text);
      return lines == nullptr || lines->toPlainText() == korvo::AsLines(text);
    }
    case toolkit::Kind::kDate:
      return edit->text() == korvo::FromAnsi(korvo::DayText(As<toolkit::DateField>(control).day));
    case toolkit::Kind::kTickBox:
      return static_cast<const QAbstractButton&>(widget).isChecked() == As<toolkit::TickBox>(control).ticked;
    case toolkit::Kind::kRadioGroup: {
      const QList<QRadioButton*> options = widget.findChildren<QRadioButton*>();
      for (int i = 0; i < options.size(); ++i) {
        if (options[i]->isChecked() != (i == As<toolkit::RadioGroup>(control).chosen)) return false;
      }
      return true;
    }
    case toolkit::Kind::kChoice: {
      const auto& list = As<toolkit::ChoiceList>(control);
      const auto& box = static_cast<const QComboBox&>(widget);
      const std::string label = list.selection() != nullptr ? list.selection()->label : "";
      return box.currentIndex() == list.selected() && box.count() == static_cast<int>(list.entries().size()) &&
             box.currentText() == korvo::AsLine(label);
    }
    case toolkit::Kind::kTickList: {
      const QAbstractItemModel* const model = static_cast<const QListView&>(widget).model();
      return model->rowCount() == static_cast<int>(As<toolkit::TickList>(control).rows().size());
    }
    case toolkit::Kind::kPages: {
      const auto& captions = As<toolkit::Pages>(control).captions;
      const auto& tabs = static_cast<const QTabWidget&>(widget);
      for (std::size_t i = 0; i < captions.size(); ++i) {
        if (Unmarked(tabs.tabText(static_cast<int>(i))) != korvo::AsLine(captions[i]).trimmed()) return false;
      }
      return tabs.currentIndex() == As<toolkit::Pages>(control).current;
    }
    case toolkit::Kind::kButton:
      return true;
  }
  return false;
}

}  // namespace

Answer Do(korvo::DialogWindow& window, const toolkit::Event& event) {
  return std::visit(
      [&]<class E>(const E& e) {
        if constexpr (requires { e.id; }) {
          QWidget* const widget = Find(window, e.id);
          if (widget == nullptr) return Answer::kHidden;
          return widget->isEnabled() ? ActOn<E>(widget, e, &Act) : Answer::kDisabled;
        } else {
          return window.close(), Answer::kTaken;
        }
      },
      event);
}

void PickFile(QWidget* picker, const QString& path) {
  auto* const name = picker->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
  name->setFocus();
  name->setText(path);
  QTest::keyClick(name, Qt::Key_Return);
}

std::string Difference(const korvo::DialogWindow& window) {
  const auto& controls = window.dialog().controls();
  for (const toolkit::Control* control : controls) {
    const std::string name = std::to_string(control->id());
    const QList<QWidget*> all = window.findChildren<QWidget*>(QString::number(control->id()));
    const auto seen = std::count_if(all.begin(), all.end(), [](const QWidget* one) { return one->isVisible(); });
    const auto meant = std::count_if(controls.begin(), controls.end(), [&](const toolkit::Control* one) {
      return one->id() == control->id() && window.dialog().Shows(*one);
    });
    if (seen != meant) return name + ": sichtbar";
    if (!window.dialog().Shows(*control)) continue;
    const QWidget* const widget = Find(window, control->id());
    if (widget->isEnabled() != control->enabled) return name + ": gesperrt";
    if (!ShowsContents(*control, *widget)) return name + ": Inhalt";
  }
  return {};
}

}  // namespace pilot
