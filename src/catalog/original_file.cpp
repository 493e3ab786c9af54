#include "catalog/original_file.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <functional>
#include <optional>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "base/bounded.h"
#include "base/path.h"
#include "catalog/line_scan.h"
#include "catalog/number.h"
#include "store/object_types.h"

namespace pktaus {
namespace {

constexpr std::string_view kIdTag = "gml:id=\"";
constexpr std::string_view kOwnerTag = "<istTeilVon xlink:href=\"urn:adv:oid:";
constexpr std::string_view kOwnerEnd = "\"/>";
constexpr std::string_view kPunktortTag = "<AX_Punktort";
constexpr std::string_view kMemberEnd = "</wfs:member>";
// Seldom in such a file: "d=" and "TV" of istTeilVon.
constexpr Needle kIdNeedle{kIdTag, 5, 6};
constexpr Needle kOwnerNeedle{kOwnerTag, 4, 8};
constexpr std::size_t kIdText = 100;  // room of a search text with an identifier
constexpr std::size_t kName = 200;
constexpr std::size_t kRow = 81;

constexpr std::uint64_t kNowhere = UINT64_MAX;

bool Holds(std::string_view line, std::string_view text) { return line.find(text) != std::string_view::npos; }

/// A line of a block, which ends in front of what has been taken from it. The letters behind each "<" in it, kept as
/// bits, tell at once of most tags that it does not hold them.
class BlockLine {
 public:
  explicit BlockLine(std::string_view text) : text_(text) {
    // A "<" at the very end has no letter.
    const std::string_view starts = text.substr(0, text.size() - std::min<std::size_t>(text.size(), 1));
    for (std::size_t at = starts.find('<'); at != std::string_view::npos; at = starts.find('<', at + 1))
      letters_ |= Bit(text[at + 1]);
  }

  std::string_view text() const { return text_; }
  bool HoldsTag(std::string_view tag) const { return (letters_ & Bit(tag[1])) != 0 && Holds(text_, tag); }

  /// What stands between the first ">" and the next "<", and the line ends there from then on. Nothing where one of
  /// them is missing.
  std::optional<std::string> TakeValue() {
    const std::size_t before = text_.find('>');
    if (before == std::string_view::npos) return std::nullopt;
    const std::size_t end = text_.find('<', before);
    if (end == std::string_view::npos) return std::nullopt;
    text_ = text_.substr(0, end);
    return std::string(text_.substr(before + 1));
  }

  void TakeNumber(std::string_view tag, std::int32_t* number) {
    if (!HoldsTag(tag)) return;
    if (const std::optional<std::string> value = TakeValue()) *number = ReadNumber(*value);
  }

  template <std::size_t kSize>
  void TakeText(bool there, char (&text)[kSize]) {
    if (!there) return;
    if (const std::optional<std::string> value = TakeValue()) put(text, value->c_str());
  }

  /// The owner's identifier, and the line ends in front of the quote behind it; nothing where that is missing.
  std::optional<std::string> TakeOwner() {
    const std::size_t begin = text_.find('<') + kOwnerTag.size();
    const std::size_t end = text_.find('"', begin);
    if (end == std::string_view::npos) return std::nullopt;
    text_ = text_.substr(0, end);
    return std::string(text_.substr(begin));
  }

 private:
  static std::uint32_t Bit(char letter) { return 1U << (static_cast<unsigned char>(letter) % 32); }

