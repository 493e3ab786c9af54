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

/// What stands between the line's first ">" and the next "<", and the line ends there from then on. Nothing where one
/// of them is missing.
std::optional<std::string> TakeValue(std::string_view* line) {
  const std::size_t before = line->find('>');
  if (before == std::string_view::npos) return std::nullopt;
  const std::size_t end = line->find('<', before);
  if (end == std::string_view::npos) return std::nullopt;
  *line = line->substr(0, end);
  return std::string(line->substr(before + 1));
}

void TakeNumber(std::string_view* line, std::string_view tag, std::int32_t* number) {
  if (!Holds(*line, tag)) return;
  if (const std::optional<std::string> value = TakeValue(line)) *number = ReadNumber(*value);
}

template <std::size_t kSize>
void TakeText(std::string_view* line, std::string_view tag, char (&text)[kSize]) {
  if (!Holds(*line, tag)) return;
  if (const std::optional<std::string> value = TakeValue(line)) put(text, value->c_str());
}

/// What stands between the line's first "<" and the next blank; nothing where one of them is missing.
std::optional<std::string> ElementName(std::string_view line) {
  const std::size_t before = line.find('<');
  if (before == std::string_view::npos) return std::nullopt;
  const std::size_t end = line.find(' ', before);
  if (end == std::string_view::npos) return std::nullopt;
  return std::string(line.substr(before + 1, end - before - 1));
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
  bool BeginsObject(const LinePiece& piece, std::string_view seen) {
    const std::string_view front = piece.text.substr(0, seen.find(kMemberEnd));
    const std::string window = tail_.append(front);
    has_class_ = has_class_ || HoldsClass(window);
    has_id_ = has_id_ || Holds(window, kIdTag);
    const bool begins = has_class_ && has_id_;
    if (piece.ends_line) has_class_ = has_id_ = false;
    tail_ = piece.ends_line ? std::string() : window.substr(window.size() - std::min(window.size(), kIdTag.size() - 1));
    return begins;
  }

 private:
  std::string tail_;  // of the line so far
  bool has_class_ = false;
  bool has_id_ = false;
};

// ---- the places of one object ----

/// Where a file speaks of an object, by offsets of pieces: the first line with its identifier, and the lines that name
/// it as owner.
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

std::uint64_t HashOf(std::string_view id) { return std::hash<std::string_view>{}(id); }

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
  void Add(std::string_view id, std::uint64_t line) { marks_.push_back({line, HashOf(id)}); }

  /// Makes the lines known to Visit, behind the last one added.
  void Link() {
    heads_.assign(std::bit_ceil(marks_.size() + 1), kNowhere);
    for (std::size_t i = marks_.size(); i-- > 0;)
      marks_[i].next = std::exchange(heads_[marks_[i].next & (heads_.size() - 1)], i);
  }

  /// Calls `visit` with the identifier's lines, and some of others, as they were added, until it gives false.
  template <typename Visit>
  void ForEach(std::string_view id, Visit visit) const {
    std::uint64_t i = heads_[HashOf(id) & (heads_.size() - 1)];
    while (i != kNowhere && visit(marks_[i].line)) i = marks_[i].next;
  }

 private:
  struct Mark {
    std::uint64_t line;
    std::uint64_t next;  // mark of the same head; before Link the hash
  };
  std::vector<Mark> marks_;
  std::vector<std::uint64_t> heads_;
};

