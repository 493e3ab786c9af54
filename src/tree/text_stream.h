// A text file in text mode: LF inside, CR LF on disk.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

#include "platform/file.h"
#include "platform/save.h"
#include "tree/words.h"

namespace pktaus {

/// Opened once, either for reading or for writing.
///
/// Reading goes through a window on the file. A step back inside it is an assignment; the first step back to in front
/// of it takes the whole file into memory, so that a file that makes its reader go to and fro costs no more than that.
class TextStream {
 public:
  TextStream() = default;
  TextStream(const TextStream&) = delete;
  TextStream& operator=(const TextStream&) = delete;

  /// False where the file cannot be opened or its beginning cannot be read.
  bool OpenRead(std::string_view path);
  /// Reads a text in memory as if it were a file.
  void OpenText(std::string_view bytes);

  /// Offset behind CR LF translation; Seek returns to it. Behind the end stands the end.
  std::uint64_t GetPosition() const { return base_ + static_cast<std::uint64_t>(next_ - window_.get()); }
  void Seek(std::uint64_t position) {
    const std::uint64_t before = GetPosition();
    if (position >= base_ && position - base_ <= static_cast<std::uint64_t>(end_ - window_.get())) {
      next_ = window_.get() + (position - base_);
    } else {
      SeekFar(position);
    }
    rewound_ += before - GetPosition();
  }

  /// Gives 1, or 0 at the end of the file.
  int ReadByte(char* byte);

  /// Reads up to and including the next LF, at most `size` - 1 bytes. False at the end of the file. `line` is valid
  /// until the next call.
  bool ReadLine(std::size_t size, std::string_view* line);

  /// Next byte (0 to 255) without reading it, or -1 at the end of the file.
  int Peek() { return next_ == end_ && !Fill() ? -1 : static_cast<unsigned char>(*next_); }
  /// Reads the byte that Peek gave.
  void Skip() { ++next_; }
  /// Reads `text` where it stands next; else reads nothing of it.
  bool Accept(std::string_view text) {
    if (static_cast<std::size_t>(end_ - next_) < text.size()) return AcceptSlowly(text);
    if (!EqualBytes(next_, text.data(), text.size())) return false;
    next_ += text.size();
    return true;
  }
  /// Reads up to `stop` exclusive, or to the end. The text lies in the window or in `spill`.
  std::string_view ReadUntil(char stop, std::string* spill) {
    const void* const found = std::memchr(next_, stop, static_cast<std::size_t>(end_ - next_));
    if (found == nullptr) return ReadUntilSlowly(stop, spill);
    const char* const begin = next_;
    next_ += static_cast<const char*>(found) - begin;
    return {begin, static_cast<std::size_t>(next_ - begin)};
  }
  /// Reads as long as `stops` is false for the byte.
  std::string_view ReadUntil(const bool (&stops)[256], std::string* spill) {
    const char* p = next_;
    while (p != end_ && !stops[static_cast<unsigned char>(*p)]) ++p;
    if (p == end_) return ReadUntilSlowly(stops, spill);
    const char* const begin = next_;
    next_ += p - begin;
    return {begin, static_cast<std::size_t>(p - begin)};
  }

  /// Reads as long as `is_part` is true for the byte.
  template <typename IsPart>
  void SkipWhile(IsPart is_part) {
    do {
      char* p = next_;
      while (p != end_ && is_part(static_cast<unsigned char>(*p))) ++p;
      next_ = p;
    } while (next_ == end_ && Fill());
  }

  /// Bytes read so far, those that were read again after a Seek counted again.
  std::uint64_t ByteReads() const { return GetPosition() + rewound_; }
  /// A read of the system failed; the stream has ended there.
  bool Failed() const { return failed_; }

  /// False where the target cannot be opened for writing.
  bool Create(std::string_view path);
  /// Writes to `out`, which outlives the stream.
  void CreateText(std::string* out);
  void WriteString(std::string_view text) {
    if (text.size() > kMostAtOnce || !CopyLine(text, Room(text.size()))) {
      WriteSlowly(text);
    } else {
      out_next_ += text.size();
    }
  }
  /// Writes a literal as it stands.
  template <std::size_t kSize>
  void WriteMark(const char (&mark)[kSize]) {
    std::memcpy(Room(kSize - 1), mark, kSize - 1);
    out_next_ += kSize - 1;
  }
  /// Writes a value with the seven German letters as two bytes each.
  void WriteUmlauts(std::string_view text);
  /// Writes a line end and `tabs` tabs.
  void WriteLineEnd(std::size_t tabs);

  /// Behind Create: true once the whole new file stands at its path. Without it nothing has changed there.
  bool Close();

 private:
  bool Fill();
  void SeekFar(std::uint64_t position);
  bool AcceptSlowly(std::string_view text);
  std::string_view ReadUntilSlowly(char stop, std::string* spill);
  std::string_view ReadUntilSlowly(const bool (&stops)[256], std::string* spill);
  void LoadWhole();
  std::size_t Translate(char* begin, std::size_t size, bool last);
  static constexpr std::size_t kMostAtOnce = 4096;  // bytes that Room makes room for
  // Copies the text; false where there is an LF in it.
  static bool CopyLine(std::string_view text, char* to) {
    const char* from = text.data();
    const std::size_t size = text.size();
    if (size > 64) {
      text.copy(to, size);
      return std::memchr(from, '\n', size) == nullptr;
    }
    if (size < 8) {
      bool has_lf = false;
      for (std::size_t i = 0; i < size; ++i) {
        to[i] = from[i];
        has_lf |= from[i] == '\n';
      }
      return !has_lf;
    }
    std::uint64_t lfs = 0;
    for (std::size_t i = 0; i + 8 < size; i += 8) lfs |= CopyWord(from + i, to + i);
    return (lfs | CopyWord(from + size - 8, to + size - 8)) == 0;
  }
  void WriteSlowly(std::string_view text);
  void Flush();
  char* Room(std::size_t size) {
    if (static_cast<std::size_t>(out_end_ - out_next_) < size) Flush();
    return out_next_;
  }

  platform::File file_;
  std::unique_ptr<char[]> window_;
  char* next_ = nullptr;
  char* end_ = nullptr;
  std::uint64_t base_ = 0;  // position of the window's first byte
  std::uint64_t rewound_ = 0;
  bool held_cr_ = false;  // the last block ended with a CR that may belong to an LF
  bool at_end_ = true;
  bool failed_ = false;
  std::string line_;

  std::unique_ptr<platform::FileSaver> saver_;
  std::string* out_text_ = nullptr;
  std::unique_ptr<char[]> out_;
  char* out_next_ = nullptr;
  char* out_end_ = nullptr;
  bool write_failed_ = false;
};

}  // namespace pktaus
