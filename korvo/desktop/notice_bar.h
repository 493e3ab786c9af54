// A line above the map with something that the person should know and need not answer.
#pragma once

#include <QFrame>
#include <functional>

class QLabel;
class QPushButton;

namespace korvo {

class NoticeBar : public QFrame {
  Q_OBJECT

 public:
  enum class Kind { kWarning, kOffer };
  explicit NoticeBar(Kind kind, QWidget* parent = nullptr);

  /// Shows the text, which is plain, until the person closes it or another one comes; an empty one hides the bar.
  void Show(const QString& text);
  /// The same with a button, which hides the bar and does the work.
  void Show(const QString& text, const QString& button, std::function<void()> work);

 private:
  QLabel* text_;
  QPushButton* button_;
  std::function<void()> work_;
};

}  // namespace korvo
