// A text file in lines, as the readers by lines take them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/file.h"

namespace pktaus {

/// A line, or a piece of a line of more than 1998 bytes. CR LF is one line end and counts as one byte.
struct LinePiece {
  std::string_view text;     ///< without the line end; valid until the scan goes on
  std::uint64_t offset = 0;  ///< of its first byte in the file
  bool ends_line = false;    ///< a line end stands behind it
};

/// A text that pieces are searched for: not empty and without LF. `first` and `second` are places in it, best of bytes
/// that seldom stand so in the file.
struct Needle {
  std::string_view text;
  std::size_t first;
  std::size_t second;
};

/// A walk over the pieces of a file.
class LineScan {
 public:
  /// The buffer holds the part of the file that is being looked at; one buffer serves many files in turn.
  explicit LineScan(std::vector<char>* buffer);

  bool Open(const std::string& path);
  bool Facts(platform::FileFacts* facts) { return file_.Facts(facts); }
  /// True where the file could not be read to its end.
  bool Failed() const { return failed_; }

  /// Goes on at a piece that was met before.
  void Seek(std::uint64_t offset);
  /// Goes on at the first line that begins behind `offset`.
  void SeekLine(std::uint64_t offset);
  /// False at the end of the file.
  bool Next(LinePiece* piece);
  /// The next piece that holds one of the needles (three at most) whole, and the first place in it where one begins;
  /// nothing where there is none.
  std::optional<std::size_t> Find(std::span<const Needle> needles, LinePiece* piece);

 private:
  void Fill();
  void Take(LinePiece* piece);
  void SkipTo(std::size_t limit);

  platform::File file_;
  std::vector<char>& buffer_;
  std::uint64_t base_ = 0;  // offset of the buffer's first byte
  std::size_t begin_ = 0;   // the next piece begins here
  std::size_t end_ = 0;
  std::size_t ahead_ = 0;  // bytes to read next: few at first, since most looks at a place are short
  bool at_end_ = false;
  bool failed_ = false;
};

}  // namespace pktaus
