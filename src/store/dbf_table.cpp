#include "store/dbf_table.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>
#include <string>

#include "platform/file.h"
#include "platform/save.h"
#include "platform/system.h"

namespace pktaus {
namespace {

// Places in header and descriptor.
constexpr std::size_t kCountAt = 4;
constexpr std::size_t kHeaderLengthAt = 8;
constexpr std::size_t kRecordLengthAt = 10;
constexpr std::size_t kEncryptionAt = 15;
constexpr std::size_t kHeaderSize = 32;
constexpr std::size_t kDescriptorSize = 32;
constexpr std::size_t kNameSize = 11;
constexpr std::size_t kTypeAt = 11;
constexpr std::size_t kWidthAt = 16;
constexpr std::size_t kDecimalsAt = 17;

constexpr char kEndOfHeader = 0x0D;
constexpr char kEndOfFile = 0x1A;
constexpr char kLive = ' ';
constexpr char kDeleted = '*';

// `size` bytes, the lowest first.
std::uint32_t Number(std::string_view bytes, std::size_t at, std::size_t size) {
  std::uint32_t value = 0;
  for (std::size_t i = size; i-- > 0;) value = (value << 8) | static_cast<unsigned char>(bytes[at + i]);
  return value;
}

void PutNumber(char* at, std::int32_t value, std::size_t size) {
  for (std::size_t i = 0; i < size; ++i) at[i] = static_cast<char>(static_cast<std::uint32_t>(value) >> (8 * i));
}

bool Fail(DbfFault* why, DbfFault fault) {
  *why = fault;
  return false;
}

// The records of a file, block by block.
class RecordBlocks {
 public:
  RecordBlocks(platform::File* file, std::uint64_t offset, std::size_t record_size)
      : file_(file),
        offset_(offset),
        step_(record_size),
        // Stays in the processor's cache, and is more than the saver puts into its own buffer.
        buffer_(std::max<std::size_t>(1, 128 * 1024 / record_size) * record_size, '\0') {}

  /// Whole records with their flag bytes, deleted ones among them. False where there are no more, and fault() tells
  /// why.
  bool Next(std::string_view* records) {
    if (ended_) return false;
    const std::int64_t read = file_->ReadAt(buffer_.data(), buffer_.size(), offset_);
    const std::size_t size = read < 0 ? 0 : static_cast<std::size_t>(read);
    std::size_t whole = 0;
    const auto is_record = [&] { return buffer_[whole] == kLive || buffer_[whole] == kDeleted; };
    while (size - whole >= step_ && is_record()) whole += step_;
    ended_ = whole < buffer_.size();
    if (read < 0) {
      fault_ = DbfFault::kNotRead;
    } else if (size - whole < step_ && size > whole && is_record()) {
      fault_ = DbfFault::kRecordCut;
    }
    offset_ += whole;
    *records = std::string_view(buffer_.data(), whole);
    return whole > 0;
  }

  /// Of the first byte behind the records given so far.
  std::uint64_t offset() const { return offset_; }
  /// kNone where the byte there begins no record or the file ends; kRecordCut, kNotRead.
  DbfFault::Kind fault() const { return fault_; }

