// The real files, with faults at chosen calls.
#pragma once

#include <cerrno>
#include <functional>

#include "platform/file.h"

namespace support {

/// Hands every call on to the real files and lets `fault` decide before each which system error it fails with; 0 lets
/// it pass. In force while it lives.
class FaultyFiles : public platform::FileSystem {
 public:
  /// `call` counts from 1; `name` is the operation's.
  using Fault = std::function<int(int call, const std::string& name)>;

  explicit FaultyFiles(Fault fault) : fault_(std::move(fault)), scope_(this) {}

  int calls() const { return calls_; }

  // Each call by its result, name, parameters and arguments, and what it gives when it fails.
#define SUPPORT_FAULTY(Result, Name, parameters, arguments, failure) \
  Result Name parameters override { return Fails(#Name) ? failure : real_.Name arguments; }
  SUPPORT_FAULTY(int, Open, (const std::string& path, platform::OpenMode mode), (path, mode), -1)
  SUPPORT_FAULTY(int, Duplicate, (int file), (file), -1)
  SUPPORT_FAULTY(std::int64_t, Read, (int file, void* to, std::size_t size), (file, to, size), -1)
  SUPPORT_FAULTY(std::int64_t, ReadAt, (int file, void* to, std::size_t n, std::uint64_t at), (file, to, n, at), -1)
  SUPPORT_FAULTY(std::int64_t, WriteAt, (int f, const void* of, std::size_t n, std::uint64_t at), (f, of, n, at), -1)
  SUPPORT_FAULTY(bool, Seek, (int file, std::uint64_t offset), (file, offset), false)
  SUPPORT_FAULTY(bool, Truncate, (int file, std::uint64_t size), (file, size), false)
  SUPPORT_FAULTY(bool, Sync, (int file), (file), false)
  SUPPORT_FAULTY(bool, Facts, (int file, platform::FileFacts* facts), (file, facts), false)
  SUPPORT_FAULTY(bool, SetMode, (int file, std::uint32_t mode), (file, mode), false)
  SUPPORT_FAULTY(bool, SetOwner, (int file, std::uint32_t user, std::uint32_t group), (file, user, group), false)
  SUPPORT_FAULTY(bool, PathFacts, (const std::string& path, platform::FileFacts* facts), (path, facts), false)
  SUPPORT_FAULTY(bool, RealPath, (const std::string& path, std::string* real), (path, real), false)
  SUPPORT_FAULTY(bool, Rename, (const std::string& from, const std::string& to), (from, to), false)
  SUPPORT_FAULTY(bool, Remove, (const std::string& path), (path), false)
  SUPPORT_FAULTY(bool, SyncFolder, (const std::string& path), (path), false)
  SUPPORT_FAULTY(bool, FreeSpace, (const std::string& path, std::uint64_t* bytes), (path, bytes), false)
  SUPPORT_FAULTY(bool, List, (const std::string& path, std::vector<std::string>* names), (path, names), false)
  SUPPORT_FAULTY(bool, TryLock, (int file), (file), false)
#undef SUPPORT_FAULTY
  // A close that fails has closed all the same, as the system's own.
  bool Close(int file) override {
    const bool closed = real_.Close(file);
    return !Fails("Close") && closed;
  }
  // A write that fails has moved some of the bytes, as on a disk that is full.
  std::int64_t Write(int file, const void* data, std::size_t size) override {
    const bool fails = Fails("Write");
    const int error = errno;
    const std::int64_t moved = real_.Write(file, data, fails ? size / 2 : size);
    if (fails) errno = error;
    return fails ? -1 : moved;
  }

 private:
  bool Fails(const char* name) {
    const int error = fault_(++calls_, name);
    if (error != 0) errno = error;
    return error != 0;
  }

  platform::FileSystem& real_ = platform::RealFiles();
  Fault fault_;
  int calls_ = 0;
  platform::FileSystemScope scope_;
};

}  // namespace support