  std::string_view text_;
  std::uint32_t letters_ = 0;
};

/// What stands between the line's first "<" and the next blank; nothing where one of them is missing.
std::optional<std::string_view> ElementName(std::string_view line) {
  const std::size_t before = line.find('<');
  if (before == std::string_view::npos) return std::nullopt;
  const std::size_t end = line.find(' ', before);
  if (end == std::string_view::npos) return std::nullopt;
  return line.substr(before + 1, end - before - 1);
}

/// Whether the text names a class of the model, such as "<AX_Grenzpunkt".
bool HoldsClass(std::string_view text) {
  for (std::size_t at = text.find("<A"); at != std::string_view::npos; at = text.find("<A", at + 1)) {
    if (at + 3 < text.size() && text[at + 2] >= 'A' && text[at + 2] <= 'Z' && text[at + 3] == '_') return true;
  }
  return false;
}

/// Whether a block's first line leaves the rest of the block to lines of its own: whatever else stood behind the
/// identifier would be taken for the block's.
bool OpensBlock(const LinePiece& first, std::string_view id_text) {
  const std::string_view behind = first.text.substr(first.text.find(id_text) + id_text.size());
  return first.ends_line && !Holds(behind, kMemberEnd) && !(HoldsClass(behind) && Holds(behind, kIdTag));
}

/// Watches the lines of a block for another object that begins in them. A line may come in many pieces.
class BlockWatch {
 public:
  /// `seen` is what the search for values has left of the piece: an end behind a value is not seen.
  bool BeginsObject(const LinePiece& piece, const BlockLine& seen) {
    const std::string_view front =
        seen.HoldsTag(kMemberEnd) ? piece.text.substr(0, seen.text().find(kMemberEnd)) : piece.text;
    const std::string_view window = tail_.empty() ? front : tail_.append(front);
    has_class_ = has_class_ || HoldsClass(window);
    // What stands in the line's last piece alone is of no use without the class.
    if (has_class_ || !piece.ends_line) has_id_ = has_id_ || Holds(window, kIdTag);
    const bool begins = has_class_ && has_id_;
    if (piece.ends_line) has_class_ = has_id_ = false;
    tail_ = window.substr(piece.ends_line ? window.size() : window.size() - std::min(window.size(), kIdTag.size() - 1));
    return begins;
  }

 private:
  std::string tail_;  // of the line so far
  bool has_class_ = false;
  bool has_id_ = false;
};

// ---- the places of one object ----

/// Where a file speaks of an object, by offsets of pieces: the first line with its identifier, and in their order the
/// lines that may name it as owner.
struct Places {
  std::uint64_t object = kNowhere;
  std::vector<std::uint64_t> ties;
};

std::string IdText(std::string_view id) { return std::string(kIdTag).append(id).append("\""); }
std::string OwnerText(std::string_view id) { return std::string(kOwnerTag).append(id).append(kOwnerEnd); }

/// The digit in front of the closing quote and that quote are seldomest.
Needle NeedleOf(std::string_view text, std::size_t behind_quote) {
  const std::size_t quote = text.size() - behind_quote - 1;
  return {text, quote - 1, quote};
}

/// A line of an object begins a block where it names the object's element.
bool IsStart(const LinePiece& piece, std::string_view id_text) {
  return Holds(piece.text, id_text) && ElementName(piece.text).has_value();
}

/// Finds the places of one object by a scan for each question.
class Scanner {
 public:
  explicit Scanner(LineScan* lines) : lines_(*lines) {}

  std::uint64_t Object(std::string_view id) {
    const std::string text = IdText(id);
    const Needle needles[] = {NeedleOf(text, 0)};
    LinePiece piece;
    lines_.Seek(0);
    while (lines_.Find(needles, &piece)) {
      if (IsStart(piece, text)) return piece.offset;
    }
    return kNowhere;
  }

  Places Owner(std::string_view id) {
    const std::string object = IdText(id);
    const std::string owner = OwnerText(id);
    const Needle needles[] = {NeedleOf(object, 0), NeedleOf(owner, 2)};
    Places places;
    LinePiece piece;
    lines_.Seek(0);
    while (lines_.Find(needles, &piece)) {
      if (places.object == kNowhere && IsStart(piece, object)) places.object = piece.offset;
      if (Holds(piece.text, owner)) places.ties.push_back(piece.offset);
    }
    return places;
  }

 private:
  LineScan& lines_;
};

/// Calls `found` with what stands in front of the next quote at each place of `begin`, where `end` follows.
template <typename Found>
void ForEachId(std::string_view line, std::string_view begin, std::string_view end, Found found) {
  for (std::size_t at = line.find(begin); at != std::string_view::npos; at = line.find(begin, at)) {
    at += begin.size();
    const std::size_t quote = line.find('"', at);
    if (quote == std::string_view::npos) return;
    if (line.substr(quote).starts_with(end)) found(line.substr(at, quote - at));
  }
}

/// The lines that hold an identifier, of very many identifiers.
class LinesOfIds {
 public:
  /// Room for as many as a file of that size has as a rule: memory that is not used yet costs nothing, copies would.
  explicit LinesOfIds(std::uint64_t file_size) {
    constexpr std::uint64_t kBytesPerId = 512;
    lines_.reserve(file_size / kBytesPerId);
    next_.reserve(file_size / kBytesPerId);
  }

  void Add(std::string_view id, std::uint64_t line) {
    lines_.push_back(line);
    next_.push_back(HashOf(id));
  }

