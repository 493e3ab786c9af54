#include "dialogs/point_sheet.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "base/bounded.h"
#include "base/path.h"
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
using toolkit::Answer;
using toolkit::BoxTicked;
using toolkit::ControlId;
using toolkit::Dialog;
using toolkit::EntrySelected;
using toolkit::Kind;
using toolkit::PageTurned;
using toolkit::Pressed;
using toolkit::Typed;
using Box = support::ScriptedDesktop::Box;
using Person = std::function<void(Dialog&)>;

constexpr ControlId kApplication = 7004, kOrder = 7005, kLand = 7006, kTypes = 7008, kOrganisation = 7011,
                    kPages = 7050, kPkn = 7078, kAsk = 7033, kFromNumber = 7012, kCheck = 7079, kAbm = 7035,
                    kBza = 7009, kArt = 7040, kZst = 7047, kObjectGid = 7062, kVtw = 7052, kLzv = 7073, kHin = 7058,
                    kExplain = 7075, kKst = 7041, kHer = 7044, kGst = 7038, kHasDay = 7030, kDay = 7027,
                    kPositionGid = 7059, kNew = 7063, kReplace = 7064, kDelete = 7065, kAction = 7066, kMore = 7074,
                    kOriginalXml = 7076, kReserved = 7077, kRemove = 7071;

/// Rows: 0 Grenzpunkt with everything, 1 Sonder with next to nothing, 2 Aufnahmepunkt, 3 OhneOrt.
constexpr const char* kThueringen = R"(
[T_Marke]
"1000" = "Stein"
"9500" = "Ohne Marke"
"2000" = "Ärmel"
[T_Rohr]
"3000" = "Rohr"
"1000" = "Stein"
[T_Bza]
"1000" = "unterirdisch"
[T_Art]
"1100" = "First"
"1200" = "Traufe"
[T_Stelle]
"42" = "Amt"
[T_Kst]
"1000" = "amtlich"
"2000" = "weitere"
[T_Hin]
"1111" = "ZZ"
"1010" = "AA"
[T_Her]
"1000" = "Kataster"
[T_Gst]
"2100" = "3 cm"
[T_Vtw]
"1200" = "Berechnung"
[AX_PunktortTA]
koordinatenstatus = "Kst"
hinweise = "Hin"
herkunft = "Her"
genauigkeitsstufe = "Gst"
vertrauenswuerdigkeit = "Vtw"
ueberpruefungsdatum = "ja"
lagezuverlaessigkeit = "ja"
[AX_PunktortAU]
koordinatenstatus = "Kst"
[AX_PunktortAG]
[AX_OhneOrt]
abmarkung_Marke = "Marke"
[AX_Aufnahmepunkt]
vermarkung_Marke = "Rohr"
ort = "PunktortAU"
[AX_Sonder]
ort = "PunktortAG"
punktkennung = "xxxx"
[AX_Grenzpunkt]
abmarkung_Marke = "Marke"
vermarkung_Marke = "Rohr"
bemerkungZurAbmarkung = "Bza"
art = "Art"
zustaendige_stelle = "Stelle"
ort = "PunktortTA"
punktkennung = "32EEENNNN0xxxxx"
)";
/// Rows: 0 Neu, 1 Grenzpunkt.
constexpr const char* kBayern = R"(
[AX_PunktortXY]
[AX_Grenzpunkt]
ort = "PunktortXY"
[AX_Neu]
ort = "PunktortXY"
)";
constexpr const char* kIdentifier = "326545612000123";

template <typename T>
T& At(Dialog& dialog, ControlId id) {
  return dynamic_cast<T&>(*dialog.Find(id));
}
std::string Text(Dialog& dialog, ControlId id) { return At<toolkit::TextField>(dialog, id).text; }
bool Shown(Dialog& dialog, ControlId id) { return dialog.Find(id) != nullptr && dialog.Find(id)->visible; }
std::string Selected(Dialog& dialog, ControlId id) {
  const auto* entry = At<toolkit::ChoiceList>(dialog, id).selection();
  return entry == nullptr ? "-" : entry->label;
}
void Choose(Dialog& dialog, ControlId id, std::string_view label) {
  const auto& entries = At<toolkit::ChoiceList>(dialog, id).entries();
  int position = 0;
  while (position < static_cast<int>(entries.size()) && entries[static_cast<std::size_t>(position)].label != label) {
    ++position;
  }
  EXPECT_EQ(dialog.Handle(EntrySelected{id, position}), Answer::kTaken) << id << " " << label;
}
std::string Labels(Dialog& dialog, ControlId id) {
  std::string labels;
  for (const auto& entry : At<toolkit::ChoiceList>(dialog, id).entries()) labels += entry.label + "|";
  return labels;
}
/// What a person sees: number and label of each control.
std::string View(Dialog& dialog) {
  std::string view;
  for (const toolkit::Control* control : dialog.controls()) {
    if (!dialog.Shows(*control)) continue;
    view += std::to_string(control->id()) + control->label() + (control->enabled ? "|" : "!|");
  }
  return view;
}
void Turn(Dialog& dialog, int page) { EXPECT_EQ(dialog.Handle(PageTurned{kPages, page}), Answer::kTaken); }

