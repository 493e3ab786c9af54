#include "store/dbf_table.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>
#include <new>
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

std::uint32_t Byte(std::string_view bytes, std::size_t at) { return static_cast<unsigned char>(bytes[at]); }

// `size` bytes, the lowest first.
std::uint32_t Number(std::string_view bytes, std::size_t at, std::size_t size) {
  std::uint32_t value = 0;
  for (std::size_t i = size; i-- > 0;) value = (value << 8) | Byte(bytes, at + i);
  return value;
}

void PutNumber(char* at, std::int32_t value, std::size_t size) {
  for (std::size_t i = 0; i < size; ++i) at[i] = static_cast<char>(static_cast<std::uint32_t>(value) >> (8 * i));
}

bool Fail(DbfFault* why, DbfFault fault) {
  *why = fault;
  return false;
}

}  // namespace

std::unique_ptr<CDbfTable> CDbfTable::Load(const char* path, DbfFault* why) {
  DbfFault fault;
  auto table = std::make_unique<CDbfTable>();
  if (table->Read(path, &fault)) {
    fault = {DbfFault::kNone};
  } else {
    table.reset();
  }
  if (why != nullptr) *why = fault;
  return table;
}

bool CDbfTable::Read(const char* path, DbfFault* why) {
  platform::File file;
  platform::FileFacts facts;
  if (path == nullptr || *path == '\0') return Fail(why, {.kind = DbfFault::kNotOpened, .system_error = ENOENT});
  if (!file.Open(path, platform::OpenMode::kRead) || !file.Facts(&facts)) {
    return Fail(why, {.kind = DbfFault::kNotOpened, .system_error = platform::LastSystemError()});
  }
  if (!facts.kind_file) return Fail(why, {.kind = DbfFault::kNotOpened, .system_error = EINVAL});

  // One byte more than the file has, to see whether it still grows.
  const auto size = static_cast<std::size_t>(facts.size);
  bytes_.reset(new (std::nothrow) char[size + 1]);
  if (!bytes_) return Fail(why, {DbfFault::kNoMemory});
  const std::int64_t read = file.Read(bytes_.get(), size + 1);
  if (read != static_cast<std::int64_t>(size)) {
    return Fail(why, {.kind = DbfFault::kNotRead, .system_error = read < 0 ? platform::LastSystemError() : EBUSY});
  }
  return ReadHeader({bytes_.get(), size}, why) && FindRecords(size, why);
}

bool CDbfTable::ReadHeader(std::string_view bytes, DbfFault* why) {
  if (bytes.size() <= kHeaderSize) return Fail(why, {DbfFault::kHeaderCut, bytes.size()});
  version_ = static_cast<std::uint8_t>(bytes[0]);
  std::copy_n(bytes.begin() + 1, date_.size(), date_.begin());

  const std::size_t length = Number(bytes, kHeaderLengthAt, 2);
  if (length < kHeaderSize + 1 || (length - kHeaderSize - 1) % kDescriptorSize != 0) {
    return Fail(why, {DbfFault::kHeaderLength, kHeaderLengthAt});
  }
  // The flag stands among the bytes that a save clears; without it nobody could read the records any more.
  if (bytes[kEncryptionAt] == 1) return Fail(why, {DbfFault::kEncrypted, kEncryptionAt});

  const std::size_t end = length - 1;
  for (std::size_t at = kHeaderSize; at < end; at += kDescriptorSize) {
    if (at + kDescriptorSize >= bytes.size()) return Fail(why, {DbfFault::kHeaderCut, bytes.size()});
    if (bytes[at] == kEndOfHeader) return Fail(why, {DbfFault::kHeaderLength, at});
    const char* name = bytes.data() + at;
    if (AddField({name, strnlen(name, kNameSize)}, bytes[at + kTypeAt],
                 static_cast<std::int32_t>(Byte(bytes, at + kWidthAt)),
                 static_cast<std::int32_t>(Byte(bytes, at + kDecimalsAt)), why) == nullptr) {
      why->offset = at;
      return false;
    }
  }
  if (bytes[end] != kEndOfHeader) return Fail(why, {DbfFault::kNoTerminator, end});
  if (Number(bytes, kRecordLengthAt, 2) != static_cast<std::uint32_t>(record_size_)) {
    return Fail(why, {DbfFault::kRecordLength, kRecordLengthAt});
  }
  records_ = length;
  loaded_size_ = record_size_;
  return true;
}

// Goes over the records and closes the gaps that deleted ones leave.
bool CDbfTable::FindRecords(std::size_t size, DbfFault* why) {
  const std::size_t step = static_cast<std::size_t>(record_size_);
  const std::string_view bytes(bytes_.get(), size);
  const std::uint32_t counted = Number(bytes, kCountAt, 4);
  std::size_t at = records_;
  std::size_t live_end = records_;
  std::int64_t seen = 0;
  while (at < size && (bytes[at] == kLive || bytes[at] == kDeleted)) {
    ++seen;
    if (size - at < step) return Fail(why, {.kind = DbfFault::kRecordCut, .offset = size, .record = seen});
    if (bytes[at] == kLive) {
      if (live_end != at) std::memmove(bytes_.get() + live_end, bytes_.get() + at, step);
      live_end += step;
    }
    at += step;
  }
  // Behind the last record may stand anything, but not while the header knows of more records: they may be there.
  constexpr std::string_view kNothing("\x1A\0", 2);
  if (seen < counted && bytes.find_first_not_of(kNothing, at) != std::string_view::npos) {
    return Fail(why, {.kind = DbfFault::kRecordFlag, .offset = at, .record = seen + 1});
  }
  const std::size_t live = (live_end - records_) / step;
  if (live > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max())) {
    return Fail(why, {DbfFault::kNoMemory, at});
  }
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

void CDbfTable::Save(const char* path) const {
  const platform::KeepSystemError keep;
  platform::FileSaver saver;
  if (!saver.Open(path)) return;

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
  WriteRecords(&saver);
  saver.Write(&kEndOfFile, 1);
  saver.Commit();
}

void CDbfTable::WriteRecords(platform::FileSaver* saver) const {
  const char* record = bytes_.get() + records_;
  const auto old_size = static_cast<std::size_t>(loaded_size_);
  const auto new_size = static_cast<std::size_t>(record_size_);
  auto left = static_cast<std::size_t>(record_count_);
  if (new_size == old_size) {
    saver->Write(record, left * old_size);
    return;
  }
  // As many records as stay in the processor's cache. What was added is blank everywhere, so it is laid out once.
  constexpr std::size_t kBlockSize = 256 * 1024;
  const std::size_t fit = std::min(left, std::max<std::size_t>(1, kBlockSize / new_size));
  std::string block(fit * new_size, ' ');
  while (left > 0) {
    const std::size_t count = std::min(left, fit);
    for (std::size_t i = 0; i < count; ++i, record += old_size) {
      std::memcpy(block.data() + i * new_size, record, old_size);
    }
    if (!saver->Write(block.data(), count * new_size)) return;
    left -= count;
  }
}

}  // namespace pktaus
