// What the desktop remembers from one start to the next.
#pragma once

#include <QSettings>

namespace korvo {

inline QSettings Remembered() {
  return {QSettings::IniFormat, QSettings::UserScope, QStringLiteral("Korvo"), QStringLiteral("Korvo")};
}

}  // namespace korvo
