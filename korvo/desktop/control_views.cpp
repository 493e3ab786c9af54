#include "korvo/desktop/control_views.h"

#include <QButtonGroup>
#include <QCalendarWidget>
#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QShortcut>
#include <QSignalBlocker>
#include <QToolButton>
#include <QWheelEvent>
#include <QWidgetAction>
#include <algorithm>

#include "korvo/desktop/list_models.h"
#include "korvo/desktop/text.h"
#include "korvo/words/words.h"

namespace korvo {

namespace {

using toolkit::Kind;

constexpr qsizetype kLongestLine = 500;
constexpr int kShortestChoice = 16;
constexpr int kShortestEdit = 16;
constexpr int kVisibleRows = 12;
constexpr int kFewestLines = 4;
constexpr int kFewestRows = 8;
constexpr int kMostLines = 20;  ///< that a window opens with
constexpr QRgb kFaultBase = 0xFFFFE5E5;
constexpr QRgb kFaultText = 0xFF9C0006;

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

/// A text or list that opens with room for what it holds, within bounds.
template <class Area>
class Roomy : public Area {
 public:
  using Area::Area;

  void SetRoom(int lines, int fewest, int line_height) {
    const int around = 2 * this->frameWidth() + kAround;
    hint_ = std::clamp(lines, fewest, kMostLines) * line_height + around;
    this->setMinimumHeight(fewest * line_height + around);
    this->updateGeometry();
  }
  QSize sizeHint() const override { return {Area::sizeHint().width(), hint_}; }

 protected:
  void resizeEvent(QResizeEvent* event) override {
    Area::resizeEvent(event);
    // The toolkit has decided on its bars before it laid the text out anew.
    QCoreApplication::postEvent(this, new QEvent(QEvent::LayoutRequest));
  }

 private:
  static constexpr int kAround = 16;  ///< more than a document's margins
  int hint_ = 0;
};

class EditView : public ControlView {
 public:
  EditView(const toolkit::TextField& field, QWidget* parent, const Ways& ways)
      : ControlView(field), field_(field), edit_(new QLineEdit(parent)) {
    SetWidget(edit_);
    AddLabel(parent);
    edit_->setMinimumWidth(edit_->fontMetrics().horizontalAdvance(QChar(u'0')) * kShortestEdit);
    if (field.form == toolkit::TextField::Form::kReadOnly) {
      edit_->setReadOnly(true);
      QPalette palette = edit_->palette();
      palette.setBrush(QPalette::Base, palette.window());
      edit_->setPalette(palette);
    }
    ways.edge.Connect(edit_, &QLineEdit::textEdited, edit_, [&ways, id = field.id()](const QString& text) {
      ways.send(toolkit::Typed{id, FromLine(text)});
    });
  }

 protected:
  void ShowContents() override {
    const QString text = AsLine(field_.text);
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
    // It has the width that others leave it: a long word must not widen the window.
    QSizePolicy policy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    line_->setSizePolicy(policy);
    line_->setMinimumWidth(1);
  }

 protected:
  void ShowContents() override {
    QString text = AsRunningText(field_.text);
    line_->setToolTip(AsTip(text));
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
      : ControlView(field), field_(field), lines_(new Roomy<QPlainTextEdit>(parent)) {
    SetWidget(lines_);
    AddLabel(parent);
    lines_->setReadOnly(true);
    lines_->setTabChangesFocus(true);
    // A cursor shows that the keyboard is there.
    lines_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    // Long lines are wrapped; before the first layout the toolkit would put a bar there for good.
    lines_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  }
  int Growth() const override { return 2; }

 protected:
  void ShowContents() override {
    if (shown_ == field_.text) return;
    shown_ = field_.text;
    lines_->setPlainText(AsLines(field_.text));
    lines_->SetRoom(lines_->blockCount(), kFewestLines, lines_->fontMetrics().lineSpacing());
  }

 private:
  const toolkit::TextField& field_;
  Roomy<QPlainTextEdit>* lines_;
  std::optional<std::string> shown_;
};

class ButtonView : public ControlView {
 public:
  ButtonView(const toolkit::Button& button, QWidget* parent, const Ways& ways)
      : ControlView(button), button_(new QPushButton(parent)) {
    SetWidget(button_);
    ways.edge.Connect(button_, &QPushButton::clicked, button_,
                      [&ways, id = button.id()] { ways.send(toolkit::Pressed{id}); });
  }
  bool IsWide() const override { return false; }

