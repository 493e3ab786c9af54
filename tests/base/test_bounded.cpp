#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "base/bounded.h"

namespace pktaus {
namespace {

std::vector<std::string>* g_reports = nullptr;

class Bounded : public testing::Test {
 protected:
  Bounded() {
    g_reports = &reports;
    before_ = SetOverflowReport(
        [](const char* title, const char* text) { g_reports->push_back(std::string(title) + "|" + text); });
  }
  ~Bounded() override { SetOverflowReport(before_); }
  Bounded(const Bounded&) = delete;
  Bounded& operator=(const Bounded&) = delete;

  std::vector<std::string> reports;

 private:
  OverflowReport before_;
};

TEST_F(Bounded, CopiesReportCutAndClearTheRest) {
  const struct {
    const char* source;
    const char* kept;
    const char* report;
  } kCases[] = {{"", "", nullptr},
                {"abcde", "abcde", nullptr},
                {"abcdef", "abcde", "Intern memsave|my_strcpy 6 6 >abcdef<"},
                {"abcdefgh", "abcde", "Intern memsave|my_strcpy 6 8 >abcdefgh<"}};
  for (const auto& row : kCases) {
    reports.clear();
    char array[8];
    std::memset(array, 'x', sizeof(array));
    EXPECT_EQ(my_strcpy(array, row.source, 6), array);
    EXPECT_STREQ(array, row.kept);
    for (std::size_t i = std::strlen(row.kept); i < 6; ++i) EXPECT_EQ(array[i], 0) << row.source;
    EXPECT_EQ(array[6], 'x') << row.source;
    EXPECT_EQ(reports, row.report ? std::vector<std::string>{row.report} : std::vector<std::string>{});
  }
}

TEST_F(Bounded, AppendReportsWithTheRoomThatIsLeft) {
  char array[6] = "abc";
  my_strcat(array, "de", 6);
  EXPECT_STREQ(array, "abcde");
  EXPECT_TRUE(reports.empty());
  my_strcat(array, "f", 6);
  EXPECT_STREQ(array, "abcde");
  EXPECT_EQ(reports.at(0), "Intern memsave|my_strcpy 1 1 >f<");
  char full[3] = {'a', 'b', 'c'};
  my_strcat(full, "d", 3);
  EXPECT_EQ(std::string(full, 3), "abc");
  EXPECT_EQ(reports.at(1), "Intern memsave|my_strcat 3");
}

TEST_F(Bounded, FormatFitsExactlyOrNotAtAll) {
  char array[8];
  EXPECT_EQ(my_sprintf(array, 8, "a%sb", "12345"), 7);
  EXPECT_STREQ(array, "a12345b");
  EXPECT_TRUE(reports.empty());
  EXPECT_EQ(my_sprintf(array, 8, "a%sb", "123456"), 0);
  EXPECT_STREQ(array, "");
  EXPECT_EQ(reports.at(0), "Intern memsave|my_sprintf 8");
  EXPECT_EQ(my_sprintf(array, 8, "%s", "%s%n"), 4);
  EXPECT_STREQ(array, "%s%n");
}

TEST_F(Bounded, AVeryLongTextIsReportedCut) {
  char array[4];
  my_strcpy(array, std::string(30000, 'z').c_str(), 4);
  EXPECT_STREQ(array, "zzz");
  EXPECT_EQ(reports.at(0).size(), std::strlen("Intern memsave|") + 9999);
}

}  // namespace
}  // namespace pktaus
