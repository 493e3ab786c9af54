#include "platform/file.h"

#include <dirent.h>
#include <fcntl.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <memory>

#include "base/path.h"
#include "platform/system.h"

namespace platform {
namespace {

FileFacts FactsOf(const struct stat& s) {
  FileFacts facts;
  facts.kind_file = S_ISREG(s.st_mode);
  facts.kind_folder = S_ISDIR(s.st_mode);
  facts.size = static_cast<std::uint64_t>(s.st_size);
  facts.mode = s.st_mode & 07777U;
  facts.owner = s.st_uid;
  facts.group = s.st_gid;
  facts.device = s.st_dev;
  facts.serial = s.st_ino;
  facts.modified_ns = static_cast<std::int64_t>(s.st_mtim.tv_sec) * 1'000'000'000 + s.st_mtim.tv_nsec;
  return facts;
}

// A NUL inside a path would end it early, and another file would be meant.
bool IsPath(const std::string& path) {
  if (path.find('\0') == std::string::npos) return true;
  errno = ENOENT;
  return false;
}

// realpath of an existing path, and no more.
bool ExistingRealPath(const std::string& path, std::string* real) {
  const std::unique_ptr<char, decltype(&free)> found(realpath(path.c_str(), nullptr), &free);
  if (!found) return false;
  *real = found.get();
  return true;
}

// A write beyond the process's limit on the size of files raises a signal that ends the process. For the length of a
// write it is held back and dropped, so that the write fails with EFBIG; what the host does with the signal stays.
class NoSizeSignal {
 public:
  NoSizeSignal() {
    sigemptyset(&signal_);
    sigaddset(&signal_, SIGXFSZ);
    sigset_t pending;
    was_pending_ = sigpending(&pending) == 0 && sigismember(&pending, SIGXFSZ) == 1;
    pthread_sigmask(SIG_BLOCK, &signal_, &before_);
  }
  ~NoSizeSignal() {
    const KeepSystemError keep;
    const timespec at_once{};
    if (!was_pending_ && errno == EFBIG) sigtimedwait(&signal_, nullptr, &at_once);
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
  }
  NoSizeSignal(const NoSizeSignal&) = delete;
  NoSizeSignal& operator=(const NoSizeSignal&) = delete;

