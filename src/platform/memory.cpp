#include "platform/memory.h"

#include <sys/mman.h>

#include <new>

#include "platform/system.h"

namespace platform {

Block TakeBlock(std::size_t size) {
  if (size == 0) size = 1;
  const bool large = size % kLargePage == 0;
  Block block(static_cast<char*>(large ? std::aligned_alloc(kLargePage, size) : std::malloc(size)));
  if (block == nullptr) throw std::bad_alloc();
  if (large) {
    const KeepSystemError keep;
    madvise(block.get(), size, MADV_HUGEPAGE);  // only a wish
  }
  return block;
}

}  // namespace platform
