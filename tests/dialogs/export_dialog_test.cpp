#include "dialogs/export_dialog.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
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
using Box = support::ScriptedDesktop::Box;

constexpr ControlId kList = 7000, kFilter = 7001, kAllOn = 7002, kAllOff = 7003, kLand = 7006, kFilterNow = 7007,
                    kCount = 7010, kKst = 7013, kHer = 7014, kGst = 7015;

constexpr const char* kTemplate =
    "<r><antragsnummer/><auftragsnummer/><geaenderteObjekte><wfs:Transaction/></geaenderteObjekte></r>";

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
    plugin_.Write("16Ort.XML", kTemplate);
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

  void Open(std::function<void(Dialog&)> person) {
    desktop_.persons.push_back(std::move(person));
    export_dialog();
    EXPECT_TRUE(desktop_.persons.empty()) << "the dialog was not shown";
  }

  support::TempFolder plugin_;
  const std::string out_ = plugin_.File("out.xml");
  std::optional<support::OpenProject> project_;
  support::ScriptedDesktop desktop_;
  support::ClockAt clock_{"2016-03-02T09:05:03"};
  support::OverflowLog overflows_;
};

TEST_F(ExportDialog, ShowsItsFieldsAndTheStatesThatHaveATemplate) {
  for (const char* name : {"10Saarland.XML", "08\xC3\x84rger.xml", "123Drei.XML", "1x.XML", "ab.XML", "09.Xml",
                           "05Zahl.XML.bak", "07zwei.XML"}) {
    plugin_.Write(name, kTemplate);
  }
  std::filesystem::create_directory(plugin_.File("11Ordner.XML"));
  Open([&](Dialog& dialog) {
    std::string shown;
    for (const toolkit::Control* control : dialog.controls()) {
      shown += std::to_string(control->id()) + control->label();
      if (control->kind() == toolkit::Kind::kText) shown += "[" + Text(dialog, control->id()) + "]";
      shown += "|";
    }
    EXPECT_EQ(
        shown,
        "7000|7001Filter:[]|7007Filtern|7002Alle an|7003Alle aus|7010[0 von 4]|7004Antragsnummer:[?]|"
        "7005Auftragsnummer:[?]|7006Bundesland|7013Koordinatenstatus ( KST ) [?]|7014Datenerhebung ( DES ) [?]|"
        "7015Genauigkeitsstufe ( GST ) [?]|7016Dienststelle schlüssel ( ZST ) [?]|1Ausgeben und Ende|2Abbruch|"_ansi);
    const auto& list = dynamic_cast<toolkit::ChoiceList&>(*dialog.Find(kLand));
    shown.clear();
    for (const auto& entry : list.entries()) shown += entry.label + "=" + entry.text + "|";
    EXPECT_EQ(shown, "=09.Xml|Ärger=08Ärger.xml|Ort=16Ort.XML|Saarland=10Saarland.XML|zwei=07zwei.XML|"_ansi);
    EXPECT_EQ(list.selected(), 0);
    dialog.Handle(Pressed{toolkit::kCancel});
    EXPECT_FALSE(dialog.IsOpen());
  });
  EXPECT_TRUE(desktop_.boxes.empty());
}

TEST_F(ExportDialog, FiltersByTheTrimmedNumberAndCountsTicks) {
  const std::pair<const char*, std::string> kFilters[] = {
      {"", "10|G 123|10| G4a|"}, {"1", "10|G 123|10|"}, {"23", "G 123|"}, {" G", ""}, {"G", "G 123| G4a|"}, {"g", ""}};
  Open([&](Dialog& dialog) {
    const auto& list = dynamic_cast<toolkit::TickList&>(*dialog.Find(kList));
    for (const auto& [filter, expected] : kFilters) {
      dialog.Handle(Typed{kFilter, ""});
      dialog.Handle(Pressed{kFilterNow});
      dialog.Handle(RowTicked{kList, 1, true});
      EXPECT_EQ(Text(dialog, kCount), "1 von 4");
      dialog.Handle(Pressed{kAllOff});
      EXPECT_EQ(Text(dialog, kCount), "0 von 4");
      dialog.Handle(Pressed{kAllOn});
      dialog.Handle(Typed{kFilter, filter});
      EXPECT_EQ(Text(dialog, kCount), "4 von 4") << "typing alone changes nothing";
      dialog.Handle(Pressed{kFilterNow});
      std::string shown;
      for (const toolkit::TickList::Row& row : list.rows()) shown += row.label + "|";
      EXPECT_EQ(shown, expected) << filter;
      EXPECT_EQ(Text(dialog, kCount), "0 von " + std::to_string(list.rows().size())) << "all ticks are lost";
    }
  });
}

