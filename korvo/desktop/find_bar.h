// The line above the map: for finding a point by its number, or for picking one.
#pragma once

#include <QWidget>

class QLabel;
class QLineEdit;
class QPushButton;

namespace korvo {

class FindBar : public QWidget {
  Q_OBJECT

 public:
  explicit FindBar(QWidget* parent = nullptr);

  /// Says whether a point is to be picked; the field is empty then.
  void SetPicking(bool picking);
  /// Lets the person type a number in place of what is there.
  void Begin();

 Q_SIGNALS:
  /// Never empty, without blanks around it.
  void Entered(const QString& number);
  /// The person wants to pick no point.
  void PickEnded();

 private:
  void Enter();

  QLabel* label_;
  QLineEdit* number_;
  QPushButton* enter_;
  QPushButton* end_pick_;
  QAction* escape_;
};

}  // namespace korvo