class PointSheet : public testing::Test {
 protected:
  PointSheet() {
    SetPluginFolder(plugin_.path());
    for (const char* land : {"16Th\xC3\xBCringen.XML", "09Bayern.XML", "05Nirgends.XML"}) plugin_.Write(land, "<r/>");
    plugin_.Write("16.ini", *text::FromUtf8(kThueringen));
    plugin_.Write("09.ini", kBayern);
    plugin_.Write("reserviert.xml",
                  "<antragsnummer>2026-0042</antragsnummer>\n<reservierteNummern>326545612000123</reservierteNummern>\n"
                  "<reservierteNummern>abc</reservierteNummern>\n");
    CCatalogStore& store = *get_catalog_store();
    SetEmptyRecord(&store.defaults);
    store.defaults.bundesland = 16;
    store.defaults.oa = 0;
    store.organisation = "Muster";
    store.orig_xml = "C:\\nas\\alt.xml";
    store.point_xml_folder = plugin_.path();
    SetEmptyRecord(&record_);
    record_.oa = 0;
    put(record_.antragn, "2026-0042");
    put(record_.auftrag, "16-1");
    put(record_.pkn, kIdentifier);
  }
  ~PointSheet() override { SetPluginFolder(""); }

  int Open(const Person& person, std::int32_t state = 0) {
    desktop_.persons.push_back(person);
    const int result = point_sheet("123", 32654321.5, 5612345.9, &record_, state);
    EXPECT_TRUE(desktop_.persons.empty()) << "a dialog was not shown";
    return result;
  }
  int OpenSettings(const Person& person) {
    PointRecord defaults = get_catalog_store()->defaults;
    desktop_.persons.push_back(person);
    return point_sheet("", 0, 0, &defaults, 1);
  }
  static void Ok(Dialog& dialog) { dialog.Handle(Pressed{toolkit::kOk}); }

  support::TempFolder plugin_;
  support::ScriptedDesktop desktop_;
  support::ClockAt clock_{"2026-03-02T09:05:03"};
  support::OverflowLog overflows_;
  PointRecord record_{};
};

TEST_F(PointSheet, ShowsAPointOnFourPages) {
  const std::string head = "7021|7004Antragsnummer:|7005Auftragsnummer:|7006Bundesland!|7008Objektart:|7050|";
  const std::string foot = "7066Aktion|7074Weitere Punktorte|7071Entfernen|1OK|2Abbruch|";
  EXPECT_EQ(Open([&](Dialog& dialog) {
              EXPECT_EQ(dialog.title(), "Einstellungen");
              EXPECT_EQ(Text(dialog, 7021), "Für den Vermessungspunkt: 123"_ansi);
              EXPECT_EQ(At<toolkit::Pages>(dialog, kPages).captions,
                        (std::vector<std::string>{"Objekt", "PunktortTA", "Weitere", "V2 Daten"}));
              EXPECT_EQ(View(dialog), head +
                                          "7078Punktkennzeichen ( PKN ) |7033?|7012Aus Punktnummer|7079via XML Prüfen|"
                                          "7035Abmarkung Marke ( ABM ) |7009Bermerkung  ABM  ( BZA ) |7040art|"
                                          "7047Zuständige Stelle ( ZST ) |7062GID: !|"_ansi +
                                          foot);
              Turn(dialog, 1);
              EXPECT_EQ(View(dialog), head +
                                          "7052vertrauenswürdigkeit ( VWL ) |7073Lagezuverläßigkeit ( LZK ) |"
                                          "7058Hinweis (HIN)|7075Erläuterung|7041Koordinatenstatus ( KST ) |"
                                          "7044Herkunft|7038Genauigkeitsstufe ( GST ) |7030Prüfdatum|7027|"
                                          "7059GID: !|"_ansi +
                                          foot);
              Turn(dialog, 3);
              EXPECT_EQ(View(dialog), head + "7024Punktnummer|7028Rechtswert|7031Hochwert|" + foot);
              EXPECT_EQ(Text(dialog, 7024) + " " + Text(dialog, 7028) + " " + Text(dialog, 7031),
                        "123 32654321.500 5612345.900");
              EXPECT_EQ(At<toolkit::RadioGroup>(dialog, kAction).options,
                        (std::vector<std::string>{"Neupunkt", "Punkt ersetzen", "Punkt löschen"_ansi}));
            }),
            toolkit::kCancel);
  EXPECT_TRUE(desktop_.boxes.empty());
}

