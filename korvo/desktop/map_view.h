// The map of all points as a widget.
#pragma once

#include <QImage>
#include <QWidget>
#include <functional>
#include <vector>

#include "korvo/desktop/map_painter.h"

namespace korvo {

class Edge;

class MapView : public QWidget {
  Q_OBJECT

 public:
  /// Both must outlive the view.
  MapView(const PointSet& points, const Edge& edge, QWidget* parent = nullptr);

  /// Points with a ring; the first of them also keeps a tag with its number.
  void SetSelected(std::vector<int> points);
  const std::vector<int>& selected() const { return painter_.selected(); }
  void SetMarked(std::vector<int> points);
  /// Shows that a point is asked for.
  void SetPicking(bool picking);

  void ShowAll();
  void ShowPoints(const std::vector<int>& points);
  /// Keeps the scale, but for one at which the point could not be told from others.
  void CentreOn(int point);
  /// Moves no further than the point needs to be seen.
  void BringIntoView(int point);
  /// Zooms around a place of the widget.
  void Zoom(double factor, QPointF around);
  /// By units of the widget.
  void Pan(QPointF by);
  /// The points were read anew, or `point` alone. What was shown of them is let go in the first case.
  void PointsRead();
  void PointChanged();

  /// The point nearest to a place of the widget, within a few pixels; -1 for none.
  int PointAt(QPointF place) const;
  QPointF PlaceOf(int point) const;
  const MapCamera& camera() const { return camera_; }

  /// False where the file cannot be written, and `why` says so.
  bool SavePng(const QString& path, const QString& title, QString* why);
  bool SavePdf(const QString& path, const QString& title, QString* why);

  QSize sizeHint() const override { return {700, 560}; }
  QSize minimumSizeHint() const override { return {240, 200}; }

 Q_SIGNALS:
  /// -1 where no point is near. `add`: to what is selected already.
  void Clicked(int point, bool add);
  void CursorAt(double east, double north);
  void CursorLeft();

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void leaveEvent(QEvent* event) override;

 private:
  void Redraw();
  void DrawTag(QPainter& painter, int point) const;
  void SetHover(int point);

  const PointSet& points_;
  const Edge& edge_;
  MapPainter painter_;
  MapCamera camera_;
  QImage picture_;   ///< null: to be drawn
  bool all_ = true;  ///< shows all points, whatever size it gets
  int hover_ = -1;
  int pkn_ = -1;  ///< column
  bool picking_ = false;
  bool pressed_ = false;
  bool dragging_ = false;
  QPointF pressed_at_;
  QPointF last_;
};

}  // namespace korvo