 protected:
  void ShowCaption(std::size_t /*which*/, const QString& marked) override {
    button_->setText(marked);
    // A single sign needs no more than a square.
    if (control().label().size() == 1) button_->setMaximumWidth(button_->sizeHint().height());
  }
  void ShowContents() override {}

 private:
  QPushButton* button_;
};

class TickView : public ControlView {
 public:
  TickView(const toolkit::TickBox& box, QWidget* parent, const Ways& ways)
      : ControlView(box), box_(box), check_(new QCheckBox(parent)) {
    SetWidget(check_);
    ways.edge.Connect(check_, &QCheckBox::clicked, check_, [&ways, id = box.id()](bool on) {
      ways.send(toolkit::BoxTicked{id, on});
    });
  }
  bool IsWide() const override { return false; }

 protected:
  void ShowCaption(std::size_t /*which*/, const QString& marked) override { check_->setText(marked); }
  void ShowContents() override { check_->setChecked(box_.ticked); }

 private:
  const toolkit::TickBox& box_;
  QCheckBox* check_;
};

/// One of a row of options: the toolkit goes along the row with the arrows to the sides alone.
class Option : public QRadioButton {
 public:
  using QRadioButton::QRadioButton;

 protected:
  void keyPressEvent(QKeyEvent* event) override {
    const int key = event->key() == Qt::Key_Up ? Qt::Key_Left : event->key() == Qt::Key_Down ? Qt::Key_Right : 0;
    if (key == 0) return QRadioButton::keyPressEvent(event);
    QKeyEvent along(event->type(), key, event->modifiers());
    QRadioButton::keyPressEvent(&along);
  }
};

class RadioView : public ControlView {
 public:
  RadioView(const toolkit::RadioGroup& group, QWidget* parent, const Ways& ways)
      : ControlView(group), group_(group), frame_(new QGroupBox(parent)), buttons_(new QButtonGroup(frame_)) {
    SetWidget(frame_);
    auto* row = new QHBoxLayout(frame_);
    for (std::size_t i = 0; i < group.options.size(); ++i) {
      auto* button = new Option(frame_);
      const bool numbered = i < group.option_ids.size();
      button->setObjectName(numbered ? NameOf(group.option_ids[i])
                                     : NameOf(group.id()) + QChar(u'.') + QString::number(i));
      buttons_->addButton(button, static_cast<int>(i));
      row->addWidget(button);
    }
    row->addStretch(1);
    ways.edge.Connect(buttons_, &QButtonGroup::idClicked, frame_, [&ways, id = group.id()](int option) {
      ways.send(toolkit::OptionChosen{id, option});
    });
  }
  std::vector<QWidget*> Stops() const override {
    const QList<QAbstractButton*> buttons = buttons_->buttons();
    return {buttons.begin(), buttons.end()};
  }

 protected:
  std::vector<std::string> Captions() const override {
    std::vector<std::string> captions = {control().label()};
    captions.insert(captions.end(), group_.options.begin(), group_.options.end());
    return captions;
  }
  void ShowCaption(std::size_t which, const QString& marked) override {
    which == 0 ? frame_->setTitle(marked) : buttons_->button(static_cast<int>(which) - 1)->setText(marked);
  }
  void ShowContents() override {
    buttons_->setExclusive(group_.chosen >= 0);
    for (QAbstractButton* button : buttons_->buttons()) {
      const int option = buttons_->id(button);
      button->setChecked(option == group_.chosen);
      // The keyboard comes to the one that is chosen.
      button->setFocusPolicy(option == std::max(group_.chosen, 0) ? Qt::StrongFocus : Qt::ClickFocus);
    }
    buttons_->setExclusive(true);
  }

