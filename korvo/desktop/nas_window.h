// A window that shows what is in a NAS file.
#pragma once

#include <QDialog>
#include <memory>
#include <vector>

#include "korvo/desktop/nas_file.h"

class QLabel;
class QListWidget;
class QPlainTextEdit;
class QTableView;

namespace korvo {

class Edge;
class NasModel;

class NasWindow : public QDialog {
  Q_OBJECT

 public:
  /// `points` and `edge` must outlive the window.
  NasWindow(std::unique_ptr<NasFile> file, const PointSet& points, const Edge& edge, QWidget* parent);
  ~NasWindow() override;

  /// Points of all members, each once.
  std::vector<int> Points() const;
  /// The points were read anew: which is which has to be found out again.
  void PointsRead();

 Q_SIGNALS:
  /// A person looks at a member of this point.
  void PointChosen(int point);

 private:
  void ShowSummary();
  void ShowMember(int row);

  std::unique_ptr<NasFile> file_;
  const PointSet& points_;
  NasModel* model_;
  QLabel* summary_;
  QListWidget* groups_;
  QTableView* members_;
  QPlainTextEdit* text_;
};

}  // namespace korvo
