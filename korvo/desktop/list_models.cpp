#include "korvo/desktop/list_models.h"

#include "korvo/desktop/text.h"

namespace korvo {

namespace {

QVariant ShownLabel(const std::string& label, int role, const Edge& edge) {
  QVariant shown;
  edge.Run([&] {
    if (role == Qt::DisplayRole) shown = AsLine(label);
    if (role == Qt::ToolTipRole) shown = AsTip(AsLine(label));
  });
  return shown;
}

}  // namespace

void EntryModel::Refresh() {
  if (shown_ == list_.revision()) return;
  beginResetModel();
  shown_ = list_.revision();
  endResetModel();
}

int EntryModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(list_.entries().size());
}

QVariant EntryModel::data(const QModelIndex& index, int role) const {
  const auto row = static_cast<std::size_t>(index.row());
  if (row >= list_.entries().size()) return {};
  return ShownLabel(list_.entries()[row].label, role, edge_);
}

void RowModel::Refresh() {
  if (shown_ != list_.revision()) {
    beginResetModel();
    shown_ = list_.revision();
    shown_ticks_ = list_.ticks_revision();
    endResetModel();
  } else if (shown_ticks_ != list_.ticks_revision()) {
    shown_ticks_ = list_.ticks_revision();
    Q_EMIT dataChanged(index(0), index(rowCount({}) - 1), {Qt::CheckStateRole});
  }
}

int RowModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(list_.rows().size());
}

QVariant RowModel::data(const QModelIndex& index, int role) const {
  const auto row = static_cast<std::size_t>(index.row());
  if (row >= list_.rows().size()) return {};
  if (role == Qt::CheckStateRole) return list_.rows()[row].ticked ? Qt::Checked : Qt::Unchecked;
  return ShownLabel(list_.rows()[row].label, role, edge_);
}

bool RowModel::setData(const QModelIndex& index, const QVariant& value, int role) {
  if (role != Qt::CheckStateRole) return false;
  tick_(index.row(), value.toInt() == Qt::Checked);
  return true;
}

Qt::ItemFlags RowModel::flags(const QModelIndex& index) const {
  return QAbstractListModel::flags(index) | Qt::ItemIsUserCheckable | Qt::ItemNeverHasChildren;
}

}  // namespace korvo
