#include "catalog/reserved_numbers.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

#include "tests/support/overflow_log.h"
#include "tests/support/temp_folder.h"

namespace pktaus {
namespace {

std::string Application(const std::string& value) { return "<antragsnummer>" + value + "</antragsnummer>\r\n"; }
std::string Number(const std::string& value) { return "<reservierteNummern>" + value + "</reservierteNummern>\r\n"; }

/// The numbers in the list's order, with a blank behind each.
std::string Read(const std::string& folder, const std::string& application) {
  const std::unique_ptr<ReservedNumber, void (*)(ReservedNumber*)> first(ReadReservedNumbers(folder, application),
                                                                         &FreeReservedNumbers);
  std::string numbers;
  for (const auto* entry = first.get(); entry != nullptr; entry = entry->next)
    numbers += entry->number + std::string(" ");
  return numbers;
}

TEST(ReservedNumbers, OfAnApplicationAreReadLineByLine) {
  const std::string a = Number("a"), b = Number("b"), mine = Application("A"), foreign = Application("B");
  const std::string blanks(1998, ' ');
  const std::string full = blanks.substr(a.size() - 1) + a;  // fills a piece with its line end
  const struct {
    const char* name;
    std::string file;
    const char* numbers;
  } kCases[] = {
      {"the last first, twice what stands twice", mine + a + b + a, "a b a "},
      {"a foreign application behind", mine + a + foreign + b, "a "},
      {"case counts", Application("a") + a, ""},
      {"LF line ends and none at the end", "<antragsnummer>A</x>\n\n<reservierteNummern>a</x>", "a "},
      {"prefix and attributes", "<x:reservierteNummern>a</x>\n<reservierteNummern y='1'>b</x>\n", ""},
      {"first value of the line, whatever its tag", "\xEF\xBB\xBF \t<other>x</other>" + a, "x "},
      {"value in the next line", "<antragsnummer>\nB</antragsnummer>\n<reservierteNummern>\n" + a, "a "},
      {"both tags, the application's first", "<antragsnummer>A</antragsnummer>" + a + b, "b "},
      {"both tags, the number's first", "<reservierteNummern>A</x><antragsnummer>B</x>\n" + b, "b "},
      {"a line of 1998 bytes", full + b, "b a "},
      {"one byte more: the line end goes on in the next piece", " " + full + b, "b a "},
      {"the cut in the tag", blanks.substr(5) + a + b, "b "},
      {"the cut in front of the tag", blanks + a, "a "},
      {"NUL bytes", std::string("\0\0", 2) + Number(std::string("a\0b", 3)), "a "},
      {"a tag that the file cuts off", a + "<reservierteNumm", "a "},
  };
  for (const auto& row : kCases) {
    const support::TempFolder folder;
    folder.Write("1.xml", row.file);
    folder.Write("2.txt", Number("other"));
    std::filesystem::create_directory(folder.File("3.xml"));
    EXPECT_EQ(Read(folder.path(), "A"), row.numbers) << row.name;
  }
  EXPECT_EQ(Read("", "A"), "");
  EXPECT_EQ(Read("/no/such/folder", "A"), "");
}

TEST(ReservedNumbers, AreReadAcrossTheBlocksOfAFile) {
  // Each place of two lines comes to stand at the end of a block once.
  const support::TempFolder folder;
  std::string filler;
  while (filler.size() + 100 < (1U << 18)) filler += "<filler/>\r\n";
  for (std::size_t shift = 0; shift < 100; ++shift) {
    folder.Write("1.xml", filler + std::string(shift, 'x') + "\r\n" + Number("a") + Number("b"));
    EXPECT_EQ(Read(folder.path(), "A"), "b a ") << shift;
  }
}

TEST(ReservedNumbers, TooLongTextsAreCutAndReported) {
  const support::TempFolder folder;
  const std::string application(48, 'A');
  folder.Write("1.xml", Application(application) + Number("123456789012345678901234"));
  const support::OverflowLog log;
  EXPECT_EQ(Read(folder.path(), application), "");
  EXPECT_EQ(Read(folder.path(), application.substr(1)), "12345678901234567890123 ");
  EXPECT_EQ(log.texts().size(), 3U);
}

TEST(ReservedNumbers, OfTheSampleComeFromItsFilesInTheOrderOfTheirNames) {
  const std::string folder = PKTAUS_SOURCE_DIR "/sample/einstellungen/reservierungen";
  const std::string common = "326505651001019 ";  // of a file without an application
  EXPECT_EQ(Read(folder, "2026-0042"), common + "326505651001008 326495651001003 326495651001002 326495651001001 ");
  EXPECT_EQ(Read(folder, "2026-0077"), common + "326495651001013 326495651001012 ");
}

}  // namespace
}  // namespace pktaus
