#include "korvo/desktop/recent_menu.h"

#include <QAction>
#include <QFileInfo>
#include <QStringList>

#include "korvo/desktop/settings.h"

namespace korvo {

namespace {

constexpr int kMost = 8;

QString Key() { return QStringLiteral("recent"); }

}  // namespace

RecentMenu::RecentMenu(const QString& title, QWidget* parent) : QMenu(title, parent) {
  setEnabled(Remembered().contains(Key()));
  connect(this, &QMenu::aboutToShow, this, &RecentMenu::Fill);
}

void RecentMenu::Remember(const QString& path) {
  QSettings remembered = Remembered();
  QStringList recent = remembered.value(Key()).toStringList();
  recent.removeAll(path);
  recent.prepend(path);
  remembered.setValue(Key(), QStringList(recent.mid(0, kMost)));
  setEnabled(true);
}

void RecentMenu::Fill() {
  clear();
  const QStringList recent = Remembered().value(Key()).toStringList();
  for (const QString& path : recent) {
    // It is remembered all the same: it may lie on a medium that comes back.
    if (!QFileInfo::exists(path)) continue;
    const QString shown = QString(path).replace(QLatin1Char('&'), QStringLiteral("&&"));
    connect(addAction(QStringLiteral("&%1  %2").arg(QString::number(actions().size() + 1), shown)), &QAction::triggered,
            this, [this, path] { Q_EMIT Chosen(path); });
  }
  if (isEmpty()) addAction(QStringLiteral("Keines ist mehr vorhanden"))->setEnabled(false);
}

}  // namespace korvo
