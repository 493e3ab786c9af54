#include "catalog/reserved_numbers.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "tests/support/temp_folder.h"

namespace pktaus {
namespace {

std::string Application(const std::string& value) { return "<antragsnummer>" + value + "</antragsnummer>\r\n"; }
std::string Number(const std::string& value) { return "<reservierteNummern>" + value + "</reservierteNummern>\r\n"; }

/// The numbers in the list's order, with a blank behind each.
std::string Read(const std::string& folder) {
  const ReservedNumbers first = ReadReservedNumbers(folder, "A");
  std::string numbers;
  for (const auto* n = first.get(); n != nullptr; n = n->next) numbers += n->number + std::string(" ");
  return numbers;
}

TEST(ReservedNumbers, OfAnApplicationAreReadLineByLine) {
  const std::string a = Number("a"), b = Number("b"), mine = Application("A"), foreign = Application("B");
  const std::string blanks(1998, ' ');
  const struct {
    const char* name;
    std::string file;
    const char* numbers;
  } kCases[] = {
      {"the last first, twice what stands twice", mine + a + b + a, "a b a "},
      {"a foreign application behind", mine + a + foreign + b, "a "},
      {"LF line ends and none at the end", "<antragsnummer>A</x>\n\n<reservierteNummern>a</x>", "a "},
      {"value in the next line", "<antragsnummer>\nB</antragsnummer>\n<reservierteNummern>\n" + a, "a "},
      {"a longer line, cut in front of the tag", blanks + a, "a "},
      {"a longer line, cut in the tag", blanks.substr(5) + a + b, "b "},
  };
  const support::TempFolder folder;
  folder.Write("2.txt", Number("other"));
  folder.Write("9.xml", Number("last"));
  for (const auto& row : kCases) {
    // What is read at first comes to end at many places of the row.
    for (std::size_t at = 0; at <= row.file.size(); at += 1 + row.file.size() / 50) {
      folder.Write("1.xml", std::string(8190 - at, 'x') + "\r\n" + row.file);
      EXPECT_EQ(Read(folder.path()), std::string("last ") + row.numbers) << row.name << " " << at;
    }
  }
}

}  // namespace
}  // namespace pktaus
