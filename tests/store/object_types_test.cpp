#include "store/object_types.h"

#include <gtest/gtest.h>

namespace pktaus {
namespace {

TEST(ObjectTypes, AreFoundWithAndWithoutAPrefixOfThreeCharacters) {
  const struct {
    const char* name;
    int row;
  } kCases[] = {
      {"Aufnahmepunkt", 0},
      {"AX_Aufnahmepunkt", 0},
      {"SonstigerVermessungspunkt", 6},
      {"xx:Grenzpunkt", 4},
      {"grenzpunkt", -1},
      {"A_Grenzpunkt", -1},
      {"Grenzpunkt ", -1},
      {"", -1},
      {"AX_AX_Grenzpunkt", -1},
  };
  for (const auto& row : kCases) EXPECT_EQ(FindObjectTypeRow(row.name), row.row) << row.name;
}

}  // namespace
}  // namespace pktaus
