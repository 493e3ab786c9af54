// A dBase table that stays open while single records are read and written in place.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/file.h"

namespace korvo {

/// Value of a number column's text: padded with blanks on either side, point as decimal sign, whatever the locale.
/// 0 for blanks and for anything that is no number as a whole.
double ParseNumber(std::string_view text);

/// The text of a value in a column of that width and number of decimals, right-aligned. False, with `text` untouched,
/// where the value does not fit or is no number.
bool FormatNumber(double value, int width, int decimals, std::string* text);

struct Column {
  std::string name;  ///< as in the file, at most 11 characters
  char type = 'C';
  int width = 0;
  int decimals = 0;
  std::size_t offset = 0;  ///< in the record; position 0 is the flag of deletion
};

/// Reads what it can make sense of and writes nothing but whole records in their place, so that no table is damaged by
/// being open here: a record length that is not that of the columns is refused, room in front of the first record is
/// not. The count is what the header says where that many records stand there, otherwise what does stand there. Paths
/// and texts are Windows-1252.
class Table {
 public:
  enum class Got { kRead, kDeleted, kOutside, kFailed };

  Table() = default;
  ~Table() { Close(); }
  Table(const Table&) = delete;
  Table& operator=(const Table&) = delete;

  /// False with the reason in German; the table is closed then. A table that is to be writable and may not be written
  /// is opened for reading alone.
  bool Open(std::string_view path, bool writable, std::string* why);
  /// Brings what was written to the disk and lets the file go.
  void Close();
  bool IsOpen() const { return file_.IsOpen(); }
  bool writable() const { return writable_; }

  /// Differs from one opening to the next, never 0: a column's number alone would outlive its table.
  std::uint32_t opening() const { return opening_; }

  std::int32_t count() const { return count_; }
  /// What the header says.
  std::uint32_t promised() const { return promised_; }
  const std::vector<Column>& columns() const { return columns_; }
  /// Position of the first column whose name agrees in its first ten characters, case heeded; -1 for none.
  int Find(std::string_view name) const;

  /// The bytes of record `number` (from 1), flag first, valid until the next call of any operation. Deleted records
  /// are given too. Read in blocks, so that a walk in ascending order costs little more than reading the file.
  Got Read(std::int32_t number, std::string_view* record);
  std::string_view Field(std::string_view record, int column) const;

  /// The current record. It is fetched by the first operation that needs it.
  void Go(std::int32_t number);
  /// Full width, padded with blanks; empty for a column that is not there.
  void Text(int column, std::string* text);
  double Number(int column);
  /// Padded or cut to the column's width.
  void SetText(int column, std::string_view text);
  /// A value that the column cannot hold leaves it as it is and keeps the record from being written.
  void SetNumber(int column, double value);
  /// Writes the current record to `number` in one piece, seen by every read from then on. False with the reason.
  ///
  /// What another program did to the file is never written over: where the file at the path is another one, has another
  /// size or time than after our last call, or holds other bytes of the record than were read, nothing is written. Of
  /// the same file with as many bytes everything is read anew from then on; any other takes no writes until it is
  /// opened again.
  bool Write(std::int32_t number, std::string* why);
  /// Whether the file must be opened again before it takes writes.
  bool stale() const { return stale_; }

  enum class Locked { kYes, kByAnother, kNoLocks };
  /// Takes the lock of the open file, whatever its name; it ends with the close.
  Locked Lock();
  /// Brings what was written to the disk; false where that failed.
  bool Sync();

 private:
  bool ReadHeader(std::string* why);
  bool ReadColumns(std::uint64_t* end, std::string* why);
  bool CountRecords(std::uint64_t size);
  bool Fetch(std::int32_t number);
  bool LoadCurrent();
  std::uint64_t PlaceOf(std::int32_t number) const;
  bool IsUnchanged(std::int32_t number, std::string* why);
  bool HasColumn(int column) const { return column >= 0 && column < static_cast<int>(columns_.size()); }

  platform::File file_;
  bool writable_ = false;
  bool unsynced_ = false;
  bool stale_ = false;
  std::string path_;
  platform::FileFacts facts_;  ///< after our last call
  std::uint32_t opening_ = 0;
  std::vector<Column> columns_;
  std::uint64_t first_record_ = 0;  ///< offset in the file
  std::size_t record_size_ = 0;
  std::int32_t count_ = 0;
  std::uint32_t promised_ = 0;

  std::vector<char> block_;
  std::int32_t block_first_ = 1;
  std::int32_t block_records_ = 0;

  std::int32_t current_ = 0;
  std::string current_bytes_;  ///< empty: not fetched yet
  std::string read_bytes_;     ///< of the current record as it was fetched
  std::string unfit_;          ///< why the current record may not be written
};

}  // namespace korvo
