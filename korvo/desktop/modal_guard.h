// Keeps the person in the innermost window that waits for an answer.
#pragma once

#include <QObject>
#include <QTimer>
#include <vector>

class QDialog;
class QWidget;

namespace korvo {

/// The toolkit's own modality keeps the main window from being closed as well, and that is to leave all that is open.
/// This drops what is done to the windows behind the innermost one, closing too where they are dialogs. What the
/// toolkit opens modally above a window that is held, as a question of a picker, is held likewise.
class ModalGuard : public QObject {
 public:
  /// `main` must outlive the guard.
  explicit ModalGuard(QWidget& main);

  /// Holds the person in a window that is not shown yet; at the end hides it and goes back to the one behind.
  class Hold {
   public:
    Hold(ModalGuard& guard, QDialog& window);
    ~Hold();
    Hold(const Hold&) = delete;
    Hold& operator=(const Hold&) = delete;

   private:
    ModalGuard& guard_;
    QDialog& window_;
  };

  /// The innermost window; null for none.
  QDialog* front() const { return open_.empty() ? nullptr : open_.back(); }
  /// Closes what the toolkit has opened above the window.
  void CloseAbove(const QDialog& window);

  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void Push(QDialog& window);
  void Pop(QDialog& window);
  bool IsBehind(const QWidget& widget) const;
  void BringToFront();

  QWidget& main_;
  QTimer soon_;  ///< brings the window in front to the front when the running event is done
  std::vector<QDialog*> open_;
};

}  // namespace korvo
