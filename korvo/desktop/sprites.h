// Marks and letters of the map as small pictures, put onto the large one pixel by pixel: tens of thousands a frame.
#pragma once

#include <QFont>
#include <QHash>
#include <QImage>
#include <QPainter>
#include <QString>
#include <array>

#include "korvo/desktop/point_set.h"

namespace korvo {

QColor ColourOf(PointState state);
/// What a person calls the state.
QString NameOf(PointState state);

/// Each state has a shape of its own beside its colour. `size` is the mark's width.
void DrawMark(QPainter& painter, PointState state, QPointF centre, double size);
QImage MarkSprite(PointState state, double size, double ratio);
/// A ring around a mark of that width.
QImage RingSprite(const QColor& colour, double size, double ratio);

/// Puts a sprite onto a picture without alpha, its centre at a place in the picture's own pixels. What stands out is
/// cut.
void PutSprite(QImage* onto, const QImage& sprite, int x, int y);

/// The letters of one font, each drawn once.
class Letters {
 public:
  Letters(const QFont& font, double ratio) : font_(font), ratio_(ratio) {}

  /// In units of the widget, as is `height`.
  double Width(const QString& text);
  /// Writes with a halo that keeps the text legible on anything; `left` and `middle` in units of the widget.
  void Write(QImage* onto, const QString& text, double left, double middle);

 private:
  struct Letter {
    QImage halo;
    QImage ink;
    double advance = 0;
  };
  const Letter& Of(QChar letter);

  QFont font_;
  double ratio_;
  QHash<QChar, Letter> letters_;
};

/// The same for a painter that keeps shapes, as that of a PDF does.
void WriteWithHalo(QPainter& painter, const QString& text, double left, double middle);

}  // namespace korvo
