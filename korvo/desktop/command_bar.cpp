#include "korvo/desktop/command_bar.h"

#include <QAction>
#include <QMenu>

#include "korvo/desktop/text.h"

namespace korvo {

namespace {

/// The function key of the entry's number, where there is one.
QKeySequence KeysOf(int number) {
  if (number == 0) return {QStringLiteral("Shift+Esc")};
  return number <= 12 ? QKeySequence(Qt::Key_F1 + number - 1) : QKeySequence();
}

}  // namespace

CommandBar::CommandBar(QMenu* menu, QWidget* parent) : QToolBar(parent), shown_(menu) {
  setObjectName(QStringLiteral("commands_bar"));
}

void CommandBar::Offer(const Menu& menu) {
  if (&menu == offered_) return;
  offered_ = &menu;
  clear();
  shown_->clear();
  commands_.clear();
  setWindowTitle(AsLine(menu.title));
  shown_->setTitle(QStringLiteral("&") + AsCaption(menu.title));
  for (const Menu::Entry& entry : menu.entries) {
    QAction* command = shown_->addAction(AsCaption(entry.text));
    command->setData(entry.number);
    command->setObjectName(QStringLiteral("command_%1").arg(entry.number));
    command->setShortcut(KeysOf(entry.number));
    command->setToolTip(
        QStringLiteral("%1 (%2)").arg(AsLine(entry.text), command->shortcut().toString(QKeySequence::NativeText)));
    connect(command, &QAction::triggered, this, [this, number = entry.number] { Q_EMIT Chosen(number); });
    addAction(command);
    commands_.push_back(command);
  }
}

void CommandBar::Enable(bool commands, bool end) {
  for (QAction* command : commands_) command->setEnabled(command->data().toInt() == 0 ? end : commands);
}

}  // namespace korvo
