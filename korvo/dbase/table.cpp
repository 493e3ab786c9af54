#include "korvo/dbase/table.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <optional>

#include "base/path.h"
#include "base/text.h"
#include "platform/system.h"

namespace korvo {

using namespace text::literals;

namespace {

constexpr std::size_t kNameLength = 10;
constexpr std::size_t kDescriptor = 32;
constexpr std::size_t kMaxColumns = 65535 / kDescriptor;
constexpr std::size_t kWalkBlock = 256 * 1024;
constexpr std::size_t kSingleBlock = 4 * 1024;
constexpr char kLive = ' ';
constexpr char kDeleted = '*';

bool IsFlag(char c) { return c == kLive || c == kDeleted; }

std::uint32_t LittleEndian(const char* bytes, int size) {
  std::uint32_t value = 0;
  for (int i = size - 1; i >= 0; --i) value = (value << 8) | static_cast<unsigned char>(bytes[i]);
  return value;
}

bool IsPadding(char c) { return c == ' ' || c == '\0'; }

/// The value of digits with at most one point among them; nothing for any other text, and for more digits than a double
/// holds exactly: up to there the quotient of the two exact numbers is the nearest one.
std::optional<double> ParseDigits(std::string_view text) {
  constexpr double kPowers[] = {1, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
  std::int64_t digits = 0;
  std::size_t point = text.size();
  if (text.size() >= std::size(kPowers)) return std::nullopt;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] >= '0' && text[i] <= '9') {
      digits = digits * 10 + (text[i] - '0');
    } else if (text[i] == '.' && point == text.size() && text.size() > 1) {
      point = i;
    } else {
      return std::nullopt;
    }
  }
  return static_cast<double>(digits) / kPowers[point == text.size() ? 0 : text.size() - point - 1];
}

}  // namespace

double ParseNumber(std::string_view text) {
  while (!text.empty() && IsPadding(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsPadding(text.back())) text.remove_suffix(1);
  if (text.size() > 1 && text.front() == '+' && text[1] != '-') text.remove_prefix(1);
  if (const std::optional<double> value = ParseDigits(text)) return *value;
  double value = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  return error == std::errc() && stop == end && std::isfinite(value) ? value : 0.0;
}

bool FormatNumber(double value, int width, int decimals, std::string* text) {
  if (!std::isfinite(value) || width <= 0) return false;
  std::array<char, 640> digits;  // 309 in front of the point, at most 255 behind it
  const auto [end, error] =
      std::to_chars(digits.data(), digits.data() + digits.size(), value, std::chars_format::fixed, decimals);
  if (error != std::errc()) return false;
  std::string_view number(digits.data(), static_cast<std::size_t>(end - digits.data()));
  // Zero has no sign, nor has what rounds to it.
  if (number.front() == '-' && number.find_first_not_of("-0.") == std::string_view::npos) number.remove_prefix(1);
  if (number.size() > static_cast<std::size_t>(width)) return false;
  text->assign(static_cast<std::size_t>(width) - number.size(), ' ');
  text->append(number);
  return true;
}

bool Table::Open(std::string_view path, bool writable, std::string* why) {
  Close();
  writable_ = writable && file_.Open(path, platform::OpenMode::kReadWrite);
  if (!writable_ && !file_.Open(path, platform::OpenMode::kRead)) {
    *why = platform::SystemErrorText(platform::LastSystemError());
    return false;
  }
  path_ = path;
  static std::uint32_t openings = 0;
  if (++openings == 0) ++openings;
  opening_ = openings;
  if (ReadHeader(why)) return true;
  Close();
  return false;
}

void Table::Close() {
  Sync();
  file_.Close();
  writable_ = false;
  unsynced_ = stale_ = false;
  columns_.clear();
  count_ = 0;
  record_size_ = 0;
  block_records_ = 0;
  Go(0);
}

bool Table::ReadHeader(std::string* why) {
  std::array<char, 32> head;
  if (!file_.Facts(&facts_) || file_.ReadAt(head.data(), head.size(), 0) != static_cast<std::int64_t>(head.size())) {
    *why = "Der Dateikopf ist unvollständig."_ansi;
    return false;
  }
  std::uint64_t end = 0;
  if (!ReadColumns(&end, why)) return false;
  std::size_t widths = 1;
  for (const Column& column : columns_) widths += static_cast<std::size_t>(column.width);
  record_size_ = LittleEndian(&head[10], 2);
  if (record_size_ != widths) {
    *why = "Die Satzlänge im Dateikopf passt nicht zu den Feldbreiten."_ansi;
    return false;
  }
  // Some dialects keep room between the end of the descriptors and the first record.
  first_record_ = std::max<std::uint64_t>(LittleEndian(&head[8], 2), end);
  promised_ = LittleEndian(&head[4], 4);
  if (!CountRecords(facts_.size)) {
    *why = "Die Datei kann nicht gelesen werden."_ansi;
    return false;
  }
  return true;
}

bool Table::ReadColumns(std::uint64_t* end, std::string* why) {
  std::vector<char> bytes(kMaxColumns * kDescriptor);
  const std::int64_t got = file_.ReadAt(bytes.data(), bytes.size(), kDescriptor);
  std::size_t at = 0;
  std::size_t offset = 1;
  for (;; at += kDescriptor) {
    if (got <= static_cast<std::int64_t>(at)) break;
    if (bytes[at] == 0x0D) {
      *end = kDescriptor + at + 1;
      return true;
    }
    if (got < static_cast<std::int64_t>(at + kDescriptor)) break;
    const char* d = &bytes[at];
    Column column;
    column.name.assign(d, std::find(d, d + 11, '\0'));
    column.type = d[11];
    column.width = static_cast<unsigned char>(d[16]);
    column.decimals = static_cast<unsigned char>(d[17]);
    column.offset = offset;
    offset += static_cast<std::size_t>(column.width);
    columns_.push_back(std::move(column));
  }
  *why = "Die Feldbeschreibungen haben kein Ende (0x0D)."_ansi;
  return false;
}

bool Table::CountRecords(std::uint64_t size) {
  const std::uint64_t room = size > first_record_ ? (size - first_record_) / record_size_ : 0;
  const std::uint64_t most = static_cast<std::uint64_t>(std::numeric_limits<std::int32_t>::max());
  count_ = static_cast<std::int32_t>(std::min(room, most));
  if (room == promised_) return true;
  // The header and the file disagree: what counts is how many records stand there one behind the other.
  std::int32_t standing = 0;
  for (; standing < count_; ++standing) {
    std::string_view record;
    const Got got = Read(standing + 1, &record);
    if (got == Got::kFailed && record.empty()) return false;
    if (got == Got::kFailed) break;
  }
  count_ = standing;
  return true;
}

int Table::Find(std::string_view name) const {
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    if (std::string_view(columns_[i].name).substr(0, kNameLength) == name.substr(0, kNameLength)) {
      return static_cast<int>(i);
    }
  }
  return -1;
}

