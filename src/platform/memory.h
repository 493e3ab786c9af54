// Memory in large blocks.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>

namespace platform {

/// Least part in which the system hands out memory.
inline constexpr std::size_t kPage = 4096;

/// Size of a block from which on the system may lay it in its large pages: far fewer faults while it is filled.
inline constexpr std::size_t kLargePage = 2 * 1024 * 1024;

struct FreeBlock {
  void operator()(char* block) const { std::free(block); }
};
using Block = std::unique_ptr<char, FreeBlock>;

/// `size` bytes, aligned for any object, and as a page where `size` is a multiple of kPage; in large pages where it is
/// a multiple of kLargePage and the system has them. Throws std::bad_alloc.
Block TakeBlock(std::size_t size);

}  // namespace platform
