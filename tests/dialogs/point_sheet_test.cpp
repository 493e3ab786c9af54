#include "dialogs/point_sheet.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <tuple>
#include <vector>

#include "base/bounded.h"
#include "base/text.h"
#include "catalog/catalog_store.h"
#include "entry/host/desktop.h"
#include "tests/support/clock_at.h"
#include "tests/support/overflow_log.h"
#include "tests/support/scripted_desktop.h"
#include "tests/support/temp_folder.h"

namespace pktaus {
namespace {

using namespace text::literals;
using toolkit::ControlId;
using toolkit::Dialog;
using toolkit::Pressed;
using toolkit::Typed;

constexpr ControlId kApplication = 7004, kLand = 7006, kTypes = 7008, kPages = 7050, kPkn = 7078, kAsk = 7033,
                    kFromNumber = 7012, kCheck = 7079, kAbm = 7035, kArt = 7040, kObjectGid = 7062, kLzv = 7073,
                    kHin = 7058, kExplain = 7075, kHasDay = 7030, kDay = 7027, kPositionGid = 7059, kNew = 7063,
                    kReplace = 7064, kMore = 7074, kOriginalXml = 7076, kReserved = 7077;

/// Rows: 0 Grenzpunkt, 1 Aufnahmepunkt, 2 OhneOrt.
constexpr const char* kThueringen = R"(
[T_Marke]
"1000" = "Stein"
"9500" = "Ohne Marke"
"2000" = "Ärmel"
[T_Hin]
"1111" = "ZZ"
"1010" = "AA"
[AX_PunktortTA]
hinweise = "Hin"
ueberpruefungsdatum = "ja"
lagezuverlaessigkeit = "ja"
[AX_PunktortAU]
[AX_OhneOrt]
[AX_Aufnahmepunkt]
vermarkung_Marke = "Hin"
ort = "PunktortAU"
[AX_Grenzpunkt]
abmarkung_Marke = "Marke"
art = "Marke"
ort = "PunktortTA"
punktkennung = "32EEENNNN0xxxxx"
)";
constexpr const char* kBayern = "[AX_PunktortXY]\n[AX_Grenzpunkt]\nort=\"PunktortXY\"\n[AX_Neu]\nort=\"PunktortXY\"\n";

template <typename T>
T& At(Dialog& dialog, ControlId id) {
  return dynamic_cast<T&>(*dialog.Find(id));
}
std::string Text(Dialog& dialog, ControlId id) { return At<toolkit::TextField>(dialog, id).text; }
/// Labels of a list, that of the selected entry with "*".
std::string Entries(Dialog& dialog, ControlId id) {
  const auto& list = At<toolkit::ChoiceList>(dialog, id);
  std::string labels;
  for (const auto& entry : list.entries()) labels += (&entry == list.selection() ? "*" : " ") + entry.label;
  return labels;
}
void Choose(Dialog& dialog, ControlId id, int position) { dialog.Handle(toolkit::EntrySelected{id, position}); }
void Turn(Dialog& dialog, int page) { dialog.Handle(toolkit::PageTurned{kPages, page}); }
void Ok(Dialog& dialog) { dialog.Handle(Pressed{toolkit::kOk}); }

class PointSheet : public testing::Test {
 protected:
  PointSheet() {
    SetPluginFolder(plugin_.path());
    for (const char* land : {"16Th\xC3\xBCringen.XML", "09Bayern.XML"}) plugin_.Write(land, "<r/>");
    plugin_.Write("16.ini", *text::FromUtf8(kThueringen));
    plugin_.Write("09.ini", kBayern);
    plugin_.Write("r.xml", "<antragsnummer>2026-0042</antragsnummer>\n<reservierteNummern>abc</reservierteNummern>\n");
    SetEmptyRecord(&record_);
    record_.bundesland = 16;
    record_.oa = 0;
    put(record_.antragn, "2026-0042");
    put(record_.pkn, "326545612000777");
    store_.defaults = record_;
    store_.orig_xml = "C:\\nas\\alt.xml";
    store_.point_xml_folder = plugin_.path();
  }
  ~PointSheet() override { SetPluginFolder(""); }

  int Open(const std::function<void(Dialog&)>& person) {
    desktop_.persons.push_back(person);
    return point_sheet(number_, 32654321.5, 5612345.9, &record_, *number_ == '\0' ? 1 : 0);
  }