std::uint64_t Table::PlaceOf(std::int32_t number) const {
  return first_record_ + static_cast<std::uint64_t>(number - 1) * record_size_;
}

bool Table::Fetch(std::int32_t number) {
  const bool walking = number == 1 || number == block_first_ + block_records_;
  const std::size_t wanted = (walking ? kWalkBlock : kSingleBlock) / record_size_ + 1;
  const std::size_t records = std::min(wanted, static_cast<std::size_t>(count_ - number) + 1);
  block_records_ = 0;
  block_.resize(std::max(block_.size(), records * record_size_));
  const std::int64_t got = file_.ReadAt(block_.data(), records * record_size_, PlaceOf(number));
  if (got < static_cast<std::int64_t>(record_size_)) return false;
  block_first_ = number;
  block_records_ = static_cast<std::int32_t>(static_cast<std::size_t>(got) / record_size_);
  return true;
}

Table::Got Table::Read(std::int32_t number, std::string_view* record) {
  *record = {};
  if (number < 1 || number > count_) return Got::kOutside;
  if ((number < block_first_ || number - block_first_ >= block_records_) && !Fetch(number)) return Got::kFailed;
  const std::size_t at = static_cast<std::size_t>(number - block_first_) * record_size_;
  *record = {&block_[at], record_size_};
  const char flag = block_[at];
  return flag == kLive ? Got::kRead : flag == kDeleted ? Got::kDeleted : Got::kFailed;
}

std::string_view Table::Field(std::string_view record, int column) const {
  if (!HasColumn(column)) return {};
  const Column& c = columns_[static_cast<std::size_t>(column)];
  return record.substr(c.offset, static_cast<std::size_t>(c.width));
}

void Table::Go(std::int32_t number) {
  current_ = number;
  current_bytes_.clear();
  unfit_.clear();
}

bool Table::LoadCurrent() {
  if (!current_bytes_.empty()) return true;
  std::string_view record;
  Read(current_, &record);
  if (record.empty() || !IsFlag(record.front())) return false;
  current_bytes_ = read_bytes_ = record;
  return true;
}

