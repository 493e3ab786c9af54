#include "korvo/desktop/recent_menu.h"

#include <QAction>
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
  for (int i = 0; i < recent.size(); ++i) {
    const QString shown = QString(recent[i]).replace(QLatin1Char('&'), QStringLiteral("&&"));
    connect(addAction(QStringLiteral("&%1  %2").arg(QString::number(i + 1), shown)), &QAction::triggered, this,
            [this, path = recent[i]] { Q_EMIT Chosen(path); });
  }
}

}  // namespace korvo
