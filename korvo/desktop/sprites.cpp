#include "korvo/desktop/sprites.h"

#include <QFontMetricsF>
#include <QPainterPath>
#include <algorithm>
#include <cmath>

namespace korvo {

namespace {

constexpr double kHalo = 1.6;
constexpr double kEdge = 1.0;
const QColor kInk(0x1f, 0x29, 0x37);

QImage EmptySprite(double width, double height, double ratio) {
  QImage sprite(static_cast<int>(std::ceil(width * ratio)), static_cast<int>(std::ceil(height * ratio)),
                QImage::Format_ARGB32_Premultiplied);
  sprite.fill(Qt::transparent);
  sprite.setDevicePixelRatio(ratio);
  return sprite;
}

/// `over` on an opaque pixel, two channels at a time.
inline QRgb Blend(QRgb over, QRgb below) {
  constexpr quint32 kOdd = 0x00ff00ff;
  constexpr quint32 kHalf = 0x00800080;
  const quint32 rest = 255 - static_cast<quint32>(qAlpha(over));
  quint32 odd = (below & kOdd) * rest;
  odd = ((odd + ((odd >> 8) & kOdd) + kHalf) >> 8) & kOdd;
  quint32 even = ((below >> 8) & kOdd) * rest;
  even = (even + ((even >> 8) & kOdd) + kHalf) & ~kOdd;
  return over + (odd | even);
}

}  // namespace

QColor ColourOf(PointState state) {
  switch (state) {
    case PointState::kNew:
      return {0x0f, 0x8a, 0x3c};
    case PointState::kReplace:
      return {0x1d, 0x5f, 0xd1};
    case PointState::kDelete:
      return {0xc8, 0x1e, 0x1e};
    case PointState::kUnknown:
      return {0xb4, 0x5a, 0x00};
    case PointState::kPlain:
      break;
  }
  return {0x6b, 0x72, 0x80};
}

QString NameOf(PointState state) {
  switch (state) {
    case PointState::kNew:
      return QStringLiteral("Neupunkt");
    case PointState::kReplace:
      return QStringLiteral("ersetzen");
    case PointState::kDelete:
      return QStringLiteral("löschen");
    case PointState::kUnknown:
      return QStringLiteral("Aktion unbekannt");
    case PointState::kPlain:
      break;
  }
  return QStringLiteral("ohne Angaben");
}

void DrawMark(QPainter& painter, PointState state, QPointF centre, double size) {
  const double r = size / 2;
  const QColor colour = ColourOf(state);
  painter.setPen(QPen(Qt::white, kEdge));
  painter.setBrush(colour);
  switch (state) {
    case PointState::kPlain:
      painter.drawEllipse(centre, r * 0.75, r * 0.75);
      break;
    case PointState::kNew: {
      const QPointF corners[] = {centre + QPointF(0, -r * 1.1), centre + QPointF(r * 1.1, r * 0.85),
                                 centre + QPointF(-r * 1.1, r * 0.85)};
      painter.drawPolygon(corners, 3);
      break;
    }
    case PointState::kUnknown: {
      const QPointF corners[] = {centre + QPointF(0, -r * 1.2), centre + QPointF(r * 1.2, 0),
                                 centre + QPointF(0, r * 1.2), centre + QPointF(-r * 1.2, 0)};
      painter.drawPolygon(corners, 4);
      break;
    }
    case PointState::kReplace:
      painter.drawRect(QRectF(centre.x() - r * 0.85, centre.y() - r * 0.85, r * 1.7, r * 1.7));
      break;
    case PointState::kDelete:
      for (const QPen& pen : {QPen(Qt::white, size / 3 + 2 * kEdge), QPen(colour, size / 3)}) {
        painter.setPen(pen);
        painter.drawLine(centre + QPointF(-r * 0.8, -r * 0.8), centre + QPointF(r * 0.8, r * 0.8));
        painter.drawLine(centre + QPointF(-r * 0.8, r * 0.8), centre + QPointF(r * 0.8, -r * 0.8));
      }
      break;
  }
}

QImage MarkSprite(PointState state, double size, double ratio) {
  const double side = size * 1.4 + 2 * kEdge;
  QImage sprite = EmptySprite(side, side, ratio);
  QPainter painter(&sprite);
  painter.setRenderHint(QPainter::Antialiasing);
  DrawMark(painter, state, QPointF(sprite.width(), sprite.height()) / ratio / 2, size);
  return sprite;
}

QImage RingSprite(const QColor& colour, double size, double ratio) {
  constexpr double kWidth = 2.4;
  const double side = size * 2 + 2 * kWidth;
  QImage sprite = EmptySprite(side, side, ratio);
  QPainter painter(&sprite);
  painter.setRenderHint(QPainter::Antialiasing);
  const QPointF centre = QPointF(sprite.width(), sprite.height()) / ratio / 2;
  for (const QPen& pen : {QPen(Qt::white, kWidth + 1.6), QPen(colour, kWidth)}) {
    painter.setPen(pen);
    painter.drawEllipse(centre, size * 0.95, size * 0.95);
  }
  return sprite;
}

void PutSprite(QImage* onto, const QImage& sprite, int x, int y) {
  const int left = x - sprite.width() / 2;
  const int top = y - sprite.height() / 2;
  const int from_x = std::max(0, -left);
  const int to_x = std::min(sprite.width(), onto->width() - left);
  const int from_y = std::max(0, -top);
  const int to_y = std::min(sprite.height(), onto->height() - top);
  auto* const pixels = reinterpret_cast<QRgb*>(onto->bits());
  const auto line = onto->bytesPerLine() / static_cast<qsizetype>(sizeof(QRgb));
  for (int row = from_y; row < to_y; ++row) {
    const auto* from = reinterpret_cast<const QRgb*>(sprite.constScanLine(row));
    QRgb* const to = pixels + (top + row) * line + left;
    for (int i = from_x; i < to_x; ++i) {
      if (from[i] != 0) to[i] = Blend(from[i], to[i]);
    }
  }
}

const Letters::Letter& Letters::Of(QChar letter) {
  Letter& made = letters_[letter];
  if (!made.halo.isNull()) return made;
  const QFontMetricsF metrics(font_);
  made.advance = metrics.horizontalAdvance(letter);
  // As wide on both sides of the middle, since sprites are put by their centre.
  const double width = made.advance + 4 * kHalo;
  const double height = metrics.height() + 2 * kHalo;
  made.halo = EmptySprite(width, height, ratio_);
  made.ink = made.halo;
  const QPointF base(QPointF(made.halo.width(), made.halo.height()) / ratio_ / 2 -
                     QPointF(made.advance / 2, metrics.height() / 2 - metrics.ascent()));
  QPainterPath path;
  path.addText(base, font_, QString(letter));
  QPainter halo(&made.halo);
  halo.setRenderHint(QPainter::Antialiasing);
  halo.strokePath(path, QPen(QColor(255, 255, 255, 235), 2 * kHalo, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  QPainter ink(&made.ink);
  ink.setFont(font_);
  ink.setPen(kInk);
  ink.drawText(base, QString(letter));
  return made;
}

double Letters::Width(const QString& text) {
  double width = 0;
  for (const QChar letter : text) width += Of(letter).advance;
  return width;
}

void Letters::Write(QImage* onto, const QString& text, double left, double middle) {
  const int y = static_cast<int>(std::lround(middle * ratio_));
  for (const bool ink : {false, true}) {
    double at = left;
    for (const QChar sign : text) {
      const Letter& letter = Of(sign);
      const double centre = at + letter.advance / 2;
      PutSprite(onto, ink ? letter.ink : letter.halo, static_cast<int>(std::lround(centre * ratio_)), y);
      at += letter.advance;
    }
  }
}

void WriteWithHalo(QPainter& painter, const QString& text, double left, double middle) {
  const QFontMetricsF metrics(painter.font());
  const QPointF base(left, middle - metrics.height() / 2 + metrics.ascent());
  QPainterPath path;
  path.addText(base, painter.font(), text);
  painter.strokePath(path, QPen(Qt::white, 2 * kHalo, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.fillPath(path, kInk);
}

}  // namespace korvo
