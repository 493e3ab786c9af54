// All points of the open project, read once, so that map and table never wait for the file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "korvo/dbase/table.h"

namespace korvo {

/// What the export is to do with a point, as its columns say it; a point without attributes is plain. One with an
/// action of no meaning is refused by the export.
enum class PointState : std::uint8_t { kPlain, kNew, kReplace, kDelete, kUnknown };
inline constexpr int kPointStates = 5;

/// A rectangle of the map in metres, borders included.
struct MapBox {
  double west = 0;
  double south = 0;
  double east = 0;
  double north = 0;
};

/// Points count from 0 in the order of their records; deleted records and those that the host leaves out are none. All
/// texts are Windows-1252. What is given stays valid until the next Read or Reread.
class PointSet {
 public:
  /// Reads the open point table; without one the set is empty, and so it is where this throws.
  void Read();
  /// Reads one record again. Its point; -1 where the record was or is none, and the whole table was read again.
  int Reread(std::int32_t record);

  int count() const { return static_cast<int>(records_.size()); }
  std::int32_t Record(int point) const { return records_[static_cast<std::size_t>(point)]; }
  /// -1 for a record without a point.
  int PointOf(std::int32_t record) const;

  const std::vector<Column>& columns() const { return columns_; }
  /// By the first ten characters of the name, case heeded; -1 for none.
  int FindColumn(std::string_view name) const;
  /// Padding removed; empty for a column that is not there.
  std::string_view Field(int point, int column) const;
  std::string_view Number(int point) const { return Field(point, number_); }
  int number_column() const { return number_; }
  /// Bytes of all columns, one behind the other.
  std::string_view Bytes(int point) const;
  /// First point of a number, blanks in front left aside where nothing fits exactly; -1 for none.
  int Find(std::string_view number) const;
  /// First point behind `after` whose number has these letters and digits in it, beginning again at the end; -1 for
  /// none.
  int FindPart(std::string_view part, int after) const;

  PointState State(int point) const { return states_[static_cast<std::size_t>(point)]; }
  int CountOf(PointState state) const { return counts_[static_cast<std::size_t>(state)]; }

  /// A point with a coordinate that is missing or 0 has no place and is not on the map.
  bool HasPlace(int point) const { return places_[static_cast<std::size_t>(point)].here; }
  int without_place() const { return without_place_; }
  bool HasAnyPlace() const { return count() > without_place_; }
  /// Metres. The number of the zone in front of an easting is left out, so that points with and without it meet.
  double East(int point) const { return places_[static_cast<std::size_t>(point)].east; }
  double North(int point) const { return places_[static_cast<std::size_t>(point)].north; }
  /// Around all points with a place; all 0 without any.
  const MapBox& bounds() const { return bounds_; }

  /// The point nearest to a place, at most `radius` metres away; -1 for none. Of two in one place the first.
  int Nearest(double east, double north, double radius) const;

  /// Calls `see(point, east, north)` for each point in the box, in the order of the grid's cells.
  template <typename See>
  void ForEachIn(const MapBox& box, See see) const {
    const Cells cells = CellsOf(box);
    for (int row = cells.south; row <= cells.north; ++row) {
      const auto line = static_cast<std::size_t>(row) * static_cast<std::size_t>(across_);
      const std::size_t end = starts_[line + static_cast<std::size_t>(cells.east) + 1];
      for (std::size_t i = starts_[line + static_cast<std::size_t>(cells.west)]; i < end; ++i) {
        const Placed& p = placed_[i];
        if (p.east >= box.west && p.east <= box.east && p.north >= box.south && p.north <= box.north) {
          see(p.point, p.east, p.north);
        }
      }
    }
  }

 private:
  struct Place {
    double east = 0;
    double north = 0;
    bool here = false;
  };
  struct Placed {
    double east;
    double north;
    int point;
  };
  /// A range of cells of the grid, borders included; empty where `north` is below `south`.
  struct Cells {
    int west = 0;
    int south = 0;
    int east = -1;
    int north = -1;
  };

  void ReadAll();
  void Interpret(int point);
  void BuildGrid();
  Cells CellsOf(const MapBox& box) const;
  int ColumnOf(double east) const;
  int RowOf(double north) const;

  std::vector<Column> columns_;
  int number_ = -1, east_ = -1, north_ = -1, kind_ = -1, action_ = -1;
  std::size_t record_size_ = 0;
  std::string bytes_;  ///< of all points, without the flags
  std::vector<std::int32_t> records_;
  std::vector<PointState> states_;
  std::vector<Place> places_;
  int counts_[kPointStates] = {};
  int without_place_ = 0;

  // A grid over the bounds: the points of a cell stand together, those of a row of cells one after the other.
  MapBox bounds_;
  int across_ = 0, up_ = 0;
  double cell_ = 1;
  std::vector<Placed> placed_;
  std::vector<std::size_t> starts_;
};

}  // namespace korvo