  /// Makes the lines known to ForEach, behind the last one added.
  void Link() {
    heads_.assign(std::bit_ceil(lines_.size() + 1), kNone);
    for (std::size_t i = lines_.size(); i-- > 0;)
      next_[i] = std::exchange(heads_[next_[i] & (heads_.size() - 1)], static_cast<std::uint32_t>(i));
  }

  /// Calls `visit` with the identifier's lines, and some of others, as they were added, until it gives false.
  template <typename Visit>
  void ForEach(std::string_view id, Visit visit) const {
    std::uint32_t i = heads_[HashOf(id) & (heads_.size() - 1)];
    while (i != kNone && visit(lines_[i])) i = next_[i];
  }

 private:
  static constexpr std::uint32_t kNone = UINT32_MAX;

  static std::uint32_t HashOf(std::string_view id) {
    return static_cast<std::uint32_t>(std::hash<std::string_view>{}(id));
  }

  std::vector<std::uint64_t> lines_;
  std::vector<std::uint32_t> next_;  // line of the same head; before Link the hash
  std::vector<std::uint32_t> heads_;
};

/// The places of all objects of a file, found in one walk.
class PlaceIndex {
 public:
  PlaceIndex(LineScan* lines, std::uint64_t file_size) : starts_(file_size), ties_(file_size) {
    constexpr Needle kNeedles[] = {kIdNeedle, kOwnerNeedle};
    LinePiece piece;
    lines->Seek(0);
    while (const std::optional<std::size_t> found = lines->Find(kNeedles, &piece)) {
      const std::string_view rest = piece.text.substr(*found);
      if (ElementName(piece.text).has_value())
        ForEachId(rest, kIdTag, "\"", [&](std::string_view id) { starts_.Add(id, piece.offset); });
      ForEachId(rest, kOwnerTag, kOwnerEnd, [&](std::string_view id) { ties_.Add(id, piece.offset); });
    }
    starts_.Link();
    ties_.Link();
  }

  /// Answers what a Scanner answers for identifiers without a quote.
  class Finder {
   public:
    Finder(const PlaceIndex* index, LineScan* lines) : index_(*index), lines_(*lines) {}

    std::uint64_t Object(std::string_view id) {
      const std::string text = IdText(id);
      std::uint64_t object = kNowhere;
      index_.starts_.ForEach(id, [&](std::uint64_t line) {
        if (LineHolds(line, text)) object = line;
        return object == kNowhere;
      });
      return object;
    }

    Places Owner(std::string_view id) {
      Places places{Object(id), {}};
      index_.ties_.ForEach(id, [&](std::uint64_t line) {
        if (places.ties.empty() || places.ties.back() != line) places.ties.push_back(line);
        return true;
      });
      return places;
    }

   private:
    bool LineHolds(std::uint64_t offset, std::string_view text) {
      LinePiece piece;
      lines_.Seek(offset);
      return lines_.Next(&piece) && Holds(piece.text, text);
    }

    const PlaceIndex& index_;
    LineScan& lines_;
  };

