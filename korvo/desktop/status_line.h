// The status line: how many points there are of each state, and where the cursor is.
#pragma once

#include <QStatusBar>
#include <array>

#include "korvo/desktop/point_set.h"

class QLabel;

namespace korvo {

class StatusLine : public QStatusBar {
  Q_OBJECT

 public:
  explicit StatusLine(QWidget* parent = nullptr);

  void ShowCounts(const PointSet& points);
  /// Metres.
  void ShowPlace(double east, double north);
  void ClearPlace();

 private:
  QLabel* AddLabel();

  std::array<QLabel*, kPointStates> marks_{};
  std::array<QLabel*, kPointStates> counts_{};
  QLabel* without_place_;
  QLabel* place_;
};

}  // namespace korvo
