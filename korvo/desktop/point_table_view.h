// The points as a table, with a filter above it.
#pragma once

#include <QWidget>
#include <string>
#include <vector>

#include "korvo/desktop/point_set.h"

class QComboBox;
class QLabel;
class QLineEdit;
class QTableView;
class QTimer;

namespace korvo {

class Edge;
class PointModel;

class PointTableView : public QWidget {
  Q_OBJECT

 public:
  /// Both must outlive the view.
  PointTableView(const PointSet& points, const Edge& edge, QWidget* parent = nullptr);

  /// Before and after the points are read anew. None is selected afterwards.
  void BeginRead();
  void EndRead();
  /// Shows what a point is now.
  void PointChanged(int point);

  /// The first of them is scrolled to. Those that the filter leaves out come with the filter that shows them.
  void Select(std::vector<int> points);

  void FocusFilter();
  void FocusTable();
  /// As a click on the head of the current column does.
  void SortByCurrentColumn();

 Q_SIGNALS:
  /// The person selected other points, the current one stands first.
  void Selected(const std::vector<int>& points);
  /// The person means this point, by a double click or by Enter.
  void Chosen(int point);

 private:
  QLayout* BuildFilter();
  void BuildTable();
  void Filter();
  void ShowCount();
  void ShowSelection();
  void FollowSelection();
  void FitColumns();

  const PointSet& points_;
  const Edge& edge_;
  PointModel* model_;
  QTableView* table_;
  QLineEdit* text_;
  QComboBox* column_;
  QComboBox* state_;
  QTimer* pause_;  ///< filters when nothing has been typed for a moment
  QLabel* count_;
  std::vector<std::string> columns_;  ///< that have been fitted
  std::vector<int> selected_;
  bool showing_ = false;  ///< the selection changes, but not by the person
};

}  // namespace korvo
