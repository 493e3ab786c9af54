// The names of one document, each kept once and known by a number.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "tree/block_store.h"
#include "tree/kept_text.h"

namespace pktaus {

/// Position in the bucket's chain * 65536 + bucket. Has a meaning only in the document that issued it.
using NameId = std::int32_t;

/// What Intern gives for a name that the table cannot hold. No name has it.
inline constexpr NameId kNoName = -1;

/// Longest name, in bytes.
inline constexpr std::size_t kMaxNameLength = 1003;

/// No name is ever removed, so ids and the texts that NameOf gives stay valid as long as the table.
class CNameTable {
 public:
  static constexpr int kBuckets = 4711;
  static constexpr int kMaxPerBucket = 32768;  // what the upper half of an id can count

  CNameTable();
  CNameTable(const CNameTable&) = delete;
  CNameTable& operator=(const CNameTable&) = delete;

  /// Finds the name or adds it. kNoName where it is longer than kMaxNameLength or its bucket is full: such a name is
  /// refused, never cut and never taken for another.
  NameId Intern(std::string_view name);

  /// Text of a name, with a NUL behind it. `id` comes from Intern; kNoName gives an empty text.
  std::string_view NameOf(NameId id) const {
    if (id < 0) return {};
    std::string_view text = buckets_[static_cast<std::size_t>(id & 0xFFFF)][static_cast<std::size_t>(id >> 16)].get();
    text.remove_suffix(1);
    return text;
  }

  std::size_t size() const { return count_; }

  /// 0 to kBuckets - 1, the same in every document.
  static int BucketOf(std::string_view name);

 private:
  // One place of the side index, which finds an id without a walk along the chain.
  struct Slot {
    std::uint32_t hash = 0;
    NameId id = kNoName;
  };

  std::uint32_t SlotHash(std::string_view name) const;
  void Grow();

  std::array<std::vector<KeptText>, kBuckets> buckets_;  // each text with its NUL
  std::vector<Slot> slots_;                              // a power of two, at most half full
  std::size_t count_ = 0;
  std::uint64_t seed_;
  BlockStore texts_;
};

}  // namespace pktaus
