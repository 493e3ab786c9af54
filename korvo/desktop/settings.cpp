#include "korvo/desktop/settings.h"

#include <QScreen>
#include <QWidget>

namespace korvo {

void RestoreSize(QWidget* window, const QString& key, QSize usual) {
  window->resize(Remembered().value(key, usual).toSize().boundedTo(window->screen()->availableSize()));
}

void KeepSize(const QWidget& window, const QString& key) { Remembered().setValue(key, window.size()); }

}  // namespace korvo
