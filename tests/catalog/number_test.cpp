#include "catalog/number.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace pktaus {
namespace {

TEST(Number, IsTheIntegerAtTheStartOfAText) {
  constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
  constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();
  const std::string nines(1000000, '9');
  const std::pair<std::string, std::int32_t> kCases[] = {{"1110", 1110},
                                                         {"0100", 100},
                                                         {" \t\r\n\v\f7", 7},
                                                         {"-2", -2},
                                                         {"+5", 5},
                                                         {"12 Stein", 12},
                                                         {"3.9", 3},
                                                         {"", 0},
                                                         {"Stein", 0},
                                                         {"-", 0},
                                                         {"- 1", 0},
                                                         {"+-1", 0},
                                                         {"0x10", 0},
                                                         {"\xA0 1", 0},
                                                         {"2147483647", kMost},
                                                         {"2147483648", kMost},
                                                         {"-2147483648", kLeast},
                                                         {"-2147483649", kLeast},
                                                         {"4294967297", kMost},
                                                         {nines, kMost},
                                                         {"-" + nines, kLeast}};
  for (const auto& [text, value] : kCases) EXPECT_EQ(ReadNumber(text), value) << text.substr(0, 20);
}

}  // namespace
}  // namespace pktaus
