#include "korvo/desktop/settings.h"

#include <QScreen>
#include <QStyle>
#include <QWidget>

namespace korvo {

QSize OnScreen(const QWidget& window, QSize size) {
  const QSize frame(0, window.style()->pixelMetric(QStyle::PM_TitleBarHeight));
  return size.boundedTo(window.screen()->availableSize() - frame);
}

void RestoreSize(QWidget* window, const QString& key, QSize usual) {
  window->resize(OnScreen(*window, Remembered().value(key, usual).toSize()));
}

void KeepSize(const QWidget& window, const QString& key) { Remembered().setValue(key, window.size()); }

}  // namespace korvo
