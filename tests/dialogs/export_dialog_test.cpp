#include "dialogs/export_dialog.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/text.h"
#include "entry/host/desktop.h"
#include "store/point_table.h"
#include "tests/support/clock_at.h"
#include "tests/support/open_project.h"
#include "tests/support/overflow_log.h"
#include "tests/support/scripted_desktop.h"

namespace pktaus {
namespace {

using namespace text::literals;
using toolkit::ControlId;
using toolkit::Dialog;
using toolkit::Pressed;
using toolkit::RowTicked;
using toolkit::Typed;

constexpr ControlId kList = 7000, kFilter = 7001, kAllOn = 7002, kAllOff = 7003, kFilterNow = 7007, kCount = 7010,
                    kKst = 7013, kGst = 7015;

std::string Text(Dialog& dialog, ControlId id) { return dynamic_cast<toolkit::TextField&>(*dialog.Find(id)).text; }

/// The texts of all elements of a name, in the order of a file, with "|" behind each.
std::string Values(const std::string& xml, const std::string& name) {
  std::string values;
  const std::string open = "<" + name + ">";
  for (std::size_t at = xml.find(open); at != std::string::npos; at = xml.find(open, at + 1)) {
    values += xml.substr(at + open.size(), xml.find('<', at + 1) - at - open.size()) + "|";
  }
  return values;
}

class ExportDialog : public testing::Test {
 protected:
  ExportDialog() {
    SetPluginFolder(plugin_.path());
    for (const char* name : {"16Ort.XML", "08\xC3\x84rger.xml", "123Drei.XML", "1x.XML", "09.Xml", "05Zahl.XML.bak"}) {
      plugin_.Write(name,
                    "<r><antragsnummer/><auftragsnummer/><geaenderteObjekte><Transaction/></geaenderteObjekte></r>");
    }
    support::TableFile table(support::HostColumns());
    table.Add({{"PT_NO", "10"}, {"EAST", "32650010.1000"}, {"NORTH", "5651010.0000"}});
    table.Add({{"PT_NO", "2"}, {"EAST", "650002.0000"}, {"NORTH", "5651002.0000"}}, /*deleted=*/true);
    table.Add({{"PT_NO", "G 123"}, {"EAST", "650123.0006"}, {"NORTH", "5651123.0000"}});
    table.Add({{"PT_NO", "10"}, {"EAST", "650099.0000"}, {"NORTH", "5651099.0000"}});
    table.Add({{"PT_NO", " G4a"}, {"EAST", "650004.0000"}, {"NORTH", "5651004.0000"}});
    project_.emplace(std::move(table));
    columns_bind();
  }
  ~ExportDialog() override { SetPluginFolder(""); }

  support::TempFolder plugin_;
  std::optional<support::OpenProject> project_;
  support::ScriptedDesktop desktop_;
  support::ClockAt clock_{"2016-03-02T09:05:03"};
  support::OverflowLog overflows_;
};

TEST_F(ExportDialog, ListsStatesWithATemplateAndPointsThatPassTheFilter) {
  const std::pair<const char*, std::string> kFilters[] = {
      {"", "10|G 123|10| G4a|"}, {"1", "10|G 123|10|"}, {" G", ""}, {"G", "G 123| G4a|"}, {"g", ""}};
  desktop_.persons.push_back([&](Dialog& dialog) {
    std::string states;
    const auto& choice = dynamic_cast<toolkit::ChoiceList&>(*dialog.Find(7006));
    for (const auto& entry : choice.entries()) states += entry.label + "=" + entry.text + "|";
    EXPECT_EQ(states + choice.selection()->text, "=09.Xml|Ärger=08Ärger.xml|Ort=16Ort.XML|09.Xml"_ansi);
    const auto& list = dynamic_cast<toolkit::TickList&>(*dialog.Find(kList));
    for (const auto& [filter, expected] : kFilters) {
      std::string counts;
      for (const toolkit::Event& event : std::vector<toolkit::Event>{
               Typed{kFilter, ""}, Pressed{kFilterNow}, RowTicked{kList, 1, true}, Pressed{kAllOff}, Pressed{kAllOn},
               Typed{kFilter, filter}, Pressed{kFilterNow}}) {
        dialog.Handle(event);
        counts += Text(dialog, kCount) + ", ";
      }
      std::string shown;
      for (const toolkit::TickList::Row& row : list.rows()) shown += row.label + "|";
      EXPECT_EQ(shown, expected) << filter;
      const std::string last = "0 von " + std::to_string(list.rows().size()) + ", ";
      EXPECT_TRUE(counts.ends_with("0 von 4, 1 von 4, 0 von 4, 4 von 4, 4 von 4, " + last)) << counts;
    }
  });
  export_dialog();
}

TEST_F(ExportDialog, WritesWhatIsTickedAndGoesOnBehindACancelledPicker) {
  desktop_.paths = {std::nullopt, plugin_.File("out.xml")};
  desktop_.persons.push_back([&](Dialog& dialog) {
    for (const int row : {1, 3}) dialog.Handle(RowTicked{kList, row, true});
    dialog.Handle(Typed{kKst, "first"});
    dialog.Handle(Typed{kGst, ""});
    dialog.Handle(Pressed{toolkit::kOk});
    dialog.Handle(Pressed{kAllOn});
    dialog.Handle(RowTicked{kList, 3, false});
    dialog.Handle(Typed{kKst, "second"});
    dialog.Handle(Typed{kGst, std::string(300, 'g')});
    dialog.Handle(Pressed{toolkit::kOk});
  });
  export_dialog();
  EXPECT_EQ(desktop_.boxes.at(0).text, "Erfolgreich: 2 Punkte ausgegeben");
  EXPECT_EQ(overflows_.texts().size(), 1U) << "said once, not for each point";
  const std::string cut = std::string(254, 'g') + "|", xml = support::BytesOf(plugin_.File("out.xml"));
  EXPECT_EQ(Values(xml, "punktkennung"), "10|G 123|") << "the number that stands twice once";
  EXPECT_EQ(Values(xml, "gml:pos"), "650010.100 5651010.000|650123.001 5651123.000|");
  EXPECT_EQ(Values(xml, "koordinatenstatus"), "second|first|") << "a row keeps what it was given";
  EXPECT_EQ(Values(xml, "genauigkeitsstufe"), cut + cut) << "an empty value is filled later";
}

}  // namespace
}  // namespace pktaus
