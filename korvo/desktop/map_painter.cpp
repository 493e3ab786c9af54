#include "korvo/desktop/map_painter.h"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <algorithm>
#include <cmath>
#include <limits>

#include "korvo/desktop/text.h"

namespace korvo {

namespace {

constexpr double kMargin = 40;        // of a fitted picture
constexpr double kLeastExtent = 10;   // metres
constexpr double kGridSpacing = 110;  // units at least
constexpr double kScaleBar = 90;      // units at least
constexpr std::size_t kFew = 3000;    // points with large marks, and with labels
constexpr std::size_t kMany = 20000;  // points with marks of middle size
constexpr double kLabelCell = 4;      // units
constexpr double kEdge = 60;          // units for the northings
constexpr int kFontPixels = 11;
constexpr double kLegendInset = 8;
constexpr double kLegendMark = 9;
constexpr double kLegendGap = 3;  // between lines
const QColor kGround(0xfb, 0xfb, 0xf8);
const QColor kGridLine(0xdf, 0xe4, 0xea);
const QColor kFrame(0x37, 0x41, 0x51);
const QColor kSelectedRing(0xf2, 0x8c, 0x00);
const QColor kMarkedRing(0xb4, 0x1f, 0xb8);

/// "649 900" with thin spaces, decimals where the steps need them.
QString Coordinate(double value, double step) {
  const int decimals = step >= 1 ? 0 : static_cast<int>(std::ceil(-std::log10(step) - 1e-9));
  QString text = QString::number(std::abs(value), 'f', decimals);
  const auto whole = text.size() - (decimals > 0 ? decimals + 1 : 0);
  for (auto at = whole - 3; at > 0; at -= 3) text.insert(at, QChar(0x2009));
  if (decimals > 0) text.replace(QLatin1Char('.'), QLatin1Char(','));
  return value < 0 ? QChar(0x2212) + text : text;
}

/// The multiples of a step in a range.
std::vector<double> GridValues(double from, double to, double step) {
  std::vector<double> values;
  const double first = std::ceil(from / step);
  const int count = static_cast<int>(std::floor(to / step) - first) + 1;
  values.reserve(static_cast<std::size_t>(std::max(count, 0)));
  for (int i = 0; i < count; ++i) values.push_back((first + i) * step);
  return values;
}

QString Length(double metres) {
  if (metres >= 1000) return QString::number(metres / 1000) + QStringLiteral(" km");
  if (metres >= 1) return QString::number(metres) + QStringLiteral(" m");
  if (metres >= 0.01) return QString::number(metres * 100) + QStringLiteral(" cm");
  return QString::number(metres * 1000) + QStringLiteral(" mm");
}

/// Where labels stand already, in cells of a few units.
class Occupied {
 public:
  explicit Occupied(QSizeF size)
      : across_(static_cast<int>(size.width() / kLabelCell) + 1),
        down_(static_cast<int>(size.height() / kLabelCell) + 1),
        cells_(static_cast<std::size_t>(across_) * static_cast<std::size_t>(down_)) {}

  void Take(const QRectF& box) {
    Walk(box, [](char& cell) {
      cell = 1;
      return true;
    });
  }
  bool Free(const QRectF& box) {
    return box.left() >= 0 && box.top() >= 0 && box.right() < across_ * kLabelCell &&
           box.bottom() < down_ * kLabelCell && Walk(box, [](char cell) { return cell == 0; });
  }

 private:
  template <typename See>
  bool Walk(const QRectF& box, See see) {
    const int left = std::max(0, static_cast<int>(box.left() / kLabelCell));
    const int right = std::min(across_ - 1, static_cast<int>(box.right() / kLabelCell));
    const int top = std::max(0, static_cast<int>(box.top() / kLabelCell));
    const int bottom = std::min(down_ - 1, static_cast<int>(box.bottom() / kLabelCell));
    for (int y = top; y <= bottom; ++y) {
      for (int x = left; x <= right; ++x) {
        if (!see(cells_[static_cast<std::size_t>(y) * static_cast<std::size_t>(across_) +
                        static_cast<std::size_t>(x)])) {
          return false;
        }
      }
    }
    return true;
  }