TEST_F(PointSheet, ShowsTheSettingsOnTwoPages) {
  const std::string head =
      "7021|7004Antragsnummer:|7005Auftragsnummer:|7006Bundesland|7011Organisationsname|"
      "7008Objektart:|7050|";
  const std::string foot =
      "7074Weitere Punktorte|7076alt.xml|7077" + std::string(path::FileName(plugin_.path())) + "|1OK|2Abbruch|";
  OpenSettings([&](Dialog& dialog) {
    EXPECT_TRUE(Text(dialog, 7021).starts_with("In den TABs stellen Sie Defaultwerte für alle"_ansi));
    EXPECT_EQ(Text(dialog, kOrganisation), "Muster");
    EXPECT_EQ(View(dialog), head +
                                "7035Abmarkung Marke ( ABM ) |7009Bermerkung  ABM  ( BZA ) |7040art|"
                                "7047Zuständige Stelle ( ZST ) |"_ansi +
                                foot);
    Turn(dialog, 1);
    EXPECT_EQ(View(dialog), head +
                                "7052vertrauenswürdigkeit ( VWL ) |7058Hinweis (HIN)|7075Erläuterung|"
                                "7041Koordinatenstatus ( KST ) |7044Herkunft|7038Genauigkeitsstufe ( GST ) |"_ansi +
                                foot);
    EXPECT_EQ(dialog.Handle(PageTurned{kPages, 2}), Answer::kNoSuchEntry);
  });
}

struct ListCase {
  const char* name;
  ControlId id;
  std::int32_t PointRecord::*field;
  std::int32_t known;
  const char* label;
  const char* otherwise;  ///< label for a value that the list lacks
  std::int32_t otherwise_code;
  const char* all;
};
const ListCase kLists[] = {
    {"abm", kAbm, &PointRecord::abm, 1000, "Stein", "Ohne Marke", 9500, "Ärmel|Ohne Marke|Stein|"_ansi},
    {"art", kArt, &PointRecord::art, 1200, "Traufe", "-", -1, "First|Traufe|"},
    {"bza", kBza, &PointRecord::bza, 1000, "unterirdisch", "-", -1, "unterirdisch|"},
    {"zst", kZst, &PointRecord::zst, 42, "Amt", "-", -1, "Amt|"},
    {"gst", kGst, &PointRecord::gst, 2100, "3 cm", "-", -1, "3 cm|"},
    {"hin", kHin, &PointRecord::hin, 1111, "ZZ", "AA", 1010, "AA|ZZ|"},
    {"her", kHer, &PointRecord::her, 1000, "Kataster", "-", -1, "Kataster|"},
    {"kst", kKst, &PointRecord::kst, 2000, "weitere", "-", -1, "amtlich|weitere|"},
    {"vtw", kVtw, &PointRecord::vtw, 1200, "Berechnung", "-", -1, "Berechnung|"},
};

TEST_F(PointSheet, ListsShowAndStoreTheCodesOfTheCatalogue) {
  for (const ListCase& c : kLists) {
    record_.*c.field = c.known;
    EXPECT_EQ(Open([&](Dialog& dialog) {
                EXPECT_EQ(Labels(dialog, c.id), c.all) << c.name;
                EXPECT_EQ(Selected(dialog, c.id), c.label) << c.name;
                Ok(dialog);
              }),
              1);
    EXPECT_EQ(record_.*c.field, c.known) << c.name;
    for (const std::int32_t unknown : {-1, 4711}) {
      record_.*c.field = unknown;
      Open([&](Dialog& dialog) {
        EXPECT_EQ(Selected(dialog, c.id), c.otherwise) << c.name << unknown;
        Ok(dialog);
      });
      EXPECT_EQ(record_.*c.field, c.otherwise_code) << c.name << unknown;
    }
  }
}

