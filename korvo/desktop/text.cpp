#include "korvo/desktop/text.h"

#include "base/text.h"
#include "korvo/words/words.h"

namespace korvo {

QString FromAnsi(std::string_view ansi) {
  QString text(static_cast<qsizetype>(ansi.size()), Qt::Uninitialized);
  for (std::size_t i = 0; i < ansi.size(); ++i) {
    const auto byte = static_cast<unsigned char>(ansi[i]);
    text[static_cast<qsizetype>(i)] =
        QChar(byte >= 0x80 && byte < 0xA0 ? text::kUpperHalf[byte - 0x80U] : char16_t(byte));
  }
  return text;
}

std::string ToAnsi(const QString& text) {
  std::string ansi;
  ansi.reserve(static_cast<std::size_t>(text.size()));
  for (const char32_t point : text.toStdU32String()) {
    const int byte = text::ByteOf(point);
    ansi += byte < 0 ? '?' : static_cast<char>(byte);
  }
  return ansi;
}

QString AsLine(std::string_view ansi) { return QString::fromStdString(OneLine(ansi)); }

QString AsLines(std::string_view ansi) {
  QString lines;
  for (const std::string& line : Lines(ansi)) lines += AsLine(line) + QChar(u'\n');
  lines.chop(1);
  return lines;
}

QString AsCaption(std::string_view ansi) { return AsLine(ansi).replace(QChar(u'&'), QStringLiteral("&&")); }

}  // namespace korvo