 private:
  const toolkit::RadioGroup& group_;
  QGroupBox* frame_;
  QButtonGroup* buttons_;
};

/// A day as text: the toolkit's own field takes another day than the one typed where the day does not fit the month
/// that stood there before. A text that is no day stays for the person to mend, and the control keeps its day.
class DateView : public ControlView {
 public:
  DateView(const toolkit::DateField& field, QWidget* parent, const Ways& ways)
      : ControlView(field), field_(field), ways_(ways), box_(new QWidget(parent)) {
    SetWidget(box_);
    auto* row = new QHBoxLayout(box_);
    row->setContentsMargins(0, 0, 0, 0);
    edit_ = new QLineEdit(box_);
    edit_->setObjectName(box_->objectName());
    edit_->setPlaceholderText(QStringLiteral("TT.MM.JJJJ"));
    edit_->setFixedWidth(edit_->fontMetrics().horizontalAdvance(QStringLiteral("00.00.0000")) * 3 / 2);
    row->addWidget(edit_);
    AddCalendar(row);
    fault_ = new QLabel(QStringLiteral("Kein gültiger Tag (TT.MM.JJJJ)"), box_);
    fault_->setObjectName(edit_->objectName() + QStringLiteral(".fehler"));
    fault_->hide();
    row->addWidget(fault_);
    row->addStretch(1);
    plain_ = edit_->palette();
    box_->setObjectName(edit_->objectName() + QStringLiteral(".feld"));
    box_->setFocusProxy(edit_);
    AddLabel(parent);
    // A year of fewer digits may still grow.
    ways.edge.Connect(edit_, &QLineEdit::textEdited, box_, [this](const QString& text) {
      if (text.trimmed().section(QChar(u'.'), 2).size() == 4) Tell();
      if (IsHeld()) Mark(false);
    });
    ways.edge.Connect(edit_, &QLineEdit::editingFinished, box_, [this] { Leave(); });
  }
  std::vector<QWidget*> Stops() const override { return {edit_, open_}; }
  bool IsHeld() const override { return !field_.Counts() || !edit_->isModified() || TypedDay(); }
  void PointOut() override {
    Mark(true);
    edit_->setFocus();
    edit_->selectAll();
  }

 protected:
  void ShowContents() override {
    // What the person types stands until a rule sets another day.
    if (!edit_->isModified() || !SameDay(field_.day, shown_)) ShowDay();
    if (IsHeld() || !edit_->hasFocus()) Mark(!IsHeld());
  }

 private:
  static bool SameDay(const platform::CivilTime& a, const platform::CivilTime& b) {
    return a.year == b.year && a.month == b.month && a.day == b.day;
  }

  std::optional<platform::CivilTime> TypedDay() const {
    std::optional<platform::CivilTime> typed = ToDay(Trim(ToAnsi(edit_->text())));
    if (!typed || typed->year < 0 || typed->year > 9999) return std::nullopt;
    if (typed->year < 100) typed->year += 2000;
    return QDate::isValid(typed->year, typed->month, typed->day) ? typed : std::nullopt;
  }

  void ShowDay() {
    shown_ = field_.day;
    const bool is_day = QDate::isValid(shown_.year, shown_.month, shown_.day);
    edit_->setText(is_day ? FromAnsi(DayText(shown_)) : QString());
    Mark(false);
  }

  void Tell() {
    const std::optional<platform::CivilTime> typed = TypedDay();
    if (!typed || SameDay(*typed, field_.day)) return;
    shown_ = *typed;
    ways_.send(toolkit::DaySet{field_.id(), *typed});
  }