TEST_F(PointSheet, ObjectTypeDecidesWhatIsShownAndHiddenListsKeepTheirChoice) {
  record_.abm = 9500;
  record_.art = 1100;
  Open([&](Dialog& dialog) {
    Choose(dialog, kArt, "Traufe");
    Choose(dialog, kTypes, "Aufnahmepunkt");
    EXPECT_EQ(Labels(dialog, kAbm), "Rohr|Stein|");
    EXPECT_EQ(Selected(dialog, kAbm), "-") << "no code of no mark";
    for (const ControlId hidden : {kPkn, kAsk, kFromNumber, kCheck, kArt, kBza, kZst, kHin, kLzv, kHasDay, kDay}) {
      EXPECT_FALSE(Shown(dialog, hidden)) << hidden;
    }
    for (const ControlId shown : {kAbm, kKst, kExplain}) EXPECT_TRUE(Shown(dialog, shown)) << shown;
    EXPECT_EQ(At<toolkit::Pages>(dialog, kPages).captions[1], "PunktortAU");
    EXPECT_EQ(Labels(dialog, kArt) + Selected(dialog, kArt), "First|Traufe|Traufe");
    Ok(dialog);
  });
  EXPECT_EQ(std::tuple(record_.oa, record_.po, record_.abm, record_.art), std::tuple(2, 2, -1, 1200));
}

TEST_F(PointSheet, AnotherKindOfPositionObjectLeavesItsNumber) {
  get_catalog_store()->defaults.bundesland = 9;
  record_.po = 7;
  EXPECT_EQ(Open(Ok), 1);
  EXPECT_EQ(record_.po, 7);
}

TEST_F(PointSheet, TypedTextCountsOnceItIsRead) {
  Open([&](Dialog& dialog) {
    dialog.Handle(Typed{kApplication, "getippt"});
    dialog.Handle(Typed{kPkn, "getippt"});
    Choose(dialog, kTypes, "Sonder");
    EXPECT_EQ(Text(dialog, kApplication) + " " + Text(dialog, kPkn), "2026-0042 326545612000123");

    // Built, it is what the page holds and shows; then it goes back to that of the point.
    dialog.Handle(Pressed{kFromNumber});
    EXPECT_EQ(Text(dialog, kPkn), "0123");
    Choose(dialog, kTypes, "Grenzpunkt");
    EXPECT_EQ(Text(dialog, kPkn), "0123");
    Choose(dialog, kTypes, "Sonder");
    EXPECT_EQ(Text(dialog, kPkn), kIdentifier);

    // A refused OK has read the fields.
    dialog.Handle(Typed{kApplication, "gelesen"});
    dialog.Handle(Typed{kPkn, "?"});
    Ok(dialog);
    Choose(dialog, kTypes, "Grenzpunkt");
    EXPECT_EQ(Text(dialog, kApplication) + " " + Text(dialog, kPkn), "gelesen ?");
  });
  EXPECT_STREQ(record_.antragn, "2026-0042") << "cancelled";
}

TEST_F(PointSheet, IdentifierIsTestedOnOk) {
  const char* missing = "Punktkennzeichen muß angegeben werden. Bitte prüfen"_ansi;
  const char* wrong = "Punktkennzeichen ist nicht korrekt. Bitte prüfen"_ansi;
  const struct {
    const char* name;
    std::int32_t land;
    std::int32_t oa;
    const char* typed;
    const char* message;  ///< empty: stored
  } kCases[] = {
      {"fits", 16, 0, "326545612099999", ""},      {"longer", 16, 0, "326545612099999x", ""},
      {"shorter", 16, 0, "32654561209999", wrong}, {"other east", 16, 0, "326555612099999", wrong},
      {"none in Thüringen", 16, 0, "", ""},        {"none in Bayern", 9, 1, "", missing},
      {"no pattern", 9, 1, "irgendwas", ""},
  };
  for (const auto& c : kCases) {
    desktop_.boxes.clear();
    get_catalog_store()->defaults.bundesland = c.land;
    SetEmptyRecord(&record_);
    record_.oa = c.oa;
    put(record_.pkn, c.typed);
    const int result = Open(Ok);
    if (*c.message == '\0') {
      EXPECT_EQ(result, 1) << c.name;
      EXPECT_STREQ(record_.pkn, c.typed) << c.name;
      EXPECT_EQ(record_.bundesland, c.land) << c.name;
      EXPECT_TRUE(desktop_.boxes.empty()) << c.name;
    } else {
      EXPECT_EQ(result, toolkit::kCancel) << c.name;
      EXPECT_EQ(desktop_.boxes, (std::vector<Box>{{c.message, "Fehler", 0}})) << c.name;
      EXPECT_EQ(record_.po, 0) << c.name << ": stored";
    }
  }
}

