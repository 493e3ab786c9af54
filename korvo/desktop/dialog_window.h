// Draws any dialog from its controls and their hints of layout, and turns what the person does into events.
#pragma once

#include <QDialog>
#include <functional>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "korvo/desktop/control_views.h"
#include "korvo/desktop/shell.h"
#include "toolkit/dialog.h"

class QBoxLayout;
class QGridLayout;
class QPushButton;

namespace korvo {

class DialogWindow : public QDialog {
 public:
  /// The dialog must be open and outlive its window. `ended` is called when it is no longer open.
  DialogWindow(toolkit::Dialog& dialog, Waits& waits, QWidget* parent, std::function<void()> ended);
  ~DialogWindow() override;

  const toolkit::Dialog& dialog() const { return dialog_; }
  /// Brings all widgets up to what the controls hold now.
  void ShowControls();
  /// Escape, and the window's own way out: whether the dialog ends is for its rule.
  void reject() override;

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  using Row = std::vector<ControlView*>;
  struct Area {
    QGridLayout* grid = nullptr;
    QWidget* frame = nullptr;  ///< of a group
    std::vector<Row> rows;     ///< in the order of the grid's; one that holds a frame is empty
  };

  void MakeViews();
  /// How many controls at the end are buttons: they stand in the window's last row.
  std::size_t ButtonsAtEnd() const;
  /// The pages that the control stands on, or null.
  PagesView* PagesOf(const toolkit::Control& control) const;
  Area& AreaOf(const toolkit::Control& control);
  void LayOut(Area& area);
  void AddButtons(QBoxLayout* row, std::size_t from);
  void SetTabOrder();
  void FocusFirst();
  void ShowCaptions();
  void Send(const toolkit::Event& event);
  void Handle(const toolkit::Event& event);
  /// Shows the person the first field in use whose control does not hold what is shown, if there is one.
  bool PointOutFault();
  QString SizeKey() const;

  toolkit::Dialog& dialog_;
  Waits& waits_;
  std::function<void()> ended_;
  const ControlView::Ways ways_;
  bool showing_ = false;
  QSize given_size_;
  std::vector<std::unique_ptr<ControlView>> views_;  ///< in order of the controls
  ShortcutLetters letters_;
  std::map<QWidget*, QPushButton*> own_buttons_;         ///< the one that alone stands beside a field
  std::map<std::pair<Place, std::string>, Area> areas_;  ///< by place and caption of the group
};

}  // namespace korvo
