// Memory for many small parts that live and die together.
#pragma once

#include <cstddef>
#include <vector>

#include "platform/memory.h"

namespace pktaus {

/// Hands out memory from large blocks; all of it is given back at once, when the store dies.
class BlockStore {
 public:
  /// Room for one object. The store never destroys it.
  template <typename T>
  void* Take() {
    static_assert(alignof(T) <= kAlignment);
    return objects_.Take((sizeof(T) + kAlignment - 1) / kAlignment * kAlignment);
  }

  /// `size` bytes without any alignment.
  char* TakeText(std::size_t size) { return texts_.Take(size); }

 private:
  static constexpr std::size_t kAlignment = 8;

  class Blocks {
   public:
    char* Take(std::size_t size) {
      if (size > left_) return TakeFromNew(size);
      char* taken = next_;
      next_ += size;
      left_ -= size;
      return taken;
    }

   private:
    static constexpr std::size_t kFirst = 2 * 1024;
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

  Blocks objects_;
  Blocks texts_;
};

}  // namespace pktaus
