#include "catalog/original_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/bounded.h"
#include "store/object_types.h"
#include "tests/support/overflow_log.h"
#include "tests/support/temp_folder.h"

namespace pktaus {
namespace {

constexpr std::string_view kEnd = "</wfs:member>";
constexpr int kGrenzpunkt = 3;

std::string PartOf(const std::string& id) { return "<istTeilVon xlink:href=\"urn:adv:oid:" + id + "\"/>"; }
bool Holds(std::string_view line, std::string_view text) { return line.find(text) != std::string_view::npos; }

// ---- the search told plainly: line by line, a scan for each question ----

/// Lines with their ends, CR LF being LF, in pieces of 1998 bytes.
std::vector<std::string> Lines(const std::string& file) {
  std::string text;
  for (std::size_t i = 0; i < file.size(); ++i) {
    if (file[i] != '\r' || file[i + 1] != '\n') text += file[i];
  }
  std::vector<std::string> lines;
  for (std::size_t at = 0; at < text.size(); at += lines.back().size())
    lines.push_back(text.substr(at, std::min(text.find('\n', at), at + 1997) + 1 - at));
  return lines;
}

/// What stands from `begin`, which is behind what it was found by, up to `end`.
std::optional<std::string> From(std::size_t begin, const std::string& line, char end) {
  const std::size_t last = begin == 0 ? std::string::npos : line.find(end, begin);
  if (last == std::string::npos) return std::nullopt;
  return line.substr(begin, last - begin);
}
std::optional<std::string> Element(const std::string& line) { return From(line.find('<') + 1, line, ' '); }

std::size_t FindId(const std::vector<std::string>& lines, const std::string& id) {
  if (id.empty() || id.size() > 90) return lines.size();
  std::size_t at = 0;
  while (at < lines.size() && !(Holds(lines[at], "gml:id=\"" + id + "\"") && Element(lines[at]))) ++at;
  return at;
}

bool HoldsObject(const std::string& text) {
  return Holds(text, "gml:id=\"") && (Holds(text, "<AX_") || Holds(text, "<AP_") || Holds(text, "<AA_"));
}

/// Reads the values behind the tags, in their order, and the lines of the point. False where another object shares the
/// block, or the first line more than its start.
bool ReadBlock(const std::vector<std::string>& lines, std::size_t at, const std::string& id, std::string* point,
               const std::vector<std::pair<std::string_view, std::string*>>& tags) {
  bool in_point = false, more = at < lines.size();
  if (!more) return false;
  std::string whole = lines[at].substr(lines[at].find("gml:id=\"" + id + "\"") + id.size() + 9);
  if (!whole.ends_with("\n") || Holds(whole, kEnd) || HoldsObject(whole)) return false;
  while (more && ++at < lines.size()) {
    if (whole.ends_with("\n")) whole.clear();
    std::string line = lines[at];
    if (!in_point && Holds(line, "<gml:Point")) {
      point->clear();
      in_point = true;
    }
    if (in_point) *point += line;
    if (Holds(line, "</gml:Point>")) in_point = false;
    for (const auto& [tag, text] : tags) {
      if (text == nullptr || !Holds(line, tag)) continue;
      const bool part = tag.starts_with("<istTeilVon");
      const std::size_t begin = part ? line.find('<') + 36 : line.find('>') + 1;
      if (const auto value = From(begin, line, part ? '"' : '<')) {
        *text = *value;
        line.resize(begin + value->size());
      }
    }
    more = !Holds(line, kEnd);
    whole += lines[at].substr(0, line.find(kEnd));
    if (HoldsObject(whole)) return false;
  }
  return true;
}

std::string Further(const std::vector<std::string>& lines, const std::string& owner, const std::string& id) {
  std::vector<std::pair<std::string, std::string>> rows(1);
  for (const std::string& line : lines) {
    if (Holds(line, "<AX_Punktort")) {
      const std::string name = Element(line).value_or("");
      const auto value = From(line.find('"', line.find('<') + 1 + name.size()) + 1, line, '"');
      rows.back() = {value ? name : "", value.value_or("").substr(0, 80)};
    }
    if (owner.size() <= 60 && Holds(line, PartOf(owner))) rows.emplace_back();
  }
  rows.pop_back();  // no line behind it names the owner
  std::string text, before;
  for (const auto& [name, other] : rows) {
    if (rows.size() < 2 || name.empty() || other == id) continue;
    before = text;
    text.append(name).append("|").append(other).append("|");
  }
  return (text.size() > 79 ? before : text).substr(0, 79);
}

/// `record` and `extract` of zero bytes become what the search gives. False where it gives no record.
bool SearchPlainly(const std::vector<std::string>& lines, const std::string& id, bool with_extract, PointRecord* record,
                   OriginalExtract* extract) {
  std::string abm = "-1", zst = abm, kst = abm, hin = abm, her = abm, gst = abm, lzv = "none";
  std::string owner, pkn, point, unused, position_begin, object_begin;
  const std::size_t position = FindId(lines, id);
  const bool read = ReadBlock(lines, position, id, &point,
                              {{"beginnt", with_extract ? &position_begin : nullptr},
                               {"<istTeilVon xlink:href=\"urn:adv:oid:", &owner},
                               {"<genauigkeitsstufe>", &gst},
                               {"<hinweise>", &hin},
                               {"<koordinatenstatus>", &kst},
                               {"<AX_Datenerhebung_Punktort>", &her},
                               {"<lagezuverlaessigkeit>", &lzv}});
  const std::size_t object = read ? FindId(lines, owner) : lines.size();
  const bool found = ReadBlock(lines, object, owner, &unused,
                               {{"beginnt", with_extract ? &object_begin : nullptr},
                                {"<punktkennung", &pkn},
                                {"<abmarkung_Marke>", &abm},
                                {"<vermarkung_Marke>", &abm},
                                {"<stelle>", &zst}});
  put(extract->pos_xml, point.c_str());
  put(extract->punktort_beginnt, position_begin.c_str());
  put(extract->object_beginnt, object_begin.c_str());
  if (!found) return false;
  for (const auto& [field, text] : {std::pair{&record->abm, abm},
                                    {&record->zst, zst},
                                    {&record->kst, kst},
                                    {&record->hin, hin},
                                    {&record->her, her},
                                    {&record->gst, gst}})
    *field = std::atoi(text.c_str());
  record->bza = record->art = record->vtw = -1;
  record->lzv = lzv == "none" ? -2 : lzv == "true" ? -1 : 0;
  record->oa = *Element(lines[object]) == "AX_Grenzpunkt" ? kGrenzpunkt : -1;
  for (const auto& [kind, po] : {std::pair{"PunktortTA", 1}, {"PunktortAU", 2}, {"PunktortAG", 3}}) {
    if (Holds(*Element(lines[position]), kind)) record->po = po;
  }
  put(record->pkn, pkn.c_str());
  put(record->obgid, owner.c_str());
  put(record->gmlid, id.c_str());
  put(record->wepo, Further(lines, owner, id).c_str());
  return true;
}

// ---- the two searches beside it ----

/// Long ones meet the limits of search texts and of `wepo`. The first five are many, so that objects belong together.
const std::string kC(38, 'c'), kD(60, 'd'), kE(61, 'e'), kF(90, 'f'), kG(91, 'g');
const std::string kIds[] = {"A", "B", "AB", kC, kE, "P1", "P\"1", "", kD, kF, kG};

/// A file of blocks that fit each other more or less.
std::string RandomFile(unsigned seed) {
  std::mt19937 random(seed);
  const auto below = [&](std::size_t end) { return random() % end; };
  const auto one_of = [&](const std::vector<std::string>& texts) { return texts[below(texts.size())]; };
  const std::size_t odd = below(2) == 0 ? 200 : 15;  // one line of that many is odd
  const std::string line_end = one_of({"\n", "\r\n"}), end(kEnd);
  std::string file;
  bool open = false;
  for (std::size_t lines = below(70); lines > 0; --lines) {
    const std::string id = kIds[below(below(8) == 0 ? std::size(kIds) : 5)];
    const std::string value = ">" + std::to_string(below(3000)) + "</";
    const std::string name = one_of({"AX_Grenzpunkt", "AX_Haus", "AX_PunktortTA", "AX_PunktortAU_PunktortTA",
                                     "AX_PunktortAG_PunktortAU", "AP_PTO"});
    const std::string start = "<" + name + " gml:id=\"" + id + "\">";
    const std::string inner =
        one_of({"<beginnt" + value, "<genauigkeitsstufe" + value, "<hinweise" + value, "<koordinatenstatus" + value,
                "<AX_Datenerhebung_Punktort" + value, "<lagezuverlaessigkeit>true</", "<lagezuverlaessigkeit" + value,
                "<punktkennung x=\"\"" + value, "<abmarkung_Marke" + value, "<vermarkung_Marke" + value,
                "<stelle" + value, "<gml:Point gml:id=\"" + id + "\">", "<gml:pos" + value, "</gml:Point>"});
    std::string line = !open ? start : one_of({inner, inner, PartOf(id), PartOf(id), end});
    if (below(odd) == 0)
      line = one_of({start, "<" + name + "\t" + start.substr(name.size() + 2), start.substr(0, start.size() - 2),
                     "<" + name + " x=\"A\"" + start.substr(name.size() + 1), "</a> " + start, start + PartOf("A"),
                     line + PartOf("B"), inner.substr(0, inner.size() - 2), line + inner, "<beginnt" + value + inner,
                     inner.substr(below(inner.size())), line.substr(0, 38), line + end, end + line, "<AX_Punktort",
                     inner.substr(0, 8) + " x" + inner.substr(8), "<gml:Point></gml:Point>", "<stelle x" + value});
    open = line == end ? false : open || Holds(line, "<AX_");
    // The line's end comes to lie about a cut, or about the end of what is read at once.
    if (below(odd * 2) == 0) file.append(1998 * (1 + below(2)) - below(line.size() + 3), ' ');
    if (below(odd * 5) == 0) file.append((1 << 12) - (file.size() + below(60)) % (1 << 12), ' ');
    file += line + (below(odd) == 0 ? one_of({"", "\r", "\n"}) : line_end);
  }
  return file;
}

TEST(OriginalFile, FindsWhatAPlainSearchFinds) {
  for (auto& row : object_types) put(row, "none");
  put(object_types[kGrenzpunkt], "Grenzpunkt");
  const support::TempFolder folder;
  const std::string path = folder.File("o.xml");
  OriginalFile original(path);
  EXPECT_EQ(original.Search("A", nullptr), nullptr);
  std::string file;
  int found = 0, further = 0;
  for (unsigned seed = 0; seed < 600; ++seed) {
    // The file changes its size or its time, seldom both.
    const std::size_t size = file.size();
    file = RandomFile(seed);
    if (seed % 2 == 0 && file.size() < size) file.resize(size, '\n');
    folder.Write("o.xml", file);
    std::filesystem::last_write_time(path, std::filesystem::file_time_type(std::chrono::milliseconds(seed / 2)));
    const std::vector<std::string> lines = Lines(file);
    for (const std::string& id : kIds) {
      const bool with_extract = (seed + id.size()) % 2 == 0;
      PointRecord wanted{};
      OriginalExtract wanted_extract{}, extracts[2];
      std::memset(extracts, 'x', sizeof extracts);
      const bool is_there = SearchPlainly(lines, id, with_extract, &wanted, &wanted_extract);
      found += is_there;
      further += wanted.wepo[0] != '\0';
      const std::unique_ptr<PointRecord> records[] = {
          SearchOriginalFile(path, id.c_str(), with_extract ? &extracts[0] : nullptr),
          original.Search(id.c_str(), with_extract ? &extracts[1] : nullptr)};
      for (const int n : {0, 1}) {
        const bool same = (records[n] != nullptr) == is_there &&
                          (!is_there || std::memcmp(records[n].get(), &wanted, sizeof wanted) == 0) &&
                          (!with_extract || std::memcmp(&extracts[n], &wanted_extract, sizeof wanted_extract) == 0);
        ASSERT_TRUE(same) << (n == 0 ? "alone: " : "one of many: ") << id << " in file " << seed << "\n" << file;
      }
    }
  }
  EXPECT_GT(found, 400);
  EXPECT_GT(further, 200);
}

TEST(OriginalFile, SeesAnotherObjectAcrossTheCutOfALine) {
  const support::TempFolder folder;
  const std::string start = "<AX_Grenzpunkt gml:id=\"A\">\n</wfs:member>\n<AX_PunktortTA gml:id=\"P\">\n" + PartOf("A");
  for (std::size_t shift = 0; shift < 30; ++shift) {
    const std::string other =
        std::string(1998 - shift, ' ') + "<AX_PunktortTA gml:id=\"Q\">\n<hinweise>1</x>\n</wfs:member>";
    const auto search = [&](const std::string& file) {
      return SearchOriginalFile(folder.Write("o.xml", file), "P", nullptr);
    };
    EXPECT_NE(search(start + "\n</wfs:member>\n" + other), nullptr);
    EXPECT_EQ(search(start + "\n" + other), nullptr) << shift;
  }
}

TEST(OriginalFile, KeepsALineWholeThatEndsWhereAReadEnds) {
  const support::TempFolder folder;
  const std::string owner = "<AX_Grenzpunkt gml:id=\"A\">\r\n</wfs:member>\r\n", start = "<AX_PunktortTA gml:id=\"P\">";
  for (std::size_t before = 4096 - 2005; before <= 4096 - 1990; ++before) {
    const std::string file = owner + std::string(before - owner.size() - 1, ' ') + "\n" +
                             std::string(1997 - start.size(), ' ') + start + "\r\n" + PartOf("A") +
                             "\r\n</wfs:member>\r\n";
    EXPECT_NE(SearchOriginalFile(folder.Write("o.xml", file), "P", nullptr), nullptr) << before;
  }
}

TEST(OriginalFile, ReportsAClassNameThatIsCut) {
  const support::TempFolder folder;
  for (const bool further : {false, true}) {
    const support::OverflowLog log;
    const auto position = [](const char* id, std::size_t size) {
      return "<AX_Punktort" + std::string(size - 11, 'X') + " gml:id=\"" + id + "\">\n" + PartOf("A") +
             "\n</wfs:member>\n";
    };
    const std::string file = "<AX_Grenzpunkt gml:id=\"A\">\n</wfs:member>\n" + position("P", 81) + position("Q", 80);
    EXPECT_NE(
        SearchOriginalFile(folder.Write("o.xml", further ? file : file.substr(0, file.rfind("<AX_P"))), "P", nullptr),
        nullptr);
    EXPECT_EQ(log.texts().size(), 1U) << further;
  }
}

}  // namespace
}  // namespace pktaus