  int across_;
  int down_;
  std::vector<char> cells_;
};

}  // namespace

MapBox MapCamera::Seen(double margin) const {
  return {EastAt(-margin), NorthAt(size.height() + margin), EastAt(size.width() + margin), NorthAt(-margin)};
}

void MapCamera::Fit(const MapBox& box) {
  east = (box.west + box.east) / 2;
  north = (box.south + box.north) / 2;
  const double width = std::max(1.0, size.width() - 2 * kMargin);
  const double height = std::max(1.0, size.height() - 2 * kMargin);
  scale = std::min(width / std::max(kLeastExtent, box.east - box.west),
                   height / std::max(kLeastExtent, box.north - box.south));
}

double RoundLength(double length) {
  const double power = std::pow(10, std::floor(std::log10(length)));
  for (const double factor : {1.0, 2.0, 5.0}) {
    if (factor * power >= length) return factor * power;
  }
  return 10 * power;
}

MapPainter::MapPainter(const PointSet& points) : points_(points) { font_.setPixelSize(kFontPixels); }

std::array<std::vector<MapPainter::Seen>, kPointStates> MapPainter::See(const MapCamera& camera,
                                                                        std::size_t* all) const {
  constexpr double kMarkMargin = 12;
  std::array<std::vector<Seen>, kPointStates> seen;
  *all = 0;
  points_.ForEachIn(camera.Seen(kMarkMargin), [&](int point, double east, double north) {
    seen[static_cast<std::size_t>(points_.State(point))].push_back({point, camera.ToPicture(east, north)});
    ++*all;
  });
  return seen;
}

double MapPainter::MarkSize(std::size_t points) { return points <= kFew ? 9 : points <= kMany ? 6 : 4; }

void MapPainter::PrepareSprites(double ratio, double size) {
  if (letters_ == nullptr || sprites_.ratio != ratio) letters_ = std::make_unique<Letters>(font_, ratio);
  if (sprites_.ratio == ratio && sprites_.size == size) return;
  sprites_.ratio = ratio;
  sprites_.size = size;
  for (int i = 0; i < kPointStates; ++i) {
    sprites_.marks[static_cast<std::size_t>(i)] = MarkSprite(static_cast<PointState>(i), size, ratio);
  }
  sprites_.selected = RingSprite(kSelectedRing, size, ratio);
  sprites_.marked = RingSprite(kMarkedRing, size * 0.8, ratio);
}

QImage MapPainter::Picture(const MapCamera& camera, double ratio) {
  std::size_t all = 0;
  const std::array<std::vector<Seen>, kPointStates> seen = See(camera, &all);
  const double mark = MarkSize(all);
  PrepareSprites(ratio, mark);

  QImage picture((camera.size * ratio).toSize(), QImage::Format_RGB32);
  if (picture.isNull()) return picture;
  picture.setDevicePixelRatio(ratio);
  picture.fill(kGround);
  {
    QPainter painter(&picture);
    DrawGridLines(painter, camera);
  }
  const auto pixel = [ratio](double units) { return static_cast<int>(std::lround(units * ratio)); };
  const auto ring = [&](const std::vector<int>& points, const QImage& sprite) {
    const MapBox box = camera.Seen(mark * 2);
    for (const int point : points) {
      const double east = points_.East(point);
      const double north = points_.North(point);
      if (!points_.HasPlace(point) || east < box.west || east > box.east || north < box.south || north > box.north) {
        continue;
      }
      const QPointF at = camera.ToPicture(east, north);
      PutSprite(&picture, sprite, pixel(at.x()), pixel(at.y()));
    }
  };
  ring(marked_, sprites_.marked);
  const auto width = static_cast<std::size_t>(picture.width());
  const std::size_t pixels = width * static_cast<std::size_t>(picture.height());
  for (std::size_t state = 0; state < seen.size(); ++state) {
    if (seen[state].empty()) continue;
    // Of many points in one pixel the first is enough.
    taken_.assign(pixels / 64 + 1, 0);
    for (const Seen& s : seen[state]) {
      const int x = pixel(s.at.x());
      const int y = pixel(s.at.y());
      if (x >= 0 && y >= 0 && x < picture.width() && y < picture.height()) {
        const std::size_t bit = static_cast<std::size_t>(y) * width + static_cast<std::size_t>(x);
        const quint64 mask = quint64{1} << (bit % 64);
        if ((taken_[bit / 64] & mask) != 0) continue;
        taken_[bit / 64] |= mask;
      }
      PutSprite(&picture, sprites_.marks[state], x, y);
    }
  }
  ring(selected_, sprites_.selected);
  if (all <= kFew) {
    for (const Label& label : PlaceLabels(camera, seen, mark, {})) {
      letters_->Write(&picture, label.text, label.left, label.middle);
    }
  }
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::Antialiasing);
  WriteGrid(painter, camera);
  return picture;
}

