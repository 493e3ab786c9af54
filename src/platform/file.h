// The operating system's files: one interface, so that a test can play any fault.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

enum class OpenMode {
  kRead,           ///< existing file, read only
  kReadWrite,      ///< existing file, read and write in place
  kCreateNew,      ///< new file, read and write; fails where the name exists, a link included
  kCreatePrivate,  ///< the same, for the eyes of its owner alone
  kLockFile,       ///< read and write, made where it does not exist; never cut; fails where the name is a link
  kAppend,         ///< written at the end, made where it does not exist; fails where the name is a link
};

/// Facts about what stands at a path. `kind_file` is false for folders, devices and pipes.
struct FileFacts {
  bool kind_file = false;
  bool kind_folder = false;
  std::uint64_t size = 0;
  std::uint32_t mode = 0;  ///< permission bits alone
  std::uint32_t owner = 0;
  std::uint32_t group = 0;
  std::uint64_t device = 0;
  std::uint64_t serial = 0;      ///< number of the file on its device
  std::int64_t modified_ns = 0;  ///< last change, nanoseconds since 1970
};

/// The calls that our files make, each shaped as the system's own: -1 or false is a failure, and the last system error
/// (platform/system.h) has its number. Paths are in the form on disk. A test derives from RealFiles() to fail the nth.
class FileSystem {
 public:
  virtual ~FileSystem() = default;
  /// kRead refuses a folder. None of the modes waits at a pipe.
  virtual int Open(const std::string& path, OpenMode mode) = 0;
  /// A second handle of the same opening: position and lock are shared, and the lock lasts until both are closed.
  virtual int Duplicate(int file) = 0;
  virtual bool Close(int file) = 0;
  virtual std::int64_t Read(int file, void* data, std::size_t size) = 0;
  virtual std::int64_t Write(int file, const void* data, std::size_t size) = 0;
  virtual std::int64_t ReadAt(int file, void* data, std::size_t size, std::uint64_t offset) = 0;
  virtual std::int64_t WriteAt(int file, const void* data, std::size_t size, std::uint64_t offset) = 0;
  virtual bool Seek(int file, std::uint64_t offset) = 0;
  virtual bool Truncate(int file, std::uint64_t size) = 0;
  virtual bool Sync(int file) = 0;
  virtual bool Facts(int file, FileFacts* facts) = 0;
  virtual bool SetMode(int file, std::uint32_t mode) = 0;
  virtual bool SetOwner(int file, std::uint32_t owner, std::uint32_t group) = 0;
  virtual bool PathFacts(const std::string& path, FileFacts* facts) = 0;  ///< follows links
  /// Absolute path without links; of a file that does not exist, the path at which it would be made.
  virtual bool RealPath(const std::string& path, std::string* real) = 0;
  virtual bool Rename(const std::string& from, const std::string& to) = 0;
  virtual bool Remove(const std::string& path) = 0;
  virtual bool SyncFolder(const std::string& path) = 0;
  /// Bytes that this process may still use on the device of an existing file or folder.
  virtual bool FreeSpace(const std::string& path, std::uint64_t* bytes) = 0;
  /// Names of all entries of a folder but "." and "..", as they stand on disk, sorted by their bytes.
  virtual bool List(const std::string& path, std::vector<std::string>* names) = 0;
  /// Takes the file's exclusive lock without waiting; the lock ends with the file's close or with the process.
  virtual bool TryLock(int file) = 0;
};

FileSystem& RealFiles();

/// The file system in force: the real one at the start.
FileSystem& Files();

/// Puts another file system in force for a block; for tests.
class FileSystemScope {
 public:
  explicit FileSystemScope(FileSystem* files);
  ~FileSystemScope();
  FileSystemScope(const FileSystemScope&) = delete;
  FileSystemScope& operator=(const FileSystemScope&) = delete;

 private:
  FileSystem* before_;
};

/// An open file, closed at the end of its life. Interrupted and short calls are repeated here. Paths are in the form
/// inside (Windows-1252).
class File {
 public:
  File() = default;
  ~File() { Close(); }
  File(File&& other) noexcept : file_(other.file_) { other.file_ = -1; }
  File& operator=(File&& other) noexcept;
  File(const File&) = delete;
  File& operator=(const File&) = delete;

  bool Open(std::string_view path, OpenMode mode);
  bool OpenOnDisk(const std::string& disk_path, OpenMode mode);
  bool Duplicate(const File& other);
  bool IsOpen() const { return file_ >= 0; }
  int handle() const { return file_; }
  bool Close();  ///< true where nothing was open

  /// Bytes read, fewer than `size` only at the end of the file; -1 after a failure.
  std::int64_t Read(void* data, std::size_t size);
  std::int64_t ReadAt(void* data, std::size_t size, std::uint64_t offset);
  bool Write(const void* data, std::size_t size);
  bool WriteAt(const void* data, std::size_t size, std::uint64_t offset);
  bool Facts(FileFacts* facts);

 private:
  int file_ = -1;
};

/// True where a regular file stands at the path (form inside).
bool FileExists(std::string_view path);

/// Names (form inside) of the regular files of a folder that fit a pattern, sorted; a name that Windows-1252 cannot say
/// is left out. Empty where the folder cannot be read.
std::vector<std::string> ListFiles(std::string_view folder, std::string_view pattern);

/// Deletes a file; whether it was there is no matter, and the last system error stays as it was.
void DeleteIfThere(std::string_view path);

}  // namespace platform
