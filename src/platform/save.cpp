#include "platform/save.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

#include "base/path.h"
#include "platform/clock.h"
#include "platform/system.h"

namespace platform {
namespace {

constexpr std::size_t kBufferSize = 64 * 1024;
constexpr int kMostAttempts = 20;
constexpr std::int64_t kLeftoverAge = 3600;  // seconds
constexpr std::string_view kEnding = ".pktaus-neu";

// Folder and name of a real path, which is absolute.
std::string FolderOf(const std::string& real) { return real.substr(0, real.rfind('/') + 1); }
std::string NameOf(const std::string& real) { return real.substr(real.rfind('/') + 1); }

std::uint64_t Fingerprint(std::string_view text) {
  std::uint64_t hash = 14695981039346656037U;
  for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211U;
  return hash;
}

// What the names of all our files beside a target begin with: ".TARGET.", with a long name cut to what a name may hold.
std::string SiblingStem(const std::string& name) {
  constexpr std::size_t kMostOfName = 180;
  std::string stem = ".";
  stem.append(name, 0, kMostOfName).push_back('.');
  if (name.size() > kMostOfName) stem.append(std::to_string(Fingerprint(name))).push_back('.');
  return stem;
}

// ".TARGET.PROCESS-NUMBER.pktaus-neu", whatever the target.
bool IsSibling(std::string_view name) {
  if (!name.starts_with('.') || !name.ends_with(kEnding)) return false;
  name.remove_suffix(kEnding.size());
  const std::size_t dot = name.rfind('.');
  const std::string_view number = name.substr(dot + 1);
  return dot > 1 && !number.empty() && number.find_first_not_of("0123456789-") == std::string_view::npos;
}

// Whether a failure means that this place takes no file of ours, where another way may still work.
bool IsForbidden(int error) {
  return error == EACCES || error == EPERM || error == EROFS || error == ENAMETOOLONG || error == ENOTSUP;
}

// Whether a new file cannot take the target's name although it lies beside it.
bool IsRenameForbidden(int error) { return IsForbidden(error) || error == EBUSY || error == EXDEV; }

bool SameFile(const FileFacts& a, const FileFacts& b) { return a.device == b.device && a.serial == b.serial; }

}  // namespace

struct FileSaver::Work {
  std::string real;          // target on disk, links followed
  File target;               // open where the target exists; its bytes stay as they are until the commit
  FileFacts target_facts;    // of `target`
  File waiting;              // the new bytes
  std::string waiting_path;  // on disk; empty where the waiting file has no name any more
  File lock;                 // held while `waiting_path` exists, so that nobody takes it for a leftover
  std::vector<char> buffer;
  std::size_t buffered = 0;
  std::uint64_t size = 0;  // bytes that went to `waiting`
  bool failed = false;
  int error = 0;  // the first failure's

  ~Work() { Drop(); }

