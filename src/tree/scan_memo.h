// What the XML reader has learnt from reading a part of the file, for the case that it comes there again.
#pragma once

#include <algorithm>
#include <cstdint>
#include <map>
#include <unordered_map>

namespace pktaus {

/// Where searches for one kind of mark have ended: a search that begins anywhere in [from, mark] finds that mark.
///
/// A first reading goes forward and leaves nothing but the frontier. Only what is read again is kept, so a sound file
/// costs no memory, and a damaged one has each byte searched twice at most.
class ScanMemo {
 public:
  struct Found {
    std::uint64_t mark;
    std::uint64_t end;  // behind the mark, as far as it belongs to what was searched for
  };

  bool IsNew(std::uint64_t from) const { return from >= frontier_; }
  void MoveFrontier(std::uint64_t to) { frontier_ = std::max(frontier_, to); }

  /// Null where a search from there has to be made, up to NextKnown alone.
  const Found* Find(std::uint64_t from) const {
    auto it = found_.upper_bound(from);
    return it != found_.begin() && (--it)->second.mark >= from ? &it->second : nullptr;
  }
  /// First position behind `from` that a search was made from; the largest number where there is none.
  std::uint64_t NextKnown(std::uint64_t from) const {
    const auto it = found_.upper_bound(from);
    return it == found_.end() ? UINT64_MAX : it->first;
  }
  /// A search from `from` has ended at `found`, by itself or by reaching what is known.
  void Keep(std::uint64_t from, const Found& found) {
    found_[from] = found;
    MoveFrontier(found.end);
  }

 private:
  std::uint64_t frontier_ = 0;
  std::map<std::uint64_t, Found> found_;  // by the first position of each search; the ranges do not overlap
};

}  // namespace pktaus
