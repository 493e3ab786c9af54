#include <gtest/gtest.h>

#include "base/text.h"
#include "toolkit/control.h"

using namespace text::literals;

namespace toolkit {
namespace {

std::string Labels(const ChoiceList& list) {
  std::string all;
  for (const auto& entry : list.entries()) all += entry.label + "|";
  return all;
}

TEST(ChoiceList, SortedListStandsAsAGermanReaderExpects) {
  ChoiceList list(1, "", true);
  for (const char* label : {"Zaun", "Öffnung"_ansi, "Pfahl", "Ähre"_ansi, "Ofen", "Acker", "ofen"})
    list.Add({label, 0, ""});
  EXPECT_EQ(Labels(list), std::string("Acker|") + "Ähre|"_ansi + "ofen|Ofen|" + "Öffnung|"_ansi + "Pfahl|Zaun|");
}

TEST(ChoiceList, FillSortsAsAddDoesAndKeepsEqualLabelsInOrder) {
  ChoiceList added(1, "", true);
  const std::vector<ChoiceList::Entry> entries = {{"b", 1, ""}, {"a", 2, ""}, {"b", 3, ""}, {"a", 4, ""}};
  for (const auto& entry : entries) added.Add(entry);
  ChoiceList filled(1, "", true);
  filled.Select(0);
  filled.Fill(entries);
  for (const ChoiceList* list : {&added, &filled}) {
    std::string values;
    for (const auto& entry : list->entries()) values += std::to_string(entry.value);
    EXPECT_EQ(values, "2413");
  }
  EXPECT_EQ(filled.selected(), -1);
}

TEST(ChoiceList, AddKeepsTheSelectedEntry) {
  ChoiceList list(1, "", true);
  EXPECT_EQ(list.Add({"m", 13, ""}), 0U);
  list.Select(0);
  EXPECT_EQ(list.Add({"z", 26, ""}), 1U);
  EXPECT_EQ(list.Add({"a", 1, ""}), 0U);
  EXPECT_EQ(list.selected(), 1);
  EXPECT_EQ(list.SelectedValue(), 13);
}

TEST(ChoiceList, SelectsWhatIsThereOrNothing) {
  ChoiceList list(1, "", false);
  list.Fill({{"x", 5, "first"}, {"y", 7, "second"}, {"z", 7, "third"}});
  list.SelectValue(7);
  ASSERT_NE(list.selection(), nullptr);
  EXPECT_EQ(list.selection()->text, "second");
  for (const int nowhere : {3, -2, 1000}) {
    list.Select(1);
    list.Select(nowhere);
    EXPECT_EQ(list.selected(), -1) << nowhere;
    EXPECT_EQ(list.SelectedValue(), -1);
  }
  list.Select(1);
  list.SelectValue(6);
  EXPECT_EQ(list.selection(), nullptr);
  list.Select(1);
  list.Clear();
  EXPECT_EQ(list.selection(), nullptr);
}

}  // namespace
}  // namespace toolkit