  void Leave() {
    if (!edit_->isModified()) return;
    Tell();
    TypedDay() ? ShowDay() : Mark(!IsHeld());
  }

  void Mark(bool wrong) {
    if (wrong != fault_->isHidden()) return;
    QPalette palette = plain_;
    if (wrong) {
      palette.setColor(QPalette::Base, kFaultBase);
      palette.setColor(QPalette::Text, kFaultText);
    }
    edit_->setPalette(palette);
    edit_->setToolTip(wrong ? fault_->text() : QString());
    fault_->setVisible(wrong);
  }

  void AddCalendar(QHBoxLayout* row) {
    open_ = new QToolButton(box_);
    open_->setObjectName(edit_->objectName() + QStringLiteral(".kalender"));
    open_->setArrowType(Qt::DownArrow);
    open_->setAccessibleName(QStringLiteral("Kalender"));
    row->addWidget(open_);
    auto* menu = new QMenu(open_);
    auto* calendar = new QCalendarWidget(menu);
    auto* action = new QWidgetAction(menu);
    action->setDefaultWidget(calendar);
    menu->addAction(action);
    // As a menu of the button's own it would put a second arrow there.
    ways_.edge.Connect(open_, &QToolButton::clicked, menu, [this, menu] {
      const int height = menu->sizeHint().height();
      const QPoint below = open_->mapToGlobal(QPoint(0, open_->height()));
      const bool fits = below.y() + height <= open_->screen()->availableGeometry().bottom();
      menu->popup(fits ? below : open_->mapToGlobal(QPoint(0, -height)));
    });
    ways_.edge.Connect(menu, &QMenu::aboutToShow, calendar, [this, calendar] {
      const QDate day(field_.day.year, field_.day.month, field_.day.day);
      if (day.isValid()) calendar->setSelectedDate(day);
      calendar->setFocus();
    });
    const auto take = [this, menu](const QDate& day) {
      menu->close();
      ways_.send(toolkit::DaySet{field_.id(), {day.year(), day.month(), day.day(), 0, 0, 0}});
      ShowDay();
    };
    ways_.edge.Connect(calendar, &QCalendarWidget::clicked, box_, take);
    ways_.edge.Connect(calendar, &QCalendarWidget::activated, box_, take);
  }

  const toolkit::DateField& field_;
  const Ways& ways_;
  QWidget* box_;
  QLineEdit* edit_ = nullptr;
  QToolButton* open_ = nullptr;
  QLabel* fault_ = nullptr;
  QPalette plain_;
  platform::CivilTime shown_;  ///< the day of the control that the text stands for, or was typed over
};

class ChoiceView : public ControlView {
 public:
  ChoiceView(const toolkit::ChoiceList& list, QWidget* parent, const Ways& ways)
      : ControlView(list),
        list_(list),
        box_(new Calm<QComboBox>(parent)),
        model_(new EntryModel(list, ways.edge, box_)) {
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
    // The entry that is selected already is no new choice: its rule would put back what was typed since.
    ways.edge.Connect(box_, &QComboBox::activated, box_, [&ways, &list](int position) {
      if (position != list.selected()) ways.send(toolkit::EntrySelected{list.id(), position});
    });
  }

 protected:
  void ShowContents() override {
    model_->Refresh();
    box_->setCurrentIndex(list_.selected());
    box_->setToolTip(AsTip(box_->currentText()));
  }