TEST_F(PointSheet, BuildsAnIdentifierOnRequest) {
  put(record_.pkn, "");
  desktop_.answers = {toolkit::kAnswerNo, toolkit::kAnswerYes};
  Open([&](Dialog& dialog) {
    dialog.Handle(Pressed{kAsk});
    EXPECT_EQ(Text(dialog, kPkn), "");
    dialog.Handle(Pressed{kAsk});
    EXPECT_EQ(Text(dialog, kPkn), "326545612000000");
    dialog.Handle(Pressed{kFromNumber});
    EXPECT_EQ(Text(dialog, kPkn), kIdentifier);
    Ok(dialog);
  });
  EXPECT_STREQ(record_.pkn, kIdentifier);
  ASSERT_EQ(desktop_.boxes.size(), 2U);
  EXPECT_EQ(desktop_.boxes[0],
            (Box{"Pflicht für alle gemessenen oder berechneten Punkte einer Liegenschaftsvermessung\n"
                 "Muster: 32EEENNNN0xxxxx\n\nSoll ein neues Punktkennzeichen erstellt werden?"_ansi,
                 "HINWEIS und FRAGE", toolkit::kBoxYesNo}));
}

TEST_F(PointSheet, ReservationIsLookedUpForWhatIsTyped) {
  std::string title, text;
  Open([&](Dialog& dialog) {
    dialog.Handle(Typed{kApplication, "anderer Antrag"});
    dialog.Handle(Pressed{kCheck});
    EXPECT_EQ(desktop_.boxes, (std::vector<Box>{{"Erfolg", "Die Punktnummer ist reserviert", 0}}));
    desktop_.persons.push_back([&](Dialog& view) {
      title = view.title();
      text = Text(view, 7021);
    });
    dialog.Handle(Typed{kPkn, "ABC"});
    dialog.Handle(Pressed{kCheck});
    EXPECT_EQ(Text(dialog, kPkn), "ABC");
  });
  EXPECT_EQ(title, "Nicht gefunden, Diese sind reserviert für 2026-0042"_ansi);
  EXPECT_EQ(text, "abc\r\r\n326545612000123\r\r\n");
  EXPECT_STREQ(record_.pkn, kIdentifier);
}

TEST_F(PointSheet, ActionDecidesOnTheGids) {
  const char* later = "Wird automatisch vergeben";
  const struct {
    const char* name;
    std::int32_t aktion;
    ControlId option;  ///< pressed before OK; 0 none
    const char *shown_object, *shown_position;
    std::int32_t stored;
    const char *obgid, *gmlid;
  } kCases[] = {
      {"new", 0, 0, later, later, 0, "", "POS"},
      {"below 0", -3, 0, later, later, 0, "", "POS"},
      {"replace", 1, 0, "OBJ", "POS", 1, "OBJ", "POS"},
      {"delete", 2, 0, "OBJ", "POS", 2, "OBJ", "POS"},
      {"above 2", 9, 0, "OBJ", "POS", 2, "OBJ", "POS"},
      {"to replace", 0, kReplace, "OBJ", "POS", 1, "OBJ", "POS"},
      {"to delete", 1, kDelete, "OBJ", "POS", 2, "OBJ", "POS"},
      {"to new", 1, kNew, later, later, 0, "", "POS"},
  };
  for (const auto& c : kCases) {
    record_.aktion = c.aktion;
    put(record_.obgid, "OBJ");
    put(record_.gmlid, "POS");
    Open([&](Dialog& dialog) {
      if (c.option != 0) dialog.Handle(Pressed{c.option});
      EXPECT_EQ(Text(dialog, kObjectGid), c.shown_object) << c.name;
      EXPECT_EQ(Text(dialog, kPositionGid), c.shown_position) << c.name;
      EXPECT_EQ(dialog.Find(kObjectGid)->enabled, c.stored != 0) << c.name;
      EXPECT_EQ(dialog.Find(kPositionGid)->enabled, c.stored != 0) << c.name;
      Ok(dialog);
    });
    EXPECT_EQ(record_.aktion, c.stored) << c.name;
    EXPECT_STREQ(record_.obgid, c.obgid) << c.name;
    EXPECT_STREQ(record_.gmlid, c.gmlid) << c.name;
  }
}

TEST_F(PointSheet, TypedGidsAreStoredAndGoneAfterAChangeOfAction) {
  record_.aktion = 1;
  put(record_.obgid, "OBJ");
  const auto type_both = [](Dialog& dialog) {
    dialog.Handle(Typed{kObjectGid, "neu"});
    Turn(dialog, 1);
    dialog.Handle(Typed{kPositionGid, "123456789012345678901234"});
    Turn(dialog, 0);
  };
  Open([&](Dialog& dialog) {
    type_both(dialog);
    dialog.Handle(Typed{kPkn, "bleibt"});
    dialog.Handle(Pressed{kNew});
    dialog.Handle(Pressed{kReplace});
    EXPECT_EQ(Text(dialog, kObjectGid) + "," + Text(dialog, kPositionGid), "OBJ,");
    EXPECT_EQ(Text(dialog, kPkn), "bleibt");
  });
  Open([&](Dialog& dialog) {
    type_both(dialog);
    Ok(dialog);
  });
  EXPECT_STREQ(record_.obgid, "neu");
  EXPECT_STREQ(record_.gmlid, "12345678901234567890123");
  EXPECT_EQ(overflows_.texts().size(), 1U);
}

