#include "nas/order_file.h"

#include <gtest/gtest.h>

#include <array>
#include <deque>
#include <string>
#include <vector>

#include "base/bounded.h"
#include "base/text.h"
#include "catalog/catalog.h"
#include "catalog/catalog_store.h"
#include "entry/host/desktop.h"
#include "platform/file.h"
#include "tests/support/clock_at.h"
#include "tests/support/scripted_desktop.h"
#include "tests/support/temp_folder.h"

namespace pktaus {
namespace {

using namespace text::literals;

constexpr const char* kTemplate =
    "<r><a:antragsnummer/><auftragsnummer/><geaenderteObjekte><wfs:Transaction><old/></wfs:Transaction>"
    "</geaenderteObjekte></r>";

// Rows come out in the reverse of the file: Bare 0, NoPlace 1, Full 2, Plain 3.
constexpr const char* kCatalog =
    "[T_list]\n\"1\" = \"eins\"\n[AX_PunktortTA]\nkoordinatenstatus = \"list\"\nhinweise = \"list\"\n"
    "genauigkeitsstufe = \"list\"\nvertrauenswuerdigkeit = \"list\"\nueberpruefungsdatum = \"ja\"\n"
    "lagezuverlaessigkeit = \"ja\"\n[AX_PunktortAU]\n[AX_Plain]\nort = \"PunktortAU\"\npunktkennung = \"x\"\n"
    "abmarkung_Marke = \"list\"\n[AX_Full]\nort = \"PunktortTA\"\npunktkennung = \"x\"\nabmarkung_Marke = \"list\"\n"
    "vermarkung_Marke = \"list\"\nbemerkungZurAbmarkung = \"list\"\nzustaendige_stelle = \"list\"\n[AX_NoPlace]\n"
    "[AX_Bare]\nort = \"PunktortAU\"\n";
enum Type : std::int32_t { kBare, kNoPlace, kFull, kPlain };

constexpr const char* kOriginal =
    "<wfs:member>\n<AX_Full gml:id=\"OWNER\">\n<beginnt>2001-02-03T04:05:06Z</beginnt>\n</AX_Full>\n</wfs:member>\n"
    "<wfs:member>\n<AX_PunktortTA gml:id=\"FIRST\">\n<beginnt>2002-02-03T04:05:06Z</beginnt>\n"
    "<istTeilVon xlink:href=\"urn:adv:oid:OWNER\"/>\n</AX_PunktortTA>\n</wfs:member>\n"
    "<wfs:member>\n<AX_PunktortAU gml:id=\"SECOND\">\n<beginnt>2003-02-03T04:05:06Z</beginnt>\n"
    "<istTeilVon xlink:href=\"urn:adv:oid:OWNER\"/>\n</AX_PunktortAU>\n</wfs:member>\n"
    "<wfs:member>\n<AX_Other gml:id=\"STRANGE\">\n</AX_Other>\n</wfs:member>\n"
    "<wfs:member>\n<AX_PunktortAU gml:id=\"THIRD\">\n<istTeilVon xlink:href=\"urn:adv:oid:STRANGE\"/>\n"
    "</AX_PunktortAU>\n</wfs:member>\n";

/// Shows boxes and text views as lines "title: text".
class Desktop : public support::ScriptedDesktop {
 public:
  void Run(toolkit::Dialog& dialog, toolkit::Window) override {
    shown += dialog.title() + ": " + static_cast<toolkit::TextField*>(dialog.controls()[0])->text + "\n";
    dialog.Handle(toolkit::Closed{});
  }
  int ShowBox(const std::string& text, const std::string& title, unsigned, toolkit::Window) override {
    shown += title + ": " + text + "\n";
    return toolkit::kAnswerOk;
  }
  std::string shown;
};

PointRecord Point(std::int32_t aktion, const char* wepo = "", Type type = kFull) {
  PointRecord point{};
  point.aktion = aktion;
  point.oa = type;
  point.po = kPoTA;
  point.bza = point.zst = point.kst = point.hin = point.gst = point.vtw = point.abm = kNoChoice;
  point.lzv = kLzvNotGiven;
  point.bundesland = 9;
  point.her = 5;
  point.east = 32632145.1234;
  point.north = 5651234;
  put(point.wepo, wepo);
  put(point.obgid, "OWNER");
  put(point.gmlid, "FIRST");
  put(point.pkn, "PKN");
  put(point.auftrag, "auf");
  put(point.antragn, "ant");
  return point;
}

class OrderFile : public testing::Test {
 protected:
  OrderFile() {
    SetPluginFolder(folder_.path());
    folder_.Write("t.xml", kTemplate);
    CatalogFacts facts;
    EXPECT_TRUE(ReadCatalog(folder_.Write("c.ini", kCatalog), &facts));
    get_catalog_store()->orig_xml = folder_.Write("o.xml", kOriginal);
  }
  ~OrderFile() override { SetPluginFolder({}); }

