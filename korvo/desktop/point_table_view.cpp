#include "korvo/desktop/point_table_view.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QScopedValueRollback>
#include <QStyledItemDelegate>
#include <QTableView>
#include <QTimer>
#include <QToolTip>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "korvo/desktop/edge.h"
#include "korvo/desktop/enter_key.h"
#include "korvo/desktop/point_model.h"
#include "korvo/desktop/sprites.h"
#include "korvo/desktop/text.h"

namespace korvo {

namespace {

constexpr int kFilterPause = 150;
constexpr int kWidestColumn = 28;  // characters

/// Shows the tips of cells whose text is cut, and those of the marks.
class CutTips : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;
  bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                 const QModelIndex& index) override {
    const bool cut = sizeHint(option, index).width() > option.rect.width();
    if (cut || index.column() == 0) return QStyledItemDelegate::helpEvent(event, view, option, index);
    QToolTip::hideText();
    return true;
  }
};

}  // namespace

PointTableView::PointTableView(const PointSet& points, const Edge& edge, QWidget* parent)
    : QWidget(parent), points_(points), edge_(edge), model_(new PointModel(points, this)), table_(new QTableView) {
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addLayout(BuildFilter());
  layout->addWidget(table_, 1);
  BuildTable();
  ShowCount();
}

QLayout* PointTableView::BuildFilter() {
  text_ = new QLineEdit;
  text_->setObjectName(QStringLiteral("filter"));
  text_->setPlaceholderText(QStringLiteral("Filter"));
  text_->setClearButtonEnabled(true);
  text_->setAccessibleName(QStringLiteral("Text, den die Zeilen enthalten"));
  column_ = new QComboBox;
  column_->setObjectName(QStringLiteral("filter_column"));
  column_->setAccessibleName(QStringLiteral("Spalte des Filters"));
  column_->addItem(QStringLiteral("in allen Spalten"));
  state_ = new QComboBox;
  state_->setObjectName(QStringLiteral("filter_state"));
  state_->setAccessibleName(QStringLiteral("Zustand der Punkte"));
  state_->addItem(QStringLiteral("alle Zustände"));
  for (int i = 0; i < kPointStates; ++i) {
    const auto state = static_cast<PointState>(i);
    state_->addItem(IconOf(state), NameOf(state));
  }
  count_ = new QLabel;
  count_->setTextFormat(Qt::PlainText);
  pause_ = new QTimer(this);
  pause_->setSingleShot(true);
  pause_->setInterval(kFilterPause);
  auto* line = new QHBoxLayout;
  line->setContentsMargins(6, 3, 0, 3);
  line->addWidget(text_, 1);
  line->addWidget(column_);
  line->addWidget(state_);
  line->addWidget(count_);
  connect(text_, &QLineEdit::textChanged, pause_, qOverload<>(&QTimer::start));
  const auto filter = [this] { Filter(); };
  edge_.Connect(pause_, &QTimer::timeout, this, filter);
  edge_.Connect(text_, &QLineEdit::returnPressed, this, filter);
  edge_.Connect(column_, &QComboBox::activated, this, filter);
  edge_.Connect(state_, &QComboBox::activated, this, filter);
  return line;
}

void PointTableView::BuildTable() {
  table_->setObjectName(QStringLiteral("table"));
  table_->setAccessibleName(QStringLiteral("Tabelle der Punkte"));
  table_->setModel(model_);
  table_->setItemDelegate(new CutTips(table_));
  table_->setSelectionBehavior(QAbstractItemView::SelectRows);
  table_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  table_->setWordWrap(false);
  table_->setTabKeyNavigation(false);
  table_->setAlternatingRowColors(true);
  table_->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
  QHeaderView& header = *table_->horizontalHeader();
  header.setSectionsClickable(true);
  header.setSectionsMovable(true);
  header.setSortIndicatorShown(true);
  header.setSortIndicatorClearable(true);
  header.setSortIndicator(-1, Qt::AscendingOrder);
  table_->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  table_->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
  edge_.Connect(&header, &QHeaderView::sortIndicatorChanged, this,
                [this](int column, Qt::SortOrder order) { model_->sort(column, order); });
  edge_.Connect(table_->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] { FollowSelection(); });
  const auto choose = [this](const QModelIndex& index) { Q_EMIT Chosen(model_->PointAt(index.row())); };
  edge_.Connect(table_, &QAbstractItemView::doubleClicked, this, choose);
  OnEnter(table_, edge_, choose);
}

// The points

void PointTableView::BeginRead() { model_->BeginRead(); }