 private:
  sigset_t signal_;
  sigset_t before_;
  bool was_pending_;
};

class SystemFiles : public FileSystem {
 public:
  int Open(const std::string& path, OpenMode mode) override {
    if (!IsPath(path)) return -1;
    // A pipe without a writer must not make a reader wait.
    int flags = O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
    if (mode == OpenMode::kRead) flags |= O_RDONLY;
    if (mode != OpenMode::kRead) flags |= O_RDWR;
    if (mode == OpenMode::kCreateNew || mode == OpenMode::kCreatePrivate) flags |= O_CREAT | O_EXCL;
    if (mode == OpenMode::kLockFile) flags |= O_CREAT | O_NOFOLLOW;
    if (mode == OpenMode::kAppend) flags |= O_CREAT | O_APPEND | O_NOFOLLOW;
    const int file = open(path.c_str(), flags, mode == OpenMode::kCreatePrivate ? 0600 : 0666);
    struct stat s {};
    if (file >= 0 && mode == OpenMode::kRead && fstat(file, &s) == 0 && S_ISDIR(s.st_mode)) {
      close(file);
      errno = EISDIR;
      return -1;
    }
    return file;
  }
  int Duplicate(int file) override { return fcntl(file, F_DUPFD_CLOEXEC, 0); }
  // The descriptor is gone even where the close was interrupted; what had to be on disk was synced before.
  bool Close(int file) override { return close(file) == 0 || errno == EINTR; }
  std::int64_t Read(int file, void* data, std::size_t size) override { return read(file, data, size); }
  std::int64_t Write(int file, const void* data, std::size_t size) override {
    const NoSizeSignal no_signal;
    return write(file, data, size);
  }
  std::int64_t ReadAt(int file, void* data, std::size_t size, std::uint64_t offset) override {
    return pread(file, data, size, static_cast<off_t>(offset));
  }
  std::int64_t WriteAt(int file, const void* data, std::size_t size, std::uint64_t offset) override {
    const NoSizeSignal no_signal;
    return pwrite(file, data, size, static_cast<off_t>(offset));
  }
  bool Seek(int file, std::uint64_t offset) override { return lseek(file, static_cast<off_t>(offset), SEEK_SET) >= 0; }
  bool Truncate(int file, std::uint64_t size) override {
    const NoSizeSignal no_signal;
    return ftruncate(file, static_cast<off_t>(size)) == 0;
  }
  // Some file systems know no sync and say so; there is nothing more to be done on them.
  bool Sync(int file) override { return fsync(file) == 0 || errno == EINVAL || errno == ENOTSUP; }
  bool Facts(int file, FileFacts* facts) override {
    struct stat s {};
    if (fstat(file, &s) != 0) return false;
    *facts = FactsOf(s);
    return true;
  }
  bool SetMode(int file, std::uint32_t mode) override { return fchmod(file, mode) == 0; }
  bool SetOwner(int file, std::uint32_t owner, std::uint32_t group) override { return fchown(file, owner, group) == 0; }
  bool PathFacts(const std::string& path, FileFacts* facts) override {
    struct stat s {};
    if (!IsPath(path) || stat(path.c_str(), &s) != 0) return false;
    *facts = FactsOf(s);
    return true;
  }
  bool RealPath(const std::string& path, std::string* real) override {
    constexpr int kMostLinks = 40;  // as the system itself follows
    if (!IsPath(path)) return false;
    std::string at = path;
    for (int i = 0; i < kMostLinks; ++i) {
      if (ExistingRealPath(at, real)) return true;
      if (errno != ENOENT) return false;
      const std::size_t slash = at.rfind('/');
      const std::string folder = slash == std::string::npos ? "." : at.substr(0, slash + 1);
      const std::string name = slash == std::string::npos ? at : at.substr(slash + 1);
      char link[4096];
      const ssize_t size = readlink(at.c_str(), link, sizeof link);
      if (size < 0) {
        if (name.empty() || !ExistingRealPath(folder, real)) return false;
        if (real->back() != '/') *real += '/';
        *real += name;
        return true;
      }
      const std::string to(link, static_cast<std::size_t>(size));
      at = to.starts_with('/') ? to : folder + "/" + to;
    }
    errno = ELOOP;
    return false;
  }
  bool Rename(const std::string& from, const std::string& to) override {
    return std::rename(from.c_str(), to.c_str()) == 0;
  }
  bool Remove(const std::string& path) override { return IsPath(path) && unlink(path.c_str()) == 0; }
  bool SyncFolder(const std::string& path) override {
    const int folder = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0) return false;
    const bool synced = Sync(folder);
    return Close(folder) && synced;
  }
  bool FreeSpace(const std::string& path, std::uint64_t* bytes) override {
    struct statvfs s {};
    if (statvfs(path.c_str(), &s) != 0) return false;
    *bytes = static_cast<std::uint64_t>(s.f_bavail) * s.f_frsize;
    return true;
  }
  bool List(const std::string& path, std::vector<std::string>* names) override {
    const auto close = [](DIR* open_folder) { closedir(open_folder); };
    std::unique_ptr<DIR, decltype(close)> folder(opendir(path.c_str()), close);
    if (!folder) return false;
    names->clear();
    errno = 0;
    while (const dirent* entry = readdir(folder.get())) {
      const std::string name = entry->d_name;
      if (name != "." && name != "..") names->push_back(name);
      errno = 0;
    }
    const int error = errno;
    folder.reset();
    errno = error;
    std::sort(names->begin(), names->end());
    return error == 0;
  }
  bool TryLock(int file) override { return flock(file, LOCK_EX | LOCK_NB) == 0; }
};

FileSystem* in_force = nullptr;

// Repeats a call that moves bytes until all are moved, the end is reached or it fails. `move` takes the bytes done.
template <typename Move>
std::int64_t Repeat(std::size_t size, Move move) {
  std::size_t done = 0;
  while (done < size) {
    const std::int64_t moved = move(done);
    if (moved < 0 && errno == EINTR) continue;
    if (moved < 0) return -1;
    if (moved == 0) break;
    done += static_cast<std::size_t>(moved);
  }
  return static_cast<std::int64_t>(done);
}

bool IsWhole(std::int64_t written, std::size_t size) {
  if (written == static_cast<std::int64_t>(size)) return true;
  if (written >= 0) errno = ENOSPC;  // a device that takes nothing and names no reason
  return false;
}

}  // namespace

