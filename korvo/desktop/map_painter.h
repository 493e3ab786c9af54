// Draws the map: background, grid, marks, labels, scale bar.
#pragma once

#include <QFont>
#include <QImage>
#include <QPainter>
#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <array>
#include <memory>
#include <vector>

#include "korvo/desktop/point_set.h"
#include "korvo/desktop/sprites.h"

namespace korvo {

/// Which part of the map stands where on a picture. Metres on the map, units of the widget on the picture.
struct MapCamera {
  double east = 0;  ///< of the picture's middle
  double north = 0;
  double scale = 1;  ///< units for a metre
  QSizeF size;

  QPointF ToPicture(double e, double n) const {
    return {size.width() / 2 + (e - east) * scale, size.height() / 2 - (n - north) * scale};
  }
  double EastAt(double x) const { return east + (x - size.width() / 2) / scale; }
  double NorthAt(double y) const { return north - (y - size.height() / 2) / scale; }
  /// What is seen, and `margin` units more on each side.
  MapBox Seen(double margin) const;
  /// Moves and scales so that the box fills the picture but for a margin; one without extent gets some room.
  void Fit(const MapBox& box);
};

/// A length for people: 1, 2 or 5 times a power of ten, the least one of at least `length`.
double RoundLength(double length);

class MapPainter {
 public:
  /// `points` must outlive the painter.
  explicit MapPainter(const PointSet& points);

  /// Points that wear a ring, besides those of `SetMarked`, which wear another one.
  void SetSelected(std::vector<int> points) { selected_ = std::move(points); }
  void SetMarked(std::vector<int> points) { marked_ = std::move(points); }
  const std::vector<int>& selected() const { return selected_; }
  const std::vector<int>& marked() const { return marked_; }

  /// Fast, for the screen; `ratio` is its pixels for a unit.
  QImage Picture(const MapCamera& camera, double ratio);
  /// The same in shapes, for paper, with a legend.
  void Draw(QPainter& painter, const MapCamera& camera, const QString& name);

  const QFont& font() const { return font_; }

 private:
  struct Seen {
    int point;
    QPointF at;
  };
  struct LegendLine {
    PointState state;
    QString text;
  };
  struct Label {
    QString text;
    double left;
    double middle;
  };
  /// What depends on the pixels of the screen alone.
  struct Sprites {
    double ratio;
    double size;
    std::array<QImage, kPointStates> marks;
    QImage selected;
    QImage marked;
  };

  std::array<std::vector<Seen>, kPointStates> See(const MapCamera& camera, std::size_t* all) const;
  static double MarkSize(std::size_t points);
  /// None stands in `kept`.
  std::vector<Label> PlaceLabels(const MapCamera& camera, const std::array<std::vector<Seen>, kPointStates>& seen,
                                 double mark, const QRectF& kept);
  void DrawGridLines(QPainter& painter, const MapCamera& camera) const;
  void WriteGrid(QPainter& painter, const MapCamera& camera) const;
  std::vector<LegendLine> LegendLines() const;
  /// Where the legend covers the fewest points.
  QRectF PlaceLegend(const MapCamera& camera, const std::array<std::vector<Seen>, kPointStates>& seen,
                     QSizeF size) const;
  void DrawLegend(QPainter& painter, const QRectF& box, const QString& title,
                  const std::vector<LegendLine>& lines) const;
  void PrepareSprites(double ratio, double size);

  const PointSet& points_;
  QFont font_;
  std::vector<int> selected_;
  std::vector<int> marked_;
  std::unique_ptr<Letters> letters_;
  Sprites sprites_{};
  std::vector<quint64> taken_;  ///< pixels that a mark of the state being drawn stands on
};

}  // namespace korvo
