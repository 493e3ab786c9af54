#include "korvo/desktop/bench.h"

#include <QApplication>
#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QEvent>
#include <QFile>
#include <QGraphicsItem>
#include <QGraphicsScene>
#include <QGraphicsView>
#include <QSettings>
#include <QTemporaryDir>
#include <QThread>
#include <QWindow>
#include <algorithm>
#include <array>
#include <cstdio>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "korvo/desktop/main_window.h"
#include "korvo/desktop/point_model.h"
#include "korvo/desktop/sprites.h"
#include "korvo/host/project.h"

namespace korvo {

namespace {

constexpr int kPoints = 100'000;
constexpr int kPictures = 60;
constexpr int kPicks = 10'000;
constexpr QSize kSize(1900, 1000);
constexpr double kExtent = 5000;   // metres
constexpr int kPatience = 10'000;  // milliseconds until a window is on the screen

void PutNumber(QByteArray* bytes, int value, int size) {
  for (int i = 0; i < size; ++i) bytes->append(static_cast<char>(value >> (8 * i)));
}

/// A point table with attributes at every tenth point.
bool WriteTable(const QString& path) {
  struct Field {
    const char* name;
    char type;
    int width;
    int decimals;
  };
  constexpr Field kFields[] = {{"PT_NO", 'C', 15, 0},   {"EAST", 'N', 14, 4},   {"NORTH", 'N', 14, 4},
                               {"ELEV", 'N', 10, 5},    {"NE_PKN", 'C', 20, 0}, {"NE_PO", 'N', 2, 0},
                               {"NE_AKTION", 'N', 8, 0}};
  int record = 1;
  for (const Field& field : kFields) record += field.width;
  QByteArray bytes("\x03\x7e\x03\x02", 4);
  PutNumber(&bytes, kPoints, 4);
  PutNumber(&bytes, 33 + 32 * static_cast<int>(std::size(kFields)), 2);
  PutNumber(&bytes, record, 2);
  bytes.append(20, '\0');
  for (const Field& field : kFields) {
    bytes += QByteArray(field.name).leftJustified(11, '\0') + field.type + QByteArray(4, '\0');
    PutNumber(&bytes, field.width, 1);
    PutNumber(&bytes, field.decimals, 1);
    bytes.append(14, '\0');
  }
  bytes += '\r';
  std::mt19937 random(20161);  // NOLINT(cert-msc32-c,cert-msc51-cpp): the same points on every machine
  std::uniform_real_distribution<double> place(0, kExtent);
  for (int i = 0; i < kPoints; ++i) {
    std::array<char, 128> line{};
    std::snprintf(line.data(), line.size(), " %-15d%14.4f%14.4f%10.5f%-20d%2d%8d", 100'000 + i, 648'000 + place(random),
                  5'650'000 + place(random), 200.0, i, i % 10 == 0 ? 1 : 0, i / 10 % 3);
    bytes += QByteArray(line.data(), record);
  }
  QFile file(path);
  return file.open(QIODevice::WriteOnly) && file.write(bytes + '\x1a') > 0;
}

/// The bare scene: all points in one item, each drawn as a round dot by the toolkit.
class Dots : public QGraphicsItem {
 public:
  explicit Dots(const PointSet& points) {
    for (int i = 0; i < points.count(); ++i) {
      dots_[static_cast<std::size_t>(points.State(i))].append({points.East(i), -points.North(i)});
    }
    const MapBox& box = points.bounds();
    box_ = QRectF(QPointF(box.west, -box.north), QPointF(box.east, -box.south));
  }
  QRectF boundingRect() const override { return box_; }
  int drawn() const { return drawn_; }
  void paint(QPainter* painter, const QStyleOptionGraphicsItem* /*option*/, QWidget* /*widget*/) override {
    ++drawn_;
    for (std::size_t i = 0; i < dots_.size(); ++i) {
      QPen pen(ColourOf(static_cast<PointState>(i)), 5, Qt::SolidLine, Qt::RoundCap);
      pen.setCosmetic(true);
      painter->setPen(pen);
      painter->drawPoints(dots_[i]);
    }
  }

 private:
  std::array<QPolygonF, kPointStates> dots_;
  QRectF box_;
  int drawn_ = 0;
};

class CountPaints : public QObject {
 public:
  explicit CountPaints(QWidget* of) { of->installEventFilter(this); }
  int count() const { return count_; }

 protected:
  bool eventFilter(QObject* of, QEvent* event) override {
    if (event->type() == QEvent::Paint) ++count_;
    return QObject::eventFilter(of, event);
  }

