// The point table as a file: header, field descriptors, and records as blocks of bytes that are never looked into.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string_view>

#include "platform/file.h"

namespace platform {
class FileSaver;
}

namespace pktaus {

/// One column.
struct DbfField {
  char short_name[11] = {};   ///< the name in the file: at most 10 characters, unique within the table
  char name[256] = {};        ///< the name as it was given; in a file that is read, up to 11 characters
  char type = 0;              ///< 'C', 'N', ...; any byte is carried through
  std::int32_t width = 0;     ///< bytes, 0 to 255
  std::int32_t decimals = 0;  ///< 0 to 255
  std::int32_t offset = 0;    ///< in the record, counted from its flag byte, which is 0
};

/// Why a table was not loaded or not extended, and where.
struct DbfFault {
  enum Kind {
    kUnknown,         ///< the start; never the answer of a load that went well
    kNone,            ///< no fault
    kNotOpened,       ///< `system_error` tells why
    kNotRead,         ///< the file opened and could not be read to its end; `system_error` tells why
    kTooManyRecords,  ///< more than 2^31 - 1
    kHeaderCut,       ///< the file ends inside the header
    kHeaderLength,    ///< the header's length does not fit the field descriptors
    kNoTerminator,    ///< no 0x0D behind the field descriptors
    kEncrypted,       ///< the records are encrypted
    kTooManyFields,   ///< more than 255
    kTooMuchAdded,    ///< the fields added after loading have more than 400 bytes
    kFieldName,       ///< no name is free for a field
    kRecordLength,    ///< the header's record length is not that of the fields
    kRecordCut,       ///< the file ends inside a record
    kRecordFlag,      ///< no record where the header counts one, but more bytes follow
  };
  Kind kind = kUnknown;
  std::uint64_t offset = 0;  ///< byte of the file that shows the fault
  std::int64_t record = 0;   ///< record with the fault, from 1, deleted ones counted; 0 where it is none
  std::int32_t field = 0;    ///< field with the fault, from 1; 0 where it is none
  int system_error = 0;
  std::uint8_t version = 0;  ///< first byte of the file, where it was read
};

/// A dBase table that is loaded whole, gets columns, and is saved whole. Knows no index, no memo and no update. Deleted
/// records and all reserved bytes are gone after a save.
///
/// The records are checked one by one while loading but stay in the file, which is kept open, and pass through a small
/// buffer again while saving: memory does not grow with the table, and to touch less of it is also much faster.
class CDbfTable {
 public:
  static constexpr int kMaxFields = 255;
  static constexpr int kMaxAdded = 400;  ///< bytes that a record may grow by after loading

  /// An empty table.
  CDbfTable() = default;

  /// Gives the table, or null where the file cannot be opened or is not of the regular form that a save would keep: a
  /// header of 33 bytes and 32 for each field, its 0x0D, records of the fields' widths and a flag byte. The number of
  /// records in the header is not believed but must not be missed where unknown bytes follow the records. `path` may
  /// be null. `why`, where given, tells the fault, or kNone.
  static std::unique_ptr<CDbfTable> Load(const char* path, DbfFault* why = nullptr);

  /// Puts the table in the place of the file: 0, or the system error for which the file stayed as it was. So it does
  /// where the records are no longer those that were loaded. The last system error is as before.
  [[nodiscard]] int Save(const char* path);

  /// The first field with this full name, case-sensitive; null where there is none. Valid as long as the table.
  const DbfField* FindField(std::string_view name) const;

  /// Appends a field, blank in every record. Its short name is the first 10 characters, with a letter from 'a' on as
  /// the last one where the table has that name. Null, and no field, where the table is full, `width` or `decimals`
  /// are beyond a byte, a loaded table would grow by more than kMaxAdded, or no name is free; `why` tells which.
  const DbfField* AddField(std::string_view name, char type, std::int32_t width, std::int32_t decimals,
                           DbfFault* why = nullptr);

  std::int32_t field_count() const { return field_count_; }
  const DbfField& field(std::int32_t index) const { return fields_[static_cast<std::size_t>(index)]; }
  std::int32_t record_count() const { return record_count_; }  ///< without deleted ones
  std::int32_t header_size() const { return header_size_; }
  std::int32_t record_size() const { return record_size_; }  ///< with the flag byte

 private:
  bool Read(const char* path, DbfFault* why);
  bool ReadHeader(DbfFault* why);
  bool FindRecords(std::uint32_t counted, DbfFault* why);
  bool MakeUnique(char (&short_name)[11]) const;
  bool WriteRecords(platform::FileSaver* saver);

  std::uint8_t version_ = 0;
  std::array<std::uint8_t, 3> date_{};  // year, month and day of the last change, as the file has them
  std::int32_t record_count_ = 0;
  std::int32_t header_size_ = 33;
  std::int32_t record_size_ = 1;
  std::int32_t field_count_ = 0;
  std::array<DbfField, kMaxFields> fields_;
  platform::File source_;           // where the records are; closed in a table that comes from no file
  std::int32_t loaded_header_ = 0;  // header_size_ in that file
  std::int32_t loaded_size_ = 0;    // record_size_ in that file
};

}  // namespace pktaus
