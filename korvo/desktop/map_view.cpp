#include "korvo/desktop/map_view.h"

#include <QBuffer>
#include <QFontMetricsF>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPdfWriter>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>
#include <new>
#include <optional>
#include <string>

#include "base/path.h"
#include "korvo/desktop/edge.h"
#include "korvo/desktop/text.h"
#include "platform/save.h"
#include "platform/system.h"

namespace korvo {

namespace {

constexpr double kPickRadius = 8;
constexpr double kDragFrom = 4;
constexpr double kStep = 1.25;
constexpr double kLeastScale = 1e-5;
constexpr double kMostScale = 5000;
constexpr double kScaleToTellPoints = 2;
constexpr double kWheelNotch = 120;
constexpr double kPictureRatio = 2;

bool SavePicture(const QString& path, const QByteArray& picture, QString* why) {
  const std::optional<std::string> target = path::FromDisk(path.toStdString());
  if (!target) {
    *why = QStringLiteral("Der Pfad enthält Zeichen, die Korvo nicht kennt (nicht in Windows-1252).");
    return false;
  }
  if (picture.isEmpty()) throw std::bad_alloc();  // nothing else keeps it from being made
  platform::FileSaver file;
  if (file.Open(*target) && file.Write(picture.data(), static_cast<std::size_t>(picture.size())) && file.Commit()) {
    return true;
  }
  *why = AsLine(platform::SystemErrorText(platform::LastSystemError()));
  return false;
}

}  // namespace

MapView::MapView(const PointSet& points, const Edge& edge, QWidget* parent)
    : QWidget(parent), points_(points), edge_(edge), painter_(points) {
  setAttribute(Qt::WA_OpaquePaintEvent);
  setMouseTracking(true);
  setFocusPolicy(Qt::StrongFocus);
  setAccessibleName(QStringLiteral("Karte der Punkte"));
}

void MapView::Redraw() {
  picture_ = {};
  update();
}

void MapView::PointsRead() {
  painter_.SetSelected({});
  painter_.SetMarked({});
  hover_ = -1;
  pkn_ = points_.FindColumn("NE_PKN");
  if (all_) ShowAll();
  Redraw();
}

void MapView::PointChanged() { Redraw(); }

void MapView::SetSelected(std::vector<int> points) {
  painter_.SetSelected(std::move(points));
  Redraw();
}

void MapView::SetMarked(std::vector<int> points) {
  painter_.SetMarked(std::move(points));
  Redraw();
}

void MapView::SetPicking(bool picking) {
  picking_ = picking;
  setCursor(picking ? Qt::CrossCursor : Qt::ArrowCursor);
  update();
}

void MapView::ShowAll() {
  all_ = true;
  camera_.size = size();
  camera_.Fit(points_.bounds());
  Redraw();
}

void MapView::ShowPoints(const std::vector<int>& points) {
  MapBox box;
  bool any = false;
  for (const int point : points) {
    if (!points_.HasPlace(point)) continue;
    const double east = points_.East(point);
    const double north = points_.North(point);
    if (!any) box = {east, north, east, north};
    any = true;
    box = {std::min(box.west, east), std::min(box.south, north), std::max(box.east, east), std::max(box.north, north)};
  }
  if (!any) return;
  all_ = false;
  camera_.Fit(box);
  Redraw();
}

void MapView::CentreOn(int point) {
  if (point < 0 || !points_.HasPlace(point)) return;
  all_ = false;
  camera_.east = points_.East(point);
  camera_.north = points_.North(point);
  camera_.scale = std::max(camera_.scale, kScaleToTellPoints);
  Redraw();
}

void MapView::BringIntoView(int point) {
  if (point < 0 || !points_.HasPlace(point)) return;
  const QPointF at = PlaceOf(point);
  const QRectF inner = QRectF(rect()).adjusted(kPickRadius, kPickRadius, -kPickRadius, -kPickRadius);
  if (inner.contains(at)) return;
  Pan({std::clamp(at.x(), inner.left(), inner.right()) - at.x(),
       std::clamp(at.y(), inner.top(), inner.bottom()) - at.y()});
}

void MapView::Zoom(double factor, QPointF around) {
  const double east = camera_.EastAt(around.x());
  const double north = camera_.NorthAt(around.y());
  all_ = false;
  camera_.scale = std::clamp(camera_.scale * factor, kLeastScale, kMostScale);
  camera_.east += east - camera_.EastAt(around.x());
  camera_.north += north - camera_.NorthAt(around.y());
  Redraw();
}

void MapView::Pan(QPointF by) {
  all_ = false;
  camera_.east -= by.x() / camera_.scale;
  camera_.north += by.y() / camera_.scale;
  Redraw();
}

int MapView::PointAt(QPointF place) const {
  return points_.Nearest(camera_.EastAt(place.x()), camera_.NorthAt(place.y()), kPickRadius / camera_.scale);
}

QPointF MapView::PlaceOf(int point) const { return camera_.ToPicture(points_.East(point), points_.North(point)); }

bool MapView::event(QEvent* event) {
  bool known = true;
  edge_.Run([&] { known = QWidget::event(event); });
  return known;
}

void MapView::paintEvent(QPaintEvent* /*event*/) {
  if (picture_.isNull()) picture_ = painter_.Picture(camera_, devicePixelRatioF());
  QPainter painter(this);
  painter.drawImage(0, 0, picture_);
  painter.setRenderHint(QPainter::Antialiasing);
  if (!points_.HasAnyPlace()) {
    painter.setPen(palette().color(QPalette::PlaceholderText));
    painter.drawText(rect(), Qt::AlignCenter, QStringLiteral("Keine Punkte mit Koordinaten"));
  }
  if (!painter_.selected().empty() && painter_.selected().front() != hover_) {
    DrawTag(painter, painter_.selected().front());
  }
  if (hover_ >= 0) DrawTag(painter, hover_);
  if (picking_ || hasFocus()) {
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(picking_ ? QColor(0xf2, 0x8c, 0x00) : palette().color(QPalette::Highlight), picking_ ? 3 : 1));
    painter.drawRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5));
  }
}

