// The lists of a dialog as the views of the toolkit take them: nothing is copied, order and contents are the control's.
#pragma once

#include <QAbstractListModel>
#include <cstdint>
#include <functional>
#include <utility>

#include "korvo/desktop/edge.h"
#include "toolkit/control.h"

namespace korvo {

class EntryModel : public QAbstractListModel {
 public:
  /// List and edge must outlive the model.
  EntryModel(const toolkit::ChoiceList& list, const Edge& edge, QObject* parent)
      : QAbstractListModel(parent), list_(list), edge_(edge) {}

  /// Tells the views of entries that have changed since the last call, if any have.
  void Refresh();

  int rowCount(const QModelIndex& parent) const override;
  QVariant data(const QModelIndex& index, int role) const override;

 private:
  const toolkit::ChoiceList& list_;
  const Edge& edge_;
  std::uint64_t shown_ = 0;
};

class RowModel : public QAbstractListModel {
 public:
  /// What the person does to a tick box goes to `tick`; the model itself changes nothing.
  using Tick = std::function<void(int row, bool on)>;
  RowModel(const toolkit::TickList& list, const Edge& edge, QObject* parent, Tick tick)
      : QAbstractListModel(parent), list_(list), edge_(edge), tick_(std::move(tick)) {}

  /// Tells the views of changes since the last call: of all rows, or of all ticks at once.
  void Refresh();

  int rowCount(const QModelIndex& parent) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  bool setData(const QModelIndex& index, const QVariant& value, int role) override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;

 private:
  const toolkit::TickList& list_;
  const Edge& edge_;
  Tick tick_;
  std::uint64_t shown_ = 0;
  std::uint64_t shown_ticks_ = 0;
};

}  // namespace korvo
