// Memory for many small parts that live and die together.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

#include "platform/memory.h"

namespace pktaus {

/// Hands out bytes without any alignment from large blocks; all of them are given back at once, when the store dies.
class BlockStore {
 public:
  char* Take(std::size_t size) {
    if (size > left_) return TakeFromNew(size);
    left_ -= size;
    return std::exchange(next_, next_ + size);
  }

 private:
  static constexpr std::size_t kFirst = platform::kPage;
  static constexpr std::size_t kLargest = 2 * platform::kLargePage;

  char* TakeFromNew(std::size_t size) {
    if (size > kLargest / 8) {  // a block of its own; the one in use goes on
      blocks_.push_back(platform::TakeBlock(size));
      return blocks_.back().get();
    }
    while (block_size_ < size) block_size_ *= 2;
    blocks_.push_back(platform::TakeBlock(block_size_));
    next_ = blocks_.back().get();
    left_ = block_size_;
    if (block_size_ < kLargest) block_size_ *= 2;
    return Take(size);
  }

  std::vector<platform::Block> blocks_;
  char* next_ = nullptr;
  std::size_t left_ = 0;
  std::size_t block_size_ = kFirst;
};

/// Room for objects that know their owner without a pointer each: it stands at the begin of every page.
class ObjectStore {
 public:
  explicit ObjectStore(void* owner) : owner_(owner) {}

  /// Room for one object. The store never destroys it.
  template <typename T>
  void* Take() {
    constexpr std::size_t kSize = (sizeof(T) + kAlignment - 1) / kAlignment * kAlignment;
    static_assert(alignof(T) <= kAlignment && kSize <= platform::kPage - kAlignment);
    if (kSize > left_) BeginPage();
    left_ -= kSize;
    return std::exchange(next_, next_ + kSize);
  }

  /// The owner of the store that `object` lies in.
  static void* OwnerOf(const void* object) {
    const auto* const at = static_cast<const char*>(object);
    void* owner = nullptr;
    std::memcpy(&owner, at - reinterpret_cast<std::uintptr_t>(at) % platform::kPage, sizeof owner);
    return owner;
  }

 private:
  static constexpr std::size_t kAlignment = 8;
  static_assert(sizeof(void*) <= kAlignment);

  void BeginPage() {
    char* const page = pages_.Take(platform::kPage);
    std::memcpy(page, &owner_, sizeof owner_);
    next_ = page + kAlignment;
    left_ = platform::kPage - kAlignment;
  }

  void* owner_;
  BlockStore pages_;  // only pages are taken from it, so each lies where a page may
  char* next_ = nullptr;
  std::size_t left_ = 0;
};

}  // namespace pktaus
