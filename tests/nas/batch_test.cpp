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
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?><AX_Fortfuehrungsauftrag xmlns:wfs=\"http://www.opengis.net/wfs/2.0\">"
    "<geaenderteObjekte><wfs:Transaction version=\"2.0.0\" service=\"WFS\"/></geaenderteObjekte><antragsnummer/>"
    "<auftragsnummer/></AX_Fortfuehrungsauftrag>";

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

TEST_F(Batch, SaysWhatIsMissingAndLeavesTheOldFile) {
  const std::string numbers = "<antragsnummer/><auftragsnummer/>";
  const std::string objects = "<geaenderteObjekte><wfs:Transaction/></geaenderteObjekte>";
  const std::string path = folder_.File("t.xml"), nothing = "Fehler: keine passenden Daten gefunden";
  const std::string incomplete = "Fehler: Vorlage '" + path + "' ist unvollständig"_ansi;
  const std::pair<std::string, std::string> kTemplates[] = {
      {"", "Fehler: Datei '" + path + "' wurde nicht gefunden"},
      {"<r>" + numbers + "<geaenderteObjekte/></r>", nothing},
      {"<r>" + numbers + "<x>" + objects + "</x></r>", nothing},
      {"<r><auftragsnummer/>" + objects + "</r>", incomplete},
      {"<r><x>" + numbers + "</x>" + objects + "</r>", incomplete},
      {"<r>\n" + numbers + "\n<geaenderteObjekte>", "Fehler: Vorlage '" + path + "' ist kein XML ab Zeile 3"},
  };
  folder_.Write("out.xml", "old");
  for (const auto& [bytes, message] : kTemplates) {
    if (!bytes.empty()) folder_.Write("t.xml", bytes);
    BatchPoint point = Point("1", "632145.123", "5651234.000");
    EXPECT_EQ(Write(&point, path), message) << bytes;
    EXPECT_EQ(support::BytesOf(out_), "old") << bytes;
  }
}

TEST(Identifiers, CountInBase36FilledToSixteenCharactersAndDaysAreLocal) {
  const std::pair<std::int32_t, const char*> kCounts[] = {{35, "DE_000000000000Z"}, {2147483646, "DE_0000000ZIK0ZI"}};
  for (const auto& [count, id] : kCounts) {
    id_counter = count;
    EXPECT_EQ(NewObjectId(), id);
    EXPECT_EQ(id_counter, count + 1);
  }
  const support::ClockAt clock("2016-03-02T09:05:03");
  EXPECT_EQ(DayText(1456874400), "2016-03-02") << "23:20 UTC is past midnight in Berlin";
}

TEST(Coordinates, LoseTheZoneOfTheEastAlone) {
  const std::pair<std::string, std::string> kEasts[] = {{"32632145,123", "632145.123"}, {"632145.123", "632145.123"},
                                                        {"32632145", "32632145"},       {"1,234,5", "1.234,5"},
                                                        {"32145.123", "32145.123"},     {"-1.000", "-1.000"}};
  for (const auto& [east, written] : kEasts) {
    std::string east_text = east, north = "55651234,567,8";
    EXPECT_EQ(CoordinateText(&east_text, &north), written + " 55651234.567,8");
  }
}

}  // namespace
}  // namespace pktaus