 private:
  const toolkit::ChoiceList& list_;
  QComboBox* box_;
  EntryModel* model_;
};

class TickListView : public ControlView {
 public:
  TickListView(const toolkit::TickList& list, QWidget* parent, const Ways& ways)
      : ControlView(list), list_(list), view_(new Roomy<QListView>(parent)) {
    SetWidget(view_);
    AddLabel(parent);
    model_ = new RowModel(list, ways.edge, view_, [&ways, id = list.id()](int row, bool on) {
      ways.send(toolkit::RowTicked{id, row, on});
    });
    view_->setUniformItemSizes(true);
    view_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    view_->setModel(model_);
    view_->setSpacing(kRowSpacing);
    ways.edge.Connect(view_->selectionModel(), &QItemSelectionModel::selectionChanged, view_,
                      [this, &ways, id = list.id()] {
                        ways.send(toolkit::RowSelected{id, SelectedRow()});
                      });
  }
  int Growth() const override { return 3; }

 protected:
  void ShowContents() override {
    model_->Refresh();
    const int row_height = std::max(view_->sizeHintForRow(0), view_->fontMetrics().lineSpacing()) + 2 * kRowSpacing;
    view_->SetRoom(model_->rowCount({}), kFewestRows, row_height);
    if (SelectedRow() == list_.selected) return;
    const QModelIndex row = model_->index(list_.selected, 0, {});
    view_->selectionModel()->setCurrentIndex(row, QItemSelectionModel::ClearAndSelect);
  }

 private:
  int SelectedRow() const {
    const QModelIndexList rows = view_->selectionModel()->selectedIndexes();
    return rows.isEmpty() ? -1 : rows.front().row();
  }

  static constexpr int kRowSpacing = 1;

