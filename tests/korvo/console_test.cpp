// korvo-console as a whole: a script goes in, lines and an exit code come out.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "tests/support/table_file.h"
#include "tests/support/temp_folder.h"

namespace {

constexpr const char* kConsole = PKTAUS_BIN_DIR "/korvo-console";
constexpr const char* kPlugin = PKTAUS_BIN_DIR "/libkorvo_test_plugin.so";

support::TableFile Points() {
  support::TableFile table(support::HostColumns());
  table.Add({{"PT_NO", "4711"}, {"EAST", "100.0000"}, {"NORTH", "200.0000"}, {"ELEV", "1.00000"}});
  table.Add({{"PT_NO", "4712"}, {"EAST", "110.0000"}, {"NORTH", "200.0000"}}, true);
  table.Add({{"PT_NO", "St\xE4ndig"}, {"EAST", "120.0000"}, {"NORTH", "200.0000"}});
  table.Add({{"PT_NO", "4711"}, {"EAST", "900.0000"}, {"NORTH", "900.0000"}});
  return table;
}

struct Outcome {
  int code = -1;
  std::string out;
  std::string err;
};

class ConsoleTest : public testing::Test {
 protected:
  void SetUp() override { folder_.Write("punkte.dbf", Points().Bytes()); }

  Outcome RunWith(const std::string& options, const std::string& script) {
    const std::string in = work_.Write("script", script);
    const std::string command = "cd " + work_.path() + " && " + kConsole + " " + options + " <" + in + " >out 2>err";
    const int status = std::system(command.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, support::BytesOf(work_.File("out")),
            support::BytesOf(work_.File("err"))};
  }
  Outcome Run(const std::string& script) {
    return RunWith(std::string("--plugin ") + kPlugin + " " + folder_.path(), script);
  }

