#include "korvo/desktop/point_set.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

#include "korvo/host/points.h"

namespace korvo {

namespace {

/// Eastings with the number of the zone in front have eight digits, those without have six.
constexpr double kFirstWithZone = 1e7;
constexpr double kZone = 1e6;
constexpr double kOutOfThisWorld = 1e9;
constexpr double kPointsInCell = 4;
constexpr std::size_t kNameLength = 10;

bool IsPadding(char c) { return c == ' ' || c == '\0'; }

std::string_view TrimLeft(std::string_view text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  return text;
}

}  // namespace

void PointSet::Read() {
  *this = {};
  try {
    ReadAll();
  } catch (...) {
    *this = {};
    throw;
  }
}

void PointSet::ReadAll() {
  columns_ = PointTableColumns();
  number_ = FindColumn("PT_NO");
  east_ = FindColumn("EAST");
  north_ = FindColumn("NORTH");
  kind_ = FindColumn("NE_PO");
  action_ = FindColumn("NE_AKTION");
  record_size_ = columns_.empty() ? 0 : columns_.back().offset + static_cast<std::size_t>(columns_.back().width) - 1;
  const std::int32_t all = PointRecords();
  bytes_.reserve(record_size_ * static_cast<std::size_t>(all));
  records_.reserve(static_cast<std::size_t>(all));
  for (std::int32_t i = 1; i <= all; ++i) {
    std::string_view record;
    if (!ReadPointBytes(i, &record)) continue;
    bytes_.append(record.substr(1));
    records_.push_back(i);
  }
  states_.assign(records_.size(), PointState::kPlain);
  places_.assign(records_.size(), {});
  counts_[0] = count();
  for (int i = 0; i < count(); ++i) Interpret(i);
  BuildGrid();
}

int PointSet::Reread(std::int32_t record) {
  const int point = PointOf(record);
  std::string_view bytes;
  if (point < 0 || !ReadPointBytes(record, &bytes) || bytes.size() != record_size_ + 1) {
    Read();
    return -1;
  }
  bytes.substr(1).copy(&bytes_[static_cast<std::size_t>(point) * record_size_], record_size_);
  const Place before = places_[static_cast<std::size_t>(point)];
  Interpret(point);
  const Place& now = places_[static_cast<std::size_t>(point)];
  if (before.here != now.here || before.east != now.east || before.north != now.north) BuildGrid();
  return point;
}

void PointSet::Interpret(int point) {
  const auto at = static_cast<std::size_t>(point);
  PointState state = PointState::kPlain;
  if (static_cast<std::int64_t>(ParseNumber(Field(point, kind_))) != 0) {
    constexpr PointState kActions[] = {PointState::kNew, PointState::kReplace, PointState::kDelete};
    const auto action = static_cast<std::int64_t>(ParseNumber(Field(point, action_)));
    state = action >= 0 && action < std::ssize(kActions) ? kActions[action] : PointState::kUnknown;
  }
  --counts_[static_cast<std::size_t>(states_[at])];
  ++counts_[static_cast<std::size_t>(state)];
  states_[at] = state;

  Place& place = places_[at];
  place.east = ParseNumber(Field(point, east_));
  place.north = ParseNumber(Field(point, north_));
  place.here = place.east != 0 && place.north != 0 && std::abs(place.east) < kOutOfThisWorld &&
               std::abs(place.north) < kOutOfThisWorld;
  if (place.east >= kFirstWithZone) place.east = std::fmod(place.east, kZone);
}

int PointSet::PointOf(std::int32_t record) const {
  const auto found = std::lower_bound(records_.begin(), records_.end(), record);
  return found != records_.end() && *found == record ? static_cast<int>(found - records_.begin()) : -1;
}

int PointSet::FindColumn(std::string_view name) const {
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    if (std::string_view(columns_[i].name).substr(0, kNameLength) == name.substr(0, kNameLength)) {
      return static_cast<int>(i);
    }
  }
  return -1;
}

std::string_view PointSet::Bytes(int point) const {
  return std::string_view(bytes_).substr(static_cast<std::size_t>(point) * record_size_, record_size_);
}

