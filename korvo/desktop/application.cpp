#include "korvo/desktop/application.h"

#include <QApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QProxyStyle>
#include <QTranslator>

namespace korvo {

namespace {

/// The machine's own style, but for drop-down lists: one that opens like a menu covers the whole screen.
class Style : public QProxyStyle {
 public:
  int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                QStyleHintReturn* more) const override {
    return hint == SH_ComboBox_Popup ? 0 : QProxyStyle::styleHint(hint, option, widget, more);
  }
};

}  // namespace

void SetUpApplication(QApplication& application) {
  const QLocale german(QLocale::German, QLocale::Germany);
  QLocale::setDefault(german);
  auto* translator = new QTranslator(&application);
  if (translator->load(german, QStringLiteral("qtbase"), QStringLiteral("_"),
                       QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
    QApplication::installTranslator(translator);
  }
  QApplication::setStyle(new Style);
  // NOLINTNEXTLINE(clang-analyzer-cplusplus.NewDeleteLeaks): the style is the application's own now
  QApplication::setApplicationName(QStringLiteral("Korvo"));
  QApplication::setQuitOnLastWindowClosed(false);
}

}  // namespace korvo
