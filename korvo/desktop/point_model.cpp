#include "korvo/desktop/point_model.h"

#include <QPainter>
#include <algorithm>
#include <numeric>
#include <string_view>

#include "base/text.h"
#include "korvo/desktop/sprites.h"
#include "korvo/desktop/text.h"

namespace korvo {

namespace {

constexpr int kRowsMeasured = 2000;

/// Small letters for capital ones, in Windows-1252 too.
struct Folding {
  std::array<char, 256> small{};
  Folding() {
    for (std::size_t i = 0; i < small.size(); ++i) {
      const bool capital = (i >= 'A' && i <= 'Z') || (i >= 0xC0 && i <= 0xDE && i != 0xD7);
      small[i] = static_cast<char>(capital ? i + 0x20 : i);
    }
    small[0x8A] = static_cast<char>(0x9A);
    small[0x8C] = static_cast<char>(0x9C);
    small[0x8E] = static_cast<char>(0x9E);
    small[0x9F] = static_cast<char>(0xFF);
  }
  char operator()(char c) const { return small[static_cast<unsigned char>(c)]; }
};
const Folding& Fold() {
  static const Folding folding;
  return folding;
}

/// `small` has small letters alone.
bool Contains(std::string_view text, std::string_view small) {
  const Folding& fold = Fold();
  return std::search(text.begin(), text.end(), small.begin(), small.end(),
                     [&fold](char a, char b) { return fold(a) == b; }) != text.end();
}

std::string_view Without(char padding, std::string_view text) {
  return text.substr(std::min(text.find_first_not_of(padding), text.size()));
}

/// Numbers of points by their value, in front of those with letters.
struct TextKey {
  TextKey() = default;
  explicit TextKey(std::string_view all) : text(all), value(Without(' ', all)) {
    is_number = value.find_first_not_of("0123456789") == std::string_view::npos;
    value = Without('0', value);
  }
  bool operator<(const TextKey& other) const {
    if (is_number != other.is_number) return is_number;
    if (is_number && value.size() != other.value.size()) return value.size() < other.value.size();
    if (is_number && value != other.value) return value < other.value;
    return text::CompareGerman(text, other.text) < 0;
  }