std::string_view PointSet::Field(int point, int column) const {
  if (column < 0) return {};
  const Column& c = columns_[static_cast<std::size_t>(column)];
  std::string_view text = Bytes(point).substr(c.offset - 1, static_cast<std::size_t>(c.width));
  if (c.type == 'C') text = text.substr(0, text.find('\0'));
  while (!text.empty() && IsPadding(text.back())) text.remove_suffix(1);
  return c.type == 'C' ? text : TrimLeft(text);
}

int PointSet::Find(std::string_view number) const {
  int without_blanks = -1;
  for (int i = 0; i < count(); ++i) {
    const std::string_view present = Number(i);
    if (present == number) return i;
    if (without_blanks < 0 && TrimLeft(present) == TrimLeft(number)) without_blanks = i;
  }
  return without_blanks;
}

int PointSet::FindPart(std::string_view part, int after) const {
  for (int i = 1; i <= count() && !part.empty(); ++i) {
    const int point = (std::max(after, -1) + i) % count();
    if (Number(point).find(part) != std::string_view::npos) return point;
  }
  return -1;
}

void PointSet::BuildGrid() {
  placed_.clear();
  bounds_ = {};
  without_place_ = 0;
  for (int i = 0; i < count(); ++i) {
    const Place& p = places_[static_cast<std::size_t>(i)];
    if (!p.here) {
      ++without_place_;
      continue;
    }
    if (placed_.empty()) bounds_ = {p.east, p.north, p.east, p.north};
    bounds_ = {std::min(bounds_.west, p.east), std::min(bounds_.south, p.north), std::max(bounds_.east, p.east),
               std::max(bounds_.north, p.north)};
    placed_.push_back({p.east, p.north, i});
  }
  const double width = bounds_.east - bounds_.west;
  const double height = bounds_.north - bounds_.south;
  const double cells = std::max(1.0, static_cast<double>(placed_.size()) / kPointsInCell);
  // Points on one line have no area: then the cells follow each other along it.
  cell_ = std::max({std::sqrt(width * height / cells), width / cells, height / cells, 1e-3});
  across_ = static_cast<int>(width / cell_) + 1;
  up_ = static_cast<int>(height / cell_) + 1;

  const auto cell_of = [this](const Placed& p) {
    return static_cast<std::size_t>(RowOf(p.north)) * static_cast<std::size_t>(across_) +
           static_cast<std::size_t>(ColumnOf(p.east));
  };
  starts_.assign(static_cast<std::size_t>(across_) * static_cast<std::size_t>(up_) + 1, 0);
  for (const Placed& p : placed_) ++starts_[cell_of(p) + 1];
  for (std::size_t i = 1; i < starts_.size(); ++i) starts_[i] += starts_[i - 1];
  std::vector<std::size_t> next(starts_.begin(), starts_.end() - 1);
  std::vector<Placed> sorted(placed_.size());
  for (const Placed& p : placed_) sorted[next[cell_of(p)]++] = p;
  placed_ = std::move(sorted);
}

int PointSet::ColumnOf(double east) const {
  return static_cast<int>(std::clamp((east - bounds_.west) / cell_, 0.0, static_cast<double>(across_ - 1)));
}

int PointSet::RowOf(double north) const {
  return static_cast<int>(std::clamp((north - bounds_.south) / cell_, 0.0, static_cast<double>(up_ - 1)));
}

PointSet::Cells PointSet::CellsOf(const MapBox& box) const {
  if (placed_.empty() || !(box.west <= bounds_.east && box.east >= bounds_.west && box.south <= bounds_.north &&
                           box.north >= bounds_.south)) {
    return {};
  }
  return {ColumnOf(box.west), RowOf(box.south), ColumnOf(box.east), RowOf(box.north)};
}

int PointSet::Nearest(double east, double north, double radius) const {
  int nearest = -1;
  double least = radius;
  ForEachIn({east - radius, north - radius, east + radius, north + radius}, [&](int point, double e, double n) {
    const double distance = std::hypot(e - east, n - north);
    if (distance > least || (distance == least && nearest >= 0 && nearest < point)) return;
    least = distance;
    nearest = point;
  });
  return nearest;
}

}  // namespace korvo
