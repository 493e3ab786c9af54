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
using support::TableFile;
using toolkit::ControlId;
using toolkit::Dialog;
using toolkit::Kind;
using toolkit::Pressed;
using toolkit::RowTicked;
using toolkit::Typed;
using Box = support::ScriptedDesktop::Box;
using Texts = std::vector<std::string>;

constexpr ControlId kList = 7000, kFilter = 7001, kAllOn = 7002, kAllOff = 7003, kLand = 7006, kFilterNow = 7007,
                    kCount = 7010, kKst = 7013, kHer = 7014, kGst = 7015, kZst = 7016;

constexpr const char* kTemplate =
    "<r><antragsnummer/><auftragsnummer/><geaenderteObjekte><wfs:Transaction/></geaenderteObjekte></r>";

template <typename T>
T& At(Dialog& dialog, ControlId id) {
  return dynamic_cast<T&>(*dialog.Find(id));
}

std::string Text(Dialog& dialog, ControlId id) { return At<toolkit::TextField>(dialog, id).text; }

Texts Labels(Dialog& dialog) {
  Texts labels;
  for (const toolkit::TickList::Row& row : At<toolkit::TickList>(dialog, kList).rows()) labels.push_back(row.label);
  return labels;
}

/// The texts of all elements of a name, in the order of a file.
Texts Values(const std::string& xml, const std::string& name) {
  Texts values;
  const std::string open = "<" + name + ">";
  for (std::size_t at = xml.find(open); at != std::string::npos; at = xml.find(open, at + 1)) {
    const std::size_t begin = at + open.size();
    values.push_back(xml.substr(begin, xml.find('<', begin) - begin));
  }
  return values;
}

class ExportDialog : public testing::Test {
 protected:
  ExportDialog() {
    SetPluginFolder(plugin_.path());
    plugin_.Write("16Ort.XML", kTemplate);
    TableFile table(support::HostColumns());
    table.Add({{"PT_NO", "10"}, {"EAST", "32650010.1000"}, {"NORTH", "5651010.0000"}});
    table.Add({{"PT_NO", "2"}, {"EAST", "650002.0000"}, {"NORTH", "5651002.0000"}}, /*deleted=*/true);
    table.Add({{"PT_NO", "G 123"}, {"EAST", "650123.0006"}, {"NORTH", "5651123.0000"}});
    table.Add({{"PT_NO", "10"}, {"EAST", "650099.0000"}, {"NORTH", "5651099.0000"}});
    table.Add({{"PT_NO", " G4a"}, {"EAST", "650004.0000"}, {"NORTH", "5651004.0000"}});
    table.Add({{"PT_NO", "99"}}, /*deleted=*/true);
    project_.emplace(std::move(table));
    columns_bind();
  }
  ~ExportDialog() override { SetPluginFolder(""); }

  void Open(std::function<void(Dialog&)> person) {
    desktop_.persons.push_back(std::move(person));
    export_dialog();
    EXPECT_TRUE(desktop_.persons.empty()) << "the dialog was not shown";
  }
  std::string OutPath() const { return plugin_.File("out.xml"); }
  std::string Output() const { return support::BytesOf(OutPath()); }

  support::TempFolder plugin_;
  std::optional<support::OpenProject> project_;
  support::ScriptedDesktop desktop_;
  support::ClockAt clock_{"2016-03-02T09:05:03"};
  support::OverflowLog overflows_;
};

TEST_F(ExportDialog, ShowsItsFieldsInOrder) {
  Open([&](Dialog& dialog) {
    std::string shown;
    for (const toolkit::Control* control : dialog.controls()) {
      shown += std::to_string(control->id()) + control->label();
      if (control->kind() == Kind::kText) shown += "[" + Text(dialog, control->id()) + "]";
      shown += "|";
    }
    EXPECT_EQ(
        shown,
        "7000|7001Filter:[]|7007Filtern|7002Alle an|7003Alle aus|7010[0 von 4]|7004Antragsnummer:[?]|"
        "7005Auftragsnummer:[?]|7006Bundesland|7013Koordinatenstatus ( KST ) [?]|7014Datenerhebung ( DES ) [?]|"
        "7015Genauigkeitsstufe ( GST ) [?]|7016Dienststelle schlüssel ( ZST ) [?]|1Ausgeben und Ende|2Abbruch|"_ansi);
    EXPECT_EQ(dialog.Handle(Typed{kCount, "x"}), toolkit::Answer::kReadOnly);
    dialog.Handle(Pressed{toolkit::kCancel});
    EXPECT_FALSE(dialog.IsOpen());
  });
  EXPECT_TRUE(desktop_.boxes.empty());
}