  std::string_view text, value;
  bool is_number = true;
};

}  // namespace

QIcon IconOf(PointState state) {
  constexpr int kSide = 16;
  constexpr double kMark = 10;
  QIcon icon;
  for (const int ratio : {1, 2}) {
    QPixmap pixmap(kSide * ratio, kSide * ratio);
    pixmap.setDevicePixelRatio(ratio);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    DrawMark(painter, state, {kSide / 2.0, kSide / 2.0}, kMark);
    painter.end();
    // In a selected row the toolkit would paint it over.
    for (const QIcon::Mode mode : {QIcon::Normal, QIcon::Selected}) icon.addPixmap(pixmap, mode);
  }
  return icon;
}

PointModel::PointModel(const PointSet& points, QObject* parent) : QAbstractTableModel(parent), points_(points) {
  for (int i = 0; i < kPointStates; ++i) icons_[static_cast<std::size_t>(i)] = IconOf(static_cast<PointState>(i));
  Arrange();
}

void PointModel::EndRead() {
  if (filter_.column >= static_cast<int>(points_.columns().size())) filter_.column = -1;
  if (sorted_by_ >= static_cast<int>(points_.columns().size())) sorted_by_ = -1;
  Arrange();
  endResetModel();
}

void PointModel::PointChanged(int point) {
  const int row = RowOf(point);
  if (row >= 0) Q_EMIT dataChanged(index(row, 0), index(row, columnCount() - 1));
}

void PointModel::SetFilter(Filter filter) {
  const Folding& fold = Fold();
  std::transform(filter.text.begin(), filter.text.end(), filter.text.begin(), [&fold](char c) { return fold(c); });
  beginResetModel();
  filter_ = std::move(filter);
  Arrange();
  endResetModel();
}

bool PointModel::Fits(int point) const {
  if (filter_.state && points_.State(point) != *filter_.state) return false;
  if (filter_.text.empty()) return true;
  if (filter_.column >= 0) return Contains(points_.Field(point, filter_.column), filter_.text);
  // Most points are told apart by all their bytes at once; a find across the border of two columns is none.
  if (!Contains(points_.Bytes(point), filter_.text)) return false;
  for (int i = 0; i < columnCount(); ++i) {
    if (Contains(points_.Field(point, i), filter_.text)) return true;
  }
  return false;
}

void PointModel::Arrange() {
  rows_.clear();
  for (int i = 0; i < points_.count(); ++i) {
    if (Fits(i)) rows_.push_back(i);
  }
  if (sorted_by_ >= 0 && points_.columns()[static_cast<std::size_t>(sorted_by_)].type == 'N') {
    SortBy(ParseNumber);
  } else if (sorted_by_ >= 0) {
    SortBy([](std::string_view text) { return TextKey(text); });
  }
  Number();
}

template <typename KeyOf>
void PointModel::SortBy(KeyOf key_of) {
  std::vector<decltype(key_of({}))> keys(static_cast<std::size_t>(points_.count()));
  for (const int p : rows_) keys[static_cast<std::size_t>(p)] = key_of(points_.Field(p, sorted_by_));
  const bool up = order_ == Qt::AscendingOrder;
  std::stable_sort(rows_.begin(), rows_.end(), [&](int a, int b) {
    return keys[static_cast<std::size_t>(up ? a : b)] < keys[static_cast<std::size_t>(up ? b : a)];
  });
}

void PointModel::Number() {
  row_of_.assign(static_cast<std::size_t>(points_.count()), -1);
  for (std::size_t row = 0; row < rows_.size(); ++row) {
    row_of_[static_cast<std::size_t>(rows_[row])] = static_cast<int>(row);
  }
}

int PointModel::RowOf(int point) const {
  const auto at = static_cast<std::size_t>(point);
  return point >= 0 && at < row_of_.size() ? row_of_[at] : -1;
}

int PointModel::CharactersOf(int column) const {
  std::size_t most = points_.columns()[static_cast<std::size_t>(column)].name.size();
  const int rows = column == points_.number_column() ? points_.count() : std::min(points_.count(), kRowsMeasured);
  for (int i = 0; i < rows; ++i) most = std::max(most, points_.Field(i, column).size());
  return static_cast<int>(most);
}

int PointModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int PointModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(points_.columns().size());
}

QVariant PointModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const int point = PointAt(index.row());
  const bool number = points_.columns()[static_cast<std::size_t>(index.column())].type == 'N';
  switch (role) {
    case Qt::DisplayRole:
      return AsLine(points_.Field(point, index.column()));
    case Qt::TextAlignmentRole:
      return QVariant::fromValue(Qt::Alignment((number ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter));
    case Qt::DecorationRole:
      if (index.column() == 0) return icons_[static_cast<std::size_t>(points_.State(point))];
      break;
    case Qt::ToolTipRole:
      if (index.column() == 0) return NameOf(points_.State(point));
      return AsTip(AsLine(points_.Field(point, index.column())), 0);
    default:
      break;
  }
  return {};
}

QVariant PointModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (role != Qt::DisplayRole) return {};
  if (orientation == Qt::Vertical) return points_.Record(PointAt(section));
  return AsLine(points_.columns()[static_cast<std::size_t>(section)].name);
}

void PointModel::sort(int column, Qt::SortOrder order) {
  if (column >= columnCount()) return;
  Q_EMIT layoutAboutToBeChanged({}, VerticalSortHint);
  const QModelIndexList before = persistentIndexList();
  std::vector<int> points;
  points.reserve(static_cast<std::size_t>(before.size()));
  for (const QModelIndex& i : before) points.push_back(PointAt(i.row()));
  sorted_by_ = column;
  order_ = order;
  Arrange();
  QModelIndexList after;
  after.reserve(before.size());
  for (qsizetype i = 0; i < before.size(); ++i) {
    const int row = RowOf(points[static_cast<std::size_t>(i)]);
    after.push_back(row >= 0 ? index(row, before[i].column()) : QModelIndex());
  }
  changePersistentIndexList(before, after);
  Q_EMIT layoutChanged({}, VerticalSortHint);
}

}  // namespace korvo
