// How a check date fits the eight digits of its column.
#pragma once

#include <cstdint>

namespace pktaus {

/// What NE_DAT holds for a value in seconds since 1970: a date (above 10000, or so far before 1970 that its seconds do
/// not fit the column) as its local day YYYYMMDD, legible in every dBase viewer; any other value as it is.
std::int32_t StoredDay(std::int32_t seconds);

/// The value of a column: the day's local midnight, or the number itself where it is no day that seconds can tell.
std::int32_t SecondsOfStoredDay(std::int32_t stored);

}  // namespace pktaus
