// What the desktop remembers from one start to the next.
#pragma once

#include <QSettings>
#include <QSize>

class QWidget;

namespace korvo {

inline QSettings Remembered() {
  return {QSettings::IniFormat, QSettings::UserScope, QStringLiteral("Korvo"), QStringLiteral("Korvo")};
}

/// As much of a size as the window's screen has room for.
QSize OnScreen(const QWidget& window, QSize size);

/// Gives a window the size that was kept, else the usual one, as far as the screen has room for it.
void RestoreSize(QWidget* window, const QString& key, QSize usual);
void KeepSize(const QWidget& window, const QString& key);

}  // namespace korvo