TEST_F(PointSheet, CheckDateAndReliabilityComeBackAsTheyWere) {
  const std::int32_t day = 1456909503;  // 2016-03-02 10:05:03 in Berlin
  const struct {
    const char* name;
    std::int32_t dat, lzv;
    Person person;
    std::int32_t stored_dat, stored_lzv;
    const char* lzv_label;
  } kCases[] = {
      {"none", 0, -2, Ok, 0, -2, "-- ohne --"},
      {"empty record", -1, -1, Ok, 0, -1, "true"},
      {"no date yet", 10000, 0, Ok, 0, 0, "false"},
      {"date", day, 5, Ok, day, -3, "-"},
      {"first date", 10001, -4, Ok, 10001, -3, "-"},
      {"taken away", day, 0,
       [](Dialog& dialog) {
         Turn(dialog, 1);
         dialog.Handle(BoxTicked{kHasDay, false});
         Ok(dialog);
       },
       0, 0, "false"},
      {"now", 0, 0,
       [](Dialog& dialog) {
         Turn(dialog, 1);
         dialog.Handle(BoxTicked{kHasDay, true});
         Ok(dialog);
       },
       1772438703, 0, "false"},
      {"another day, kept through a change of type", day, 0,
       [](Dialog& dialog) {
         Turn(dialog, 1);
         dialog.Handle(toolkit::DaySet{kDay, true, {.year = 2026, .month = 7, .day = 1, .hour = 5}});
         dialog.Handle(EntrySelected{kTypes, 1});
         dialog.Handle(EntrySelected{kTypes, 0});
         Ok(dialog);
       },
       1782856800, 0, "false"},
  };
  for (const auto& c : kCases) {
    record_.dat = c.dat;
    record_.lzv = c.lzv;
    Open([&](Dialog& dialog) {
      EXPECT_EQ(At<toolkit::TickBox>(dialog, kHasDay).ticked, c.dat > 10000) << c.name;
      EXPECT_EQ(Selected(dialog, kLzv), c.lzv_label) << c.name;
      c.person(dialog);
    });
    EXPECT_EQ(record_.dat, c.stored_dat) << c.name;
    EXPECT_EQ(record_.lzv, c.stored_lzv) << c.name;
  }
}

TEST_F(PointSheet, ADayThatCannotBeStoredIsRefused) {
  for (const int year : {1969, 2040, 9999}) {
    desktop_.boxes.clear();
    EXPECT_EQ(Open([&](Dialog& dialog) {
                Turn(dialog, 1);
                dialog.Handle(BoxTicked{kHasDay, true});
                dialog.Handle(toolkit::DaySet{kDay, true, {.year = year}});
                Ok(dialog);
              }),
              toolkit::kCancel);
    ASSERT_EQ(desktop_.boxes.size(), 1U) << year;
    EXPECT_EQ(desktop_.boxes[0].title, "Fehler");
  }
}

TEST_F(PointSheet, FurtherPositionObjectsAreShown) {
  const std::string forty(40, 'k');
  const struct {
    std::string wepo, shown;
  } kCases[] = {
      {"", ""},
      {"AX_PunktortAU|DE1|AX_PunktortAG|DE2|", "AX_PunktortAU\r\r\nDE1\r\r\nAX_PunktortAG\r\r\nDE2\r\r\n"},
      {"a|b", "a\r\r\nb\r\r\n"},
      {"a|b|c", "a\r\r\nb\r\r\n"},
      {"a|", "a\r\r\n\r\r\n"},
      {"||", "\r\r\n\r\r\n"},
      {"ohne", ""},
      {forty + "|b|", forty.substr(1) + "\r\r\nb\r\r\n"},
  };
  for (const auto& c : kCases) {
    put(record_.wepo, c.wepo.c_str());
    Open([&](Dialog& dialog) { EXPECT_EQ(Text(dialog, kMore), c.shown) << c.wepo; });
  }
  EXPECT_EQ(overflows_.texts().size(), 1U);
}