std::vector<MapPainter::Label> MapPainter::PlaceLabels(const MapCamera& camera,
                                                       const std::array<std::vector<Seen>, kPointStates>& seen,
                                                       double mark, const QRectF& kept) {
  const double height = QFontMetricsF(font_).height() - 2;
  Occupied occupied(camera.size);
  // The edges belong to the coordinates, a corner to the scale bar.
  const QSizeF size = camera.size;
  occupied.Take({0, size.height() - 2 * height, size.width(), 2 * height});
  occupied.Take({0, 0, kEdge, size.height()});
  const double bar = RoundLength(kScaleBar / camera.scale) * camera.scale + kEdge / 2;
  occupied.Take({size.width() - bar, size.height() - 4 * height, bar, 4 * height});
  occupied.Take(kept);

  std::vector<Label> labels;
  const auto place = [&](const Seen& s) {
    const QString text = AsLine(points_.Number(s.point)).trimmed();
    if (text.isEmpty()) return;
    const double width = letters_->Width(text);
    const double gap = mark / 2 + kLabelCell;
    const QPointF corners[] = {s.at + QPointF(gap, -height / 2), s.at + QPointF(-gap - width, -height / 2),
                               s.at + QPointF(-width / 2, -gap - height), s.at + QPointF(-width / 2, gap)};
    for (const QPointF& corner : corners) {
      const QRectF box(corner, QSizeF(width, height));
      if (!occupied.Free(box)) continue;
      occupied.Take(box);
      labels.push_back({text, corner.x(), corner.y() + height / 2});
      return;
    }
  };
  // Points with attributes come first and may cover marks, the others go where they cover none, in the order of the
  // table, so that a label stays while one pans.
  for (std::size_t state = seen.size(); state-- > 0;) {
    if (state == 0) {
      for (const std::vector<Seen>& all : seen) {
        for (const Seen& s : all) occupied.Take(QRectF(s.at - QPointF(mark, mark) / 2, QSizeF(mark, mark)));
      }
    }
    std::vector<Seen> wanted = seen[state];
    std::sort(wanted.begin(), wanted.end(), [](const Seen& a, const Seen& b) { return a.point < b.point; });
    for (const Seen& s : wanted) place(s);
  }
  return labels;
}

void MapPainter::DrawGridLines(QPainter& painter, const MapCamera& camera) const {
  if (!points_.HasAnyPlace()) return;
  const double step = RoundLength(kGridSpacing / camera.scale);
  const MapBox box = camera.Seen(0);
  painter.setPen(QPen(kGridLine, 1));
  for (const double e : GridValues(box.west, box.east, step)) {
    const double x = std::floor(camera.ToPicture(e, 0).x()) + 0.5;
    painter.drawLine(QPointF(x, 0), QPointF(x, camera.size.height()));
  }
  for (const double n : GridValues(box.south, box.north, step)) {
    const double y = std::floor(camera.ToPicture(0, n).y()) + 0.5;
    painter.drawLine(QPointF(0, y), QPointF(camera.size.width(), y));
  }
}

void MapPainter::WriteGrid(QPainter& painter, const MapCamera& camera) const {
  if (!points_.HasAnyPlace()) return;
  constexpr double kInset = 4;
  painter.setFont(font_);
  const QFontMetricsF metrics(font_);
  const double step = RoundLength(kGridSpacing / camera.scale);
  const MapBox box = camera.Seen(0);
  const double bottom = camera.size.height() - metrics.height() / 2 - kInset;

  const double bar = RoundLength(kScaleBar / camera.scale);
  const double right = camera.size.width() - 3 * kInset;
  const double left = right - bar * camera.scale;
  const double bar_bottom = bottom - metrics.height() - kInset;
  for (const double e : GridValues(box.west, box.east, step)) {
    const QString text = Coordinate(e, step);
    const double width = metrics.horizontalAdvance(text);
    const double x = camera.ToPicture(e, 0).x() - width / 2;
    if (x > kInset && x + width < camera.size.width() - kInset) WriteWithHalo(painter, text, x, bottom);
  }
  for (const double n : GridValues(box.south, box.north, step)) {
    const double y = camera.ToPicture(0, n).y();
    if (y > metrics.height() && y < bottom - 1.5 * metrics.height()) {
      WriteWithHalo(painter, Coordinate(n, step), kInset, y);
    }
  }
  for (const QPen& pen : {QPen(Qt::white, 4, Qt::SolidLine, Qt::SquareCap), QPen(kFrame, 1.6)}) {
    painter.setPen(pen);
    painter.drawLine(QPointF(left, bar_bottom), QPointF(right, bar_bottom));
    painter.drawLine(QPointF(left, bar_bottom - kInset), QPointF(left, bar_bottom));
    painter.drawLine(QPointF(right, bar_bottom - kInset), QPointF(right, bar_bottom));
  }
  const QString length = Length(bar);
  WriteWithHalo(painter, length, (left + right - metrics.horizontalAdvance(length)) / 2,
                bar_bottom - metrics.height() / 2 - kInset);
}