void PointTableView::EndRead() {
  model_->EndRead();
  selected_.clear();
  std::vector<std::string> names;
  for (const Column& column : points_.columns()) names.push_back(column.name);
  if (names != columns_) {
    columns_ = std::move(names);
    FitColumns();
    Filter();
  }
  ShowCount();
}

void PointTableView::PointChanged(int point) { model_->PointChanged(point); }

void PointTableView::FitColumns() {
  constexpr int kRoom = 16;
  const int digit = fontMetrics().horizontalAdvance(QLatin1Char('0'));
  const int icon = style()->pixelMetric(QStyle::PM_SmallIconSize) + kRoom / 2;
  const QString filtered = column_->currentText();
  column_->clear();
  column_->addItem(QStringLiteral("in allen Spalten"));
  for (int i = 0; i < model_->columnCount(); ++i) {
    const QString name = model_->headerData(i, Qt::Horizontal).toString();
    column_->addItem(QStringLiteral("in ") + name);
    const int characters =
        i == points_.number_column() ? model_->CharactersOf(i) : std::min(kWidestColumn, model_->CharactersOf(i));
    const int head = table_->horizontalHeader()->fontMetrics().horizontalAdvance(name) + 2 * kRoom;
    table_->setColumnWidth(i, std::max(characters * digit + kRoom, head) + (i == 0 ? icon : 0));
  }
  column_->setCurrentIndex(std::max(0, column_->findText(filtered)));
}

// The filter

void PointTableView::Filter() {
  pause_->stop();
  PointModel::Filter filter;
  filter.text = FromLine(text_->text());
  filter.column = column_->currentIndex() - 1;
  if (state_->currentIndex() > 0) filter.state = static_cast<PointState>(state_->currentIndex() - 1);
  model_->SetFilter(std::move(filter));
  ShowSelection();
  ShowCount();
}

void PointTableView::ShowCount() {
  count_->setText(
      QStringLiteral("%1 von %2").arg(QLocale().toString(model_->rowCount()), QLocale().toString(points_.count())));
}

void PointTableView::FocusFilter() {
  text_->setFocus();
  text_->selectAll();
}

void PointTableView::FocusTable() { table_->setFocus(); }

void PointTableView::SortByCurrentColumn() {
  QHeaderView& header = *table_->horizontalHeader();
  const int column = std::max(0, table_->currentIndex().column());
  if (header.sortIndicatorSection() != column) return header.setSortIndicator(column, Qt::AscendingOrder);
  const bool up = header.sortIndicatorOrder() == Qt::AscendingOrder;
  header.setSortIndicator(up ? column : -1, up ? Qt::DescendingOrder : Qt::AscendingOrder);
}

// The selection

void PointTableView::Select(std::vector<int> points) {
  selected_ = std::move(points);
  ShowSelection();
}

void PointTableView::ShowSelection() {
  const QScopedValueRollback<bool> showing(showing_, true);
  std::vector<int> rows;
  for (const int point : selected_) {
    if (const int row = model_->RowOf(point); row >= 0) rows.push_back(row);
  }
  const int first = rows.empty() ? -1 : rows.front();
  // As ranges: the toolkit compares each with each.
  std::sort(rows.begin(), rows.end());
  QItemSelection ranges;
  for (std::size_t from = 0, to = 0; from < rows.size(); from = to) {
    for (++to; to < rows.size() && rows[to] == rows[to - 1] + 1;) ++to;
    ranges.select(model_->index(rows[from], 0), model_->index(rows[to - 1], model_->columnCount() - 1));
  }
  QItemSelectionModel& selection = *table_->selectionModel();
  if (first >= 0) {
    const QModelIndex shown = model_->index(first, std::max(0, table_->currentIndex().column()));
    selection.setCurrentIndex(shown, QItemSelectionModel::NoUpdate);
    table_->scrollTo(shown);
  }
  selection.select(ranges, QItemSelectionModel::ClearAndSelect);
}

void PointTableView::FollowSelection() {
  if (showing_) return;
  selected_.clear();
  for (const QItemSelectionRange& range : table_->selectionModel()->selection()) {
    for (int row = range.top(); row <= range.bottom(); ++row) selected_.push_back(model_->PointAt(row));
  }
  const QModelIndex current = table_->currentIndex();
  if (current.isValid()) {
    const auto at = std::find(selected_.begin(), selected_.end(), model_->PointAt(current.row()));
    if (at != selected_.end()) std::swap(*at, selected_.front());
  }
  Q_EMIT Selected(selected_);
}

}  // namespace korvo
