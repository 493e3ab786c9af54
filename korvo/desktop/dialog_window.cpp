#include "korvo/desktop/dialog_window.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QScreen>
#include <QVBoxLayout>
#include <algorithm>
#include <variant>

#include "korvo/desktop/settings.h"
#include "korvo/desktop/text.h"

namespace korvo {

using toolkit::Control;
using toolkit::Kind;

namespace {

// A label and its field, twice.
constexpr int kColumns = 4;
/// Wide enough for most of the long names that catalogues have.
constexpr int kUsualWidth = 680;
constexpr double kPartOfScreen = 0.9;

bool IsButton(const ControlView& view) { return view.control().kind() == Kind::kButton; }

/// The part of a row that begins with a label, or its first part without one.
using Segment = std::vector<ControlView*>;

std::vector<Segment> SegmentsOf(const std::vector<ControlView*>& row) {
  std::vector<Segment> segments;
  for (ControlView* view : row) {
    if (segments.empty() || view->label() != nullptr) segments.emplace_back();
    segments.back().push_back(view);
  }
  return segments;
}

void AddSegment(QGridLayout* grid, int row, int column, int columns, const Segment& segment) {
  QLabel* label = segment.front()->label();
  const int growth = segment.front()->Growth();
  if (label != nullptr) {
    grid->addWidget(label, row, column, growth > 0 ? Qt::AlignTop : Qt::AlignVCenter);
    ++column;
    --columns;
  }
  if (segment.size() == 1 && segment.front()->IsWide()) {
    grid->addWidget(segment.front()->widget(), row, column, 1, columns);
    return;
  }
  auto* box = new QHBoxLayout;
  bool wide = false;
  for (ControlView* view : segment) {
    // What is not wide must not grow either where the others are hidden.
    view->IsWide() ? box->addWidget(view->widget(), 1) : box->addWidget(view->widget(), 0, Qt::AlignLeft);
    wide = wide || view->IsWide();
  }
  if (!wide) box->addStretch(1);
  grid->addLayout(box, row, column, 1, columns);
}

}  // namespace

DialogWindow::DialogWindow(toolkit::Dialog& dialog, Waits& waits, QWidget* parent, std::function<void()> ended)
    : QDialog(parent),
      dialog_(dialog),
      waits_(waits),
      ended_(std::move(ended)),
      ways_{Edge([this] { waits_.AtEdge([] { throw; }); }), [this](const toolkit::Event& event) { Send(event); }} {
  auto* column = new QVBoxLayout(this);
  auto* body = new QWidget(this);
  column->addWidget(body, 1);
  areas_[{Place(), std::string()}] = {new QGridLayout(body), nullptr, {}};
  body->layout()->setContentsMargins(0, 0, 0, 0);
  MakeViews();

  const std::size_t buttons = views_.size() - ButtonsAtEnd();
  Row* row = nullptr;
  Area* in = nullptr;
  for (std::size_t i = 0; i < buttons; ++i) {
    ControlView& view = *views_[i];
    Area& area = AreaOf(view.control());
    const bool follows = row != nullptr && in == &area;
    const bool among_buttons = follows && IsButton(view) &&
                               std::all_of(row->begin(), row->end(), [](ControlView* one) { return IsButton(*one); });
    if (!among_buttons && !(follows && view.control().beside)) area.rows.emplace_back();
    in = &area;
    row = &area.rows.back();
    row->push_back(&view);
  }
  for (auto& [place, area] : areas_) LayOut(area);
  auto* last = new QHBoxLayout;
  AddButtons(last, buttons);
  column->addLayout(last);

  ShowControls();
  SetTabOrder();
  FocusFirst();
  const QSize screen_size = screen()->availableSize() * kPartOfScreen;
  const int width = std::min(std::max(sizeHint().width(), kUsualWidth), screen_size.width());
  const int height = column->hasHeightForWidth() ? column->totalHeightForWidth(width) : sizeHint().height();
  resize(width, std::min(height, screen_size.height()));
  const QSize remembered = Remembered().value(SizeKey()).toSize();
  if (remembered.isValid()) resize(OnScreen(*this, remembered).expandedTo(minimumSizeHint()));
  given_size_ = size();
}

DialogWindow::~DialogWindow() {
  // A size that nobody has chosen is found anew for what the next one holds.
  if (size() != given_size_) Remembered().setValue(SizeKey(), size());
}

QString DialogWindow::SizeKey() const { return QStringLiteral("dialoge/%1/groesse").arg(dialog_.number()); }

void DialogWindow::MakeViews() {
  for (const Control* control : dialog_.controls()) views_.push_back(MakeView(*control, this, ways_));
}

std::size_t DialogWindow::ButtonsAtEnd() const {
  const auto is_last = [](const auto& view) { return IsButton(*view) && view->control().pages_id == 0; };
  return static_cast<std::size_t>(std::find_if_not(views_.rbegin(), views_.rend(), is_last) - views_.rbegin());
}

PagesView* DialogWindow::PagesOf(const Control& control) const {
  const auto pages = std::find_if(views_.begin(), views_.end(), [&](const auto& view) {
    return view->control().kind() == Kind::kPages && view->control().id() == control.pages_id;
  });
  return pages == views_.end() ? nullptr : static_cast<PagesView*>(pages->get());
}

DialogWindow::Area& DialogWindow::AreaOf(const Control& control) {
  const Place place = PlaceOf(control);
  Area& outer = areas_[{place, std::string()}];
  if (outer.grid == nullptr) {
    PagesView* const pages = PagesOf(control);
    // Pages that are not there leave their controls in the window.
    if (pages == nullptr) return areas_.at({Place(), std::string()});
    QWidget* page = pages->Page(control.page);
    outer = {new QGridLayout(page), nullptr, {}};
  }
  if (control.group.empty()) return outer;
  Area& inner = areas_[{place, control.group}];
  if (inner.grid == nullptr) {
    auto* frame = new QGroupBox(AsCaption(control.group), this);
    inner = {new QGridLayout(frame), frame, {}};
    // The frame takes a row of its own where the first of its controls stands.
    outer.rows.emplace_back();
    outer.grid->addWidget(frame, static_cast<int>(outer.rows.size()) - 1, 0, 1, kColumns);
  }
  return inner;
}

void DialogWindow::LayOut(Area& area) {
  if (area.grid == nullptr) return;
  int growth = 0;
  for (std::size_t i = 0; i < area.rows.size(); ++i) {
    const std::vector<Segment> segments = SegmentsOf(area.rows[i]);
    const int row = static_cast<int>(i);
    for (std::size_t n = 0; n < segments.size(); ++n) {
      const bool alone = segments.size() == 1;
      AddSegment(area.grid, row, static_cast<int>(n) * 2, alone ? kColumns : 2, segments[n]);
      if (segments[n].size() != 2 || !IsButton(*segments[n].back())) continue;
      own_buttons_[segments[n].front()->widget()] = static_cast<QPushButton*>(segments[n].back()->widget());
    }
    for (const ControlView* view : area.rows[i]) {
      area.grid->setRowStretch(row, std::max(area.grid->rowStretch(row), view->Growth()));
      growth += view->Growth();
    }
  }
  area.grid->setColumnStretch(1, 1);
  area.grid->setColumnStretch(3, 1);
  if (growth == 0) area.grid->setRowStretch(static_cast<int>(area.rows.size()), 1);
}

void DialogWindow::AddButtons(QBoxLayout* row, std::size_t from) {
  bool at_right = false;
  bool has_ok = false;
  for (std::size_t i = from; i < views_.size(); ++i) {
    const toolkit::ControlId id = views_[i]->control().id();
    if (!at_right && (id == toolkit::kOk || id == toolkit::kCancel)) {
      row->addStretch(1);
      at_right = true;
    }
    row->addWidget(views_[i]->widget());
  }
  for (const auto& view : views_) {
    auto* button = IsButton(*view) ? static_cast<QPushButton*>(view->widget()) : nullptr;
    if (button == nullptr || view->control().id() != toolkit::kOk) continue;
    button->setDefault(true);
    has_ok = true;
  }
  // Without the button that Enter means, Enter presses none that happens to come first.
  for (const auto& view : views_) {
    if (IsButton(*view) && !has_ok) static_cast<QPushButton*>(view->widget())->setAutoDefault(false);
  }
}

void DialogWindow::SetTabOrder() {
  QWidget* before = nullptr;
  for (const auto& view : views_) {
    for (QWidget* stop : view->Stops()) {
      if (before != nullptr) QWidget::setTabOrder(before, stop);
      before = stop;
    }
  }
}

void DialogWindow::FocusFirst() {
  for (const bool buttons : {false, true}) {
    for (const auto& view : views_) {
      if (!view->control().enabled || !dialog_.Shows(view->control()) || IsButton(*view) != buttons) continue;
      for (QWidget* stop : view->Stops()) {
        if (stop->isEnabled() && (stop->focusPolicy() & Qt::TabFocus) != 0) return stop->setFocus();
      }
    }
  }
}

void DialogWindow::ShowCaptions() {
  // What is in sight at all times chooses first; a page then has what is left, and the tabs have other keys.
  const auto rank = [](const ControlView& view) {
    return view.control().kind() == Kind::kPages ? 2 : view.control().pages_id != 0 ? 1 : 0;
  };
  for (const int now : {0, 1, 2}) {
    for (const auto& view : views_) {
      if (rank(*view) == now) view->ShowCaptions(&letters_);
    }
  }
}

void DialogWindow::ShowControls() {
  const QScopedValueRollback showing(showing_, true);
  setWindowTitle(AsLine(dialog_.title()));
  for (const auto& view : views_) view->Show();
  ShowCaptions();
  for (const auto& [place, area] : areas_) {
    const auto shows = [](const ControlView* view) { return view->control().visible; };
    const auto has_shown = [&](const Row& row) { return std::any_of(row.begin(), row.end(), shows); };
    if (area.frame != nullptr) area.frame->setVisible(std::any_of(area.rows.begin(), area.rows.end(), has_shown));
  }
}

bool DialogWindow::PointOutFault() {
  const auto in_use = [](const Control& control) { return control.visible && control.enabled; };
  for (const auto& view : views_) {
    const Control& control = view->control();
    if (view->IsHeld() || !in_use(control)) continue;
    if (!dialog_.Shows(control)) {
      const ControlView* pages = PagesOf(control);
      if (pages == nullptr || !in_use(pages->control())) continue;
      Send(toolkit::PageTurned{control.pages_id, control.page});
    }
    if (dialog_.IsOpen()) view->PointOut();
    return true;
  }
  return false;
}

void DialogWindow::Send(const toolkit::Event& event) {
  if (!showing_) ways_.edge.Run([&] { Handle(event); });
}

void DialogWindow::Handle(const toolkit::Event& event) {
  const auto* pressed = std::get_if<toolkit::Pressed>(&event);
  if (pressed != nullptr && pressed->id == toolkit::kOk && PointOutFault()) return;
  waits_.InPlugin([&] { dialog_.Handle(event); });
  if (!dialog_.IsOpen()) return ended_();
  ShowControls();
}

void DialogWindow::keyPressEvent(QKeyEvent* event) {
  auto* const edit = qobject_cast<QLineEdit*>(focusWidget());
  const auto own = own_buttons_.find(edit);
  const bool is_enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  const bool can = own != own_buttons_.end() && own->second->isEnabled() && own->second->isVisible();
  if (!is_enter || !can || !edit->isModified()) {
    return QDialog::keyPressEvent(event);
  }
  // What has just been typed is for the field's own button; Enter once more is for the window.
  edit->setModified(false);
  own->second->click();
}

void DialogWindow::reject() { Send(toolkit::Closed{}); }

}  // namespace korvo
