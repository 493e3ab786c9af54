// Runs a piece of work on a thread with a stack of 1 MB.
#pragma once

#include <gtest/gtest.h>
#include <pthread.h>

#include <functional>

namespace support {

inline void RunWithSmallStack(std::function<void()> work) {
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  ASSERT_EQ(pthread_attr_setstacksize(&attributes, 1024 * 1024), 0);
  pthread_t thread{};
  const auto run = [](void* given) -> void* {
    (*static_cast<std::function<void()>*>(given))();
    return nullptr;
  };
  ASSERT_EQ(pthread_create(&thread, &attributes, run, &work), 0);
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
}

}  // namespace support