  std::string Write(std::vector<PointRecord> points, const char* land = "09", std::int32_t limit = 100) {
    for (std::size_t i = 0; i + 1 < points.size(); ++i) points[i].next = &points[i + 1];
    return WriteOrderFile(out_, "t.xml", points.empty() ? nullptr : points.data(), limit, "Büro"_ansi, land);
  }
  /// The written file on one line.
  std::string Output() const {
    std::string text = support::BytesOf(out_);
    std::erase_if(text, [](char c) { return c == '\r' || c == '\n' || c == '\t'; });
    return text;
  }

  support::TempFolder folder_;
  const std::string out_ = folder_.File("out.xml");
  support::ClockAt clock_{"2016-03-02T09:05:03"};
  Desktop desktop_;
};

TEST_F(OrderFile, EachFailureEndsAsItMust) {
  const std::string kNothing = "Fehler: keine passenden Daten gefunden";
  const std::string kHint = "Hinweis: Bitte zuerst in den Einstellungen die Original XML einstellen\n";
  const std::string kNotFound = "found: nicht gefunden\n";
  const auto no_type = [](const std::string& who) {
    return "Fehler: Objektart des Punktes " + who + " ist im Katalog nicht vorhanden";
  };
  const std::string kOk = "Erfolgreich: 1 Punkte ausgegeben";
  const std::string kGone = folder_.File("gone.xml");
  PointRecord lost = Point(kAktionDelete);
  put(lost.gmlid, "NOBODY");
  PointRecord unnamed = Point(kAktionNew, "", kNoPlace);
  unnamed.pkn[0] = '\0';
  PointRecord nameless = Point(7);
  nameless.pkn[0] = nameless.obgid[0] = '\0';
  PointRecord typeless = Point(kAktionDelete);
  typeless.oa = -1;
  const PointRecord good = Point(kAktionNew);
  const struct {
    const char* name;
    std::vector<PointRecord> points;
    std::string original, shown, message;  // o.xml where empty; nothing is saved but with kOk
  } kCases[] = {
      {"no point", {}, "", "", "Fehler: Kein objekt in der Liste"},
      {"delete without a setting", {good, Point(kAktionDelete), good}, "-", kHint + "abbruch: 1\n", kOk},
      {"delete without a setting, first", {Point(kAktionDelete), good}, "-", kHint + "abbruch: 1\n", kNothing},
      {"delete of an unknown one", {good, lost, good}, "", kNotFound, kOk},
      {"delete without the file", {good, Point(kAktionDelete)}, kGone, kNotFound, kOk},
      {"pair without a setting", {good, Point(kAktionReplace, "A|SECOND|")}, "-", kHint + "abbruch: 2\n", kNothing},
      {"pair of an unknown one", {good, Point(kAktionReplace, "A|SECON")}, "", kNotFound, kNothing},
      {"deleted pair of an unknown one", {good, Point(kAktionDelete, "A|SECOND|B|X|")}, "", kNotFound, kNothing},
      {"pair of a strange type", {good, Point(kAktionReplace, "A|THIRD")}, "", "", no_type("STRANGE")},
      {"no place in the catalogue", {good, unnamed}, "", "", no_type("OWNER")},
      {"no type", {good, typeless}, "", "", no_type("PKN")},
      {"no action", {good, nameless}, "", "", "Fehler: Aktion des Punktes 32632145.123 5651234.000 ist unbekannt"},
  };
  for (const auto& row : kCases) {
    get_catalog_store()->orig_xml = row.original.empty()  ? folder_.File("o.xml")
                                    : row.original == "-" ? ""
                                                          : row.original;
    folder_.Write("out.xml", "old");
    desktop_.shown.clear();
    EXPECT_EQ(Write(row.points), row.message) << row.name;
    EXPECT_EQ(desktop_.shown, row.shown) << row.name;
    EXPECT_EQ(support::BytesOf(out_) != "old", row.message == kOk) << row.name;
  }
}

TEST_F(OrderFile, TemplateAndTargetDecideOnTheMessage) {
  std::vector<PointRecord> points = {Point(kAktionNew)};
  const auto write = [&](const std::string& header, const std::string& out) {
    return WriteOrderFile(out, header, points.data(), 9, "", "09");
  };
  const std::string path = folder_.File("n.xml");
  EXPECT_EQ(write("n.xml", out_), "Fehler: Datei '" + path + "' wurde nicht gefunden");
  EXPECT_EQ(write("C:n.xml", out_), "Fehler: Datei 'C:n.xml' wurde nicht gefunden");
  folder_.Write("n.xml", "<r><antragsnummer/></r>");
  EXPECT_EQ(write(path, out_), "Fehler: Vorlage '" + path + "' ist unvollständig"_ansi);
  folder_.Write("n.xml", "<r><antragsnummer/><auftragsnummer/><geaenderteObjekte/></r>");
  EXPECT_EQ(write("n.xml", out_), "Fehler: keine passenden Daten gefunden");
  EXPECT_EQ(write("t.xml", "/proc/x.xml"), "Fehler: Datei '/proc/x.xml' konnte nicht geschrieben werden");
  EXPECT_EQ(write("t.xml", ""), "Erfolgreich: 1 Punkte ausgegeben");
  EXPECT_FALSE(platform::FileExists(out_));
}

TEST_F(OrderFile, CountsPointsAndTakesTheNumbersOfTheFirst) {
  PointRecord other = Point(kAktionNew);
  other.po = 4;  // an object without a position
  put(other.antragn, "zweiter");
  EXPECT_EQ(Write({Point(kAktionNew), other, other, other}, "16", 1), "Erfolgreich: 2 Punkte ausgegeben");
  const std::string file = Output();
  EXPECT_NE(file.find("<a:antragsnummer>ant</a:antragsnummer><auftragsnummer>auf</auftragsnummer>"), std::string::npos);
  EXPECT_LT(file.find("<old></old>"), file.find("DE_0000000000001"));
  EXPECT_NE(file.find("<AX_Full gml:id=\"DE_0000000000003\">"), std::string::npos);
  EXPECT_EQ(file.find("DE_0000000000004"), std::string::npos);
  EXPECT_EQ(file.find("zweiter"), std::string::npos);
}

TEST_F(OrderFile, WritesOfEachPointWhatCatalogueAndStateAllow) {
  const struct {
    void (*change)(PointRecord&);  // of an inserted one
    std::string there, missing;
    const char* land = "09";
  } kCases[] = {
      {[](auto&) {}, "<anlass>000000</anlass><punktkennung>PKN</punktkennung></AX_Full>", "zeigtAufExternes"},
      {[](auto&) {},
       "<gmd:processor><gmd:CI_ResponsibleParty><gmd:organisationName><gco:CharacterString>B\xC3\xBCro"
       "</gco:CharacterString></gmd:organisationName><gmd:role><gmd:CI_RoleCode codeList=\"http://www.isotc211.org/"
       "2005/resources/CodeList/gmxCodelists.xml#CI_RoleCode\" codeListValue=\"processor\">processor</gmd:CI_RoleCode>"
       "</gmd:role></gmd:CI_ResponsibleParty></gmd:processor><gmd:source><gmd:LI_Source><gmd:description>"
       "</gmd:description>",
       "AX_Datenerhebung_Punktort"},
      {[](auto&) {}, "<AX_Datenerhebung_Punktort>0005</AX_Datenerhebung_Punktort>", "gmd:processor", "16"},
      {[](auto& p) { p.her = 12345; }, "_Punktort>2345<", "12345", "16"},
      {[](auto&) {}, "<anlass>000000</anlass>", "zeigtAufExternes", "016"},
      {[](auto& p) { p.abm = p.bza = p.zst = 0; },
       "<land>9</land><stelle>0000</stelle></AX_Dienststelle_Schluessel></zustaendigeStelle><abmarkung_Marke>0"
       "</abmarkung_Marke><vermarkung_Marke>0</vermarkung_Marke><bemerkungZurAbmarkung>0</bemerkungZurAbmarkung>"
       "</AX_Full>",
       "-1"},
      {[](auto& p) { p.zst = 12345; }, "<stelle>12345</stelle>", "abmarkung"},
      {[](auto& p) { p.kst = p.hin = p.gst = p.vtw = p.lzv = 0, p.dat = 1456874400; },
       "<kartendarstellung>true</kartendarstellung><koordinatenstatus>0</koordinatenstatus><hinweise>0</hinweise>"
       "<ueberpruefungsdatum>2016-03-02</ueberpruefungsdatum><qualitaetsangaben>",
       "?"},
      {[](auto& p) { p.gst = 1, p.vtw = 2, p.lzv = kLzvFalse; },
       "</herkunft><genauigkeitsstufe>1</genauigkeitsstufe><vertrauenswuerdigkeit>2</vertrauenswuerdigkeit>"
       "<lagezuverlaessigkeit>false</lagezuverlaessigkeit></AX_DQPunktort>",
       "koordinatenstatus"},
      {[](auto& p) { p.lzv = kLzvTrue, p.dat = -1; }, "<lagezuverlaessigkeit>true<", "ueberpruefungsdatum"},
      {[](auto& p) { p.oa = kPlain, p.pkn[0] = '\0', p.abm = p.kst = p.dat = p.lzv = 0; },
       "<anlass>000000</anlass><abmarkung_Marke>0</abmarkung_Marke></AX_Plain>", "koordinatenstatus"},
      {[](auto& p) { p.oa = kBare, p.zst = p.abm = p.bza = 1, p.po = kPoAG; },
       "<anlass>000000</anlass></AX_Bare></wfs:Insert><wfs:Insert><AX_PunktortAG gml:id=\"DE_0000000000002\">", "PKN"},
      {[](auto& p) { p = Point(kAktionNew, "A|SECOND"); }, "wfs:Insert", "SECOND"},
      {[](auto& p) { p = Point(kAktionReplace, "A"); }, "FIRST", "SECOND"},
      {[](auto& p) { p = Point(kAktionReplace, "A|SECOND"); }, "<wfs:Replace><AX_PunktortAU gml:id=\"SECOND\">",
       "2003"},
      {[](auto& p) { p = Point(kAktionDelete, "A|SECOND|"); },
       "<wfs:Delete typeName=\"A\"><fes:Filter><fes:ResourceId rid=\"SECOND20030203T040506Z\">", "gml:id"},
      {[](auto& p) { p.aktion = kAktionDelete, p.po = 0; }, "typeName=\"AX_Full\"", "FIRST"},
  };
  for (const auto& row : kCases) {
    SCOPED_TRACE(&row - kCases);
    PointRecord point = Point(kAktionNew);
    row.change(point);
    EXPECT_EQ(Write({point}, row.land), "Erfolgreich: 1 Punkte ausgegeben");
    const std::string file = Output();
    EXPECT_NE(file.find(row.there), std::string::npos) << file;
    EXPECT_EQ(file.find(row.missing), std::string::npos) << file;
  }
}

}  // namespace
}  // namespace pktaus
