#include "catalog/line_scan.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

namespace pktaus {
namespace {

constexpr std::size_t kPieceLimit = 1998;  // bytes of a line that are taken at once, the LF included
constexpr std::size_t kBuffer = 1 << 18;
constexpr std::size_t kFirstRead = 1 << 12;

bool Begins(std::string_view text, std::span<const Needle> needles) {
  return std::any_of(needles.begin(), needles.end(),
                     [&](const Needle& needle) { return text.starts_with(needle.text); });
}

// The place in [at, end) at which the first needle begins; `end` where there is none.
std::size_t FindSlowly(std::string_view text, std::span<const Needle> needles, std::size_t at) {
  std::size_t found = text.size();
  for (const Needle& needle : needles) found = std::min(found, text.find(needle.text, at));
  return found;
}

// All bits, as the machine's own comparisons give it.
constexpr unsigned char Mask(bool is) { return static_cast<unsigned char>(-static_cast<int>(is)); }

// The same, by blocks: two bytes of each needle are looked at for all places of a block at once, in a loop without
// branches that the compiler turns into vector instructions.
template <std::size_t kCount>
std::size_t FindFirst(std::string_view text, std::span<const Needle> needles) {
  constexpr std::size_t kBlock = 64;
  constexpr std::size_t kPart = sizeof(std::uint64_t);
  std::array<const char*, kCount> first, second;
  std::array<char, kCount> first_byte, second_byte;
  std::size_t longest = 0;
  for (std::size_t n = 0; n < kCount; ++n) {
    first[n] = text.data() + needles[n].first;
    second[n] = text.data() + needles[n].second;
    first_byte[n] = needles[n].text[needles[n].first];
    second_byte[n] = needles[n].text[needles[n].second];
    longest = std::max(longest, needles[n].text.size());
  }
  std::size_t at = 0;
  for (; at + kBlock + longest <= text.size(); at += kBlock) {
    std::array<unsigned char, kBlock> hits{};
    for (std::size_t n = 0; n < kCount; ++n) {
      const char* const a = first[n] + at;
      const char* const b = second[n] + at;
      for (std::size_t i = 0; i < kBlock; ++i)
        hits[i] = static_cast<unsigned char>(hits[i] | (Mask(a[i] == first_byte[n]) & Mask(b[i] == second_byte[n])));
    }
    const auto parts = std::bit_cast<std::array<std::uint64_t, kBlock / kPart>>(hits);
    std::uint64_t any = 0;
    for (const std::uint64_t part : parts) any |= part;
    if (any == 0) continue;
    for (std::size_t part = 0; part < parts.size(); ++part) {
      if (parts[part] == 0) continue;
      for (std::size_t i = part * kPart; i < (part + 1) * kPart; ++i) {
        if (hits[i] != 0 && Begins(text.substr(at + i), needles)) return at + i;
      }
    }
  }
  return FindSlowly(text, needles, at);
}

std::size_t FindFirst(std::string_view text, std::span<const Needle> needles) {
  switch (needles.size()) {
    case 1:
      return FindFirst<1>(text, needles);
    case 2:
      return FindFirst<2>(text, needles);
    case 3:
      return FindFirst<3>(text, needles);
    default:
      return FindSlowly(text, needles, 0);
  }
}

}  // namespace

LineScan::LineScan(std::vector<char>* buffer) : buffer_(*buffer) { buffer_.resize(kBuffer); }

bool LineScan::Open(const std::string& path) {
  base_ = 0;
  begin_ = end_ = 0;
  ahead_ = kFirstRead;
  at_end_ = failed_ = false;
  return file_.Open(path, platform::OpenMode::kRead);
}

void LineScan::Seek(std::uint64_t offset) {
  if (offset >= base_ && offset - base_ <= end_) {
    begin_ = static_cast<std::size_t>(offset - base_);
    return;
  }
  base_ = offset;
  begin_ = end_ = 0;
  ahead_ = kFirstRead;
  at_end_ = failed_;
}

void LineScan::SeekLine(std::uint64_t offset) {
  Seek(offset);
  do {
    if (begin_ == end_) Fill();
    const char* const start = buffer_.data() + begin_;
    const auto* line_end = static_cast<const char*>(std::memchr(start, '\n', end_ - begin_));
    begin_ = line_end != nullptr ? static_cast<std::size_t>(line_end - buffer_.data()) + 1 : end_;
    if (line_end != nullptr) return;
  } while (!at_end_);
}

void LineScan::Fill() {
  if (at_end_) return;
  std::memmove(buffer_.data(), buffer_.data() + begin_, end_ - begin_);
  base_ += begin_;
  end_ -= begin_;
  begin_ = 0;
  const std::size_t wanted = std::min(buffer_.size() - end_, ahead_);
  ahead_ = std::min(ahead_ * 2, buffer_.size());
  const std::int64_t got = file_.ReadAt(buffer_.data() + end_, wanted, base_ + end_);
  failed_ = got < 0;
  at_end_ = got < static_cast<std::int64_t>(wanted);
  if (got > 0) end_ += static_cast<std::size_t>(got);
}

// The piece at the beginning of what is in the buffer.
void LineScan::Take(LinePiece* piece) {
  const auto find_end = [this] {
    const std::size_t window = std::min(end_ - begin_, kPieceLimit + 1);
    return static_cast<const char*>(std::memchr(buffer_.data() + begin_, '\n', window));
  };
  const char* line_end = find_end();
  // CR and LF behind a full piece decide whether it is one.
  if (line_end == nullptr && end_ - begin_ < kPieceLimit + 2) {
    Fill();
    line_end = find_end();
  }
  const char* const start = buffer_.data() + begin_;
  std::size_t length =
      line_end != nullptr ? static_cast<std::size_t>(line_end - start) : std::min(end_ - begin_, kPieceLimit + 1);
  std::size_t used = length;
  bool ends_line = line_end != nullptr;
  if (ends_line) {
    ++used;
    if (length > 0 && start[length - 1] == '\r') --length;
  }
  if (length + (ends_line ? 1 : 0) > kPieceLimit) {
    used = length = kPieceLimit;
    ends_line = false;
  }
  *piece = {{start, length}, base_ + begin_, ends_line};
  begin_ += used;
}

bool LineScan::Next(LinePiece* piece) {
  if (begin_ == end_) Fill();
  if (begin_ == end_) return false;
  Take(piece);
  return true;
}

// Goes to the piece that `limit` lies in or the one in front of it.
void LineScan::SkipTo(std::size_t limit) {
  const std::string_view skipped(buffer_.data() + begin_, limit - begin_);
  const std::size_t line_end = skipped.rfind('\n');
  if (line_end != std::string_view::npos) begin_ += line_end + 1;
  // An LF at the limit itself may belong to the piece in front of it.
  if (limit > begin_) begin_ += (limit - begin_ - 1) / kPieceLimit * kPieceLimit;
}

std::optional<std::size_t> LineScan::Find(std::span<const Needle> needles, LinePiece* piece) {
  std::size_t longest = 0;
  for (const Needle& needle : needles) longest = std::max(longest, needle.text.size());
  for (;;) {
    const std::size_t at = begin_ + FindFirst({buffer_.data() + begin_, end_ - begin_}, needles);
    if (at < end_) {
      SkipTo(at + 1);
      const std::size_t in_piece = at - begin_;
      Take(piece);
      if (in_piece < piece->text.size() && Begins(piece->text.substr(in_piece), needles)) return in_piece;
      // The piece ends in the needle or in front of it.
      const std::size_t whole = FindSlowly(piece->text, needles, 0);
      if (whole < piece->text.size()) return whole;
      continue;
    }
    if (at_end_) {
      begin_ = end_;
      return std::nullopt;
    }
    // A needle that has begun may go on in what is read next.
    if (end_ - begin_ > longest) SkipTo(end_ - longest);
    Fill();
  }
}

}  // namespace pktaus
