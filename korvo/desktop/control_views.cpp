#include "korvo/desktop/control_views.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QListView>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalBlocker>
#include <QWheelEvent>
#include <algorithm>

#include "korvo/desktop/list_models.h"
#include "korvo/desktop/text.h"

namespace korvo {

namespace {

using toolkit::Kind;

constexpr qsizetype kLongestLine = 500;
constexpr int kShortestChoice = 24;
constexpr int kVisibleRows = 12;

QString NameOf(toolkit::ControlId id) { return QString::number(id); }

/// A wheel that turns over it changes nothing unless the person works in it: one that only scrolls past must not.
template <class Widget>
class Calm : public Widget {
 public:
  using Widget::Widget;

 protected:
  void wheelEvent(QWheelEvent* event) override {
    if (this->hasFocus()) return Widget::wheelEvent(event);
    event->ignore();
  }
};

class EditView : public ControlView {
 public:
  EditView(const toolkit::TextField& field, QWidget* parent, const Send& send)
      : ControlView(field), field_(field), edit_(new QLineEdit(parent)) {
    SetWidget(edit_);
    AddLabel(parent);
    if (field.form == toolkit::TextField::Form::kReadOnly) {
      edit_->setReadOnly(true);
      QPalette palette = edit_->palette();
      palette.setBrush(QPalette::Base, palette.window());
      edit_->setPalette(palette);
    }
    QObject::connect(edit_, &QLineEdit::textEdited, edit_, [send, id = field.id()](const QString& text) {
      send(toolkit::Typed{id, ToAnsi(text)});
    });
  }

 protected:
  void ShowContents() override {
    const QString text = FromAnsi(field_.text);
    if (text == edit_->text()) return;
    const int cursor = edit_->cursorPosition();
    edit_->setText(text);
    edit_->setCursorPosition(edit_->hasFocus() ? cursor : 0);
  }

 private:
  const toolkit::TextField& field_;
  QLineEdit* edit_;
};

/// A text that stands in the window itself.
class LineView : public ControlView {
 public:
  LineView(const toolkit::TextField& field, QWidget* parent)
      : ControlView(field), field_(field), line_(new QLabel(parent)) {
    SetWidget(line_);
    line_->setTextFormat(Qt::PlainText);
    line_->setWordWrap(true);
    line_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  }

 protected:
  void ShowContents() override {
    QString text = AsLine(field_.text);
    if (text.size() > kLongestLine) text = text.left(kLongestLine) + QChar(u'…');
    if (text != line_->text()) line_->setText(text);
  }

 private:
  const toolkit::TextField& field_;
  QLabel* line_;
};

class LinesView : public ControlView {
 public:
  LinesView(const toolkit::TextField& field, QWidget* parent)
      : ControlView(field), field_(field), lines_(new QPlainTextEdit(parent)) {
    SetWidget(lines_);
    AddLabel(parent);
    lines_->setReadOnly(true);
    lines_->setTabChangesFocus(true);
    lines_->setMinimumHeight(lines_->fontMetrics().lineSpacing() * 4);
  }
  int Growth() const override { return 2; }

 protected:
  void ShowContents() override {
    if (shown_ == field_.text) return;
    shown_ = field_.text;
    lines_->setPlainText(AsLines(shown_));
  }

 private:
  const toolkit::TextField& field_;
  QPlainTextEdit* lines_;
  std::string shown_;
};

class ButtonView : public ControlView {
 public:
  ButtonView(const toolkit::Button& button, QWidget* parent, const Send& send)
      : ControlView(button), button_(new QPushButton(parent)) {
    SetWidget(button_);
    QObject::connect(button_, &QPushButton::clicked, button_, [send, id = button.id()] { send(toolkit::Pressed{id}); });
  }
  bool IsWide() const override { return false; }

 protected:
  void ShowCaption(const QString& marked) override { button_->setText(marked); }
  void ShowContents() override {}