 private:
  LinesOfIds starts_;
  LinesOfIds ties_;
};

// ---- the values ----

/// Reads the block of the position object behind its first line. Gives the owner's identifier, empty where the block
/// names none; nothing where another object begins in it.
std::optional<std::string> ReadPosition(LineScan* lines, PointRecord* record, OriginalExtract* extract) {
  std::string owner;
  bool in_point = false;
  BlockWatch watch;
  LinePiece piece;
  while (lines->Next(&piece)) {
    BlockLine line(piece.text);
    if (extract != nullptr) {
      const bool begins = !in_point && line.HoldsTag("<gml:Point");
      if (in_point || begins) {
        const std::string raw = std::string(piece.text) + (piece.ends_line ? "\n" : "");
        if (begins) extract->pos_xml[0] = '\0';
        my_strcat(extract->pos_xml, raw.c_str(), sizeof extract->pos_xml);
        // One line may hold both ends of a point.
        in_point = !line.HoldsTag("</gml:Point>");
      }
      line.TakeText(Holds(line.text(), "beginnt"), extract->punktort_beginnt);
    }
    if (line.HoldsTag(kOwnerTag)) {
      char limited[kName];
      if (const std::optional<std::string> named = line.TakeOwner()) owner = put(limited, named->c_str());
    }
    line.TakeNumber("<genauigkeitsstufe>", &record->gst);
    line.TakeNumber("<hinweise>", &record->hin);
    line.TakeNumber("<koordinatenstatus>", &record->kst);
    line.TakeNumber("<AX_Datenerhebung_Punktort>", &record->her);
    if (line.HoldsTag("<lagezuverlaessigkeit>")) {
      if (const std::optional<std::string> value = line.TakeValue())
        record->lzv = *value == "true" ? kLzvTrue : kLzvFalse;
    }
    if (watch.BeginsObject(piece, line)) return std::nullopt;
    if (line.HoldsTag(kMemberEnd)) break;
  }
  return owner;
}

/// Reads the owner's block behind its first line. False where another object begins in it.
bool ReadOwner(LineScan* lines, PointRecord* record, char (&identifier)[kName], OriginalExtract* extract) {
  BlockWatch watch;
  LinePiece piece;
  while (lines->Next(&piece)) {
    BlockLine line(piece.text);
    if (extract != nullptr) line.TakeText(Holds(line.text(), "beginnt"), extract->object_beginnt);
    line.TakeText(line.HoldsTag("<punktkennung"), identifier);
    line.TakeNumber("<abmarkung_Marke>", &record->abm);
    line.TakeNumber("<vermarkung_Marke>", &record->abm);
    line.TakeNumber("<stelle>", &record->zst);
    if (watch.BeginsObject(piece, line)) return false;
    if (line.HoldsTag(kMemberEnd)) break;
  }
  return true;
}

/// Name and identifier of a position object from its start line; both empty where the line lacks a delimiter.
struct Row {
  char name[kRow] = "";
  char id[kRow] = "";
};

Row ReadRow(LineScan* lines, std::uint64_t start) {
  Row row;
  LinePiece piece;
  lines->Seek(start);
  if (!lines->Next(&piece)) return row;
  const std::optional<std::string_view> name = ElementName(piece.text);
  if (!name) return row;
  const std::size_t quote = piece.text.find('"', piece.text.find('<') + 1 + name->size());
  if (quote == std::string_view::npos) return row;
  const std::size_t end = piece.text.find('"', quote + 1);
  if (end == std::string_view::npos) return row;
  put(row.name, std::string(*name).c_str());
  put(row.id, std::string(piece.text.substr(quote + 1, end - quote - 1)).c_str());
  return row;
}

/// A line that may name an owner, and the start of the position object that it stands in; kNowhere without one.
struct Tie {
  bool names_owner = false;
  std::uint64_t start = kNowhere;
};

/// Reads the piece `line` and goes for its start to the last one behind the piece `begin`, or from it on where
/// `inclusive`.
Tie ReadTie(LineScan* lines, std::uint64_t begin, bool inclusive, std::uint64_t line, std::string_view owner_text) {
  for (std::uint64_t span = 1 << 11;; span *= 2) {
    // As a rule the start is a few lines in front.
    const bool whole = line - begin <= span;
    if (whole) {
      lines->Seek(begin);
    } else {
      lines->SeekLine(line - span);
    }
    Tie tie;
    LinePiece piece;
    while (lines->Next(&piece) && piece.offset <= line) {
      if (Holds(piece.text, kPunktortTag) && (inclusive || piece.offset > begin)) tie.start = piece.offset;
      tie.names_owner = piece.offset == line && Holds(piece.text, owner_text);
    }
    if (tie.start != kNowhere || whole) return tie;
  }
}

/// The owner's position objects but for `gml_id`, as `wepo` keeps them.
std::string FurtherPositions(LineScan* lines, const std::vector<std::uint64_t>& ties, std::string_view owner,
                             std::string_view gml_id) {
  const std::string owner_text = OwnerText(owner);
  std::string text, before;
  std::size_t count = 0;
  std::uint64_t begin = 0;
  for (const std::uint64_t line : ties) {
    // A start counts for the first line behind it that names the owner.
    const Tie tie = ReadTie(lines, begin, /*inclusive=*/count == 0, line, owner_text);
    if (!tie.names_owner) continue;
    ++count;
    begin = line;
    if (tie.start == kNowhere) continue;
    const Row row = ReadRow(lines, tie.start);
    if (row.name[0] == '\0' || row.id == gml_id) continue;
    before = text;
    text.append(row.name).append("|").append(row.id).append("|");
  }
  if (count <= 1) return {};
  return text.size() < sizeof PointRecord::wepo ? text : before;
}

template <typename Finder>
std::unique_ptr<PointRecord> SearchIn(LineScan* lines, Finder finder, const char* gml_id, OriginalExtract* extract) {
  char text[kIdText];
  // An empty identifier is nobody's, and neither is one too long to be searched for.
  if (*gml_id == '\0' || my_sprintf(text, sizeof text, "gml:id=\"%s\"", gml_id) == 0) return nullptr;
  const std::uint64_t position = finder.Object(gml_id);
  if (position == kNowhere) return nullptr;

  auto record = std::make_unique<PointRecord>();
  record->abm = record->zst = record->kst = record->hin = record->her = record->gst = kNoChoice;
  record->bza = record->art = record->vtw = kNoChoice;
  record->lzv = kLzvNotGiven;
  LinePiece piece;
  char position_name[kName], owner_name[kName], identifier[kName] = "";
  lines->Seek(position);
  if (!lines->Next(&piece) || !OpensBlock(piece, IdText(gml_id))) return nullptr;
  put(position_name, std::string(ElementName(piece.text).value_or("")).c_str());
  const std::optional<std::string> owner = ReadPosition(lines, record.get(), extract);
  if (!owner || owner->empty() || my_sprintf(text, sizeof text, "gml:id=\"%s\"", owner->c_str()) == 0) return nullptr;

  const Places places = finder.Owner(*owner);
  if (places.object == kNowhere) return nullptr;
  lines->Seek(places.object);
  if (!lines->Next(&piece) || !OpensBlock(piece, IdText(*owner))) return nullptr;
  put(owner_name, std::string(ElementName(piece.text).value_or("")).c_str());
  if (!ReadOwner(lines, record.get(), identifier, extract)) return nullptr;
  std::string further;
  if (my_sprintf(text, sizeof text, "<istTeilVon xlink:href=\"urn:adv:oid:%s\"/>", owner->c_str()) > 0)
    further = FurtherPositions(lines, places.ties, *owner, gml_id);
  if (lines->Failed()) return nullptr;

  put(record->wepo, further.c_str());
  put(record->obgid, owner->c_str());
  put(record->gmlid, gml_id);
  record->oa = FindObjectTypeRow(owner_name);
  constexpr std::pair<std::string_view, Po> kKinds[] = {
      {"PunktortTA", kPoTA}, {"PunktortAU", kPoAU}, {"PunktortAG", kPoAG}};
  for (const auto& [kind, po] : kKinds) {
    if (Holds(position_name, kind)) record->po = po;
  }
  put(record->pkn, identifier);
  return record;
}

}  // namespace

struct OriginalFile::Index {
  /// Opens the file and finds its places, unless it is as it was; false where that cannot be done.
  bool Refresh(const std::string& path);