void Table::Text(int column, std::string* text) {
  text->clear();
  if (!HasColumn(column)) return;
  if (!LoadCurrent())
    return text->resize(static_cast<std::size_t>(columns_[static_cast<std::size_t>(column)].width), ' ');
  *text = Field(current_bytes_, column);
  std::replace(text->begin(), text->end(), '\0', ' ');
}

double Table::Number(int column) {
  return HasColumn(column) && LoadCurrent() ? ParseNumber(Field(current_bytes_, column)) : 0.0;
}

void Table::SetText(int column, std::string_view text) {
  if (!HasColumn(column) || !LoadCurrent()) return;
  const Column& c = columns_[static_cast<std::size_t>(column)];
  std::string value(text.substr(0, static_cast<std::size_t>(c.width)));
  value.resize(static_cast<std::size_t>(c.width), ' ');
  current_bytes_.replace(c.offset, value.size(), value);
}

void Table::SetNumber(int column, double value) {
  if (!HasColumn(column) || !LoadCurrent()) return;
  const Column& c = columns_[static_cast<std::size_t>(column)];
  std::string digits;
  if (FormatNumber(value, c.width, c.decimals, &digits)) {
    current_bytes_.replace(c.offset, digits.size(), digits);
    return;
  }
  std::array<char, 64> shown;
  const auto [end, error] = std::to_chars(shown.data(), shown.data() + shown.size(), value);
  unfit_ = std::string("Der Wert ") + std::string(shown.data(), end) + " passt nicht in die Spalte " + c.name + ".";
}

bool Table::Write(std::int32_t number, std::string* why) {
  if (!unfit_.empty()) {
    *why = unfit_;
    return false;
  }
  if (!writable_) {
    *why = IsOpen() ? "Die Tabelle ist nur zum Lesen geöffnet."_ansi : "Die Tabelle ist geschlossen."_ansi;
    return false;
  }
  if (number < 1 || number > count_ || !LoadCurrent()) {
    *why = "Die Tabelle hat keinen solchen Satz."_ansi;
    return false;
  }
  if (!IsUnchanged(number, why)) {
    block_records_ = 0;
    Go(current_);
    return false;
  }
  unsynced_ = true;
  if (!file_.WriteAt(current_bytes_.data(), current_bytes_.size(), PlaceOf(number))) {
    *why = platform::SystemErrorText(platform::LastSystemError());
    block_records_ = 0;
    file_.Facts(&facts_);
    return false;
  }
  file_.Facts(&facts_);
  if (number == current_) read_bytes_ = current_bytes_;
  if (number >= block_first_ && number - block_first_ < block_records_) {
    std::memcpy(&block_[static_cast<std::size_t>(number - block_first_) * record_size_], current_bytes_.data(),
                record_size_);
  }
  return true;
}

bool Table::IsUnchanged(std::int32_t number, std::string* why) {
  const platform::FileFacts before = facts_;
  platform::FileFacts now;
  if (!platform::Files().PathFacts(path::ToDisk(path_), &now)) {
    stale_ = true;
    *why = "Die Tabelle ist nicht mehr an ihrem Platz: "_ansi + platform::SystemErrorText(platform::LastSystemError());
  } else if (stale_ || now.device != before.device || now.serial != before.serial || now.size != before.size) {
    stale_ = true;
    *why = "Ein anderes Programm hat die Tabelle ersetzt oder ihre Sätze vermehrt oder vermindert."_ansi;
  } else {
    std::string bytes(record_size_, '\0');
    const bool read =
        file_.ReadAt(bytes.data(), bytes.size(), PlaceOf(number)) == static_cast<std::int64_t>(bytes.size());
    if (read && now.modified_ns == before.modified_ns && (number != current_ || bytes == read_bytes_)) return true;
    facts_ = now;
    *why =
        "Ein anderes Programm hat die Tabelle verändert. Sie wird neu gelesen; bitte prüfen und wiederholen Sie die "
        "Eingabe."_ansi;
    return false;
  }
  *why += " Erst wenn sie neu geöffnet ist, kann wieder gespeichert werden."_ansi;
  return false;
}

Table::Locked Table::Lock() {
  if (platform::Files().TryLock(file_.handle())) return Locked::kYes;
  return platform::LastSystemError() == EWOULDBLOCK ? Locked::kByAnother : Locked::kNoLocks;
}

bool Table::Sync() {
  if (!unsynced_ || !file_.IsOpen()) return true;
  unsynced_ = false;
  return platform::Files().Sync(file_.handle());
}

}  // namespace korvo
