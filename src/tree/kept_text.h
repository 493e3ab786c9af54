// A text in a document's storage.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "tree/block_store.h"

namespace pktaus {

/// One pointer, to a text with its size in front: a byte, or kLong and the size in eight more. Lives as long as the
/// store that holds the text; an empty one needs none.
class KeptText {
 public:
  KeptText() = default;
  KeptText(std::string_view text, BlockStore* store) : KeptText(text.size(), store) { text.copy(data(), text.size()); }
  /// Room for a text that is still to be written.
  KeptText(std::size_t size, BlockStore* store) {
    if (size == 0) return;
    at_ = store->Take((size < kLong ? kShortHead : kLongHead) + size);
    *at_ = static_cast<char>(size < kLong ? size : kLong);
    if (size >= kLong) PutLongSize(size);
  }

  std::string_view get() const { return {data(), size()}; }
  char* data() const { return at_ == nullptr ? nullptr : at_ + (IsLong() ? kLongHead : kShortHead); }
  std::size_t size() const {
    if (at_ == nullptr) return 0;
    if (!IsLong()) return static_cast<unsigned char>(*at_);
    std::uint64_t size = 0;
    std::memcpy(&size, at_ + kShortHead, sizeof size);
    return static_cast<std::size_t>(size);
  }
  /// Keeps the first `size` bytes alone.
  void Cut(std::size_t size) {
    if (at_ == nullptr) return;
    if (IsLong()) {
      PutLongSize(size);
    } else {
      *at_ = static_cast<char>(size);
    }
  }

 private:
  static constexpr std::size_t kLong = 255;
  static constexpr std::size_t kShortHead = 1;
  static constexpr std::size_t kLongHead = kShortHead + sizeof(std::uint64_t);

  bool IsLong() const { return static_cast<unsigned char>(*at_) == kLong; }
  void PutLongSize(std::uint64_t size) { std::memcpy(at_ + kShortHead, &size, sizeof size); }

  char* at_ = nullptr;
};

}  // namespace pktaus