/// The places of all objects of a file, found in one walk.
class PlaceIndex {
 public:
  explicit PlaceIndex(LineScan* lines) {
    constexpr Needle kNeedles[] = {kIdNeedle, kOwnerNeedle};
    LinePiece piece;
    lines->Seek(0);
    while (lines->Find(kNeedles, &piece)) {
      if (ElementName(piece.text).has_value())
        ForEachId(piece.text, kIdTag, "\"", [&](std::string_view id) { starts_.Add(id, piece.offset); });
      ForEachId(piece.text, kOwnerTag, kOwnerEnd, [&](std::string_view id) { ties_.Add(id, piece.offset); });
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
      const std::string text = OwnerText(id);
      index_.ties_.ForEach(id, [&](std::uint64_t line) {
        const bool known = !places.ties.empty() && places.ties.back() == line;
        if (!known && LineHolds(line, text)) places.ties.push_back(line);
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
    std::string_view line = piece.text;
    if (extract != nullptr) {
      const std::string raw = std::string(line) + (piece.ends_line ? "\n" : "");
      const bool begins = !in_point && Holds(line, "<gml:Point");
      if (in_point) my_strcat(extract->pos_xml, raw.c_str(), sizeof extract->pos_xml);
      if (begins) put(extract->pos_xml, raw.c_str());
      // One line may hold both ends of a point.
      if (in_point || begins) in_point = !Holds(line, "</gml:Point>");
      TakeText(&line, "beginnt", extract->punktort_beginnt);
    }
    if (Holds(line, kOwnerTag)) {
      const std::size_t begin = line.find('<') + kOwnerTag.size();
      const std::size_t end = line.find('"', begin);
      if (end != std::string_view::npos) {
        char limited[kName];
        line = line.substr(0, end);
        owner = put(limited, std::string(line.substr(begin)).c_str());
      }
    }
    TakeNumber(&line, "<genauigkeitsstufe>", &record->gst);
    TakeNumber(&line, "<hinweise>", &record->hin);
    TakeNumber(&line, "<koordinatenstatus>", &record->kst);
    TakeNumber(&line, "<AX_Datenerhebung_Punktort>", &record->her);
    if (Holds(line, "<lagezuverlaessigkeit>")) {
      if (const std::optional<std::string> value = TakeValue(&line))
        record->lzv = *value == "true" ? kLzvTrue : kLzvFalse;
    }
    if (watch.BeginsObject(piece, line)) return std::nullopt;
    if (Holds(line, kMemberEnd)) break;
  }
  return owner;
}

/// Reads the owner's block behind its first line. False where another object begins in it.
bool ReadOwner(LineScan* lines, PointRecord* record, char (&identifier)[kName], OriginalExtract* extract) {
  BlockWatch watch;
  LinePiece piece;
  while (lines->Next(&piece)) {
    std::string_view line = piece.text;
    if (extract != nullptr) TakeText(&line, "beginnt", extract->object_beginnt);
    TakeText(&line, "<punktkennung", identifier);
    TakeNumber(&line, "<abmarkung_Marke>", &record->abm);
    TakeNumber(&line, "<vermarkung_Marke>", &record->abm);
    TakeNumber(&line, "<stelle>", &record->zst);
    if (watch.BeginsObject(piece, line)) return false;
    if (Holds(line, kMemberEnd)) break;
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
  const std::optional<std::string> name = ElementName(piece.text);
  if (!name) return row;
  const std::size_t quote = piece.text.find('"', piece.text.find('<') + 1 + name->size());
  if (quote == std::string_view::npos) return row;
  const std::size_t end = piece.text.find('"', quote + 1);
  if (end == std::string_view::npos) return row;
  put(row.name, name->c_str());
  put(row.id, std::string(piece.text.substr(quote + 1, end - quote - 1)).c_str());
  return row;
}

/// The last piece with the start of a position object behind the piece `begin`, or from it on where `inclusive`, up to
/// `end`; kNowhere without one.
std::uint64_t LastStart(LineScan* lines, std::uint64_t begin, bool inclusive, std::uint64_t end) {
  for (std::uint64_t span = 1 << 12;; span *= 2) {
    // As a rule it stands a few lines in front of the end.
    const bool whole = end - begin <= span;
    if (whole) {
      lines->Seek(begin);
    } else {
      lines->SeekLine(end - span);
    }
    std::uint64_t start = kNowhere;
    LinePiece piece;
    while (lines->Next(&piece) && piece.offset <= end) {
      if (Holds(piece.text, kPunktortTag) && (inclusive || piece.offset > begin)) start = piece.offset;
    }
    if (start != kNowhere || whole) return start;
  }
}

/// The owner's position objects but for `gml_id`, as `wepo` keeps them.
std::string FurtherPositions(LineScan* lines, const std::vector<std::uint64_t>& ties, std::string_view gml_id) {
  std::string text, before;
  if (ties.size() <= 1) return text;
  for (std::size_t i = 0; i < ties.size(); ++i) {
    // A start counts for the first line behind it that names the owner.
    const std::uint64_t start = LastStart(lines, i == 0 ? 0 : ties[i - 1], /*inclusive=*/i == 0, ties[i]);
    if (start == kNowhere) continue;
    const Row row = ReadRow(lines, start);
    if (row.name[0] == '\0' || row.id == gml_id) continue;
    before = text;
    text.append(row.name).append("|").append(row.id).append("|");
  }
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
  put(position_name, ElementName(piece.text).value_or("").c_str());
  const std::optional<std::string> owner = ReadPosition(lines, record.get(), extract);
  if (!owner || owner->empty() || my_sprintf(text, sizeof text, "gml:id=\"%s\"", owner->c_str()) == 0) return nullptr;

  const Places places = finder.Owner(*owner);
  if (places.object == kNowhere) return nullptr;
  lines->Seek(places.object);
  if (!lines->Next(&piece) || !OpensBlock(piece, IdText(*owner))) return nullptr;
  put(owner_name, ElementName(piece.text).value_or("").c_str());
  if (!ReadOwner(lines, record.get(), identifier, extract)) return nullptr;
  std::string further;
  if (my_sprintf(text, sizeof text, "<istTeilVon xlink:href=\"urn:adv:oid:%s\"/>", owner->c_str()) > 0)
    further = FurtherPositions(lines, places.ties, gml_id);
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
  std::vector<char> buffer;
  platform::FileFacts facts;
  std::optional<PlaceIndex> places;
};

OriginalFile::OriginalFile(std::string path) : path_(std::move(path)), index_(std::make_unique<Index>()) {}
OriginalFile::~OriginalFile() = default;

std::unique_ptr<PointRecord> OriginalFile::Search(const char* gml_id, OriginalExtract* extract) {
  if (extract != nullptr) *extract = {};
  LineScan lines(&index_->buffer);
  platform::FileFacts facts;
  if (!lines.Open(path_) || !lines.Facts(&facts)) return nullptr;
  // Such an identifier reaches beyond the quote that ends one in the file.
  if (std::strchr(gml_id, '"') != nullptr) return SearchIn(&lines, Scanner(&lines), gml_id, extract);
  const auto identity = [](const platform::FileFacts& f) {
    return std::tie(f.size, f.modified_ns, f.device, f.serial);
  };
  if (!index_->places || identity(facts) != identity(index_->facts)) {
    index_->places.emplace(&lines);
    index_->facts = facts;
  }
  if (lines.Failed()) {
    index_->places.reset();
    return nullptr;
  }
  return SearchIn(&lines, PlaceIndex::Finder(&*index_->places, &lines), gml_id, extract);
}

std::unique_ptr<PointRecord> SearchOriginalFile(const std::string& path, const char* gml_id, OriginalExtract* extract) {
  if (extract != nullptr) *extract = {};
  std::vector<char> buffer;
  LineScan lines(&buffer);
  if (!lines.Open(path)) return nullptr;
  return SearchIn(&lines, Scanner(&lines), gml_id, extract);
}

}  // namespace pktaus