 private:
  int count_ = 0;
};

/// Runs events until the window is on the screen: before that it draws nothing. False where it does not come there.
bool Appears(QWidget* widget) {
  widget->show();
  const QDeadlineTimer deadline(kPatience);
  while (!widget->windowHandle()->isExposed() && !deadline.hasExpired()) {
    QApplication::processEvents();
    QThread::msleep(1);
  }
  QApplication::processEvents();
  return widget->windowHandle()->isExposed();
}

int Fail(const char* why) {
  std::fprintf(stderr, "korvo: Nicht gemessen: %s\n", why);
  return 1;
}

double Seconds(const std::function<void()>& work) {
  QElapsedTimer timer;
  timer.start();
  work();
  return static_cast<double>(timer.nsecsElapsed()) / 1e9;
}

/// The middle of three, since the machine may have other work.
double Usual(const std::function<void()>& work) {
  std::array<double, 3> runs{};
  for (double& run : runs) run = Seconds(work);
  std::sort(runs.begin(), runs.end());
  return runs[1];
}

void Line(const char* what, double map, double bare, const char* unit) {
  if (bare > 0) {
    std::printf("%-44s %12.2f %12.2f  %s\n", what, map, bare, unit);
  } else {
    std::printf("%-44s %12.2f %12s  %s\n", what, map, "-", unit);
  }
}

}  // namespace

int RunBench() {
  QTemporaryDir folder;
  if (!folder.isValid() || !WriteTable(folder.filePath(QStringLiteral("punkte.dbf")))) {
    return Fail("Die Punkttabelle ließ sich nicht schreiben.");
  }
  // What is opened here is none of the person's projects.
  QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, folder.path());
  Waits waits;
  MainWindow window(waits, {});
  window.resize(kSize);
  QGraphicsScene scene;
  QGraphicsView view(&scene);
  view.setDragMode(QGraphicsView::ScrollHandDrag);
  bool appear = Appears(&window);
  MapView& map = window.map();
  view.resize(map.size());
  appear = Appears(&view) && appear;
  if (!appear) return Fail("Die Fenster kommen nicht auf den Bildschirm.");

  // No event is run from here on: only what is asked for is drawn.
  const CountPaints drawn(&map);
  int asked = 0;
  int bare_asked = 0;
  const auto draw = [&] {
    ++asked;
    map.repaint();
  };
  const auto draw_bare = [&] {
    ++bare_asked;
    view.viewport()->repaint();
  };
  const double first = Seconds([&] {
    window.Open(folder.path());
    draw();
  });
  if (window.points().count() != kPoints) return Fail("Die Punkttabelle ließ sich nicht lesen.");
  Dots* dots = nullptr;
  const double bare_first = Seconds([&] {
    scene.addItem(dots = new Dots(window.points()));
    view.fitInView(scene.sceneRect(), Qt::KeepAspectRatio);
    draw_bare();
  });
  const double first_again = Usual([&] {
    map.ShowAll();
    draw();
  });

  const QPointF middle = QRectF(map.rect()).center();
  const double pan = Usual([&] {
    for (int i = 0; i < kPictures; ++i) {
      map.Pan({i % 2 == 0 ? 7.0 : -7.0, 3});
      draw();
    }
    map.ShowAll();
  });
  const double bare_pan = Usual([&] {
    for (int i = 0; i < kPictures; ++i) {
      view.translate(i % 2 == 0 ? 7 : -7, 3);
      view.viewport()->update();
      draw_bare();
    }
  });
  const double zoom = Usual([&] {
    map.ShowAll();
    for (int i = 0; i < kPictures; ++i) {
      map.Zoom(i < kPictures / 2 ? 1.2 : 1 / 1.2, middle);
      draw();
    }
  });
  const double bare_zoom = Usual([&] {
    for (int i = 0; i < kPictures; ++i) {
      const double factor = i < kPictures / 2 ? 1.2 : 1 / 1.2;
      view.scale(factor, factor);
      draw_bare();
    }
  });
  map.ShowAll();
  int found = 0;
  const double pick = Usual([&] {
    for (int i = 0; i < kPicks; ++i) {
      if (map.PointAt({(i * 37) % map.width() + 0.5, (i * 91) % map.height() + 0.5}) >= 0) ++found;
    }
  });

  if (drawn.count() != asked || dots->drawn() != bare_asked) {
    return Fail("Es wurden nicht so viele Bilder gezeichnet wie verlangt.");
  }
  std::printf("%d Punkte, Karte von %d x %d, ein Bild nach dem anderen gezeichnet (%s)\n", kPoints, map.width(),
              map.height(), QApplication::platformName().toLocal8Bit().constData());
  std::printf("%-44s %12s %12s\n", "", "Korvo", "nur Szene");
  Line("Projekt lesen und erstes Bild", first * 1000, 0, "ms");
  Line("erstes Bild der gelesenen Punkte", first_again * 1000, bare_first * 1000, "ms");
  Line("Verschieben", kPictures / pan, kPictures / bare_pan, "Bilder/s");
  Line("Zoomen", kPictures / zoom, kPictures / bare_zoom, "Bilder/s");
  Line("Punkt treffen", pick / kPicks * 1e6, 0, "µs");
  PointModel table(window.points());
  Line("Tabelle nach Nummern ordnen", Usual([&] { table.sort(0, Qt::DescendingOrder); }) * 1000, 0, "ms");
  Line("Tabelle nach Text in allen Spalten filtern", Usual([&] {
                                                       table.SetFilter({"99999", -1, {}});
                                                     }) * 1000,
       0, "ms");
  CloseProject();
  return found > 0 ? 0 : Fail("Kein Punkt wurde getroffen.");
}

}  // namespace korvo