  support::TempFolder folder_, work_;
};

// In the dialog of the test plug-in: commands, and what its report has to say, or what stderr has to say.
TEST_F(ConsoleTest, DialogCommandsDoWhatTheySayOrStopTheScript) {
  const struct {
    const char* commands;
    const char* report;   // null: stopped
    const char* message;  // on stderr
  } cases[] = {
      {"9000 = 12/345", "12/345|6|-1|0|-1|2|on|", ""},
      {"9000=ä", "\xC3\xA4|6|", ""},
      {"9000 = \" 23 \"", " 23 |6|", ""},
      {"9000 = a\n9000 =", "|6|", ""},
      {"wähle 9008 Thüringen", "|16|", ""},
      {"wähle 9008 #1", "|2|", ""},
      {"wähle 9008 -", "|-1|-1|", ""},
      {"wähle 9006 alt", "|6|1|", ""},
      {"haken 9009 1-5,8 an", "|6|-1|6|", ""},
      {"haken 9009 \"P7\",\"P9\" an", "|6|-1|2|", ""},
      {"zeile 9009 \"P25\"", "|6|-1|0|24|", ""},
      {"zeile 9009 3\nzeile 9009 -", "|6|-1|0|-1|", ""},
      {"datum 9007 29.2.2016", "|29|on|", ""},
      {"datum 9007 heute", "|24|on|", ""},
      {"seite 2\n9012 = hinten", "|hinten", ""},
      {"seite 9010 Zweite\n9012 = hinten", "|hinten", ""},
      {"haken 9005 an\n9001 = jetzt sichtbar", "|6|", ""},
      {"zeige\nzeige 9009 20 3\nhilfe\n# Kommentar\n\n", "|6|", ""},
      {"9001 = x", nullptr, "9001 ist nicht sichtbar"},
      {"9002 = x", nullptr, "9002 ist gesperrt"},
      {"9003 = x", nullptr, "9003 ist nur zum Lesen"},
      {"9000", nullptr, "9000 kann das nicht"},
      {"wähle 9008 H", nullptr, "keinen oder mehr als einen Eintrag"},
      {"haken 9009 26 an", nullptr, "keine Zeile 26"},
      {"haken 9009 5-1 an", nullptr, "keine Zeile 5-1"},
      {"haken 9009 1", nullptr, "an oder aus"},
      {"datum 9007 30.2.2016", nullptr, "hat das nicht zur Auswahl"},
      {"datum 9007 morgen", nullptr, "TT.MM.JJJJ"},
      {"zeige 9001", nullptr, "nicht zu sehen"},
      {"9000 = \xE2\x88\x91", nullptr, "Zeichen, die Korvo nicht kennt"},
      {"9000 = \xFF", nullptr, "Zeichen, die Korvo nicht kennt"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.commands);
    const Outcome o = RunWith(std::string("--clock 2026-11-24T09:00:00 --plugin ") + kPlugin + " " + folder_.path(),
                              std::string("start\n2\n") + c.commands + "\nerwarte |\ndrücke Melden\nok\nabbruch\n0\n");
    EXPECT_EQ(o.code, c.report != nullptr ? 0 : 2) << o.out << o.err;
    if (c.report != nullptr) {
      EXPECT_NE(o.out.find(c.report), std::string::npos) << o.out;
    }
    EXPECT_NE(o.err.find(c.message), std::string::npos) << o.err;
    EXPECT_EQ(o.err.empty(), c.report != nullptr) << o.err;
  }
}

TEST_F(ConsoleTest, ShowsEveryKindOfControlAndNoControlCharacters) {
  const Outcome o = Run("start\n2\nabbruch\n0\n");
  EXPECT_EQ(o.code, 0) << o.err;
  for (const char* line :
       {"=== 9000  Prüfen ===", "  9000  Text: []", "  9002  Gesperrt: []  (gesperrt)",
        "  9003  Fest: [fest]  (nur lesen)", "        | eins\n        | zwei\xE2\x90\x9B[2J\n", "  9005  [ ] Mehr",
        "  9006  Art: ( ) neu  ( ) alt", "  9007  Tag: [x] 02.03.2016", "  9008  Land: {Hessen}  (3 Einträge)",
        "  9009  25 Zeilen, 0 mit Haken", "    10 [ ] P10\n        ... weiter mit: zeige 9009 11",
        "  9010  Seiten:  [1 Erste]  2 Zweite", "  9011  <Melden>", "     1  <OK>"}) {
    EXPECT_NE(o.out.find(line), std::string::npos) << line << "\n" << o.out;
  }
  EXPECT_EQ(o.out.find("Verborgen"), std::string::npos);
  EXPECT_EQ(o.out.find("Seite 2:"), std::string::npos);
}

// Whole scripts that must not get through, and the line that is to blame.
TEST_F(ConsoleTest, AScriptThatDoesNotFitStopsWithItsLine) {
  const struct {
    const char* name;
    const char* script;
    const char* message;
  } cases[] = {
      {"ends in a box", "start\nerwarte ja\n4\n", "Zeile 3: Das Skript ist zu Ende"},
      {"ends while picking", "start\n6\n4711\n", "Zeile 3: Das Skript ist zu Ende"},
      {"ends in a picker", "start\n8\n", "Zeile 2: Das Skript ist zu Ende"},
      {"expects nothing", "erwarte\n", "es fehlt der Text"},
      {"wrong answer", "start\nerwarte ja\n4\nok\n", "Zeile 4: Die Antwort ist ja/nein"},
      {"no such point", "start\n6\n4712\n", "Zeile 3: Die Tabelle hat keinen Punkt 4712"},
      {"no such folder", "start\n8\n/gibt/es/nicht/a.xml\n", "Zeile 3: Es gibt keinen Ordner /gibt/es/nicht"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const Outcome o = Run(c.script);
    EXPECT_EQ(o.code, 2) << o.out;
    EXPECT_NE(o.err.find(c.message), std::string::npos) << o.err;
  }
}

TEST_F(ConsoleTest, MenuBoxesAndPickersGiveTheirAnswers) {
  const Outcome o =
      Run("\xEF\xBB\xBF# Kommentar\r\nstart\r\n"
          "erwarte ja oder\nerwarte 6\nPunkt über\nja\nok\n"
          "erwarte ja oder\nerwarte 7\n4\nnein\nok\n"
          "erwarte /neu.xml\n8\nneu.xml\nok\n"
          "erwarte nichts\n8\nabbruch\nok\n"
          "erwarte /anders.xml\n8\nscript\nnein\nanders.xml\nok\n"
          "erwarte script\n8\nscript\nja\nok\n"
          "0\nende\n");
  EXPECT_EQ(o.code, 0) << o.err << o.out;
  EXPECT_NE(o.out.find("Überschreiben? ja/nein> nein"), std::string::npos);
}

TEST_F(ConsoleTest, PicksPointsByNumberAndPlaceAndStoresWhatThePluginWrites) {
  const Outcome o = Run("start\n6\n4711\n119 201\n\"Ständig\"\nende\n0\npunkt Ständig\npunkte 47*\npunkte\n");
  EXPECT_EQ(o.code, 0) << o.err;
  EXPECT_NE(o.out.find("Entfernung: 1.414 m\nPunkt Ständig"), std::string::npos) << o.out;
  EXPECT_NE(o.out.find("  ELEV        2.00000"), std::string::npos) << o.out;
  EXPECT_NE(o.out.find("2 Punkte"), std::string::npos);
  EXPECT_NE(o.out.find("3 Punkte"), std::string::npos);
  EXPECT_EQ(Points().FieldIn(folder_.File("punkte.dbf"), 1, "ELEV"), "   2.00000");
  EXPECT_EQ(Points().FieldIn(folder_.File("punkte.dbf"), 4, "ELEV"), "          ");
}

TEST_F(ConsoleTest, StartsOnlyWithWhatItCanOpen) {
  folder_.Write("kein.so", "x");
  work_.Write("a.txt", "punkte\nende\n");
  const std::string project = folder_.path();
  const struct {
    std::string options;
    const char* script;
    int code;
    const char* message;
  } cases[] = {
      {"--help", "", 0, ""},
      {"", "", 1, "Es fehlt das Projekt"},
      {project + " --clock", "", 1, "fehlt der Wert"},
      {"--zone Europe/Berlin " + project, "", 1, "nur zusammen"},
      {"--script /gibt/es/nicht " + project, "", 1, "Das Skript"},
      {"--script " + work_.path() + " " + project, "", 2, "Das Skript lässt sich nicht lesen"},
      {project + " " + project, "", 1, "nur ein Projekt"},
      {"/gibt/es/nicht", "", 1, "/gibt/es/nicht"},
      {work_.path(), "", 1, "keine Punkttabelle"},
      {project + "/punkte.dbf", "punkte\n", 0, ""},
      {"--script a.txt " + project, "ungelesen\n", 0, ""},
      {"--plugin " + folder_.File("kein.so") + " " + project, "start\n", 2, "lässt sich nicht starten"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.options);
    const Outcome o = RunWith(c.options, c.script);
    EXPECT_EQ(o.code, c.code) << o.out << o.err;
    EXPECT_NE(o.err.find(c.message), std::string::npos) << o.err;
    EXPECT_EQ(o.err.empty(), c.code == 0) << o.err;
  }
}

TEST_F(ConsoleTest, WithoutStandardStreamsNothingIsSaidIntoTheTable) {
  const struct {
    const char* closed;
    int code;
  } cases[] = {{" <&- >/dev/null", 0}, {" <&- >&- 2>/dev/null", 1}, {" <&- >&- 2>&-", 1}};
  for (const auto& c : cases) {
    const int status = std::system((std::string(kConsole) + " " + folder_.path() + c.closed).c_str());
    EXPECT_EQ(WIFEXITED(status) ? WEXITSTATUS(status) : -1, c.code) << c.closed;
    EXPECT_EQ(support::BytesOf(folder_.File("punkte.dbf")), Points().Bytes()) << c.closed;
  }
}

}  // namespace