 private:
  QPushButton* button_;
};

class TickView : public ControlView {
 public:
  TickView(const toolkit::TickBox& box, QWidget* parent, const Send& send)
      : ControlView(box), box_(box), check_(new QCheckBox(parent)) {
    SetWidget(check_);
    QObject::connect(check_, &QCheckBox::clicked, check_, [send, id = box.id()](bool on) {
      send(toolkit::BoxTicked{id, on});
    });
  }
  bool IsWide() const override { return false; }

 protected:
  void ShowCaption(const QString& marked) override { check_->setText(marked); }
  void ShowContents() override { check_->setChecked(box_.ticked); }

 private:
  const toolkit::TickBox& box_;
  QCheckBox* check_;
};

class RadioView : public ControlView {
 public:
  RadioView(const toolkit::RadioGroup& group, QWidget* parent, const Send& send)
      : ControlView(group), group_(group), frame_(new QGroupBox(parent)), buttons_(new QButtonGroup(frame_)) {
    SetWidget(frame_);
    auto* row = new QHBoxLayout(frame_);
    for (std::size_t i = 0; i < group.options.size(); ++i) {
      auto* button = new QRadioButton(AsCaption(group.options[i]), frame_);
      const bool numbered = i < group.option_ids.size();
      button->setObjectName(numbered ? NameOf(group.option_ids[i])
                                     : NameOf(group.id()) + QChar(u'.') + QString::number(i));
      buttons_->addButton(button, static_cast<int>(i));
      row->addWidget(button);
    }
    row->addStretch(1);
    QObject::connect(buttons_, &QButtonGroup::idClicked, frame_, [send, id = group.id()](int option) {
      send(toolkit::OptionChosen{id, option});
    });
  }

 protected:
  void ShowCaption(const QString& marked) override { frame_->setTitle(marked); }
  void ShowContents() override {
    buttons_->setExclusive(group_.chosen >= 0);
    for (QAbstractButton* button : buttons_->buttons()) button->setChecked(buttons_->id(button) == group_.chosen);
    buttons_->setExclusive(true);
  }

 private:
  const toolkit::RadioGroup& group_;
  QGroupBox* frame_;
  QButtonGroup* buttons_;
};

class DateView : public ControlView {
 public:
  DateView(const toolkit::DateField& field, QWidget* parent, const Send& send)
      : ControlView(field), field_(field), send_(send), box_(new QWidget(parent)), edit_(new Calm<QDateEdit>(box_)) {
    SetWidget(box_);
    AddLabel(parent);
    edit_->setObjectName(box_->objectName());
    box_->setObjectName(edit_->objectName() + QStringLiteral(".feld"));
    box_->setFocusProxy(edit_);
    edit_->setDisplayFormat(QStringLiteral("dd.MM.yyyy"));
    edit_->setCalendarPopup(true);
    edit_->setDateRange(kNoDay, QDate(9999, 12, 31));
    edit_->setSpecialValueText(QStringLiteral(" "));
    auto* row = new QHBoxLayout(box_);
    row->setContentsMargins(0, 0, 0, 0);
    if (field.can_be_off) {
      on_ = new QCheckBox(box_);
      on_->setObjectName(edit_->objectName() + QStringLiteral(".an"));
      row->addWidget(on_);
      QObject::connect(on_, &QCheckBox::clicked, box_, [this] { Tell(); });
    }
    row->addWidget(edit_);
    row->addStretch(1);
    QObject::connect(edit_, &QDateEdit::dateChanged, box_, [this] { Tell(); });
  }

 protected:
  void ShowContents() override {
    const QSignalBlocker silent(edit_);
    const QDate day(field_.day.year, field_.day.month, field_.day.day);
    if (edit_->date() != (day.isValid() ? day : kNoDay)) edit_->setDate(day.isValid() ? day : kNoDay);
    if (on_ != nullptr) on_->setChecked(field_.on);
    edit_->setEnabled(field_.on);
  }

 private:
  /// Shown as blank: a day that the control does not have yet.
  inline static const QDate kNoDay{1, 1, 1};