TEST_F(PointSheet, LongTextsAreCut) {
  Open([&](Dialog& dialog) {
    dialog.Handle(Typed{kApplication, std::string(40, 'a')});
    dialog.Handle(Typed{kOrder, std::string(39, 'b')});
    dialog.Handle(Typed{kPkn, kIdentifier + std::string(9, '1')});
    Ok(dialog);
  });
  EXPECT_EQ(record_.antragn, std::string(39, 'a'));
  EXPECT_EQ(record_.auftrag, std::string(39, 'b'));
  EXPECT_EQ(record_.pkn, kIdentifier + std::string(8, '1'));
  EXPECT_EQ(overflows_.texts().size(), 1U) << "the identifier alone does not fit";
}

TEST_F(PointSheet, RemovingAsksAndEndsTheSheet) {
  const struct {
    std::int32_t state;
    int answer;
    Answer taken;
    int result;
  } kCases[] = {
      {0, toolkit::kAnswerOk, Answer::kTaken, 10},
      {-1, toolkit::kAnswerOk, Answer::kTaken, 10},
      {0, toolkit::kAnswerCancel, Answer::kTaken, toolkit::kCancel},
      {1, toolkit::kAnswerOk, Answer::kHidden, toolkit::kCancel},
  };
  for (const auto& c : kCases) {
    desktop_.boxes.clear();
    desktop_.answers = {c.answer};
    EXPECT_EQ(Open([&](Dialog& dialog) { EXPECT_EQ(dialog.Handle(Pressed{kRemove}), c.taken); }, c.state), c.result);
    if (c.taken != Answer::kTaken) continue;
    EXPECT_EQ(desktop_.boxes,
              (std::vector<Box>{{"Achtung, von diesem Vermessungspunkt werden die PKT_AUS Einstellungen entfernt.\n\r"
                                 "Der Dialog schließt danach automatisch"_ansi,
                                 "Warnung!", toolkit::kBoxOkCancel | toolkit::kBoxWarning}}));
  }
}

TEST_F(PointSheet, APointWithoutTypeTakesThatOfTheDefaults) {
  get_catalog_store()->defaults.oa = 2;
  const struct {
    std::int32_t oa;
    const char *obgid, *selected;
  } kCases[] = {{-1, "", "Aufnahmepunkt"}, {1, "", "Sonder"}, {-1, "OBJ", "-"}, {4, "", "-"}, {99, "", "-"}};
  for (const auto& c : kCases) {
    record_.oa = c.oa;
    put(record_.obgid, c.obgid);
    Open([&](Dialog& dialog) { EXPECT_EQ(Selected(dialog, kTypes), c.selected) << c.oa << c.obgid; });
  }
}

TEST_F(PointSheet, WithoutObjectTypeOrPositionTypeNothingIsStored) {
  const struct {
    const char* name;
    std::int32_t land, oa;
    const char* types;
    std::size_t boxes_before;
  } kCases[] = {
      {"no such row", 16, 4, "Grenzpunkt|Sonder|Aufnahmepunkt|OhneOrt|", 0},
      {"type without ort", 16, 3, "Grenzpunkt|Sonder|Aufnahmepunkt|OhneOrt|", 0},
      {"state without template", 12, 0, "", 0},
      {"state without catalogue", 5, 0, "", 2},
  };
  for (const auto& c : kCases) {
    desktop_.boxes.clear();
    get_catalog_store()->defaults.bundesland = c.land;
    record_.oa = c.oa;
    const PointRecord before = record_;
    Open([&](Dialog& dialog) {
      EXPECT_EQ(desktop_.boxes, std::vector<Box>(c.boxes_before, {"Ini Datei nicht gefunden", "05.ini", 0})) << c.name;
      EXPECT_EQ(Labels(dialog, kTypes), c.types) << c.name;
      EXPECT_EQ(Text(dialog, kApplication), "2026-0042") << c.name;
      Ok(dialog);
      EXPECT_TRUE(dialog.IsOpen());
      EXPECT_EQ(desktop_.boxes.back(), (Box{"Objektart fehlt. Bitte prüfen"_ansi, "Fehler", 0})) << c.name;
    });
    EXPECT_EQ(std::memcmp(&before, &record_, sizeof before), 0) << c.name;
  }
}