TEST_F(ExportDialog, OffersTheStatesThatHaveATemplate) {
  for (const char* name : {"10Saarland.XML", "08\xC3\x84rger.xml", "123Drei.XML", "1x.XML", "ab.XML", "09.Xml",
                           "05Zahl.XML.bak", "07zwei.XML"}) {
    plugin_.Write(name, kTemplate);
  }
  std::filesystem::create_directory(plugin_.File("11Ordner.XML"));
  Open([](Dialog& dialog) {
    const auto& list = At<toolkit::ChoiceList>(dialog, kLand);
    Texts shown;
    for (const auto& entry : list.entries()) shown.push_back(entry.label + "=" + entry.text);
    EXPECT_EQ(shown, (Texts{"=09.Xml", "Ärger=08Ärger.xml"_ansi, "Ort=16Ort.XML", "Saarland=10Saarland.XML",
                            "zwei=07zwei.XML"}));
    EXPECT_EQ(list.selected(), 0);
  });
}

TEST_F(ExportDialog, FiltersByTheTrimmedNumber) {
  const std::pair<const char*, Texts> kCases[] = {
      {"", {"10", "G 123", "10", " G4a"}},
      {"1", {"10", "G 123", "10"}},
      {"23", {"G 123"}},
      {" G", {}},
      {"G", {"G 123", " G4a"}},
      {"g", {}},
  };
  Open([&](Dialog& dialog) {
    for (const auto& [filter, labels] : kCases) {
      dialog.Handle(Typed{kFilter, ""});
      dialog.Handle(Pressed{kFilterNow});
      dialog.Handle(Pressed{kAllOn});
      EXPECT_EQ(Text(dialog, kCount), "4 von 4");
      dialog.Handle(Typed{kFilter, filter});
      EXPECT_EQ(Labels(dialog).size(), 4U) << "typing alone changes nothing";
      dialog.Handle(Pressed{kFilterNow});
      EXPECT_EQ(Labels(dialog), labels) << filter;
      EXPECT_EQ(Text(dialog, kCount), "0 von " + std::to_string(labels.size())) << "all ticks are lost";
    }
  });
}

TEST_F(ExportDialog, CountsTicks) {
  Open([](Dialog& dialog) {
    dialog.Handle(RowTicked{kList, 1, true});
    EXPECT_EQ(Text(dialog, kCount), "1 von 4");
    dialog.Handle(Pressed{kAllOn});
    EXPECT_EQ(Text(dialog, kCount), "4 von 4");
    dialog.Handle(RowTicked{kList, 0, false});
    EXPECT_EQ(Text(dialog, kCount), "3 von 4");
    dialog.Handle(Pressed{kAllOff});
    EXPECT_EQ(Text(dialog, kCount), "0 von 4");
    At<toolkit::TickList>(dialog, kList).Tick(2, true);
    dialog.Handle(toolkit::RowSelected{kList, 2});
    EXPECT_EQ(Text(dialog, kCount), "1 von 4") << "a changed selection counts anew";
  });
}

