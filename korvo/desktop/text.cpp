#include "korvo/desktop/text.h"

#include "base/text.h"
#include "korvo/words/words.h"

namespace korvo {

namespace {

/// A visible sign for a control character, another one for each and none that Windows-1252 has; others as they are.
/// Fonts have the arrows; the rest, which hardly occurs, may come out as the box of a missing letter.
constexpr char16_t SignOf(char16_t c) {
  constexpr char16_t kPictures = 0x2400;
  constexpr char16_t kPrivate = 0xE000;
  switch (c) {
    case u'\t':
      return u'→';
    case u'\n':
      return u'↵';
    case u'\r':
      return u'←';
    case 0x7F:
      return 0x2421;
    default:
      return c < u' ' ? kPictures + c : c >= 0x80 && c < 0xA0 ? kPrivate + c : c;
  }
}

constexpr char16_t WithSign(char16_t sign) {
  for (char16_t c = 0; c < 0xA0; ++c) {
    if (SignOf(c) == sign) return c;
  }
  return sign;
}

constexpr qsizetype kTipWidth = 120;

}  // namespace

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

QString AsLine(std::string_view ansi) { return WithSigns(FromAnsi(ansi)); }

QString WithSigns(QString text) {
  for (QChar& c : text) c = QChar(SignOf(c.unicode()));
  return text;
}

std::string FromLine(QString text) {
  text.removeIf([](QChar c) { return c == QChar(u'\r') || c == QChar(u'\n'); });
  for (QChar& c : text) c = QChar(WithSign(c.unicode()));
  return ToAnsi(text);
}

QString AsLines(std::string_view ansi) {
  QString lines;
  for (const std::string& line : Lines(ansi)) lines += AsLine(line) + QChar(u'\n');
  lines.chop(1);
  return lines;
}

QString AsRunningText(std::string_view ansi) { return AsLines(ansi).replace(QChar(u'\n'), QChar(u' ')); }

QString AsTip(const QString& text, qsizetype short_size) {
  if (text.size() <= short_size) return {};
  QString lines;
  for (qsizetype at = 0; at < text.size(); at += kTipWidth) lines += text.mid(at, kTipWidth) + QChar(u'\n');
  lines.chop(1);
  return QStringLiteral("<p style='white-space:pre'>%1</p>").arg(lines.toHtmlEscaped());
}

QString AsCaption(std::string_view ansi) { return AsLine(ansi).replace(QChar(u'&'), QStringLiteral("&&")); }

}  // namespace korvo