TEST_F(PointSheet, ChangeOfStateKeepsTheObjectTypeByName) {
  OpenSettings([&](Dialog& dialog) {
    EXPECT_EQ(Labels(dialog, kLand), "Bayern|Nirgends|Thüringen|"_ansi);
    EXPECT_EQ(Selected(dialog, kLand) + Selected(dialog, kTypes), "ThüringenGrenzpunkt"_ansi);
    Choose(dialog, kLand, "Bayern");
    EXPECT_EQ(Labels(dialog, kTypes) + Selected(dialog, kTypes), "Neu|Grenzpunkt|Grenzpunkt");
    EXPECT_EQ(At<toolkit::Pages>(dialog, kPages).captions[1], "PunktortXY");
    EXPECT_FALSE(Shown(dialog, kAbm));
    Choose(dialog, kTypes, "Neu");
    Choose(dialog, kLand, "Thüringen"_ansi);
    EXPECT_EQ(Selected(dialog, kTypes), "Grenzpunkt") << "the first one, where the name is not there";
    dialog.Handle(EntrySelected{kLand, -1});
    EXPECT_EQ(Selected(dialog, kTypes), "Grenzpunkt");
    EXPECT_TRUE(desktop_.boxes.empty());

    Choose(dialog, kLand, "Nirgends");
    EXPECT_EQ(desktop_.boxes, (std::vector<Box>{{"Ini Datei nicht gefunden", "05.ini", 0}}));
    EXPECT_EQ(Labels(dialog, kTypes), "Grenzpunkt|Sonder|Aufnahmepunkt|OhneOrt|");
    EXPECT_EQ(Labels(dialog, kKst), "amtlich|weitere|");
    Choose(dialog, kLand, "Bayern");
  });
  EXPECT_EQ(get_catalog_store()->defaults.bundesland, 16);
  EXPECT_EQ(get_catalog_store()->catalog_number, 9) << "a cancel does not bring the former catalogue back";
  Open([](Dialog& dialog) { EXPECT_EQ(Selected(dialog, kTypes), "Grenzpunkt"); });
  EXPECT_EQ(get_catalog_store()->catalog_number, 16) << "the next sheet does";
}

TEST_F(PointSheet, PathsAreChosenInTheSettings) {
  CCatalogStore& store = *get_catalog_store();
  std::string title, text;
  const auto label = [](Dialog& dialog, ControlId id) { return dialog.Find(id)->label(); };
  desktop_.paths = {"/daten/neu.xml", std::nullopt, std::nullopt, plugin_.path() + "/"};
  put(store.defaults.antragn, "2026-0042");
  store.defaults.dat = 1456909503;
  OpenSettings([&](Dialog& dialog) {
    dialog.Handle(Pressed{kOriginalXml});
    EXPECT_EQ(label(dialog, kOriginalXml), "neu.xml");
    EXPECT_EQ(desktop_.picks[0].title, "Original NAS Datei ");
    EXPECT_EQ(desktop_.picks[0].path, "") << "not the path of before";
    dialog.Handle(Pressed{kOriginalXml});
    EXPECT_EQ(label(dialog, kOriginalXml), "Original XML ...");
    dialog.Handle(Pressed{kReserved});
    EXPECT_EQ(label(dialog, kReserved), "Reservierte PKTN. ...");
    EXPECT_EQ(store.orig_xml, "C:\\nas\\alt.xml") << "before OK";
    Ok(dialog);
  });
  EXPECT_EQ(store.defaults.dat, 1456909503) << "the date is hidden, and kept";
  EXPECT_EQ(store.orig_xml, "") << "cancelled in the picker";
  EXPECT_EQ(store.point_xml_folder, plugin_.path()) << "cancelled in the picker";

  store.point_xml_folder = "alt";
  OpenSettings([&](Dialog& dialog) {
    EXPECT_EQ(label(dialog, kReserved), "alt");
    desktop_.persons.push_back([&](Dialog& view) {
      title = view.title();
      text = Text(view, 7021);
    });
    dialog.Handle(Typed{kApplication, "anderer"});
    dialog.Handle(Pressed{kReserved});
    EXPECT_EQ(title, "Reservierte Punktnummern für 2026-0042"_ansi);
    EXPECT_EQ(text, "abc\r\r\n326545612000123\r\r\n");
    Ok(dialog);
  });
  EXPECT_EQ(store.point_xml_folder, plugin_.path()) << "without the separator at its end";
}

TEST_F(PointSheet, ExplainsTheHints) {
  std::string title, text;
  Open([&](Dialog& dialog) {
    Turn(dialog, 1);
    desktop_.persons.push_back([&](Dialog& view) {
      title = view.title();
      text = Text(view, 7021);
    });
    dialog.Handle(Pressed{kExplain});
  });
  EXPECT_EQ(title, "Erläuterungen zu Hinweis"_ansi);
  EXPECT_TRUE(text.starts_with("3.1.14 Hinweise (HIN)\r\r\nDas Attribut HIN regelt"));
  EXPECT_TRUE(text.ends_with("\r\r\naufgemessener Gebäudepunkt aus Befliegung -> 1010\r\r\n"_ansi));
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 29);
}

}  // namespace
}  // namespace pktaus
