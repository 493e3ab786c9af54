#include "korvo/desktop/application.h"

#include <QApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

namespace korvo {

void SetUpApplication(QApplication& application) {
  const QLocale german(QLocale::German, QLocale::Germany);
  QLocale::setDefault(german);
  auto* translator = new QTranslator(&application);
  if (translator->load(german, QStringLiteral("qtbase"), QStringLiteral("_"),
                       QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
    QApplication::installTranslator(translator);
  }
  QApplication::setApplicationName(QStringLiteral("Korvo"));
  QApplication::setQuitOnLastWindowClosed(false);
}

}  // namespace korvo