  void Tell() {
    const QDate day = edit_->date();
    const bool on = on_ == nullptr || on_->isChecked();
    // Without a day of its own the field keeps what it has, so that the box can be ticked.
    const platform::CivilTime told =
        day == kNoDay ? field_.day : platform::CivilTime{day.year(), day.month(), day.day(), 0, 0, 0};
    send_(toolkit::DaySet{field_.id(), on, told});
  }

  const toolkit::DateField& field_;
  Send send_;
  QWidget* box_;
  QDateEdit* edit_;
  QCheckBox* on_ = nullptr;
};

class ChoiceView : public ControlView {
 public:
  ChoiceView(const toolkit::ChoiceList& list, QWidget* parent, const Send& send)
      : ControlView(list), list_(list), box_(new Calm<QComboBox>(parent)), model_(new EntryModel(list, box_)) {
    SetWidget(box_);
    AddLabel(parent);
    // The width must not be measured from the entries: there may be very many.
    box_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    box_->setMinimumContentsLength(kShortestChoice);
    box_->setMaxVisibleItems(kVisibleRows);
    auto* view = new QListView(box_);
    view->setUniformItemSizes(true);
    box_->setView(view);
    box_->setModel(model_);
    QObject::connect(box_, &QComboBox::activated, box_, [send, id = list.id()](int position) {
      send(toolkit::EntrySelected{id, position});
    });
  }

 protected:
  void ShowContents() override {
    model_->Refresh();
    box_->setCurrentIndex(list_.selected());
  }

 private:
  const toolkit::ChoiceList& list_;
  QComboBox* box_;
  EntryModel* model_;
};

class TickListView : public ControlView {
 public:
  TickListView(const toolkit::TickList& list, QWidget* parent, const Send& send)
      : ControlView(list), list_(list), view_(new QListView(parent)) {
    SetWidget(view_);
    AddLabel(parent);
    model_ = new RowModel(list, view_, [send, id = list.id()](int row, bool on) {
      send(toolkit::RowTicked{id, row, on});
    });
    view_->setUniformItemSizes(true);
    view_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    view_->setModel(model_);
    view_->setMinimumHeight(view_->fontMetrics().height() * (kVisibleRows / 2));
    QObject::connect(view_->selectionModel(), &QItemSelectionModel::selectionChanged, view_,
                     [this, send, id = list.id()] {
                       send(toolkit::RowSelected{id, SelectedRow()});
                     });
  }
  int Growth() const override { return 3; }

 protected:
  void ShowContents() override {
    model_->Refresh();
    if (SelectedRow() == list_.selected) return;
    const QModelIndex row = model_->index(list_.selected, 0, {});
    view_->selectionModel()->setCurrentIndex(row, QItemSelectionModel::ClearAndSelect);
  }

 private:
  int SelectedRow() const {
    const QModelIndexList rows = view_->selectionModel()->selectedIndexes();
    return rows.isEmpty() ? -1 : rows.front().row();
  }

