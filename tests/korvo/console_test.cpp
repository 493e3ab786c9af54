// korvo-console as a whole: a script goes in, lines and an exit code come out.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <string>

#include "tests/support/table_file.h"
#include "tests/support/temp_folder.h"

namespace {

const std::string kConsole = PKTAUS_BIN_DIR "/korvo-console";
const std::string kExport = "start\n10\n", kSheet = "start\n6\n4711\n";

struct Outcome {
  int code = -1;
  std::string out, err;
};

class ConsoleTest : public testing::Test {
 protected:
  ConsoleTest() {
    const std::string plugin = work_.File("plugin");
    std::filesystem::copy(PKTAUS_SOURCE_DIR "/data", plugin);
    std::filesystem::copy(PKTAUS_SOURCE_DIR "/sample/einstellungen/pktausout.ini", plugin);
    std::filesystem::copy(PKTAUS_BIN_DIR "/libpkt_aus.so", plugin);
    support::TableFile table(support::HostColumns());
    table.Add({{"PT_NO", "4711"}, {"EAST", "100.0000"}, {"NORTH", "200.0000"}});
    table.Add({{"PT_NO", "4712"}, {"EAST", "110.0000"}, {"NORTH", "200.0000"}}, true);
    table.Add({{"PT_NO", "St\xE4ndig"}, {"EAST", "120.0000"}, {"NORTH", "200.0000"}, {"ELEV", "2.50000"}});
    table.Add({{"PT_NO", "4711\x1b[2J"}, {"EAST", "900.0000"}, {"NORTH", "900.0000"}});
    bytes_ = table.Bytes();
    folder_.Write("punkte.dbf", bytes_);
  }

  Outcome RunWith(const std::string& options, const std::string& script) {
    const std::string in = work_.Write("script", script);
    const std::string command = "cd " + work_.path() + " && " + kConsole + " <" + in + " >out 2>err " + options;
    const int status = std::system(command.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, support::BytesOf(work_.File("out")),
            support::BytesOf(work_.File("err"))};
  }
  Outcome Run(const std::string& script) {
    return RunWith("--clock 2026-11-24T09:00:00 --plugin " + work_.File("plugin/libpkt_aus.so") + " " + folder_.path(),
                   script);
  }