  const char* number_ = "123";  ///< of the point; empty: the settings
  support::TempFolder plugin_;
  support::ScriptedDesktop desktop_;
  support::ClockAt clock_{"2026-03-02T09:05:03"};
  support::OverflowLog overflows_;
  CCatalogStore& store_ = *get_catalog_store();
  PointRecord record_{};
};

TEST_F(PointSheet, ShowsAPointOrTheSettings) {
  std::string seen;
  const auto look = [&](Dialog& dialog) {
    seen.clear();
    for (const std::string& caption : At<toolkit::Pages>(dialog, kPages).captions) seen += caption + ", ";
    for (int page = 0; dialog.Handle(toolkit::PageTurned{kPages, page}) == toolkit::Answer::kTaken; ++page) {
      for (const toolkit::Control* control : dialog.controls()) {
        if (!dialog.Shows(*control) || (page != 0 && control->pages_id == 0)) continue;
        seen += std::to_string(control->id()) + (control->enabled ? " " : "! ");
      }
    }
  };
  Open([&](Dialog& dialog) {
    look(dialog);
    EXPECT_EQ(Text(dialog, 7021) + Text(dialog, 7024) + " " + Text(dialog, 7028) + " " + Text(dialog, 7031),
              "Für den Vermessungspunkt: 123123 32654321.500 5612345.900"_ansi);
    Turn(dialog, 1);
    dialog.Handle(Pressed{kExplain});
    EXPECT_EQ(desktop_.dialogs.size(), 2U);
  });
  EXPECT_EQ(seen,
            "Objekt, PunktortTA, Weitere, V2 Daten, 7021 7004 7005 7006! 7008 7050 7078 7033 7012 7079 7035 7040 7062! "
            "7066 7074 7071 1 2 7073 7058 7075 7030 7027 7059! 7021 7024 7027 7028 7031 7033 7035 7037 7038 7040 7043 "
            "7045 7024 7028 7031 ");
  number_ = "";
  Open(look);
  EXPECT_EQ(seen, "Objekt, PunktortTA, 7021 7004 7005 7006 7011 7008 7050 7035 7040 7074 7076 7077 1 2 7058 7075 ");
}

TEST_F(PointSheet, ListsShowAndStoreTheCodesOfTheCatalogue) {
  const struct {
    ControlId id;
    std::int32_t PointRecord::*field;
    std::int32_t before;
    std::string shown;
    std::int32_t after;
  } kCases[] = {
      {kAbm, &PointRecord::abm, 1000, " Ärmel Ohne Marke*Stein"_ansi, 1000},
      {kAbm, &PointRecord::abm, 4711, " Ärmel*Ohne Marke Stein"_ansi, 9500},
      {kArt, &PointRecord::art, 4711, " Ärmel Ohne Marke Stein"_ansi, -1},
      {kHin, &PointRecord::hin, 1111, " AA*ZZ", 1111},
      {kHin, &PointRecord::hin, 4711, "*AA ZZ", 1010},
  };
  for (const auto& c : kCases) {
    record_.*c.field = c.before;
    Open([&](Dialog& dialog) {
      EXPECT_EQ(Entries(dialog, c.id), c.shown);
      Ok(dialog);
    });
    EXPECT_EQ(record_.*c.field, c.after) << c.shown;
  }
}

TEST_F(PointSheet, ObjectTypeDecidesWhatIsShownAndHiddenListsKeepTheirChoice) {
  record_.abm = 9500;
  Open([&](Dialog& dialog) {
    Choose(dialog, kArt, 2);
    Choose(dialog, kTypes, 1);
    EXPECT_EQ(Entries(dialog, kAbm), " AA ZZ") << "no code of no mark";
    for (const ControlId id : {kPkn, kAsk, kFromNumber, kCheck, kArt, kHin, kLzv, kHasDay}) {
      EXPECT_FALSE(dialog.Find(id)->visible) << id;
    }
    Ok(dialog);
  });
  EXPECT_EQ(std::tuple(record_.oa, record_.po, record_.abm, record_.art), std::tuple(1, 2, -1, 1000));
  store_.defaults.bundesland = 9;
  put(record_.pkn, "ohne Muster");
  EXPECT_EQ(Open(Ok), 1);
  EXPECT_EQ(record_.po, 2) << "kept for another kind of position object";
}

TEST_F(PointSheet, TypedTextCountsOnceItIsRead) {
  desktop_.answers = {toolkit::kAnswerOk, toolkit::kAnswerNo};
  const auto texts = [](Dialog& dialog) { return Text(dialog, kApplication) + " " + Text(dialog, kPkn); };
  Open([&](Dialog& dialog) {
    dialog.Handle(Typed{kApplication, "getippt"});
    dialog.Handle(Typed{kPkn, "abc"});
    dialog.Handle(Pressed{kCheck});
    EXPECT_EQ(desktop_.boxes.back().text, "Erfolg");
    dialog.Handle(Pressed{kAsk});
    EXPECT_EQ(texts(dialog), "getippt abc");
    dialog.Handle(Pressed{kFromNumber});
    Choose(dialog, kTypes, 0);
    EXPECT_EQ(texts(dialog), "2026-0042 326545612000123");
    Choose(dialog, kTypes, 0);
    EXPECT_EQ(texts(dialog), "2026-0042 326545612000777") << "goes back to that of the point";
    dialog.Handle(Typed{kPkn, "?"});
    Ok(dialog);
    Choose(dialog, kTypes, 0);
    EXPECT_EQ(texts(dialog), "2026-0042 ?") << "a refused OK has read the fields";
  });
}

TEST_F(PointSheet, ActionDecidesOnTheGids) {
  const std::string later = "Wird automatisch vergeben", digits = "123456789012345678901234";
  const struct {
    std::int32_t before;
    std::vector<ControlId> pressed;
    std::string shown, stored;
  } kCases[] = {
      {-3, {}, later + ", " + later, "0: , POS"},       {9, {}, "neu, " + digits, "2: neu, " + digits.substr(0, 23)},
      {0, {kReplace}, "OBJ, POS", "1: OBJ, POS"},       {1, {kNew}, later + ", " + later, "0: , POS"},
      {1, {kNew, kReplace}, "OBJ, POS", "1: OBJ, POS"},
  };
  for (const auto& c : kCases) {
    record_.aktion = c.before;
    put(record_.obgid, "OBJ");
    put(record_.gmlid, "POS");
    Open([&](Dialog& dialog) {
      dialog.Handle(Typed{kObjectGid, "neu"});
      Turn(dialog, 1);
      dialog.Handle(Typed{kPositionGid, digits});
      for (const ControlId option : c.pressed) dialog.Handle(Pressed{option});
      EXPECT_EQ(Text(dialog, kObjectGid) + ", " + Text(dialog, kPositionGid), c.shown);
      Ok(dialog);
    });
    EXPECT_EQ(std::to_string(record_.aktion) + ": " + record_.obgid + ", " + record_.gmlid, c.stored);
  }
}

TEST_F(PointSheet, CheckDateAndReliabilityComeBackAsTheyWere) {
  const std::int32_t day = 1456909503;  // 2016-03-02 10:05:03 in Berlin
  const struct {
    std::int32_t dat, lzv;
    bool tick;
    int year;  ///< in which a day is set; 0 none
    int row;   ///< of the list of reliabilities
    std::int32_t after_dat, after_lzv;
  } kCases[] = {
      {10000, -2, false, 0, 0, 0, -2}, {10001, -1, true, 0, 1, 10001, -1}, {day, 1, true, 0, -1, day, -3},
      {day, -4, false, 0, -1, 0, -3},  {0, 0, true, 0, 2, 1772438703, 0},  {day, 0, true, 2026, 2, 1782856800, 0},
      {day, 0, true, 1969, 2, day, 0}, {day, 0, true, 2040, 2, day, 0},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(&c - kCases);
    record_.dat = c.dat;
    record_.lzv = c.lzv;
    Open([&](Dialog& dialog) {
      EXPECT_EQ(At<toolkit::TickBox>(dialog, kHasDay).ticked, c.dat > 10000);
      EXPECT_EQ(At<toolkit::ChoiceList>(dialog, kLzv).selected(), c.row);
      Turn(dialog, 1);
      dialog.Handle(toolkit::BoxTicked{kHasDay, c.tick});
      EXPECT_EQ(At<toolkit::DateField>(dialog, kDay).Counts(), c.tick);
      if (c.year != 0) dialog.Handle(toolkit::DaySet{kDay, {.year = c.year, .month = 7, .day = 1, .hour = 5}});
      Choose(dialog, kTypes, 0);
      Ok(dialog);
    });
    EXPECT_EQ(std::tuple(record_.dat, record_.lzv), std::tuple(c.after_dat, c.after_lzv));
  }
  EXPECT_EQ(desktop_.boxes.size(), 2U) << "a year that cannot be stored is refused";
}

TEST_F(PointSheet, TextsAreCutToWhatARecordHolds) {
  const std::string forty(40, 'k');
  put(record_.wepo, (forty + "|DE1|AX_PunktortAG|DE2").c_str());
  Open([&](Dialog& dialog) {
    EXPECT_EQ(Text(dialog, kMore), forty.substr(1) + "\r\r\nDE1\r\r\nAX_PunktortAG\r\r\nDE2\r\r\n");
    dialog.Handle(Typed{kApplication, forty});
    Ok(dialog);
  });
  EXPECT_EQ(record_.antragn, forty.substr(1));
  EXPECT_EQ(overflows_.texts().size(), 1U) << "that of the position object";
}

TEST_F(PointSheet, WithoutObjectTypeOrPositionTypeNothingIsStored) {
  store_.defaults.oa = 1;
  const struct {
    std::int32_t land, oa;
    const char* obgid;
    int row;
    bool refused;
  } kCases[] = {{16, -1, "", 1, false}, {16, 0, "", 0, false}, {16, -1, "OBJ", -1, true},
                {16, 2, "", 2, true},   {16, 4, "", -1, true}, {12, 0, "", -1, true}};
  for (const auto& c : kCases) {
    SCOPED_TRACE(&c - kCases);
    store_.defaults.bundesland = c.land;
    record_.oa = c.oa;
    put(record_.obgid, c.obgid);
    Open([&](Dialog& dialog) {
      EXPECT_EQ(At<toolkit::ChoiceList>(dialog, kTypes).selected(), c.row);
      Ok(dialog);
      EXPECT_EQ(dialog.IsOpen(), c.refused);
    });
  }
  EXPECT_EQ(desktop_.boxes.back().text, "Objektart fehlt. Bitte prüfen"_ansi);
}

TEST_F(PointSheet, ChangeOfStateKeepsTheObjectTypeByName) {
  number_ = "";
  Open([&](Dialog& dialog) {
    EXPECT_EQ(Entries(dialog, kLand), " Bayern*Thüringen"_ansi);
    Choose(dialog, kLand, 0);
    EXPECT_EQ(Entries(dialog, kTypes), " Neu*Grenzpunkt");
    EXPECT_EQ(At<toolkit::Pages>(dialog, kPages).captions[1], "PunktortXY");
    Choose(dialog, kTypes, 0);
    Choose(dialog, kLand, 1);
    EXPECT_EQ(Entries(dialog, kTypes), "*Grenzpunkt Aufnahmepunkt OhneOrt") << "the first one, without that name";
  });
}

TEST_F(PointSheet, PathsAreChosenInTheSettings) {
  number_ = "";
  desktop_.paths = {plugin_.path() + "/", std::nullopt, std::nullopt};
  record_.dat = 1456909503;
  Open([&](Dialog& dialog) {
    for (const ControlId button : {kReserved, kReserved, kOriginalXml}) dialog.Handle(Pressed{button});
    EXPECT_EQ(dialog.Find(kReserved)->label(), "Reservierte PKTN. ...");
    EXPECT_EQ(dialog.Find(kOriginalXml)->label(), "Original XML ...");
    EXPECT_EQ(store_.orig_xml, "C:\\nas\\alt.xml") << "before OK";
    Ok(dialog);
  });
  EXPECT_EQ(desktop_.picks[0].path, "") << "not the path of before";
  EXPECT_EQ(store_.orig_xml, "") << "cancelled in the picker";
  EXPECT_EQ(store_.point_xml_folder, plugin_.path()) << "kept, without the separator at its end";
  EXPECT_EQ(store_.defaults.dat, 1456909503) << "the date is hidden, and kept";
}

}  // namespace
}  // namespace pktaus
