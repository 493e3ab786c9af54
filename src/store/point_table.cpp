#include "store/point_table.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <functional>
#include <iterator>
#include <limits>
#include <span>
#include <string_view>

#include "base/bounded.h"
#include "entry/host/host.h"
#include "store/stored_day.h"

namespace pktaus {
namespace {

/// A column of the table and the field of the record behind it: a number, a text or neither.
struct Column {
  const char* name;
  std::int32_t PointRecord::*number = nullptr;
  std::span<char> (*text)(PointRecord&) = nullptr;
};

template <auto Field>
constexpr Column Text(const char* name) {
  return {name, nullptr, [](PointRecord& record) { return std::span<char>(record.*Field); }};
}

/// All columns in the order in which they are looked up.
constexpr Column kColumns[] = {
    {"NE_OA", &PointRecord::oa},
    Text<&PointRecord::antragn>("NE_ANTRAGN"),
    Text<&PointRecord::auftrag>("NE_AUFTRAG"),
    Text<&PointRecord::pkn>("NE_PKN"),
    {"NE_PO", &PointRecord::po},
    {"NE_ABM", &PointRecord::abm},
    {"NE_BZA", &PointRecord::bza},
    {"NE_ART", &PointRecord::art},
    {"NE_ZST", &PointRecord::zst},
    {"NE_KST", &PointRecord::kst},
    {"NE_DAT", &PointRecord::dat},
    {"NE_HER", &PointRecord::her},
    {"NE_GST", &PointRecord::gst},
    {"NE_VTW", &PointRecord::vtw},
    {"NE_LZV", &PointRecord::lzv},
    {"NE_HIN", &PointRecord::hin},
    Text<&PointRecord::obgid>("NE_OBGID"),
    {"NE_AKTION", &PointRecord::aktion},
    Text<&PointRecord::wepo>("NE_WEPO"),
    {"PKN_ABM_BZA"},
    {"NASTABLE"},
    Text<&PointRecord::gmlid>("GMLID"),
};

/// Position of a column in kColumns.
consteval std::size_t Id(std::string_view name) {
  std::size_t i = 0;
  while (kColumns[i].name != name) ++i;
  return i;
}

constexpr std::size_t kAntragn = Id("NE_ANTRAGN");
constexpr std::size_t kAuftrag = Id("NE_AUFTRAG");
constexpr std::size_t kPo = Id("NE_PO");
constexpr std::size_t kDat = Id("NE_DAT");
constexpr std::size_t kWepo = Id("NE_WEPO");
constexpr std::size_t kPknAbmBza = Id("PKN_ABM_BZA");
constexpr std::size_t kNastable = Id("NASTABLE");
constexpr std::size_t kGmlid = Id("GMLID");

/// Columns read behind NE_PO for a point with attributes; NE_WEPO follows on its own.
constexpr std::size_t kReadOrder[] = {
    Id("NE_OA"),  Id("NE_ANTRAGN"), Id("NE_AUFTRAG"), Id("NE_PKN"), Id("NE_AKTION"), Id("NE_ABM"),
    Id("NE_BZA"), Id("NE_ART"),     Id("NE_ZST"),     Id("NE_KST"), Id("NE_DAT"),    Id("NE_HER"),
    Id("NE_GST"), Id("NE_VTW"),     Id("NE_LZV"),     Id("NE_HIN"), Id("NE_OBGID"),  Id("GMLID"),
};
/// Columns written for every point; GMLID and NE_WEPO follow where the record has a value.
constexpr std::size_t kWriteOrder[] = {
    Id("NE_OA"),  Id("NE_PKN"), Id("NE_ANTRAGN"), Id("NE_AUFTRAG"), Id("NE_PO"),  Id("NE_AKTION"),
    Id("NE_ABM"), Id("NE_BZA"), Id("NE_ART"),     Id("NE_ZST"),     Id("NE_KST"), Id("NE_DAT"),
    Id("NE_HER"), Id("NE_GST"), Id("NE_VTW"),     Id("NE_LZV"),     Id("NE_HIN"), Id("NE_OBGID"),
};

void* references[std::size(kColumns)] = {};

std::string refusal;

HostTable* PointTable() { return V2_VAR != nullptr ? V2_VAR->points : nullptr; }

/// False where the host has no point table.
bool SelectTable() {
  HostTable* table = PointTable();
  if (table == nullptr) return false;
  vm_dbk_nxk_select(table);
  d4select(table->data);
  db_i_select(table->index);
  return true;
}

/// Visits the readable records of the selected table until `visit` gives true, and gives the number of that record, 0
/// for none. `point` is the visited one.
template <typename Visit>
std::int32_t Walk(HostPoint* point, Visit visit) {
  const std::int32_t count = d4reccount();
  std::int32_t error = 0;
  for (std::int32_t i = 1; i <= count; ++i) {
    vm_koor_clear(point);
    vm_dbk_read(PointTable(), point, i, &error);
    if (error == 0 && visit(i)) return i;
  }
  return 0;
}

/// Selects the table and makes the first record with this point number the current one; 0 where there is none.
std::int32_t GoToPoint(const char* point_number, HostPoint* point) {
  if (!SelectTable()) return 0;
  const std::int32_t found = Walk(point, [&](std::int32_t) { return std::strcmp(point->pt_no, point_number) == 0; });
  if (found != 0) d4go(found);
  return found;
}

/// Toward zero; what no int32 holds becomes the nearest one, no number at all 0.
std::int32_t ToInt32(double value) {
  using Limits = std::numeric_limits<std::int32_t>;
  if (std::isnan(value)) return 0;
  return static_cast<std::int32_t>(std::clamp<double>(value, Limits::min(), Limits::max()));
}

std::int32_t ReadNumber(std::size_t id) {
  const std::int32_t value = ToInt32(f4double(references[id]));
  return id == kDat ? SecondsOfStoredDay(value) : value;
}

void ReadColumn(std::size_t id, PointRecord* record) {
  const Column& column = kColumns[id];
  if (column.number != nullptr) {
    record->*column.number = ReadNumber(id);
    return;
  }
  const std::span<char> text = column.text(*record);
  my_strcpy(text.data(), f4str(references[id]), text.size());
  field_trim(text.data());
}

/// The column is as wide as its field, so its padding goes first: it would be reported as an overflow.
void ReadWepo(PointRecord* record) {
  char text[sizeof record->wepo + 1];
  put(text, f4str(references[kWepo]));
  for (std::size_t i = sizeof record->wepo - 1; i > 0 && text[i] == ' '; --i) text[i] = '\0';
  put(record->wepo, text);
  field_trim(record->wepo);
}

void WriteColumn(std::size_t id, PointRecord* record) {
  const Column& column = kColumns[id];
  if (column.text != nullptr) {
    f4r_str(references[id], column.text(*record).data());
    return;
  }
  const std::int32_t value = record->*column.number;
  f4r_double(references[id], id == kDat ? StoredDay(value) : value);
}

/// Point numbers that are looked for, in a flat table. Most of the points that are asked about are not among them, so a
/// place is told by a byte of its own: all these bytes lie in the cache where the table does not.
class WantedPoints {
 public:
  explicit WantedPoints(const std::vector<std::string>& numbers)
      : numbers_(numbers),
        marks_(std::bit_ceil(2 * numbers.size() + 1)),
        first_(marks_.size()),
        next_(numbers.size(), kNone) {
    // From the last on, so that the positions of a number come to stand in their order.
    for (std::size_t i = numbers.size(); i-- > 0;) {
      const Place place = PlaceOf(numbers[i]);
      if (marks_[place.at] == kFree) {
        marks_[place.at] = place.mark;
        ++left_;
      } else {
        next_[i] = first_[place.at];
      }
      first_[place.at] = static_cast<std::uint32_t>(i);
    }
  }

