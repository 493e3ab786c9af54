#include "korvo/desktop/status_line.h"

#include <QLabel>
#include <QLocale>

#include "korvo/desktop/point_model.h"
#include "korvo/desktop/sprites.h"

namespace korvo {

namespace {

QString Metres(double value) { return QLocale().toString(value, 'f', 3); }

}  // namespace

StatusLine::StatusLine(QWidget* parent) : QStatusBar(parent) {
  for (int i = 0; i < kPointStates; ++i) {
    marks_[static_cast<std::size_t>(i)] = AddLabel();
    marks_[static_cast<std::size_t>(i)]->setPixmap(
        IconOf(static_cast<PointState>(i)).pixmap(QSize(16, 16), devicePixelRatioF()));
    counts_[static_cast<std::size_t>(i)] = AddLabel();
  }
  without_place_ = AddLabel();
  place_ = AddLabel();
  place_->setMinimumWidth(fontMetrics().horizontalAdvance(QStringLiteral("E 00.000.000,000   N 0.000.000,000 ")));
  place_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
}

QLabel* StatusLine::AddLabel() {
  auto* label = new QLabel;
  label->setTextFormat(Qt::PlainText);
  addPermanentWidget(label);
  return label;
}

void StatusLine::ShowCounts(const PointSet& points) {
  for (int i = 0; i < kPointStates; ++i) {
    const auto state = static_cast<PointState>(i);
    counts_[static_cast<std::size_t>(i)]->setText(
        QStringLiteral("%1 %2").arg(QLocale().toString(points.CountOf(state)), NameOf(state)));
  }
  const auto unknown = static_cast<std::size_t>(PointState::kUnknown);
  for (QLabel* label : {marks_[unknown], counts_[unknown]}) {
    label->setVisible(points.CountOf(PointState::kUnknown) > 0);
  }
  without_place_->setVisible(points.without_place() > 0);
  without_place_->setText(QStringLiteral("%1 ohne Koordinaten").arg(QLocale().toString(points.without_place())));
}

void StatusLine::ShowPlace(double east, double north) {
  place_->setText(QStringLiteral("E %1   N %2").arg(Metres(east), Metres(north)));
}

void StatusLine::ClearPlace() { place_->clear(); }

}  // namespace korvo