TEST_F(ExportDialog, WritesTheTickedPointsInTheOrderOfTheList) {
  desktop_.paths = {OutPath()};
  plugin_.Write("09Aue.XML", kTemplate);
  Open([&](Dialog& dialog) {
    dialog.Handle(toolkit::EntrySelected{kLand, 1});
    dialog.Handle(Pressed{kAllOn});
    dialog.Handle(Typed{7004, "A 1"});
    dialog.Handle(Typed{7005, "B 2"});
    dialog.Handle(Typed{kKst, "1000"});
    dialog.Handle(Typed{kHer, "1300"});
    dialog.Handle(Typed{kGst, "2100"});
    dialog.Handle(Typed{kZst, ""});
    dialog.Handle(Pressed{toolkit::kOk});
    EXPECT_FALSE(dialog.IsOpen());
    EXPECT_EQ(dialog.result(), toolkit::kOk);
  });
  EXPECT_EQ(desktop_.boxes, (std::vector<Box>{{"Erfolgreich: 3 Punkte ausgegeben", "Datei anlegen Info", 0}}));
  ASSERT_EQ(desktop_.picks.size(), 1U);
  EXPECT_TRUE(desktop_.picks[0].save);
  EXPECT_EQ(desktop_.picks[0].title, "PKT AUS Datei anlegen");
  EXPECT_EQ(desktop_.picks[0].path, "");
  ASSERT_EQ(desktop_.picks[0].filters.size(), 1U);
  EXPECT_EQ(desktop_.picks[0].filters[0].pattern, "*.XML");

  const std::string xml = Output();
  EXPECT_EQ(Values(xml, "punktkennung"), (Texts{"10", "G 123", " G4a"}))
      << "the number that stands twice goes out once";
  EXPECT_EQ(Values(xml, "gml:pos"),
            (Texts{"650010.100 5651010.000", "650123.001 5651123.000", "650004.000 5651004.000"}));
  EXPECT_EQ(Values(xml, "antragsnummer"), Texts{"A 1"});
  EXPECT_EQ(Values(xml, "auftragsnummer"), Texts{"B 2"});
  EXPECT_EQ(Values(xml, "koordinatenstatus"), Texts(3, "1000"));
  EXPECT_EQ(Values(xml, "AX_Datenerhebung_Punktort"), Texts(3, "1300"));
  EXPECT_EQ(Values(xml, "genauigkeitsstufe"), Texts(3, "2100"));
  EXPECT_EQ(Values(xml, "stelle"), Texts(3, ""));
  EXPECT_EQ(Values(xml, "land"), Texts(3, "16"));
}

TEST_F(ExportDialog, GoesOnBehindACancelledPickerAndAFailure) {
  desktop_.paths = {std::nullopt, plugin_.File("no such folder/out.xml"), OutPath()};
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
  EXPECT_EQ(Values(Output(), "punktkennung"), (Texts{"10", "G 123"})) << "what is ticked now, no more";
  EXPECT_EQ(Values(Output(), "koordinatenstatus"), (Texts{"second", "first"})) << "a row keeps what it was given";
  EXPECT_EQ(Values(Output(), "genauigkeitsstufe"), (Texts{"late", "late"})) << "an empty value is filled later";
}

TEST_F(ExportDialog, StaysOpenWhereNothingCanBeWritten) {
  desktop_.paths = {OutPath()};
  Open([&](Dialog& dialog) {
    dialog.Handle(Pressed{toolkit::kOk});
    EXPECT_TRUE(dialog.IsOpen());
    dialog.Handle(toolkit::EntrySelected{kLand, -1});
    dialog.Handle(Pressed{toolkit::kOk});
    EXPECT_TRUE(dialog.IsOpen());
  });
  std::filesystem::remove(plugin_.File("16Ort.XML"));
  Open([&](Dialog& dialog) {
    dialog.Handle(Pressed{kAllOn});
    dialog.Handle(Pressed{toolkit::kOk});
    EXPECT_TRUE(dialog.IsOpen());
  });
  EXPECT_EQ(desktop_.boxes, (std::vector<Box>{{"Fehler: keine passenden Daten gefunden", "Datei anlegen Info", 0},
                                              {"Bitte ein Bundesland auswählen"_ansi, "Hinweis", 0},
                                              {"Keine Landesdatei gefunden", "Hinweis", 0}}));
  EXPECT_EQ(desktop_.picks.size(), 1U) << "no path is asked for when there is nothing to write";
}

TEST_F(ExportDialog, CutsALongDefaultAndSaysSoOnce) {
  desktop_.paths = {OutPath()};
  Open([&](Dialog& dialog) {
    dialog.Handle(Pressed{kAllOn});
    dialog.Handle(Typed{kHer, std::string(300, 'h')});
    dialog.Handle(Pressed{toolkit::kOk});
  });
  EXPECT_EQ(Values(Output(), "AX_Datenerhebung_Punktort"), Texts(3, std::string(254, 'h')));
  EXPECT_EQ(overflows_.texts().size(), 1U);
}

}  // namespace
}  // namespace pktaus
