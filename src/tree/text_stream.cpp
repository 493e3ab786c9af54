#include "tree/text_stream.h"

#include <algorithm>
#include <array>

#include "tree/umlauts.h"

namespace pktaus {
namespace {

constexpr std::size_t kBlock = 256 * 1024;     // read at once
constexpr std::size_t kHistory = 64 * 1024;    // kept for steps back
constexpr std::size_t kOutBlock = 260 * 1024;  // more than a FileSaver gathers, so that it need not gather

const char* Find(const char* begin, const char* end, char c) {
  return static_cast<const char*>(std::memchr(begin, c, static_cast<std::size_t>(end - begin)));
}

// What WriteUmlauts does with a byte: 0 copies it, '\r' puts CR in front, else 0xC3 and this byte take its place.
constexpr std::array<char, 256> kWritten = [] {
  std::array<char, 256> table{};
  for (std::size_t i = 0; i < 256; ++i) table[i] = SecondByteOf(static_cast<char>(i));
  table['\n'] = '\r';
  return table;
}();

}  // namespace

bool TextStream::OpenRead(std::string_view path) {
  if (!file_.Open(path, platform::OpenMode::kRead)) return false;
  window_.reset(new char[kHistory + kBlock + 1]);
  next_ = end_ = window_.get();
  at_end_ = false;
  Fill();
  return !failed_;
}

void TextStream::OpenText(std::string_view bytes) {
  window_.reset(new char[bytes.size() + 1]);
  bytes.copy(window_.get(), bytes.size());
  next_ = window_.get();
  end_ = next_ + Translate(next_, bytes.size(), true);
}

// Turns each CR LF into LF in place and gives the new size. Unless these are the last bytes, a CR at the end is held
// back for the next block.
std::size_t TextStream::Translate(char* begin, std::size_t size, bool last) {
  const char* from = begin;
  const char* end = begin + size;
  held_cr_ = !last && size > 0 && end[-1] == '\r';
  if (held_cr_) --end;
  char* to = begin;
  while (from < end) {
    const char* cr = Find(from, end, '\r');
    if (cr == nullptr) cr = end;
    if (to != from) std::memmove(to, from, static_cast<std::size_t>(cr - from));
    to += cr - from;
    from = cr;
    if (from == end) break;
    if (end - from == 1 || from[1] != '\n') *to++ = '\r';
    ++from;
  }
  return static_cast<std::size_t>(to - begin);
}

// Called where all of the window is read. Moves it forward.
bool TextStream::Fill() {
  while (next_ == end_ && !at_end_) {
    const std::size_t filled = static_cast<std::size_t>(end_ - window_.get());
    const std::size_t kept = std::min(filled, kHistory);
    std::memmove(window_.get(), end_ - kept, kept);
    base_ += filled - kept;
    next_ = end_ = window_.get() + kept;
    char* into = end_;
    if (held_cr_) *into++ = '\r';
    const std::int64_t got = file_.Read(into, kBlock);
    failed_ = got < 0;
    const std::size_t size = failed_ ? 0 : static_cast<std::size_t>(got);
    at_end_ = size < kBlock;
    end_ += Translate(end_, static_cast<std::size_t>(into - end_) + size, at_end_);
  }
  return next_ != end_;
}

void TextStream::LoadWhole() {
  platform::FileFacts facts;
  std::int64_t got = -1;
  if (file_.Facts(&facts)) {
    const std::size_t size = static_cast<std::size_t>(facts.size);
    std::unique_ptr<char[]> all(new char[size + 1]);
    got = file_.ReadAt(all.get(), size, 0);
    window_ = std::move(all);
  }
  if (got < 0) failed_ = true;
  at_end_ = true;
  base_ = 0;
  next_ = window_.get();
  end_ = next_ + (failed_ ? 0 : Translate(next_, static_cast<std::size_t>(got), true));
}

void TextStream::SeekFar(std::uint64_t position) {
  if (position < base_) LoadWhole();
  for (;;) {
    const std::uint64_t in_window = position - base_;
    const std::size_t filled = static_cast<std::size_t>(end_ - window_.get());
    next_ = in_window < filled ? window_.get() + in_window : end_;
    if (in_window <= filled || !Fill()) break;
  }
}

int TextStream::ReadByte(char* byte) {
  const int next = Peek();
  if (next < 0) return 0;
  *byte = static_cast<char>(next);
  Skip();
  return 1;
}

bool TextStream::ReadLine(std::size_t size, std::string_view* line) {
  if (Peek() < 0) return false;
  const std::size_t most = size - 1;
  std::size_t wanted = std::min(most, static_cast<std::size_t>(end_ - next_));
  const char* lf = Find(next_, next_ + wanted, '\n');
  if (lf != nullptr || wanted == most) {
    *line = {next_, lf == nullptr ? most : static_cast<std::size_t>(lf - next_) + 1};
    next_ += line->size();
    return true;
  }
  line_.assign(next_, wanted);
  next_ = end_;
  while (line_.size() < most && line_.back() != '\n' && Peek() >= 0) {
    line_.push_back(*next_);
    Skip();
  }
  *line = line_;
  return true;
}

bool TextStream::AcceptSlowly(std::string_view text) {
  const std::uint64_t start = GetPosition();
  for (const char c : text) {
    if (Peek() != static_cast<unsigned char>(c)) {
      Seek(start);
      return false;
    }
    Skip();
  }
  return true;
}

std::string_view TextStream::ReadUntilSlowly(char stop, std::string* spill) {
  spill->clear();
  for (;;) {
    const char* const found = Find(next_, end_, stop);
    const std::string_view run(next_, static_cast<std::size_t>((found == nullptr ? end_ : found) - next_));
    next_ += run.size();
    if (found != nullptr && spill->empty()) return run;
    spill->append(run);
    if (found != nullptr || !Fill()) return *spill;
  }
}

std::string_view TextStream::ReadUntilSlowly(const bool (&stops)[256], std::string* spill) {
  spill->clear();
  for (;;) {
    const char* const begin = next_;
    while (next_ != end_ && !stops[static_cast<unsigned char>(*next_)]) ++next_;
    const std::string_view run(begin, static_cast<std::size_t>(next_ - begin));
    const bool found = next_ != end_;
    if (found && spill->empty()) return run;
    spill->append(run);
    if (found || !Fill()) return *spill;
  }
}

bool TextStream::Create(std::string_view path) {
  saver_ = std::make_unique<platform::FileSaver>();
  if (!saver_->Open(path)) return false;
  out_.reset(new char[kOutBlock]);
  out_next_ = out_.get();
  out_end_ = out_next_ + kOutBlock;
  return true;
}

void TextStream::CreateText(std::string* out) {
  out_text_ = out;
  out_.reset(new char[kOutBlock]);
  out_next_ = out_.get();
  out_end_ = out_next_ + kOutBlock;
}

void TextStream::Flush() {
  const std::string_view ready(out_.get(), static_cast<std::size_t>(out_next_ - out_.get()));
  if (out_text_ != nullptr) out_text_->append(ready);
  if (saver_ != nullptr && !saver_->Write(ready)) write_failed_ = true;
  out_next_ = out_.get();
}

void TextStream::WriteSlowly(std::string_view text) {
  while (!text.empty()) {
    const std::string_view piece = text.substr(0, kMostAtOnce / 2);
    text.remove_prefix(piece.size());
    char* to = Room(2 * piece.size());
    for (const char c : piece) {
      if (c == '\n') *to++ = '\r';
      *to++ = c;
    }
    out_next_ = to;
  }
}

void TextStream::WriteUmlauts(std::string_view text) {
  while (!text.empty()) {
    const std::string_view piece = text.substr(0, kMostAtOnce / 2);
    text.remove_prefix(piece.size());
    char* to = Room(2 * piece.size());
    const char* from = piece.data();
    const char* const end = from + piece.size();
    while (from != end) {
      if (end - from >= 8) {
        const std::uint64_t word = WordAt(from);
        if (((word & kHighBits) | LineFeeds(word)) == 0) {
          std::memcpy(to, &word, sizeof word);
          from += 8;
          to += 8;
          continue;
        }
      }
      const char c = *from++;
      const char written = kWritten[static_cast<unsigned char>(c)];
      if (written == 0) {
        *to++ = c;
      } else if (c == '\n') {
        *to++ = '\r';
        *to++ = '\n';
      } else {
        *to++ = static_cast<char>(0xC3);
        *to++ = written;
      }
    }
    out_next_ = to;
  }
}

void TextStream::WriteLineEnd(std::size_t tabs) {
  WriteMark("\r\n");
  while (tabs > 0) {
    const std::size_t piece = std::min(tabs, kMostAtOnce);
    std::memset(Room(piece), '\t', piece);
    out_next_ += piece;
    tabs -= piece;
  }
}

bool TextStream::Close() {
  if (out_ != nullptr) Flush();
  if (saver_ != nullptr) return !write_failed_ && saver_->Commit();
  return !failed_ && file_.Close();
}

}  // namespace pktaus
