#include "nas/batch.h"

#include <gtest/gtest.h>

#include <array>

#include "base/text.h"
#include "tests/support/clock_at.h"
#include "tests/support/overflow_log.h"
#include "tests/support/temp_folder.h"

namespace pktaus {
namespace {

using namespace text::literals;

constexpr const char* kTemplate =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<AX_Fortfuehrungsauftrag xmlns:wfs=\"http://www.opengis.net/wfs/2.0\">\n"
    "  <geaenderteObjekte>\n"
    "    <wfs:Transaction version=\"2.0.0\" service=\"WFS\">\n"
    "    </wfs:Transaction>\n"
    "  </geaenderteObjekte>\n"
    "  <antragsnummer/>\n"
    "  <auftragsnummer/>\n"
    "</AX_Fortfuehrungsauftrag>\n";

BatchPoint Point(std::string name, std::string east, std::string north, std::string zst = "12") {
  return {.name = std::move(name),
          .east = std::move(east),
          .north = std::move(north),
          .gst = "2100",
          .kst = "1000",
          .her = "?",
          .zst = std::move(zst),
          .objid = {},
          .filled = 1};
}

template <std::size_t N>
BatchPoint* Linked(std::array<BatchPoint, N>& points) {
  for (std::size_t i = 0; i + 1 < N; ++i) points[i].next = &points[i + 1];
  return points.data();
}

std::string Golden(const char* name) {
  return support::BytesOf(std::string(PKTAUS_SOURCE_DIR "/tests/golden/") + name);
}

class Batch : public testing::Test {
 protected:
  std::string Write(BatchPoint* points, const char* land) {
    return WriteBatchFile(points, folder_.File("out.xml"), folder_.Write("09Ort.XML", kTemplate), land, "A 1/Ü"_ansi,
                          "4711");
  }
  std::string Output() const { return support::BytesOf(folder_.File("out.xml")); }

  support::TempFolder folder_;
  support::ClockAt clock_{"2016-03-02T09:05:03"};
};

TEST_F(Batch, WritesTwoMembersForEachPointWithBothCoordinates) {
  std::array points = {Point("1", "32632145.123", "5651234.000"), Point("leer", "", "5651234.000"),
                       Point("Süd 2"_ansi, "632146,000", "5651235,500"), Point("leer", "632146.000", ""),
                       Point("3", "123.400", "0.000", "")};
  EXPECT_EQ(Write(Linked(points), "09"), "Erfolgreich: 3 Punkte ausgegeben");
  EXPECT_EQ(Output(), Golden("batch_land_09.xml"));
  EXPECT_EQ(points[2].objid, "DE_0000000000003");
  EXPECT_EQ(points[2].east, "632146.000") << "the point keeps its decimal point";
}

TEST_F(Batch, StartsTheNextFileAtTheSameIdentifiers) {
  std::array points = {Point("1", "632145.123", "5651234.000")};
  EXPECT_EQ(Write(points.data(), "09"), "Erfolgreich: 1 Punkte ausgegeben");
  EXPECT_EQ(Write(points.data(), "16"), "Erfolgreich: 1 Punkte ausgegeben");
  EXPECT_EQ(Output(), Golden("batch_land_16.xml"));
}

TEST_F(Batch, AppendsBehindTheMembersOfTheTemplate) {
  std::array points = {Point("1", "632145.123", "5651234.000")};
  const std::string path = folder_.Write("t.xml",
                                         "<a:r><a:antragsnummer>x</a:antragsnummer><a:auftragsnummer/>"
                                         "<geaenderteObjekte><Transaction><first/><second/></Transaction>"
                                         "</geaenderteObjekte></a:r>");
  EXPECT_EQ(WriteBatchFile(points.data(), folder_.File("out.xml"), path, "09", "A", "B"),
            "Erfolgreich: 1 Punkte ausgegeben");
  const std::string output = Output();
  const std::size_t second = output.find("<second></second>");
  EXPECT_NE(second, std::string::npos);
  EXPECT_GT(output.find("<wfs:Insert>"), second);
  EXPECT_NE(output.find("<a:antragsnummer>A</a:antragsnummer>"), std::string::npos);
}

TEST_F(Batch, SaysWhatIsMissingAndLeavesTheOldFile) {
  const std::string kNumbers = "<antragsnummer/><auftragsnummer/>";
  const std::string kObjects = "<geaenderteObjekte><wfs:Transaction/></geaenderteObjekte>";
  const std::string kNothing = "Fehler: keine passenden Daten gefunden";
  const std::string kIncomplete = "Fehler: Vorlage 'TEMPLATE' ist unvollständig"_ansi;
  struct Case {
    const char* name;
    std::string bytes;  // of the template; no template where empty
    bool has_points;
    std::string message;
  };
  const Case kCases[] = {
      {"no template, no points", "", false, "Fehler: Datei 'TEMPLATE' wurde nicht gefunden"},
      {"no points", "<r>" + kNumbers + kObjects + "</r>", false, kNothing},
      {"no geaenderteObjekte", "<r>" + kNumbers + "</r>", true, kNothing},
      {"no Transaction", "<r>" + kNumbers + "<geaenderteObjekte/></r>", true, kNothing},
      {"Transaction too deep", "<r>" + kNumbers + "<x>" + kObjects + "</x></r>", true, kNothing},
      {"no antragsnummer", "<r><auftragsnummer/>" + kObjects + "</r>", true, kIncomplete},
      {"no auftragsnummer, no points", "<r><antragsnummer/></r>", false, kIncomplete},
      {"numbers too deep", "<r><x>" + kNumbers + "</x>" + kObjects + "</r>", true, kIncomplete},
      {"no root", "no tree at all", true, kIncomplete},
  };
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.name);
    const std::string path = folder_.File("t.xml");
    if (!c.bytes.empty()) folder_.Write("t.xml", c.bytes);
    folder_.Write("out.xml", "old");
    std::array points = {Point("1", "632145.123", "5651234.000")};
    std::string message = c.message;
    if (const std::size_t at = message.find("TEMPLATE"); at != std::string::npos) message.replace(at, 8, path);
    EXPECT_EQ(WriteBatchFile(c.has_points ? points.data() : nullptr, folder_.File("out.xml"), path, "09", "A", "B"),
              message);
    EXPECT_EQ(Output(), "old");
  }
}

TEST_F(Batch, ShowsNoSuccessWhenTheFileCannotBeWritten) {
  std::array points = {Point("1", "632145.123", "5651234.000")};
  const std::string path = folder_.File("no such folder/out.xml");
  EXPECT_EQ(WriteBatchFile(points.data(), path, folder_.Write("t.xml", kTemplate), "09", "A", "B"),
            "Fehler: Datei '" + path + "' konnte nicht geschrieben werden");
}

TEST(BatchText, KeepsTheFirst254Characters) {
  const support::OverflowLog log;
  std::string field;
  PutBatchText(&field, std::string(254, 'x').c_str());
  EXPECT_EQ(field, std::string(254, 'x'));
  EXPECT_TRUE(log.texts().empty());
  PutBatchText(&field, std::string(255, 'y').c_str());
  EXPECT_EQ(field, std::string(254, 'y'));
  EXPECT_EQ(log.texts().size(), 1U);
}

}  // namespace
}  // namespace pktaus