  support::TempFolder folder_, work_;
  std::string bytes_;
};

TEST_F(ConsoleTest, CommandsDoWhatTheySayAndTheDialogIsShown) {
  const std::string in_sheet = "\nabbruch\nende\n0\n", in_export = "\nabbruch\n0\n";
  const std::pair<std::string, const char*> kCases[] = {
      {kExport + "7004 = 12/345" + in_export, "Antragsnummer: [12/345]"},
      {kExport + "7004=\" ä \"" + in_export, "Antragsnummer: [ ä ]"},
      {kExport + "7004 =" + in_export, "Antragsnummer: []"},
      {kExport + "wähle 7006 Thü" + in_export, "Bundesland {Thüringen}  (12 Einträge)"},
      {kExport + "wähle 7006 #2" + in_export, "Bundesland {Bayern}"},
      {kExport + "wähle 7006 -" + in_export, "Bundesland {}"},
      {kExport + "haken 7000 1-2,3 an" + in_export, "3 Zeilen, 3 mit Haken"},
      {kExport + "haken 7000 \"Ständig\",\"4711\" an" + in_export, "2 [x] Ständig"},
      {kExport + "zeile 7000 \"Ständig\"\nzeige 7000" + in_export, ">     2 [ ] Ständig"},
      {kExport + "zeige 7000 2 1" + in_export, "... weiter mit: zeige 7000 3"},
      {kExport + "7003" + in_export, "4711\xE2\x90\x9B[2J"},  // no control character reaches the terminal
      {kSheet + "wähle 7066 Punkt löschen" + in_sheet,
       "( ) 7063 Neupunkt  ( ) 7064 Punkt ersetzen  (x) 7065 Punkt löschen"},
      {kSheet + "seite 2\ndatum 7027 29.2.2016" + in_sheet, "  7027  29.02.2016"},
      {kSheet + "seite 7050 PunktortTA\nhaken 7030 an" + in_sheet, "  7030  [x] Prüfdatum"},
      {kSheet + "hilfe\n# Kommentar\n\n" + in_sheet, "  7062  GID: [Wird automatisch vergeben]  (gesperrt)"},
      {kSheet + "drücke Abbruch\n119 201" + in_sheet, "Entfernung: 1.414 m\nPunkt Ständig"},
      {kSheet + in_sheet + "punkt Ständig\n", "  ELEV        2.50000\n"},
      {"punkte 47*\n", "2 Punkte\n"},
      {"punkte", "3 Punkte\n"},
  };
  for (const auto& [script, shown] : kCases) {
    const Outcome o = Run(script);
    EXPECT_EQ(o.code, 0) << o.out << o.err;
    EXPECT_NE(o.out.find(shown), std::string::npos) << shown << "\n" << o.out;
  }
}

TEST_F(ConsoleTest, AScriptThatDoesNotFitStopsWithItsLine) {
  const std::pair<std::string, const char*> kCases[] = {
      {kSheet + "7024 = x\n", "Zeile 4: Das Element 7024 ist nicht sichtbar"},
      {kSheet + "7062 = x\n", "7062 ist gesperrt"},
      {kSheet + "7021 = x\n", "7021 ist nur zum Lesen"},
      {kSheet + "7004\n", "7004 kann das nicht"},
      {kSheet + "7004 = \xE2\x88\x91\n", "Zeichen, die Korvo nicht kennt"},
      {kSheet + "7004 = \xFF\n", "Zeichen, die Korvo nicht kennt"},
      {kSheet + "seite 2\ndatum 7027 30.2.2016\n", "hat das nicht zur Auswahl"},
      {kSheet + "seite 2\ndatum 7027 morgen\n", "TT.MM.JJJJ"},
      {kSheet + "zeige 7024\n", "nicht zu sehen"},
      {kSheet + "erwarte Muster\n7033\nok\n", "Zeile 6: Die Antwort ist ja/nein"},
      {kSheet + "erwarte Muster\n7033\n", "Zeile 5: Das Skript ist zu Ende"},
      {kExport + "wähle 7006 Sa\n", "keinen oder mehr als einen Eintrag"},
      {kExport + "haken 7000 4 an\n", "keine Zeile 4"},
      {kExport + "haken 7000 3-1 an\n", "keine Zeile 3-1"},
      {kExport + "haken 7000 1\n", "an oder aus"},
      {kExport + "1\n", "Zeile 3: Das Skript ist zu Ende"},
      {kExport + "1\n/gibt/es/nicht/a.xml\n", "Zeile 4: Es gibt keinen Ordner /gibt/es/nicht"},
      {"start\n6\n4712\n", "Zeile 3: Die Tabelle hat keinen Punkt 4712"},
      {"erwarte\n", "es fehlt der Text"},
  };
  for (const auto& [script, message] : kCases) {
    const Outcome o = Run(script);
    EXPECT_EQ(o.code, 2) << script;
    EXPECT_NE(o.err.find(message), std::string::npos) << script << o.err;
  }
}

TEST_F(ConsoleTest, AFileIsOverwrittenOnlyAfterAYes) {
  const std::string write = "erwarte Erfolgreich: 1\n1\nscript\n";
  const Outcome o = Run("\xEF\xBB\xBF# Kommentar\r\nstart\r\nExport\r\nhaken 7000 1 an\n1\nabbruch\n" + write +
                        "nein\nneu.xml\nok\n" + "10\nhaken 7000 1 an\n" + write + "ja\nok\n0\nende\n");
  EXPECT_EQ(o.code, 0) << o.out << o.err;
  EXPECT_EQ(support::BytesOf(work_.File("script")), support::BytesOf(work_.File("neu.xml")));
}

TEST_F(ConsoleTest, StartsOnlyWithWhatItCanOpen) {
  work_.Write("a.txt", "punkte\nende\n");
  const std::string project = folder_.path();
  const struct {
    std::string options;
    const char* script;
    int code;
    const char* message;
  } kCases[] = {
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
      {"--plugin a.txt " + project, "start\n", 2, "lässt sich nicht starten: a.txt"},
      {"--plugin weg.so " + project, "start\n", 2, "Die Bibliothek fehlt: weg.so"},
      {project + " <&- >&- 2>&-", "", 1, ""},
  };
  for (const auto& c : kCases) {
    const Outcome o = RunWith(c.options, c.script);
    EXPECT_EQ(o.code, c.code) << c.options << o.out << o.err;
    EXPECT_NE(o.err.find(c.message), std::string::npos) << c.options << o.err;
    EXPECT_EQ(support::BytesOf(folder_.File("punkte.dbf")), bytes_) << "nothing is said into the table";
  }
}

}  // namespace
