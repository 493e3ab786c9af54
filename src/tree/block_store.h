// Memory for many small parts that live and die together.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <utility>
#include <vector>

namespace pktaus {

/// Blocks begin at multiples of it.
inline constexpr std::size_t kPage = 4096;

/// Hands out bytes without any alignment from large blocks; all of them are given back at once, when the store dies, or
/// those taken last when it goes back to a mark.
///
/// Large pages are not asked for: they spare faults, but most virtual machines fetch them from their host first.
class BlockStore {
 public:
  /// How far the store was used.
  struct Mark {
    std::size_t blocks;
    char* next;
    std::size_t left;
  };
  Mark Used() const { return {blocks_.size(), next_, left_}; }
  /// Gives back what was taken since the mark, which nothing may use any more.
  void GoBack(const Mark& mark) {
    blocks_.resize(mark.blocks);
    next_ = mark.next;
    left_ = mark.left;
  }

  char* Take(std::size_t size) {
    if (size > left_) return TakeFromNew(size);
    left_ -= size;
    return std::exchange(next_, next_ + size);
  }

 private:
  struct alignas(kPage) Page {
    char bytes[kPage];
  };
  static constexpr std::size_t kLargest = 4 * 1024 * 1024;

  char* TakeFromNew(std::size_t size) {
    if (size > kLargest / 8) return TakeBlock(size);  // of its own; the block in use goes on
    while (block_size_ < size) block_size_ *= 2;
    next_ = TakeBlock(block_size_);
    left_ = block_size_;
    if (block_size_ < kLargest) block_size_ *= 2;
    return Take(size);
  }

  char* TakeBlock(std::size_t size) {
    blocks_.push_back(std::make_unique_for_overwrite<Page[]>((size + kPage - 1) / kPage));
    return reinterpret_cast<char*>(blocks_.back().get());
  }

  std::vector<std::unique_ptr<Page[]>> blocks_;
  char* next_ = nullptr;
  std::size_t left_ = 0;
  std::size_t block_size_ = kPage;
};

/// Room for objects that know their owner without a pointer each: it stands at the begin of every page.
class ObjectStore {
 public:
  explicit ObjectStore(void* owner) : owner_(owner) {}

  /// Room for one object. The store never destroys it.
  template <typename T>
  void* Take() {
    constexpr std::size_t kSize = (sizeof(T) + kAlignment - 1) / kAlignment * kAlignment;
    static_assert(alignof(T) <= kAlignment && kSize <= kPage - kAlignment);
    if (kSize > left_) BeginPage();
    left_ -= kSize;
    return std::exchange(next_, next_ + kSize);
  }

  struct Mark {
    BlockStore::Mark pages;
    char* next;
    std::size_t left;
  };
  Mark Used() const { return {pages_.Used(), next_, left_}; }
  void GoBack(const Mark& mark) {
    pages_.GoBack(mark.pages);
    next_ = mark.next;
    left_ = mark.left;
  }

  /// The owner of the store that `object` lies in.
  static void* OwnerOf(const void* object) {
    const auto* const at = static_cast<const char*>(object);
    void* owner = nullptr;
    std::memcpy(&owner, at - reinterpret_cast<std::uintptr_t>(at) % kPage, sizeof owner);
    return owner;
  }

 private:
  static constexpr std::size_t kAlignment = 8;
  static_assert(sizeof(void*) <= kAlignment);

  void BeginPage() {
    char* const page = pages_.Take(kPage);
    std::memcpy(page, &owner_, sizeof owner_);
    next_ = page + kAlignment;
    left_ = kPage - kAlignment;
  }

  void* owner_;
  BlockStore pages_;  // only pages are taken from it, so each lies where a page may
  char* next_ = nullptr;
  std::size_t left_ = 0;
};

}  // namespace pktaus
