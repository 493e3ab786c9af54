#include "platform/memory.h"

#include <sys/mman.h>

#include <new>

#include "platform/system.h"

namespace platform {

Block TakeBlock(std::size_t size) {
  if (size == 0) size = 1;
  const bool large = size % kLargePage == 0;
  const std::size_t alignment = large ? kLargePage : kPage;
  Block block(static_cast<char*>(size % kPage == 0 ? std::aligned_alloc(alignment, size) : std::malloc(size)));
  if (block == nullptr) throw std::bad_alloc();
  if (large) {
    const KeepSystemError keep;
    madvise(block.get(), size, MADV_HUGEPAGE);  // only a wish
  }
  return block;
}

}  // namespace platform
