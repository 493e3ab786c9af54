// The plug-in's commands: on a tool bar, in a menu and on the function keys.
#pragma once

#include <QToolBar>
#include <vector>

#include "korvo/host/menus.h"

class QMenu;

namespace korvo {

class CommandBar : public QToolBar {
  Q_OBJECT

 public:
  /// `menu` shows the same entries and must outlive the bar.
  explicit CommandBar(QMenu* menu, QWidget* parent = nullptr);

  /// Whose entries are offered; it must outlive the bar.
  void Offer(const Menu& menu);
  /// Which of them can be chosen now. The end is the entry 0.
  void Enable(bool commands, bool end);

 Q_SIGNALS:
  /// Number of the entry.
  void Chosen(int number);

 private:
  QMenu* shown_;
  const Menu* offered_ = nullptr;
  std::vector<QAction*> commands_;
};

}  // namespace korvo