FileSystem& RealFiles() {
  static SystemFiles files;
  return files;
}

FileSystem& Files() { return in_force != nullptr ? *in_force : RealFiles(); }

FileSystemScope::FileSystemScope(FileSystem* files) : before_(in_force) { in_force = files; }

FileSystemScope::~FileSystemScope() { in_force = before_; }

File& File::operator=(File&& other) noexcept {
  if (this != &other) {
    Close();
    file_ = other.file_;
    other.file_ = -1;
  }
  return *this;
}

bool File::Open(std::string_view path, OpenMode mode) { return OpenOnDisk(path::ToDisk(path), mode); }

bool File::OpenOnDisk(const std::string& disk_path, OpenMode mode) {
  Close();
  do {
    file_ = Files().Open(disk_path, mode);
  } while (file_ < 0 && errno == EINTR);
  return IsOpen();
}

bool File::Duplicate(const File& other) {
  Close();
  file_ = Files().Duplicate(other.file_);
  return IsOpen();
}

bool File::Close() {
  if (!IsOpen()) return true;
  const int file = file_;
  file_ = -1;
  return Files().Close(file);
}

std::int64_t File::Read(void* data, std::size_t size) {
  return Repeat(size,
                [&](std::size_t done) { return Files().Read(file_, static_cast<char*>(data) + done, size - done); });
}

std::int64_t File::ReadAt(void* data, std::size_t size, std::uint64_t offset) {
  return Repeat(size, [&](std::size_t done) {
    return Files().ReadAt(file_, static_cast<char*>(data) + done, size - done, offset + done);
  });
}

bool File::Write(const void* data, std::size_t size) {
  return IsWhole(Repeat(size,
                        [&](std::size_t done) {
                          return Files().Write(file_, static_cast<const char*>(data) + done, size - done);
                        }),
                 size);
}

bool File::WriteAt(const void* data, std::size_t size, std::uint64_t offset) {
  return IsWhole(Repeat(size,
                        [&](std::size_t done) {
                          return Files().WriteAt(file_, static_cast<const char*>(data) + done, size - done,
                                                 offset + done);
                        }),
                 size);
}

bool File::Facts(FileFacts* facts) { return Files().Facts(file_, facts); }

bool FileExists(std::string_view path) {
  const KeepSystemError keep;
  FileFacts facts;
  return Files().PathFacts(path::ToDisk(path), &facts) && facts.kind_file;
}

std::vector<std::string> ListFiles(std::string_view folder, std::string_view pattern) {
  const KeepSystemError keep;
  std::vector<std::string> found;
  std::vector<std::string> names;
  if (!Files().List(path::ToDisk(folder.empty() ? "." : folder), &names)) return found;
  for (const std::string& disk_name : names) {
    const std::optional<std::string> name = path::FromDisk(disk_name);
    if (name && path::Matches(*name, pattern) && FileExists(path::Join(folder, *name))) found.push_back(*name);
  }
  std::sort(found.begin(), found.end());
  return found;
}

void DeleteIfThere(std::string_view path) {
  const KeepSystemError keep;
  Files().Remove(path::ToDisk(path));
}

}  // namespace platform
