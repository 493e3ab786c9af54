#include "nas/batch.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

#include "base/text.h"
#include "nas/identifiers.h"
#include "nas/member.h"
#include "tests/support/clock_at.h"
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

class Batch : public testing::Test {
 protected:
  std::string Write(BatchPoint* points, const std::string& path) {
    return WriteBatchFile(points, out_, path, "09", "A 1/Ü"_ansi, "4711");
  }

  support::TempFolder folder_;
  const std::string out_ = folder_.File("out.xml");
  support::ClockAt clock_{"2016-03-02T09:05:03"};
};

TEST_F(Batch, WritesTwoMembersForEachPointWithBothCoordinates) {
  std::array points = {Point("1", "32632145.123", "5651234.000"), Point("leer", "", "5651234.000"),
                       Point("Süd 2"_ansi, "632146,000", "5651235,500"), Point("leer", "632146.000", ""),
                       Point("3", "123.400", "0.000", "")};
  for (std::size_t i = 0; i + 1 < points.size(); ++i) points[i].next = &points[i + 1];
  const std::string path = folder_.Write("09Ort.XML", kTemplate);
  for (int time = 0; time < 2; ++time) {
    EXPECT_EQ(Write(points.data(), path), "Erfolgreich: 3 Punkte ausgegeben");
    EXPECT_EQ(support::BytesOf(out_), support::BytesOf(PKTAUS_SOURCE_DIR "/tests/golden/batch_land_09.xml"));
  }
  EXPECT_EQ(points[2].objid, "DE_0000000000003");
}

TEST_F(Batch, AppendsBehindTheMembersOfTheTemplate) {
  BatchPoint point = Point("1", "632145.123", "5651234.000");
  const std::string path = folder_.Write("t.xml",
                                         "<a:r><a:antragsnummer>x</a:antragsnummer><a:auftragsnummer/>"
                                         "<geaenderteObjekte><Transaction><first/><second/></Transaction>"
                                         "</geaenderteObjekte></a:r>");
  EXPECT_EQ(Write(&point, path), "Erfolgreich: 1 Punkte ausgegeben");
  const std::string output = support::BytesOf(out_);
  EXPECT_LT(output.find("<second></second>"), output.find("<wfs:Insert>"));
  EXPECT_NE(output.find("<a:auftragsnummer>4711</a:auftragsnummer>"), std::string::npos);
}

TEST_F(Batch, SaysWhatIsMissingAndLeavesTheOldFile) {
  const std::string kNumbers = "<antragsnummer/><auftragsnummer/>";
  const std::string kObjects = "<geaenderteObjekte><wfs:Transaction/></geaenderteObjekte>";
  const std::string path = folder_.File("t.xml");
  const std::string kNothing = "Fehler: keine passenden Daten gefunden";
  const std::string kIncomplete = "Fehler: Vorlage '" + path + "' ist unvollständig"_ansi;
  const struct {
    std::string bytes;  // of the template; no template where empty
    bool has_points;
    std::string message;
  } kTemplates[] = {
      {"", false, "Fehler: Datei '" + path + "' wurde nicht gefunden"},
      {"<r>" + kNumbers + kObjects + "</r>", false, kNothing},
      {"<r>" + kNumbers + "</r>", true, kNothing},
      {"<r>" + kNumbers + "<geaenderteObjekte/></r>", true, kNothing},
      {"<r>" + kNumbers + "<x>" + kObjects + "</x></r>", true, kNothing},
      {"<r><auftragsnummer/>" + kObjects + "</r>", true, kIncomplete},
      {"<r><antragsnummer/></r>", false, kIncomplete},
      {"<r><x>" + kNumbers + "</x>" + kObjects + "</r>", true, kIncomplete},
      {"no tree at all", true, kIncomplete},
  };
  folder_.Write("out.xml", "old");
  for (const auto& one : kTemplates) {
    if (!one.bytes.empty()) folder_.Write("t.xml", one.bytes);
    BatchPoint point = Point("1", "632145.123", "5651234.000");
    EXPECT_EQ(Write(one.has_points ? &point : nullptr, path), one.message) << one.bytes;
    EXPECT_EQ(support::BytesOf(out_), "old") << one.bytes;
  }
}

TEST(Identifiers, CountInBase36FilledToSixteenCharacters) {
  const std::pair<std::int32_t, const char*> kCounts[] = {
      {35, "DE_000000000000Z"}, {36, "DE_0000000000010"}, {2147483646, "DE_0000000ZIK0ZI"}};
  for (const auto& [count, id] : kCounts) {
    id_counter = count;
    EXPECT_EQ(NewObjectId(), id);
    EXPECT_EQ(id_counter, count + 1);
  }
}

TEST(Times, AreLocal) {
  const support::ClockAt clock("2016-03-02T09:05:03");
  EXPECT_EQ(DayText(1456874400), "2016-03-02") << "23:20 UTC is past midnight in Berlin";
}

TEST(Coordinates, LoseTheZoneOfTheEastAlone) {
  const std::pair<std::string, std::string> kEasts[] = {{"32632145.123", "632145.123"},
                                                        {"632145.123", "632145.123"},
                                                        {"32632145,123", "632145.123"},
                                                        {"1,234,5", "1.234,5"},
                                                        {"32145.123", "32145.123"},
                                                        {"32632145", "32632145"},
                                                        {"-1.000", "-1.000"}};
  for (const auto& [east, written] : kEasts) {
    std::string east_text = east, north = "55651234,567,8";
    EXPECT_EQ(CoordinateText(&east_text, &north), written + " 55651234.567,8");
  }
}

}  // namespace
}  // namespace pktaus
