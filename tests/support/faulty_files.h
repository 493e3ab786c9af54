// The real files, with faults at chosen calls.
#pragma once

#include <cerrno>
#include <functional>
#include <string>
#include <vector>

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

  int Open(const std::string& path, platform::OpenMode mode) override {
    return Fails("Open") ? -1 : real_.Open(path, mode);
  }
  int Duplicate(int file) override { return Fails("Duplicate") ? -1 : real_.Duplicate(file); }
  // A close that fails has closed all the same, as the system's own.
  bool Close(int file) override {
    const bool fails = Fails("Close");
    const int error = errno;
    const bool closed = real_.Close(file);
    if (fails) errno = error;
    return closed && !fails;
  }
  std::int64_t Read(int file, void* data, std::size_t size) override {
    return Fails("Read") ? -1 : real_.Read(file, data, size);
  }
  // A write that fails has moved some of the bytes, as on a disk that is full.
  std::int64_t Write(int file, const void* data, std::size_t size) override {
    if (!Fails("Write")) return real_.Write(file, data, size);
    const int error = errno;
    real_.Write(file, data, size / 2);
    errno = error;
    return -1;
  }
  std::int64_t ReadAt(int file, void* data, std::size_t size, std::uint64_t offset) override {
    return Fails("ReadAt") ? -1 : real_.ReadAt(file, data, size, offset);
  }
  std::int64_t WriteAt(int file, const void* data, std::size_t size, std::uint64_t offset) override {
    return Fails("WriteAt") ? -1 : real_.WriteAt(file, data, size, offset);
  }
  bool Seek(int file, std::uint64_t offset) override { return !Fails("Seek") && real_.Seek(file, offset); }
  bool Truncate(int file, std::uint64_t size) override { return !Fails("Truncate") && real_.Truncate(file, size); }
  bool Sync(int file) override { return !Fails("Sync") && real_.Sync(file); }
  bool Facts(int file, platform::FileFacts* facts) override { return !Fails("Facts") && real_.Facts(file, facts); }
  bool SetMode(int file, std::uint32_t mode) override { return !Fails("SetMode") && real_.SetMode(file, mode); }
  bool SetOwner(int file, std::uint32_t owner, std::uint32_t group) override {
    return !Fails("SetOwner") && real_.SetOwner(file, owner, group);
  }
  bool PathFacts(const std::string& path, platform::FileFacts* facts) override {
    return !Fails("PathFacts") && real_.PathFacts(path, facts);
  }
  bool RealPath(const std::string& path, std::string* real) override {
    return !Fails("RealPath") && real_.RealPath(path, real);
  }
  bool Rename(const std::string& from, const std::string& to) override {
    return !Fails("Rename") && real_.Rename(from, to);
  }
  bool Remove(const std::string& path) override { return !Fails("Remove") && real_.Remove(path); }
  bool SyncFolder(const std::string& path) override { return !Fails("SyncFolder") && real_.SyncFolder(path); }
  bool FreeSpace(const std::string& path, std::uint64_t* bytes) override {
    return !Fails("FreeSpace") && real_.FreeSpace(path, bytes);
  }
  bool List(const std::string& path, std::vector<std::string>* names) override {
    return !Fails("List") && real_.List(path, names);
  }
  bool TryLock(int file) override { return !Fails("TryLock") && real_.TryLock(file); }

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
