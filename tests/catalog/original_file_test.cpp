#include "catalog/original_file.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "tests/support/temp_folder.h"

namespace pktaus {
namespace {

constexpr char kEnd[] = "</wfs:member>\n";

std::string Object(const std::string& name, const std::string& id, const std::string& body) {
  return "<wfs:member>\n<" + name + " gml:id=\"" + id + "\">\n" + body + "</" + name + ">\n" + kEnd;
}
std::string Owner(const std::string& id, const std::string& body = "") { return Object("AX_Grenzpunkt", id, body); }
std::string PartOf(const std::string& id) { return "<istTeilVon xlink:href=\"urn:adv:oid:" + id + "\"/>\n"; }
std::string Position(const std::string& id, const std::string& owner, const std::string& body = "",
                     const std::string& name = "AX_PunktortTA") {
  return Object(name, id, PartOf(owner) + body);
}

/// A record and an extract as one text.
std::string Text(const PointRecord* record, const OriginalExtract* extract) {
  std::string text;
  if (record == nullptr) {
    text = "null";
  } else {
    for (const std::int32_t number :
         {record->aktion, record->po, record->oa, record->abm, record->bza, record->art, record->zst, record->kst,
          record->dat, record->hin, record->her, record->gst, record->vtw, record->lzv})
      text += std::to_string(number) + " ";
    text += std::string(record->pkn) + " " + record->obgid + " " + record->gmlid + " " + record->wepo;
  }
  if (extract != nullptr)
    text += std::string(" [") + extract->pos_xml + "] " + extract->object_beginnt + " " + extract->punktort_beginnt;
  return text;
}

std::string Found(const std::string& path, const char* id) {
  OriginalExtract extract;
  std::memset(&extract, 'x', sizeof extract);
  const auto record = SearchOriginalFile(path, id, &extract);
  return Text(record.get(), &extract);
}

TEST(OriginalFile, GivesWhatTheTwoBlocksSay) {
  const std::string owner_text =
      "<beginnt>B1</beginnt>\n<punktkennung x=\"\">326505651000017</punktkennung>\n<stelle>0042</stelle>\n"
      "<abmarkung_Marke>1110</abmarkung_Marke>\n";
  const std::string point = "<gml:Point gml:id=\"P1\">\n<gml:pos>1 2</gml:pos>\n</gml:Point>\n";
  const std::string values =
      "<beginnt>B2</beginnt>\n" + point +
      "<koordinatenstatus>1000</koordinatenstatus>\n<hinweise>7x</hinweise>\n<lagezuverlaessigkeit>true</x>\n"
      "<AX_Datenerhebung_Punktort>4100</x>\n<genauigkeitsstufe>2100</x>\n";
  const struct {
    const char* name;
    std::string file;
    std::string found;
  } kCases[] = {
      {"everything", Owner("O", owner_text) + Position("P", "O", values),
       "0 1 4 1110 -1 -1 42 1000 0 7 4100 2100 -1 -1 326505651000017 O P  [" + point + "] B1 B2"},
  };
  const support::TempFolder folder;
  for (const auto& row : kCases) EXPECT_EQ(Found(folder.Write("o.xml", row.file), "P"), row.found) << row.name;
}

}  // namespace
}  // namespace pktaus