void MapView::DrawTag(QPainter& painter, int point) const {
  if (!points_.HasPlace(point)) return;
  constexpr double kInset = 5;
  constexpr double kAway = 12;
  const QPointF at = PlaceOf(point);
  if (!rect().contains(at.toPoint())) return;
  const QFontMetricsF metrics(painter_.font());
  const auto line = [&](const QString& all) { return metrics.elidedText(all, Qt::ElideMiddle, width() / 3.0); };
  QString text = line(QStringLiteral("Punkt ") + AsLine(points_.Number(point)).trimmed());
  const QString pkn = AsLine(points_.Field(point, pkn_));
  if (!pkn.isEmpty()) text += QLatin1Char('\n') + line(QStringLiteral("PKN ") + pkn);
  text += QLatin1Char('\n') + NameOf(points_.State(point));

  painter.setFont(painter_.font());
  const QRectF needed = metrics.boundingRect(QRectF(rect()), Qt::AlignLeft | Qt::AlignTop, text);
  QRectF box(at + QPointF(kAway, kAway), needed.size() + QSizeF(2 * kInset, 2 * kInset));
  if (box.right() > width()) box.moveRight(at.x() - kAway);
  if (box.bottom() > height()) box.moveBottom(at.y() - kAway);
  painter.setPen(QPen(ColourOf(points_.State(point)), 1.4));
  painter.setBrush(QColor(255, 255, 255, 240));
  painter.drawRoundedRect(box, 3, 3);
  painter.setPen(QColor(0x1f, 0x29, 0x37));
  painter.drawText(box.adjusted(kInset, kInset, -kInset + 2, -kInset), Qt::AlignLeft | Qt::AlignTop, text);
}

void MapView::SetHover(int point) {
  if (point == hover_) return;
  hover_ = point;
  update();
}

void MapView::resizeEvent(QResizeEvent* /*event*/) {
  camera_.size = size();
  if (all_) ShowAll();
  Redraw();
}

void MapView::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton && event->button() != Qt::MiddleButton) return;
  pressed_ = true;
  dragging_ = event->button() == Qt::MiddleButton;
  pressed_at_ = last_ = event->position();
}

void MapView::mouseMoveEvent(QMouseEvent* event) {
  const QPointF at = event->position();
  Q_EMIT CursorAt(camera_.EastAt(at.x()), camera_.NorthAt(at.y()));
  if (!pressed_) return SetHover(PointAt(at));
  if (!dragging_ && (at - pressed_at_).manhattanLength() < kDragFrom) return;
  dragging_ = true;
  SetHover(-1);
  Pan(at - last_);
  last_ = at;
}

void MapView::mouseReleaseEvent(QMouseEvent* event) {
  const bool click = pressed_ && !dragging_;
  pressed_ = dragging_ = false;
  if (click) Q_EMIT Clicked(PointAt(event->position()), event->modifiers().testFlag(Qt::ControlModifier));
}

void MapView::mouseDoubleClickEvent(QMouseEvent* event) { Zoom(2, event->position()); }

void MapView::wheelEvent(QWheelEvent* event) {
  Zoom(std::pow(kStep, event->angleDelta().y() / kWheelNotch), event->position());
  event->accept();
}

void MapView::keyPressEvent(QKeyEvent* event) {
  const double step = width() / 8.0;
  switch (event->key()) {
    case Qt::Key_Left:
      return Pan({step, 0});
    case Qt::Key_Right:
      return Pan({-step, 0});
    case Qt::Key_Up:
      return Pan({0, step});
    case Qt::Key_Down:
      return Pan({0, -step});
    case Qt::Key_Plus:
      return Zoom(kStep, QRectF(rect()).center());
    case Qt::Key_Minus:
      return Zoom(1 / kStep, QRectF(rect()).center());
    default:
      QWidget::keyPressEvent(event);
  }
}

void MapView::leaveEvent(QEvent* /*event*/) {
  SetHover(-1);
  Q_EMIT CursorLeft();
}

bool MapView::SavePng(const QString& path, const QString& title, QString* why) {
  QImage image((camera_.size * kPictureRatio).toSize(), QImage::Format_RGB32);
  image.setDevicePixelRatio(kPictureRatio);
  QPainter painter(&image);
  painter_.Draw(painter, camera_, title);
  painter.end();
  QBuffer picture;
  image.save(&picture, "PNG");
  return SavePicture(path, picture.data(), why);
}

bool MapView::SavePdf(const QString& path, const QString& title, QString* why) {
  QBuffer picture;
  picture.open(QIODevice::WriteOnly);
  {
    QPdfWriter writer(&picture);
    writer.setTitle(title);
    writer.setPageSize(QPageSize(QPageSize::A4));
    writer.setPageOrientation(QPageLayout::Landscape);
    writer.setPageMargins(QMarginsF(10, 10, 10, 10), QPageLayout::Millimeter);
    QPainter painter(&writer);
    // The widget's part of the map, as large as the page holds it.
    const double factor = std::min(writer.width() / camera_.size.width(), writer.height() / camera_.size.height());
    painter.scale(factor, factor);
    painter_.Draw(painter, camera_, title);
  }
  return SavePicture(path, picture.data(), why);
}

}  // namespace korvo