  const toolkit::TickList& list_;
  QListView* view_;
  RowModel* model_;
};

template <class View, class Control, class... More>
std::unique_ptr<ControlView> Make(const toolkit::Control& control, QWidget* parent, const More&... more) {
  return std::make_unique<View>(static_cast<const Control&>(control), parent, more...);
}

std::unique_ptr<ControlView> MakeTextView(const toolkit::TextField& field, QWidget* parent,
                                          const ControlView::Send& send) {
  if (field.form == toolkit::TextField::Form::kReadOnlyLines) return std::make_unique<LinesView>(field, parent);
  if (field.form == toolkit::TextField::Form::kReadOnly && field.label().empty()) {
    return std::make_unique<LineView>(field, parent);
  }
  return std::make_unique<EditView>(field, parent, send);
}

}  // namespace

QString ShortcutLetters::Mark(std::string_view ansi) {
  const QString text = AsLine(ansi).trimmed();
  qsizetype found = -1;
  // First letters of words are the ones that a person looks for.
  for (const bool first_letters : {true, false}) {
    for (qsizetype i = 0; i < text.size() && found < 0; ++i) {
      const bool starts = i == 0 || !text[i - 1].isLetterOrNumber();
      if (!text[i].isLetterOrNumber() || starts != first_letters || taken_.contains(text[i].toCaseFolded())) continue;
      found = i;
    }
  }
  if (found >= 0) taken_.insert(text[found].toCaseFolded());
  QString marked;
  for (qsizetype i = 0; i < text.size(); ++i) {
    if (i == found || text[i] == QChar(u'&')) marked += QChar(u'&');
    marked += text[i];
  }
  return marked;
}

void ControlView::SetWidget(QWidget* widget) {
  widget_ = widget;
  widget_->setObjectName(NameOf(control_.id()));
}

void ControlView::AddLabel(QWidget* parent) {
  if (control_.label().empty()) return;
  label_ = new QLabel(parent);
  label_->setTextFormat(Qt::PlainText);
  label_->setBuddy(widget_);
}

void ControlView::ShowCaption(const QString& marked) {
  if (label_ != nullptr) label_->setText(marked);
}

void ControlView::Show(ShortcutLetters* letters) {
  if (shown_label_ != control_.label()) {
    shown_label_ = control_.label();
    // Enter and Escape are theirs already.
    const bool has_key = control_.id() == toolkit::kOk || control_.id() == toolkit::kCancel;
    ShowCaption(has_key ? AsCaption(control_.label()) : letters->Mark(control_.label()));
  }
  ShowContents();
  for (QWidget* widget : {static_cast<QWidget*>(label_), widget_}) {
    if (widget == nullptr) continue;
    widget->setEnabled(control_.enabled);
    widget->setVisible(control_.visible);
  }
}

PagesView::PagesView(const toolkit::Pages& pages, QWidget* parent, const Send& send)
    : ControlView(pages), pages_(pages), tabs_(new QTabWidget(parent)) {
  SetWidget(tabs_);
  QObject::connect(tabs_, &QTabWidget::currentChanged, tabs_, [send, id = pages.id()](int page) {
    send(toolkit::PageTurned{id, page});
  });
}

QWidget* PagesView::Page(int index) {
  while (static_cast<int>(made_.size()) <= index) {
    made_.push_back(new QWidget(tabs_));
    made_.back()->hide();
  }
  return made_[static_cast<std::size_t>(index)];
}

void PagesView::ShowContents() {
  const int count = static_cast<int>(pages_.captions.size());
  while (tabs_->count() > count) tabs_->removeTab(tabs_->count() - 1);
  while (tabs_->count() < count) tabs_->addTab(Page(tabs_->count()), QString());
  shown_captions_.resize(pages_.captions.size());
  for (int i = 0; i < count; ++i) {
    const std::string& caption = pages_.captions[static_cast<std::size_t>(i)];
    std::string& shown = shown_captions_[static_cast<std::size_t>(i)];
    if (shown == caption) continue;
    shown = caption;
    tabs_->setTabText(i, AsCaption(caption));
  }
  if (tabs_->currentIndex() != pages_.current) tabs_->setCurrentIndex(pages_.current);
}

std::unique_ptr<ControlView> MakeView(const toolkit::Control& control, QWidget* parent, const ControlView::Send& send) {
  switch (control.kind()) {
    case Kind::kText:
      return MakeTextView(static_cast<const toolkit::TextField&>(control), parent, send);
    case Kind::kButton:
      return Make<ButtonView, toolkit::Button>(control, parent, send);
    case Kind::kTickBox:
      return Make<TickView, toolkit::TickBox>(control, parent, send);
    case Kind::kRadioGroup:
      return Make<RadioView, toolkit::RadioGroup>(control, parent, send);
    case Kind::kDate:
      return Make<DateView, toolkit::DateField>(control, parent, send);
    case Kind::kChoice:
      return Make<ChoiceView, toolkit::ChoiceList>(control, parent, send);
    case Kind::kTickList:
      return Make<TickListView, toolkit::TickList>(control, parent, send);
    case Kind::kPages:
      return Make<PagesView, toolkit::Pages>(control, parent, send);
  }
  return nullptr;
}

}  // namespace korvo