  const toolkit::TickList& list_;
  Roomy<QListView>* view_;
  RowModel* model_;
};

template <class View, class Control, class... More>
std::unique_ptr<ControlView> Make(const toolkit::Control& control, QWidget* parent, const More&... more) {
  return std::make_unique<View>(static_cast<const Control&>(control), parent, more...);
}

std::unique_ptr<ControlView> MakeTextView(const toolkit::TextField& field, QWidget* parent,
                                          const ControlView::Ways& ways) {
  if (field.form == toolkit::TextField::Form::kReadOnlyLines) return std::make_unique<LinesView>(field, parent);
  if (field.form == toolkit::TextField::Form::kReadOnly && field.label().empty()) {
    return std::make_unique<LineView>(field, parent);
  }
  return std::make_unique<EditView>(field, parent, ways);
}

}  // namespace

Place PlaceOf(const toolkit::Control& control) { return {control.pages_id, control.pages_id == 0 ? 0 : control.page}; }

bool ShortcutLetters::IsTaken(QChar letter, const Place& place) const {
  return std::any_of(taken_.begin(), taken_.end(), [&](const auto& other) {
    const auto& [pages, page] = other.first;
    // Of the pages of one sheet only one is in front.
    const bool never_together = pages != 0 && pages == place.first && page != place.second;
    return !never_together && other.second.contains(letter);
  });
}

QString ShortcutLetters::Mark(std::string_view ansi, const Place& place, QChar* held) {
  taken_[place].remove(*held);
  const QString text = AsLine(ansi).trimmed();
  qsizetype found = -1;
  // First letters of words are the ones that a person looks for.
  for (const bool first_letters : {true, false}) {
    for (qsizetype i = 0; i < text.size() && found < 0; ++i) {
      const bool starts = i == 0 || !text[i - 1].isLetterOrNumber();
      if (!text[i].isLetterOrNumber() || starts != first_letters || IsTaken(text[i].toCaseFolded(), place)) continue;
      found = i;
    }
  }
  *held = found >= 0 ? text[found].toCaseFolded() : QChar();
  if (found >= 0) taken_[place].insert(*held);
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

void ControlView::ShowCaption(std::size_t /*which*/, const QString& marked) {
  if (label_ != nullptr) label_->setText(marked);
}

void ControlView::ShowCaptions(ShortcutLetters* letters) {
  const std::vector<std::string> captions = Captions();
  captions_.resize(captions.size());
  // Enter and Escape are theirs already.
  const bool has_key = control_.id() == toolkit::kOk || control_.id() == toolkit::kCancel;
  for (std::size_t i = 0; i < captions.size() && control_.visible; ++i) {
    Caption& caption = captions_[i];
    if (caption.shown == captions[i]) continue;
    caption.shown = captions[i];
    ShowCaption(i, has_key ? AsCaption(captions[i]) : letters->Mark(captions[i], PlaceOf(control_), &caption.letter));
  }
}

void ControlView::Show() {
  ShowContents();
  for (QWidget* widget : {static_cast<QWidget*>(label_), widget_}) {
    if (widget == nullptr) continue;
    widget->setEnabled(control_.enabled);
    widget->setVisible(control_.visible);
  }
}

PagesView::PagesView(const toolkit::Pages& pages, QWidget* parent, const Ways& ways)
    : ControlView(pages), pages_(pages), tabs_(new QTabWidget(parent)) {
  SetWidget(tabs_);
  ways.edge.Connect(tabs_, &QTabWidget::currentChanged, tabs_, [&ways, id = pages.id()](int page) {
    ways.send(toolkit::PageTurned{id, page});
  });
  // The tabs' own keys work only while the keyboard is on a page.
  const auto turn = [this](int step) {
    tabs_->setCurrentIndex((tabs_->currentIndex() + step + tabs_->count()) % tabs_->count());
  };
  new QShortcut(QKeySequence::NextChild, tabs_, [turn] { turn(1); });
  const auto turn_back = [turn] { turn(-1); };
  auto* const back = new QShortcut(tabs_);
  // Windowing systems disagree on what Shift makes of the key, and some give several of these at once.
  back->setKeys(
      {Qt::CTRL | Qt::SHIFT | Qt::Key_Tab, Qt::CTRL | Qt::SHIFT | Qt::Key_Backtab, Qt::CTRL | Qt::Key_Backtab});
  QObject::connect(back, &QShortcut::activated, tabs_, turn_back);
  QObject::connect(back, &QShortcut::activatedAmbiguously, tabs_, turn_back);
}

QWidget* PagesView::Page(int index) {
  while (static_cast<int>(made_.size()) <= index) {
    made_.push_back(new QWidget(tabs_));
    made_.back()->hide();
  }
  return made_[static_cast<std::size_t>(index)];
}

void PagesView::ShowCaption(std::size_t which, const QString& marked) {
  tabs_->setTabText(static_cast<int>(which), marked);
}

void PagesView::ShowContents() {
  const int count = static_cast<int>(pages_.captions.size());
  while (tabs_->count() > count) tabs_->removeTab(tabs_->count() - 1);
  while (tabs_->count() < count) tabs_->addTab(Page(tabs_->count()), QString());
  if (tabs_->currentIndex() != pages_.current) tabs_->setCurrentIndex(pages_.current);
}

std::unique_ptr<ControlView> MakeView(const toolkit::Control& control, QWidget* parent, const ControlView::Ways& ways) {
  switch (control.kind()) {
    case Kind::kText:
      return MakeTextView(static_cast<const toolkit::TextField&>(control), parent, ways);
    case Kind::kButton:
      return Make<ButtonView, toolkit::Button>(control, parent, ways);
    case Kind::kTickBox:
      return Make<TickView, toolkit::TickBox>(control, parent, ways);
    case Kind::kRadioGroup:
      return Make<RadioView, toolkit::RadioGroup>(control, parent, ways);
    case Kind::kDate:
      return Make<DateView, toolkit::DateField>(control, parent, ways);
    case Kind::kChoice:
      return Make<ChoiceView, toolkit::ChoiceList>(control, parent, ways);
    case Kind::kTickList:
      return Make<TickListView, toolkit::TickList>(control, parent, ways);
    case Kind::kPages:
      return Make<PagesView, toolkit::Pages>(control, parent, ways);
  }
  return nullptr;
}

}  // namespace korvo