 private:
  platform::File* file_;
  std::uint64_t offset_;
  std::size_t step_;
  std::string buffer_;
  bool ended_ = false;
  DbfFault::Kind fault_ = DbfFault::kNone;
};

// kNone where nothing but end marks and zero bytes stands from there on, kRecordFlag or kNotRead otherwise.
DbfFault::Kind WhatFollows(platform::File* file, std::uint64_t offset) {
  constexpr std::string_view kNothing("\x1A\0", 2);
  std::string buffer(64 * 1024, '\0');
  for (;;) {
    const std::int64_t read = file->ReadAt(buffer.data(), buffer.size(), offset);
    if (read < 0) return DbfFault::kNotRead;
    const std::string_view bytes(buffer.data(), static_cast<std::size_t>(read));
    if (bytes.find_first_not_of(kNothing) != std::string_view::npos) return DbfFault::kRecordFlag;
    if (bytes.size() < buffer.size()) return DbfFault::kNone;
    offset += bytes.size();
  }
}

}  // namespace

std::unique_ptr<CDbfTable> CDbfTable::Load(const char* path, DbfFault* why) {
  DbfFault fault;
  auto table = std::make_unique<CDbfTable>();
  if (table->Read(path, &fault)) {
    fault = {DbfFault::kNone};
  } else {
    fault.version = table->version_;
    table.reset();
  }
  if (why != nullptr) *why = fault;
  return table;
}

bool CDbfTable::Read(const char* path, DbfFault* why) {
  platform::FileFacts facts;
  if (path == nullptr || *path == '\0') return Fail(why, {.kind = DbfFault::kNotOpened, .system_error = ENOENT});
  if (!source_.Open(path, platform::OpenMode::kRead) || !source_.Facts(&facts)) {
    return Fail(why, {.kind = DbfFault::kNotOpened, .system_error = platform::LastSystemError()});
  }
  if (!facts.kind_file) return Fail(why, {.kind = DbfFault::kNotOpened, .system_error = EINVAL});
  return ReadHeader(why);
}

bool CDbfTable::ReadHeader(DbfFault* why) {
  std::string header(kHeaderSize + kMaxFields * kDescriptorSize + 1, '\0');
  const std::int64_t read = source_.ReadAt(header.data(), header.size(), 0);
  if (read < 0) return Fail(why, {.kind = DbfFault::kNotRead, .system_error = platform::LastSystemError()});
  header.resize(static_cast<std::size_t>(read));
  if (header.size() <= kHeaderSize) return Fail(why, {DbfFault::kHeaderCut, header.size()});
  version_ = static_cast<std::uint8_t>(header[0]);
  std::copy_n(header.begin() + 1, date_.size(), date_.begin());

  const std::size_t length = Number(header, kHeaderLengthAt, 2);
  if (length > kHeaderSize && length % kDescriptorSize == 0) return Fail(why, {DbfFault::kNoTerminator, length});
  if (length <= kHeaderSize || (length - kHeaderSize - 1) % kDescriptorSize != 0) {
    return Fail(why, {DbfFault::kHeaderLength, kHeaderLengthAt});
  }
  // The flag stands among the bytes that a save clears; without it nobody could read the records any more.
  if (header[kEncryptionAt] == 1) return Fail(why, {DbfFault::kEncrypted, kEncryptionAt});

  const std::size_t end = length - 1;
  if (end > kHeaderSize + kMaxFields * kDescriptorSize) return Fail(why, {DbfFault::kTooManyFields, kHeaderLengthAt});
  if (header.size() < length) return Fail(why, {DbfFault::kHeaderCut, header.size()});
  for (std::size_t at = kHeaderSize; at < end; at += kDescriptorSize) {
    if (header[at] == kEndOfHeader) return Fail(why, {DbfFault::kHeaderLength, at});
    if (AddField({header.data() + at, strnlen(header.data() + at, kNameSize)}, header[at + kTypeAt],
                 static_cast<std::int32_t>(Number(header, at + kWidthAt, 1)),
                 static_cast<std::int32_t>(Number(header, at + kDecimalsAt, 1)), why) == nullptr) {
      why->offset = at;
      return false;
    }
  }
  if (header[end] != kEndOfHeader) return Fail(why, {DbfFault::kNoTerminator, end});
  if (Number(header, kRecordLengthAt, 2) != static_cast<std::uint32_t>(record_size_)) {
    return Fail(why, {DbfFault::kRecordLength, kRecordLengthAt});
  }
  loaded_header_ = header_size_;
  loaded_size_ = record_size_;
  return FindRecords(Number(header, kCountAt, 4), why);
}

bool CDbfTable::FindRecords(std::uint32_t counted, DbfFault* why) {
  const auto step = static_cast<std::size_t>(loaded_size_);
  RecordBlocks blocks(&source_, static_cast<std::uint64_t>(loaded_header_), step);
  std::int64_t seen = 0;
  std::int64_t live = 0;
  std::string_view block;
  while (blocks.Next(&block)) {
    for (std::size_t at = 0; at < block.size(); at += step) live += block[at] == kLive ? 1 : 0;
    seen += static_cast<std::int64_t>(block.size() / step);
  }
  DbfFault::Kind fault = blocks.fault();
  // Behind the last record may stand anything, but not while the header knows of more records: they may be there.
  if (fault == DbfFault::kNone && seen < counted) fault = WhatFollows(&source_, blocks.offset());
  if (fault != DbfFault::kNone) {
    const int error = fault == DbfFault::kNotRead ? platform::LastSystemError() : 0;
    return Fail(why, {.kind = fault, .offset = blocks.offset(), .record = seen + 1, .system_error = error});
  }
  if (live > std::numeric_limits<std::int32_t>::max()) return Fail(why, {DbfFault::kTooManyRecords, blocks.offset()});
  record_count_ = static_cast<std::int32_t>(live);
  return true;
}

const DbfField* CDbfTable::FindField(std::string_view name) const {
  const auto end = fields_.begin() + field_count_;
  const auto found = std::find_if(fields_.begin(), end, [&](const DbfField& field) { return field.name == name; });
  return found == end ? nullptr : &*found;
}

bool CDbfTable::MakeUnique(char (&short_name)[11]) const {
  const auto taken = [&] {
    return std::any_of(fields_.begin(), fields_.begin() + field_count_,
                       [&](const DbfField& field) { return std::strcmp(field.short_name, short_name) == 0; });
  };
  const std::size_t length = std::strlen(short_name);
  for (char letter = 'a'; taken(); ++letter) {
    if (length == 0 || letter > 'z') return false;
    short_name[length - 1] = letter;
  }
  return true;
}

const DbfField* CDbfTable::AddField(std::string_view name, char type, std::int32_t width, std::int32_t decimals,
                                    DbfFault* why) {
  DbfFault ignored;
  DbfFault& fault = why != nullptr ? *why : ignored;
  fault = {.kind = DbfFault::kTooManyFields, .field = field_count_ + 1};
  if (field_count_ == kMaxFields) return nullptr;

  DbfField field;
  name.copy(field.short_name, sizeof field.short_name - 1);
  name.copy(field.name, sizeof field.name - 1);
  field.type = type;
  field.width = width;
  field.decimals = decimals;
  field.offset = record_size_;
  fault.kind = DbfFault::kFieldName;
  if (!MakeUnique(field.short_name)) return nullptr;
  fault.kind = DbfFault::kTooMuchAdded;
  const bool is_byte = width >= 0 && width <= 255 && decimals >= 0 && decimals <= 255;
  if (!is_byte || (loaded_size_ != 0 && record_size_ + width - loaded_size_ > kMaxAdded)) return nullptr;

  fault = {DbfFault::kNone};
  record_size_ += width;
  header_size_ += static_cast<std::int32_t>(kDescriptorSize);
  DbfField& place = fields_[static_cast<std::size_t>(field_count_++)];
  place = field;
  return &place;
}

int CDbfTable::Save(const char* path) {
  const platform::KeepSystemError keep;
  platform::FileSaver saver;
  if (!saver.Open(path)) return platform::LastSystemError();

  std::string header(static_cast<std::size_t>(header_size_), '\0');
  header[0] = static_cast<char>(version_);
  std::copy(date_.begin(), date_.end(), header.begin() + 1);
  PutNumber(header.data() + kCountAt, record_count_, 4);
  PutNumber(header.data() + kHeaderLengthAt, header_size_, 2);
  PutNumber(header.data() + kRecordLengthAt, record_size_, 2);
  char* descriptor = header.data() + kHeaderSize;
  for (std::int32_t i = 0; i < field_count_; ++i, descriptor += kDescriptorSize) {
    const DbfField& one = field(i);
    std::copy_n(one.short_name, kNameSize, descriptor);
    descriptor[kTypeAt] = one.type;
    PutNumber(descriptor + kWidthAt, one.width, 1);
    PutNumber(descriptor + kDecimalsAt, one.decimals, 1);
  }
  *descriptor = kEndOfHeader;
  saver.Write(header);
  if (!WriteRecords(&saver)) return EBUSY;
  saver.Write(&kEndOfFile, 1);
  return saver.Commit() ? 0 : platform::LastSystemError();
}

// False where the file no longer holds the records that were counted.
bool CDbfTable::WriteRecords(platform::FileSaver* saver) {
  if (!source_.IsOpen()) return true;
  const auto old_size = static_cast<std::size_t>(loaded_size_);
  const auto new_size = static_cast<std::size_t>(record_size_);
  RecordBlocks blocks(&source_, static_cast<std::uint64_t>(loaded_header_), old_size);
  std::int64_t live = 0;
  std::string wide;
  std::string_view block;
  while (blocks.Next(&block)) {
    const std::size_t count = block.size() / old_size;
    // What was added is blank in every record: laid out once, it stays when the next block comes.
    wide.resize(std::max(wide.size(), count * new_size), ' ');
    char* out = wide.data();
    for (std::size_t at = 0; at < block.size(); at += old_size) {
      if (block[at] != kLive) continue;
      std::memcpy(out, block.data() + at, old_size);
      out += new_size;
    }
    const auto size = static_cast<std::size_t>(out - wide.data());
    live += static_cast<std::int64_t>(size / new_size);
    saver->Write(wide.data(), size);
  }
  return blocks.fault() == DbfFault::kNone && live == record_count_;
}

}  // namespace pktaus