  bool empty() const { return left_ == 0; }

  /// The first position of a number, which is no longer wanted from then on; kNone where it is not wanted.
  std::uint32_t Take(std::string_view number) {
    const Place place = PlaceOf(number);
    if (marks_[place.at] == kFree) return kNone;
    marks_[place.at] = kTaken;
    --left_;
    return first_[place.at];
  }
  /// The number's next position.
  std::uint32_t Next(std::uint32_t position) const { return next_[position]; }

  static constexpr std::uint32_t kNone = UINT32_MAX;

 private:
  // A mark is one of these or, from kFirstMark on, 7 bits of the number's hash.
  static constexpr std::uint8_t kFree = 0;
  static constexpr std::uint8_t kTaken = 1;
  static constexpr std::uint8_t kFirstMark = 2;

  struct Place {
    std::size_t at;
    std::uint8_t mark;  ///< the number's own
  };

  /// The number's place, or the free one for it.
  Place PlaceOf(std::string_view number) const {
    const std::uint64_t hash = std::hash<std::string_view>{}(number);
    const std::size_t last = marks_.size() - 1;
    Place place{hash & last, static_cast<std::uint8_t>(kFirstMark + (hash >> 32) % 128)};
    while (marks_[place.at] != kFree && (marks_[place.at] != place.mark || numbers_[first_[place.at]] != number))
      place.at = (place.at + 1) & last;
    return place;
  }

