#include <gtest/gtest.h>

#include "base/text.h"
#include "toolkit/control.h"

using namespace text::literals;

namespace toolkit {
namespace {

TEST(ChoiceList, SortsAsAGermanReaderExpectsAndKeepsEqualLabelsInOrder) {
  ChoiceList added(1, "", true);
  std::vector<ChoiceList::Entry> entries;
  for (const char* label : {"Pfahl", "Öffnung"_ansi, "ofen", "Ähre"_ansi, "Ofen", "Acker", "ofen"}) {
    entries.push_back({label, static_cast<int>(entries.size()), ""});
    added.Add(entries.back());
    if (added.selected() == -1) added.Select(0);
    EXPECT_EQ(added.SelectedValue(), 0);  // the same entry wherever it stands by now
  }
  ChoiceList filled(1, "", true);
  filled.Select(0);
  filled.Fill(entries);
  EXPECT_EQ(filled.selected(), -1);
  for (const ChoiceList* list : {&added, &filled}) {
    std::string values;
    for (const auto& entry : list->entries()) values += std::to_string(entry.value);
    EXPECT_EQ(values, "5326410");
  }
}

TEST(ChoiceList, SelectsWhatIsThereOrNothing) {
  ChoiceList list(1, "", false);
  list.Fill({{"x", 5, "first"}, {"y", 7, "second"}, {"z", 7, "third"}});
  list.SelectValue(7);
  ASSERT_NE(list.selection(), nullptr);
  EXPECT_EQ(list.selection()->text, "second");
  const std::function<void()> kNowhere[] = {[&] { list.Select(3); }, [&] { list.Select(-2); },
                                            [&] { list.SelectValue(6); }, [&] { list.Clear(); }};
  for (const auto& nowhere : kNowhere) {
    list.Select(1);
    nowhere();
    EXPECT_EQ(list.selection(), nullptr);
    EXPECT_EQ(list.SelectedValue(), -1);
  }
}

}  // namespace
}  // namespace toolkit
