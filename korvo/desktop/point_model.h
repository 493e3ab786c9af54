// The point table as a model for views: all columns, sorted and filtered here, since 100,000 rows are too many for the
// toolkit's own way through strings.
#pragma once

#include <QAbstractTableModel>
#include <QIcon>
#include <array>
#include <optional>
#include <string>
#include <vector>

#include "korvo/desktop/point_set.h"

namespace korvo {

QIcon IconOf(PointState state);

class PointModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  /// `points` must outlive the model.
  explicit PointModel(const PointSet& points, QObject* parent = nullptr);

  /// Before and after the points are read anew.
  void BeginRead() { beginResetModel(); }
  void EndRead();
  /// Shows what a point is now; its row stays where it is.
  void PointChanged(int point);

  /// What is shown: points with the text in any column (`column` -1) or in that one, case of letters left aside, and of
  /// that state.
  struct Filter {
    std::string text;  ///< Windows-1252
    int column = -1;
    std::optional<PointState> state;
  };
  void SetFilter(Filter filter);

  int PointAt(int row) const { return rows_[static_cast<std::size_t>(row)]; }
  /// -1 for a point that the filter leaves out.
  int RowOf(int point) const;
  /// Characters that the column needs, of its name and of its values (of many rows, some).
  int CharactersOf(int column) const;

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
  void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;

 private:
  bool Fits(int point) const;
  void Arrange();
  template <typename KeyOf>
  void SortBy(KeyOf key_of);
  void Number();

  const PointSet& points_;
  std::array<QIcon, kPointStates> icons_;
  std::vector<int> rows_;
  std::vector<int> row_of_;
  Filter filter_;
  int sorted_by_ = -1;
  Qt::SortOrder order_ = Qt::AscendingOrder;
};

}  // namespace korvo