  const std::vector<std::string>& numbers_;
  std::vector<std::uint8_t> marks_;
  std::vector<std::uint32_t> first_;  ///< by place: the number's first position
  std::vector<std::uint32_t> next_;   ///< by position: the number's next one
  std::size_t left_ = 0;
};

/// Visits the first record of each of the numbers, made the current one, with the first of the number's positions.
template <typename Visit>
void WalkPoints(WantedPoints* wanted, Visit visit) {
  if (wanted->empty() || !SelectTable()) return;
  HostPoint point{};
  Walk(&point, [&](std::int32_t number) {
    const std::uint32_t position = wanted->Take(point.pt_no);
    if (position == WantedPoints::kNone) return false;
    d4go(number);
    visit(number, point, position);
    return wanted->empty();
  });
}

/// Reads the current record; 0 it has attributes, 1 it has none.
int ReadCurrent(const HostPoint& point, PointRecord* record) {
  record->po = ReadNumber(kPo);
  const bool empty = record->po == kPoNone;
  if (empty) {
    SetEmptyRecord(record);
  } else {
    for (const std::size_t id : kReadOrder) ReadColumn(id, record);
    ReadWepo(record);
  }
  record->east = point.east;
  record->north = point.north;
  return empty ? 1 : 0;
}

/// Takes the attributes from the current record.
void RemoveCurrent(std::int32_t number) {
  f4r_double(references[kPo], 0.0);
  f4r_str(references[kAntragn], "");
  f4r_str(references[kAuftrag], "");
  db_write(number);
}

/// The identifier in a GMLID: no blanks, and nothing from a byte of 0x80 on.
void ReduceGid(const char* text, char (&gid)[kGidSize]) {
  std::size_t length = 0;
  for (; *text != '\0' && static_cast<unsigned char>(*text) < 0x80 && length + 1 < sizeof gid; ++text) {
    if (*text != ' ') gid[length++] = *text;
  }
  gid[length] = '\0';
}

void CutOrderNumber(char (&text)[48]) { std::fill(std::begin(text) + kOrderNumberLength, std::end(text), '\0'); }

}  // namespace

void columns_bind() {
  const bool there = SelectTable();
  for (std::size_t i = 0; i < std::size(kColumns); ++i) references[i] = there ? f4ref(kColumns[i].name) : nullptr;
}

std::string columns_missing() {
  std::string names;
  for (std::size_t i = 0; i < std::size(kColumns); ++i) {
    const std::string_view name = kColumns[i].name;
    if (references[i] == nullptr && name.starts_with("NE_")) names.append(names.empty() ? "" : ", ").append(name);
  }
  return names;
}

const std::string& point_refusal() { return refusal; }

void point_refuse(std::string why) { refusal = std::move(why); }

std::int32_t point_count() {
  HostTable* table = PointTable();
  if (table == nullptr) return 0;
  vm_dbk_nxk_select(table);
  return d4reccount();
}

int point_read_at(std::int32_t number, double* east, double* north, double* elev, char* point_number,
                  std::size_t size) {
  HostTable* table = PointTable();
  if (table == nullptr) return 0;
  HostPoint point{};
  std::int32_t error = 0;
  vm_dbk_nxk_select(table);
  vm_koor_clear(&point);
  vm_dbk_read(table, &point, number, &error);
  if (error != 0) return 0;
  *east = point.east;
  *north = point.north;
  *elev = point.elev;
  my_strcpy(point_number, point.pt_no, size);
  return 1;
}

int point_read(const char* point_number, PointRecord* record) {
  HostPoint point{};
  if (GoToPoint(point_number, &point) == 0) return -1;
  return ReadCurrent(point, record);
}

void point_read_all(const std::vector<std::string>& point_numbers,
                    const std::function<void(std::size_t position, const PointRecord& record)>& visit) {
  WantedPoints wanted(point_numbers);
  WalkPoints(&wanted, [&](std::int32_t, const HostPoint& point, std::uint32_t position) {
    PointRecord record{};
    ReadCurrent(point, &record);
    for (; position != WantedPoints::kNone; position = wanted.Next(position)) visit(position, record);
  });
}

void point_write(const char* point_number, PointRecord* record) {
  CutOrderNumber(record->auftrag);
  CutOrderNumber(record->antragn);
  if (!refusal.empty()) return;
  HostPoint point{};
  const std::int32_t found = GoToPoint(point_number, &point);
  if (found == 0) return;
  for (const std::size_t id : kWriteOrder) WriteColumn(id, record);
  if (record->gmlid[0] != '\0') WriteColumn(kGmlid, record);
  if (record->wepo[0] != '\0') WriteColumn(kWepo, record);
  db_write(found);
}

void point_remove(const char* point_number) {
  if (!refusal.empty()) return;
  HostPoint point{};
  const std::int32_t found = GoToPoint(point_number, &point);
  if (found != 0) RemoveCurrent(found);
}

void point_remove_all(const std::vector<std::string>& point_numbers) {
  if (!refusal.empty()) return;
  WantedPoints wanted(point_numbers);
  WalkPoints(&wanted, [](std::int32_t number, const HostPoint&, std::uint32_t) { RemoveCurrent(number); });
}

bool point_read_imported(const char* point_number, ImportedData* data) {
  if (references[kPknAbmBza] == nullptr) return false;
  HostPoint point{};
  if (GoToPoint(point_number, &point) == 0) return false;
  const char* text = f4str(references[kPknAbmBza]);
  if (std::strchr(text, ',') == nullptr) return false;
  put(data->pkn_abm_bza, text);
  ReduceGid(f4str(references[kGmlid]), data->gid);
  data->nastable = f4str(references[kNastable]);
  return true;
}

int point_find_by_gid(const char* identifier, char* point_number, double* east, double* north, std::size_t size) {
  if (!SelectTable()) return 0;
  HostPoint point{};
  const std::int32_t found = Walk(&point, [&](std::int32_t number) {
    d4go(number);
    const char* text = f4str(references[kGmlid]);
    if (*text == '\0') return false;
    char gid[kGidSize];
    ReduceGid(text, gid);
    return std::strcmp(gid, identifier) == 0;
  });
  if (found == 0) return 0;
  my_strcpy(point_number, point.pt_no, size);
  *east = point.east;
  *north = point.north;
  return 1;
}

void point_walk_orders(const std::function<void(const OrderRow&)>& visit) {
  if (!SelectTable()) return;
  HostPoint point{};
  Walk(&point, [&](std::int32_t number) {
    d4go(number);
    char auftrag[44];
    field_trim(put(auftrag, f4str(references[kAuftrag])));
    char antragn[44];
    field_trim(put(antragn, f4str(references[kAntragn])));
    visit({point.pt_no, auftrag, antragn, point.east, point.north});
    return false;
  });
}

void field_trim(char* text) {
  if (static_cast<unsigned char>(text[0]) >= 0x80) {
    text[0] = '\0';
  } else {
    strcdel(text, ' ', 1);
  }
}

}  // namespace pktaus