TEST_F(ExportDialog, WritesTheTickedPointsInTheOrderOfTheList) {
  desktop_.paths = {out_};
  plugin_.Write("09Aue.XML", kTemplate);
  Open([&](Dialog& dialog) {
    dialog.Handle(toolkit::EntrySelected{kLand, 1});
    dialog.Handle(Pressed{kAllOn});
    const std::pair<ControlId, std::string> kTexts[] = {
        {7004, "A 1"}, {7005, "B 2"}, {kKst, "1000"}, {kHer, std::string(300, 'h')}, {kGst, "2100"}, {7016, ""}};
    for (const auto& [field, text] : kTexts) dialog.Handle(Typed{field, text});
    dialog.Handle(Pressed{toolkit::kOk});
    EXPECT_FALSE(dialog.IsOpen());
    EXPECT_EQ(dialog.result(), toolkit::kOk);
  });
  EXPECT_EQ(desktop_.boxes, (std::vector<Box>{{"Erfolgreich: 3 Punkte ausgegeben", "Datei anlegen Info", 0}}));
  ASSERT_EQ(desktop_.picks.size(), 1U);
  EXPECT_TRUE(desktop_.picks[0].save);
  EXPECT_EQ(desktop_.picks[0].title, "PKT AUS Datei anlegen");
  EXPECT_EQ(desktop_.picks[0].filters.at(0).pattern, "*.XML");
  const std::string cut = std::string(254, 'h') + "|";
  EXPECT_EQ(overflows_.texts().size(), 1U) << "said once, not for each point";
  const std::pair<const char*, std::string> kValues[] = {
      {"punktkennung", "10|G 123| G4a|"},  // the number that stands twice goes out once
      {"gml:pos", "650010.100 5651010.000|650123.001 5651123.000|650004.000 5651004.000|"},
      {"antragsnummer", "A 1|"},
      {"auftragsnummer", "B 2|"},
      {"koordinatenstatus", "1000|1000|1000|"},
      {"AX_Datenerhebung_Punktort", cut + cut + cut},
      {"genauigkeitsstufe", "2100|2100|2100|"},
      {"stelle", "|||"},
      {"land", "16|16|16|"}};
  for (const auto& [name, values] : kValues) EXPECT_EQ(Values(support::BytesOf(out_), name), values) << name;
}

TEST_F(ExportDialog, GoesOnBehindACancelledPickerAndAFailure) {
  desktop_.paths = {std::nullopt, plugin_.File("no such folder/out.xml"), out_};
  Open([&](Dialog& dialog) {
    dialog.Handle(RowTicked{kList, 1, true});
    dialog.Handle(RowTicked{kList, 3, true});
    dialog.Handle(Typed{kKst, "first"});
    dialog.Handle(Typed{kGst, ""});
    dialog.Handle(Pressed{toolkit::kOk});
    EXPECT_TRUE(desktop_.boxes.empty());
    dialog.Handle(Pressed{toolkit::kOk});
    ASSERT_EQ(desktop_.boxes.size(), 1U);
    EXPECT_TRUE(desktop_.boxes[0].text.starts_with("Fehler: Datei '"));
    EXPECT_TRUE(dialog.IsOpen());
    EXPECT_EQ(Text(dialog, kCount), "2 von 4");

    dialog.Handle(RowTicked{kList, 0, true});
    dialog.Handle(RowTicked{kList, 3, false});
    dialog.Handle(Typed{kKst, "second"});
    dialog.Handle(Typed{kGst, "late"});
    dialog.Handle(Pressed{toolkit::kOk});
    EXPECT_FALSE(dialog.IsOpen());
  });
  const std::string xml = support::BytesOf(out_);
  EXPECT_EQ(Values(xml, "punktkennung"), "10|G 123|") << "what is ticked now, no more";
  EXPECT_EQ(Values(xml, "koordinatenstatus"), "second|first|") << "a row keeps what it was given";
  EXPECT_EQ(Values(xml, "genauigkeitsstufe"), "late|late|") << "an empty value is filled later";
}

TEST_F(ExportDialog, StaysOpenWhereNothingCanBeWritten) {
  desktop_.paths = {out_};
  const auto press = [](Dialog& dialog) {
    dialog.Handle(Pressed{toolkit::kOk});
    EXPECT_TRUE(dialog.IsOpen());
  };
  Open([&](Dialog& dialog) {
    press(dialog);
    dialog.Handle(toolkit::EntrySelected{kLand, -1});
    press(dialog);
  });
  std::filesystem::remove(plugin_.File("16Ort.XML"));
  Open(press);
  EXPECT_EQ(desktop_.boxes, (std::vector<Box>{{"Fehler: keine passenden Daten gefunden", "Datei anlegen Info", 0},
                                              {"Bitte ein Bundesland auswählen"_ansi, "Hinweis", 0},
                                              {"Keine Landesdatei gefunden", "Hinweis", 0}}));
  EXPECT_EQ(desktop_.picks.size(), 1U) << "no path is asked for without a template";
}

}  // namespace
}  // namespace pktaus
