// What the system knows about one survey point, and the numbers that it stores for it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace pktaus {

// The numbers below stand in the users' point tables and settings. Never renumber them.

/// NE_AKTION: what an export does with the point.
enum Aktion : std::int32_t { kAktionNew = 0, kAktionReplace = 1, kAktionDelete = 2 };

/// NE_PO: kind of the position object, and the flag of the whole record: 0 means that the point has no attributes.
enum Po : std::int32_t { kPoNone = 0, kPoTA = 1, kPoAU = 2, kPoAG = 3 };

/// NE_LZV: lagezuverlaessigkeit. 0 is a real value.
enum Lzv : std::int32_t { kLzvNotGiven = -2, kLzvTrue = -1, kLzvFalse = 0 };

/// In a field with a code of the catalogue: no value was chosen.
inline constexpr std::int32_t kNoChoice = -1;

/// Characters of `auftrag` and `antragn` that a table keeps.
inline constexpr std::size_t kOrderNumberLength = 39;

/// A survey point. Plain: copied by bytes, cleared with zero bytes, owns nothing. Texts are NUL-terminated
/// Windows-1252. The comments name the table's column behind the field.
struct PointRecord {
  char objid[24];           ///< identifier in the file that is being written; empty elsewhere
  char pkn[24];             ///< NE_PKN: Punktkennzeichen
  double east;              ///< the host's EAST, metres
  double north;             ///< the host's NORTH, metres
  std::int32_t aktion;      ///< NE_AKTION: an Aktion
  char auftrag[48];         ///< NE_AUFTRAG: order number
  char antragn[48];         ///< NE_ANTRAGN: application number
  std::int32_t po;          ///< NE_PO: a Po
  std::int32_t bundesland;  ///< code of the federal state; not in the table
  std::int32_t oa;          ///< NE_OA: row of the table of object types, from 0
  std::int32_t abm;         ///< NE_ABM: code of abmarkung_Marke or vermarkung_Marke
  std::int32_t bza;         ///< NE_BZA: code of bemerkungZurAbmarkung
  std::int32_t art;         ///< NE_ART: code of the catalogue's list of kinds; in no output
  std::int32_t zst;         ///< NE_ZST: number of the responsible office
  std::int32_t kst;         ///< NE_KST: code of koordinatenstatus
  std::int32_t dat;         ///< NE_DAT: check date, seconds since 1970-01-01T00:00Z; above 10000 a date, 0 none
  std::int32_t hin;         ///< NE_HIN: code of hinweise
  std::int32_t her;         ///< NE_HER: code of the origin
  std::int32_t gst;         ///< NE_GST: code of genauigkeitsstufe
  std::int32_t vtw;         ///< NE_VTW: code of vertrauenswuerdigkeit
  std::int32_t lzv;         ///< NE_LZV: an Lzv
  char obgid[24];           ///< NE_OBGID: identifier of the object in the cadastre; empty for a new point
  char gmlid[24];           ///< GMLID: identifier of the position object in the cadastre
  PointRecord* next;        ///< link of an export's list; not owned
  char wepo[80];            ///< NE_WEPO: further position objects, "class|gml:id|" for each
};

static_assert(std::is_trivial_v<PointRecord> && std::is_standard_layout_v<PointRecord>);
static_assert(sizeof(void*) != 4 ||
              (offsetof(PointRecord, east) == 48 && offsetof(PointRecord, aktion) == 64 &&
               offsetof(PointRecord, auftrag) == 68 && offsetof(PointRecord, antragn) == 116 &&
               offsetof(PointRecord, po) == 164 && offsetof(PointRecord, oa) == 172 &&
               offsetof(PointRecord, dat) == 196 && offsetof(PointRecord, lzv) == 216 &&
               offsetof(PointRecord, obgid) == 220 && offsetof(PointRecord, gmlid) == 244 &&
               offsetof(PointRecord, next) == 268 && offsetof(PointRecord, wepo) == 272 && sizeof(PointRecord) == 352));

/// Gives the record the values of a point without attributes. `objid`, `bundesland`, `next`, `east` and `north` stay.
void SetEmptyRecord(PointRecord* record);

}  // namespace pktaus
