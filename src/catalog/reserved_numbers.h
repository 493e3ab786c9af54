// Point identifiers that the cadastre office has reserved for an application, as its answers in a folder tell them.
#pragma once

#include <memory>
#include <string>

namespace pktaus {

/// One reserved identifier. Plain, linked by `next`.
struct ReservedNumber {
  char number[24];
  ReservedNumber* next;
};

/// Frees a list; null is an empty one.
void FreeReservedNumbers(ReservedNumber* first);

struct ReservedNumbersFreer {
  void operator()(ReservedNumber* first) const { FreeReservedNumbers(first); }
};
/// Owns a list by its first entry.
using ReservedNumbers = std::unique_ptr<ReservedNumber, ReservedNumbersFreer>;

/// The identifiers that the files *.xml (regardless of case) of a folder reserve for an application, the one read last
/// first; null where there are none. Files are read in the order of their names. A file that names another application
/// is read up to that line, one that names none counts for all.
///
/// The files are not read as XML: a line counts that holds <antragsnummer> or <reservierteNummern>, and its value is
/// what stands between the line's first ">" and the next "<"; without that "<" the line is skipped. A line of more than
/// 1998 bytes, line end included, is taken in pieces of that size. Texts that do not fit (47 and 23 characters) are cut
/// and reported.
ReservedNumbers ReadReservedNumbers(const std::string& folder, const std::string& antragsnummer);

}  // namespace pktaus
