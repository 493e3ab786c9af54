#include "tree/name_table.h"

#include <cstring>

#include "tree/words.h"

namespace pktaus {

CNameTable::CNameTable() : slots_(256), seed_(reinterpret_cast<std::uintptr_t>(this) * 0x9E3779B97F4A7C15U) {}

int CNameTable::BucketOf(std::string_view name) {
  int sum = 0;
  int weight = 1;
  for (const char c : name) {
    sum = (sum + static_cast<signed char>(c) * weight) % 32767;
    weight = (weight + 1) % 100;
  }
  const int bucket = sum % kBuckets;
  return bucket < 0 ? bucket + kBuckets : bucket;  // bytes above 127 count as negative
}

// Seeded, so that no file can be made whose names all fall on one place.
std::uint32_t CNameTable::SlotHash(std::string_view name) const {
  constexpr std::uint64_t kFactor = 0xD6E8FEB86659FD93U;
  std::uint64_t hash = seed_ ^ name.size();
  const auto mix = [&](std::uint64_t word) {
    hash = (hash ^ word) * kFactor;
    hash ^= hash >> 32;
  };
  const char* const p = name.data();
  const std::size_t n = name.size();
  if (n >= 8) {
    for (std::size_t i = 0; i + 8 < n; i += 8) mix(WordAt(p + i));
    mix(WordAt(p + n - 8));
  } else {
    std::uint64_t word = 0;
    for (const char c : name) word = word << 8 | static_cast<unsigned char>(c);
    mix(word);
  }
  mix(seed_ >> 7);
  return static_cast<std::uint32_t>(hash);
}

NameId CNameTable::Intern(std::string_view name) {
  if (name.size() > kMaxNameLength) return kNoName;
  const std::uint32_t hash = SlotHash(name);
  std::size_t at = hash & (slots_.size() - 1);
  for (; slots_[at].id != kNoName; at = (at + 1) & (slots_.size() - 1)) {
    const Slot& slot = slots_[at];
    if (slot.hash != hash) continue;
    const std::string_view known = NameOf(slot.id);
    if (known.size() == name.size() && EqualBytes(known.data(), name.data(), name.size())) return slot.id;
  }
  const int bucket = BucketOf(name);
  std::vector<KeptText>& chain = buckets_[static_cast<std::size_t>(bucket)];
  if (chain.size() >= kMaxPerBucket) return kNoName;
  const NameId id = static_cast<NameId>(chain.size()) * 65536 + bucket;
  const KeptText text(name.size() + 1, &texts_);
  name.copy(text.data(), name.size());
  text.data()[name.size()] = '\0';
  chain.push_back(text);
  slots_[at] = {hash, id};
  if (++count_ * 2 > slots_.size()) Grow();
  return id;
}

void CNameTable::Grow() {
  std::vector<Slot> old(slots_.size() * 2);
  old.swap(slots_);
  for (const Slot& slot : old) {
    if (slot.id == kNoName) continue;
    std::size_t at = slot.hash & (slots_.size() - 1);
    while (slots_[at].id != kNoName) at = (at + 1) & (slots_.size() - 1);
    slots_[at] = slot;
  }
}

}  // namespace pktaus
