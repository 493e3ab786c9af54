#include "catalog/reserved_numbers.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/overflow_log.h"
#include "tests/support/temp_folder.h"

namespace pktaus {
namespace {

using Files = std::vector<std::pair<const char*, std::string>>;
using Numbers = std::vector<std::string>;

std::string Application(const std::string& value) { return "<antragsnummer>" + value + "</antragsnummer>\r\n"; }
std::string Number(const std::string& value) { return "<reservierteNummern>" + value + "</reservierteNummern>\r\n"; }

Numbers Read(const std::string& folder, const std::string& application) {
  const std::unique_ptr<ReservedNumber, void (*)(ReservedNumber*)> first(ReadReservedNumbers(folder, application),
                                                                         &FreeReservedNumbers);
  Numbers numbers;
  for (const ReservedNumber* entry = first.get(); entry != nullptr; entry = entry->next) {
    numbers.emplace_back(entry->number);
  }
  return numbers;
}

TEST(ReservedNumbers, OfAnApplicationAreReadLineByLine) {
  const std::string blanks(1998, ' ');
  // A line that fills a piece with its line end, and the longer one whose tag straddles the cut.
  const std::string full = Number("fits");
  const std::string to_the_brim = blanks.substr(full.size() - 1) + full;
  const struct {
    const char* name;
    Files files;
    Numbers numbers;
  } kCases[] = {
      {"two files, the last read first",
       {{"1.xml", Application("A") + Number("a") + Number("b")},
        {"2.xml", Application("A") + Number("c") + Number("d")}},
       {"d", "c", "b", "a"}},
      {"sorted by name, endings of any case",
       {{"b.XML", Number("2")}, {"a.Xml", Number("1")}, {"c.xm", Number("3")}},
       {"2", "1"}},
      {"no application counts for all", {{"1.xml", Number("a")}}, {"a"}},
      {"a foreign application first", {{"1.xml", Application("B") + Number("a")}}, {}},
      {"a foreign application behind", {{"1.xml", Number("a") + Application("B") + Number("b")}}, {"a"}},
      {"a foreign application between",
       {{"1.xml", Application("A") + Number("a") + Application("B") + Number("b")}},
       {"a"}},
      {"case counts", {{"1.xml", Application("a") + Number("a")}}, {}},
      {"blanks count", {{"1.xml", Application("A ") + Number("a")}}, {}},
      {"a number twice", {{"1.xml", Number("a") + Number("a")}}, {"a", "a"}},
      {"LF line ends and none at the end",
       {{"1.xml", "<antragsnummer>A</antragsnummer>\n\n<reservierteNummern>a</x>"}},
       {"a"}},
      {"prefix and attributes", {{"1.xml", "<x:reservierteNummern>a</x>\n<reservierteNummern y='1'>b</x>\n"}}, {}},
      {"indented, behind a byte order mark", {{"1.xml", "\xEF\xBB\xBF \t" + Number("a")}}, {"a"}},
      {"first value of the line, whatever its tag", {{"1.xml", "<other>x</other>" + Number("a")}}, {"x"}},
      {"value in the next line",
       {{"1.xml", "<antragsnummer>\nB</antragsnummer>\n<reservierteNummern>\n" + Number("a")}},
       {"a"}},
      {"both tags, the application's first",
       {{"1.xml", "<antragsnummer>A</antragsnummer>" + Number("a") + Number("b")}},
       {"b"}},
      {"both tags, the number's first",
       {{"1.xml", "<reservierteNummern>A</x><antragsnummer>B</x>\n" + Number("b")}},
       {"b"}},
      {"empty value", {{"1.xml", Number("")}}, {""}},
      {"a line of 1998 bytes", {{"1.xml", to_the_brim + Number("next")}}, {"next", "fits"}},
      {"one byte more: the closing tag goes on in the next piece", {{"1.xml", " " + to_the_brim}}, {"fits"}},
      {"the cut in the value", {{"1.xml", blanks.substr(22) + Number("lost") + Number("next")}}, {"next"}},
      {"the cut in the tag", {{"1.xml", blanks.substr(5) + Number("lost") + Number("next")}}, {"next"}},
      {"the cut in front of the tag", {{"1.xml", blanks + Number("a")}}, {"a"}},
      {"a line of a megabyte without an end", {{"1.xml", std::string(1000000, '<') + Number("a")}}, {"a"}},
      {"NUL bytes", {{"1.xml", std::string("\0\0", 2) + Number(std::string("a\0b", 3))}}, {"a"}},
      {"a tag that the file cuts off", {{"1.xml", Number("a") + "<reservierteNumm"}}, {"a"}},
      {"nothing", {{"1.xml", ""}, {"x.txt", Number("a")}}, {}},
  };
  for (const auto& row : kCases) {
    SCOPED_TRACE(row.name);
    const support::TempFolder folder;
    for (const auto& [name, bytes] : row.files) folder.Write(name, bytes);
    std::filesystem::create_directory(folder.File("folder.xml"));
    EXPECT_EQ(Read(folder.path(), "A"), row.numbers);
  }
}

TEST(ReservedNumbers, AreTheSameForAnyLengthInFrontOfABlocksEnd) {
  // The file is read in blocks; every line end of a pair of lines comes to stand on either side of such a border once.
  const support::TempFolder folder;
  std::string filler;
  while (filler.size() + 100 < (1U << 18)) filler += "<filler/>\r\n";
  for (std::size_t shift = 0; shift < 100; ++shift) {
    folder.Write("1.xml", filler + std::string(shift, 'x') + "\r\n" + Number("a") + Number("b"));
    EXPECT_EQ(Read(folder.path(), "A"), (Numbers{"b", "a"})) << shift;
  }
}

TEST(ReservedNumbers, TooLongTextsAreCutAndReported) {
  const support::TempFolder folder;
  const std::string application(48, 'A');
  folder.Write("1.xml", Application(application) + Number("123456789012345678901234"));
  const support::OverflowLog log;
  EXPECT_EQ(Read(folder.path(), application), Numbers{});
  EXPECT_EQ(Read(folder.path(), application.substr(1)), Numbers{"12345678901234567890123"});
  EXPECT_EQ(log.texts().size(), 3U);
}

TEST(ReservedNumbers, NeedAFolder) {
  EXPECT_EQ(Read("", "A"), Numbers{});
  EXPECT_EQ(Read("/no/such/folder", "A"), Numbers{});
}

}  // namespace
}  // namespace pktaus