  std::vector<char> buffer;
  LineScan lines{&buffer};
  platform::FileFacts facts;
  std::optional<PlaceIndex> places;  // of the open file with these facts
};

bool OriginalFile::Index::Refresh(const std::string& path) {
  const auto identity = [](const platform::FileFacts& f) {
    return std::tie(f.size, f.modified_ns, f.device, f.serial);
  };
  platform::FileFacts now;
  if (places && platform::Files().PathFacts(path::ToDisk(path), &now) && identity(now) == identity(facts)) return true;
  places.reset();
  if (!lines.Open(path) || !lines.Facts(&facts)) return false;
  places.emplace(&lines, facts.size);
  return true;
}

OriginalFile::OriginalFile(std::string path) : path_(std::move(path)), index_(std::make_unique<Index>()) {}
OriginalFile::~OriginalFile() = default;

std::unique_ptr<PointRecord> OriginalFile::Search(const char* gml_id, OriginalExtract* extract) {
  if (extract != nullptr) *extract = {};
  // Such an identifier reaches beyond the quote that ends one in the file.
  if (std::strchr(gml_id, '"') != nullptr) return SearchOriginalFile(path_, gml_id, extract);
  if (!index_->Refresh(path_)) return nullptr;
  LineScan& lines = index_->lines;
  std::unique_ptr<PointRecord> found;
  if (!lines.Failed()) found = SearchIn(&lines, PlaceIndex::Finder(&*index_->places, &lines), gml_id, extract);
  if (lines.Failed()) index_->places.reset();
  return found;
}

std::unique_ptr<PointRecord> SearchOriginalFile(const std::string& path, const char* gml_id, OriginalExtract* extract) {
  if (extract != nullptr) *extract = {};
  std::vector<char> buffer;
  LineScan lines(&buffer);
  if (!lines.Open(path)) return nullptr;
  return SearchIn(&lines, Scanner(&lines), gml_id, extract);
}

}  // namespace pktaus