void MapPainter::Draw(QPainter& painter, const MapCamera& camera, const QString& name) {
  std::size_t all = 0;
  const std::array<std::vector<Seen>, kPointStates> seen = See(camera, &all);
  const double mark = MarkSize(all);
  const QFontMetricsF metrics(font_);
  const std::vector<LegendLine> lines = LegendLines();
  const QString title = metrics.elidedText(name, Qt::ElideMiddle, camera.size.width() / 3);
  double width = metrics.horizontalAdvance(title);
  for (const LegendLine& line : lines) width = std::max(width, metrics.horizontalAdvance(line.text) + 2 * kLegendMark);
  const double height = (metrics.height() + kLegendGap) * static_cast<double>(lines.size() + 1) + kLegendInset;
  const QRectF legend = PlaceLegend(camera, seen, {width + 2 * kLegendInset, height});
  if (letters_ == nullptr) PrepareSprites(1, mark);
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setClipRect(QRectF(QPointF(0, 0), camera.size));
  painter.fillRect(QRectF(QPointF(0, 0), camera.size), kGround);
  DrawGridLines(painter, camera);
  for (std::size_t state = 0; state < seen.size(); ++state) {
    for (const Seen& s : seen[state]) DrawMark(painter, static_cast<PointState>(state), s.at, mark);
  }
  if (all <= kFew) {
    painter.setFont(font_);
    for (const Label& label : PlaceLabels(camera, seen, mark, legend)) {
      WriteWithHalo(painter, label.text, label.left, label.middle);
    }
  }
  WriteGrid(painter, camera);
  DrawLegend(painter, legend, title, lines);
  painter.setPen(QPen(kFrame, 1));
  painter.setBrush(Qt::NoBrush);
  painter.drawRect(QRectF(QPointF(0.5, 0.5), camera.size - QSizeF(1, 1)));
  painter.restore();
}

std::vector<MapPainter::LegendLine> MapPainter::LegendLines() const {
  std::vector<LegendLine> lines;
  for (int i = 0; i < kPointStates; ++i) {
    const auto state = static_cast<PointState>(i);
    if (points_.CountOf(state) == 0) continue;
    lines.push_back({state, QStringLiteral("%1 (%2)").arg(NameOf(state)).arg(points_.CountOf(state))});
  }
  return lines;
}

QRectF MapPainter::PlaceLegend(const MapCamera& camera, const std::array<std::vector<Seen>, kPointStates>& seen,
                               QSizeF size) const {
  const double right = camera.size.width() - size.width() - kLegendInset;
  const double bottom = camera.size.height() - size.height() - 3 * QFontMetricsF(font_).height();
  QRectF best;
  std::size_t fewest = std::numeric_limits<std::size_t>::max();
  // The fourth corner is the scale bar's.
  for (const QPointF& corner : {QPointF(right, kLegendInset), QPointF(kEdge, kLegendInset), QPointF(kEdge, bottom)}) {
    const QRectF box(corner, size);
    std::size_t covered = 0;
    for (const std::vector<Seen>& all : seen) {
      covered += static_cast<std::size_t>(
          std::count_if(all.begin(), all.end(), [&](const Seen& s) { return box.contains(s.at); }));
    }
    if (covered < fewest) best = box;
    fewest = std::min(fewest, covered);
  }
  return best;
}

void MapPainter::DrawLegend(QPainter& painter, const QRectF& box, const QString& title,
                            const std::vector<LegendLine>& lines) const {
  const double line = QFontMetricsF(font_).height() + kLegendGap;
  painter.setFont(font_);
  painter.setPen(QPen(kGridLine, 1));
  painter.setBrush(Qt::white);
  painter.drawRect(box);
  double middle = box.top() + kLegendInset / 2 + line / 2;
  WriteWithHalo(painter, title, box.left() + kLegendInset, middle);
  for (const auto& [state, text] : lines) {
    middle += line;
    DrawMark(painter, state, {box.left() + kLegendInset + kLegendMark / 2, middle}, kLegendMark);
    WriteWithHalo(painter, text, box.left() + kLegendInset + 2 * kLegendMark, middle);
  }
}

}  // namespace korvo