  bool OpenTarget(const std::string& disk);
  void SweepLeftovers() const;
  bool OpenSibling();
  bool LockSibling();
  bool TakeOverRights();
  bool OpenInTempFolder();
  bool WriteThrough(const void* data, std::size_t bytes);
  bool Finish();
  bool Replace();
  bool WriteInPlace();
  void Drop();
};

bool FileSaver::Work::OpenTarget(const std::string& disk) {
  if (disk.empty() || disk.find('\0') != std::string::npos) {
    SetLastSystemError(ENOENT);
    return false;
  }
  if (!Files().RealPath(disk, &real)) return false;
  FileFacts facts;
  if (!Files().PathFacts(real, &facts)) return LastSystemError() == ENOENT;
  if (!facts.kind_file) {
    SetLastSystemError(facts.kind_folder ? EISDIR : EINVAL);
    return false;
  }
  return target.OpenOnDisk(real, OpenMode::kReadWrite) && target.Facts(&target_facts);
}

// Removes what killed runs left in this folder. A file whose lock is held belongs to a run that still lives; one of
// another target may, where the drive knows no locks, so it has to be old as well.
void FileSaver::Work::SweepLeftovers() const {
  const KeepSystemError keep;
  std::vector<std::string> names;
  if (!Files().List(FolderOf(real), &names)) return;
  const std::string stem = SiblingStem(NameOf(real));
  const std::int64_t old_ns = (SystemClock().Now() - kLeftoverAge) * 1'000'000'000;
  for (const std::string& name : names) {
    if (!IsSibling(name)) continue;
    const std::string leftover = FolderOf(real) + name;
    File file;
    FileFacts facts;
    if (!file.OpenOnDisk(leftover, OpenMode::kReadWrite) || !file.Facts(&facts) || !facts.kind_file) continue;
    if (!name.starts_with(stem) && facts.modified_ns > old_ns) continue;
    if (Files().TryLock(file.handle())) Files().Remove(leftover);
  }
}

bool FileSaver::Work::OpenSibling() {
  const std::string stem = FolderOf(real) + SiblingStem(NameOf(real)) + std::to_string(getpid()) + "-";
  for (int i = 0; i < kMostAttempts; ++i) {
    const std::string name = stem + std::to_string(i) + std::string(kEnding);
    // Until it has the target's rights nobody else may look into it.
    if (!waiting.OpenOnDisk(name, target.IsOpen() ? OpenMode::kCreatePrivate : OpenMode::kCreateNew)) {
      if (LastSystemError() == EEXIST) continue;
      return false;
    }
    waiting_path = name;
    if (LockSibling()) return TakeOverRights();
    Drop();
  }
  SetLastSystemError(EEXIST);
  return false;
}

// False where another run has taken the file for a leftover in the moment before it was locked.
bool FileSaver::Work::LockSibling() {
  // A second handle keeps the lock over the close that comes before the rename. It must be one of the same opening: on
  // a network drive the lock of another one would keep our own writes out.
  FileFacts held;
  FileFacts named;
  // Where the file system knows no locks nobody else gets one either.
  if (!Files().TryLock(waiting.handle()) && LastSystemError() == EAGAIN) return false;
  return lock.Duplicate(waiting) && waiting.Facts(&held) && Files().PathFacts(waiting_path, &named) &&
         SameFile(held, named);
}

bool FileSaver::Work::TakeOverRights() {
  if (!target.IsOpen()) return true;
  FileFacts facts;
  if (!waiting.Facts(&facts)) return false;
  const bool same_owner = facts.owner == target_facts.owner && facts.group == target_facts.group;
  if (!same_owner && !Files().SetOwner(waiting.handle(), target_facts.owner, target_facts.group)) return false;
  return (same_owner && facts.mode == target_facts.mode) || Files().SetMode(waiting.handle(), target_facts.mode);
}

// For a target that can only be written in place: its new bytes wait in a file without a name.
bool FileSaver::Work::OpenInTempFolder() {
  const std::string stem = path::ToDisk(TempFolder()) + "pktaus-" + std::to_string(getpid()) + "-";
  for (int i = 0; i < kMostAttempts; ++i) {
    const std::string name = stem + std::to_string(i) + std::string(kEnding);
    if (waiting.OpenOnDisk(name, OpenMode::kCreatePrivate)) return Files().Remove(name);
    if (LastSystemError() != EEXIST) return false;
  }
  return false;
}

bool FileSaver::Work::WriteThrough(const void* data, std::size_t bytes) {
  if (!failed && !waiting.Write(data, bytes)) {
    failed = true;
    error = LastSystemError();
  }
  size += bytes;
  return !failed;
}

// Puts the new bytes, complete, where the target is.
bool FileSaver::Work::Finish() {
  if (!WriteThrough(buffer.data(), buffered)) {
    SetLastSystemError(error);
    return false;
  }
  buffered = 0;
  if (waiting_path.empty()) return WriteInPlace();
  if (!Files().Sync(waiting.handle()) || !waiting.Close()) return false;
  if (Replace()) return true;
  if (!target.IsOpen() || !IsRenameForbidden(LastSystemError())) return false;
  waiting = std::move(lock);
  return WriteInPlace();
}

bool FileSaver::Work::Replace() {
  if (!Files().Rename(waiting_path, real)) return false;
  waiting_path.clear();
  // The new file stands. Only a power cut could now bring the old one back, and that would be complete too.
  const KeepSystemError keep;
  Files().SyncFolder(FolderOf(real));
  return true;
}

// What goes beyond the old end is written first: it is the part for which the device may have no room, and it can be
// cut off again. Only then the old bytes go.
bool FileSaver::Work::WriteInPlace() {
  const std::uint64_t old_size = target_facts.size;
  std::uint64_t free = 0;
  if (!Files().FreeSpace(real, &free)) return false;
  if (size > old_size && size - old_size > free) {
    SetLastSystemError(ENOSPC);
    return false;
  }
  // How far it came.
  const auto copy = [&](std::uint64_t at, std::uint64_t end) {
    while (at < end) {
      const auto part = static_cast<std::size_t>(std::min<std::uint64_t>(buffer.size(), end - at));
      if (waiting.ReadAt(buffer.data(), part, at) != static_cast<std::int64_t>(part)) break;
      if (!target.WriteAt(buffer.data(), part, at)) break;
      at += part;
    }
    return at;
  };
  const std::uint64_t kept = std::min(old_size, size);
  const bool longer = copy(kept, size) == size && Files().Sync(target.handle());
  const std::uint64_t replaced = longer ? copy(0, kept) : 0;
  if (!longer || replaced < kept) {
    const KeepSystemError keep;
    if (replaced == 0) Files().Truncate(target.handle(), old_size);
    return false;
  }
  if (size < old_size && !Files().Truncate(target.handle(), size)) return false;
  const bool synced = Files().Sync(target.handle());
  return target.Close() && synced;
}

void FileSaver::Work::Drop() {
  const KeepSystemError keep;
  waiting.Close();
  if (!waiting_path.empty()) Files().Remove(waiting_path);
  waiting_path.clear();
  lock.Close();
}

FileSaver::FileSaver() = default;

FileSaver::~FileSaver() = default;

bool FileSaver::Open(std::string_view path) {
  work_ = std::make_unique<Work>();
  const bool open = [&] {
    if (!work_->OpenTarget(path::ToDisk(path))) return false;
    work_->SweepLeftovers();
    if (work_->OpenSibling()) return true;
    if (!work_->target.IsOpen() || !IsForbidden(LastSystemError())) return false;
    work_->Drop();
    return work_->OpenInTempFolder();
  }();
  if (!open) {
    work_.reset();
    return false;
  }
  work_->buffer.resize(kBufferSize);
  return true;
}

bool FileSaver::Write(const void* data, std::size_t size) {
  if (!work_ || work_->failed) return false;
  Work& work = *work_;
  if (size > work.buffer.size() - work.buffered) {
    if (!work.WriteThrough(work.buffer.data(), work.buffered)) return false;
    work.buffered = 0;
    if (size >= work.buffer.size()) return work.WriteThrough(data, size);
  }
  if (size > 0) std::memcpy(work.buffer.data() + work.buffered, data, size);
  work.buffered += size;
  return true;
}

bool FileSaver::Commit() {
  if (!work_) return false;
  const bool stands = work_->Finish();
  work_.reset();
  return stands;
}

}  // namespace platform
