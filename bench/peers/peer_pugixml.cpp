// peer_pugixml xml IN OUT: load and save. peer_pugixml batch TEMPLATE M OUT: the tree of M building points, printed.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <pugixml.hpp>
#include <string>

namespace {

pugi::xml_node Add(pugi::xml_node parent, const char* name, const char* text = nullptr) {
  pugi::xml_node node = parent.append_child(name);
  if (text != nullptr) node.append_child(pugi::node_pcdata).set_value(text);
  return node;
}

void AddModel(pugi::xml_node object) {
  Add(Add(Add(object, "modellart"), "AA_Modellart"), "advStandardModell", "DLKM");
}

std::string ObjectId(int number) {
  char text[32];
  std::snprintf(text, sizeof text, "DE_%013d", number);
  return text;
}

void AddPoint(pugi::xml_node transaction, int n) {
  const std::string id = ObjectId(2 * n + 1);
  char text[64];
  pugi::xml_node object = Add(Add(transaction, "wfs:Insert"), "AX_BesondererGebaeudepunkt");
  object.append_attribute("gml:id").set_value(id.c_str());
  Add(Add(Add(object, "lebenszeitintervall"), "AA_Lebenszeitintervall"), "beginnt", "2026-03-02T09:05:03Z");
  AddModel(object);
  pugi::xml_node cause = Add(object, "anlass");
  cause.append_attribute("xlink:title").set_value("Sonstiges");
  cause.append_attribute("xlink:href")
      .set_value("https://registry.gdi-de.org/codelist/de.adv-online.gid/AA_Anlassart/9999");
  std::snprintf(text, sizeof text, "%d", 100001 + n);
  Add(object, "punktkennung", text);
  pugi::xml_node office = Add(Add(object, "zustaendigeStelle"), "AX_Dienststelle_Schluessel");
  Add(office, "land", "16");
  Add(office, "stelle", "0042");

  pugi::xml_node position = Add(Add(transaction, "wfs:Insert"), "AX_PunktortAG");
  position.append_attribute("gml:id").set_value(ObjectId(2 * n + 2).c_str());
  AddModel(position);
  Add(position, "istTeilVon").append_attribute("xlink:href").set_value(("urn:adv:oid:" + id).c_str());
  pugi::xml_node point = Add(Add(position, "position"), "gml:Point");
  point.append_attribute("srsName").set_value("urn:adv:crs:ETRS89_UTM32");
  std::snprintf(text, sizeof text, "P%d", n + 1);
  point.append_attribute("gml:id").set_value(text);
  std::snprintf(text, sizeof text, "%.3f %.3f", 650000 + n % 9973 * 1.3571, 5651000 + n / 9973 * 2.7183);
  Add(point, "gml:pos", text);
  Add(position, "kartendarstellung", "true");
  Add(position, "koordinatenstatus", "1000");
  pugi::xml_node quality = Add(Add(position, "qualitaetsangaben"), "AX_DQPunktort");
  pugi::xml_node step =
      Add(Add(Add(Add(quality, "herkunft"), "gmd:LI_Lineage"), "gmd:processStep"), "gmd:LI_ProcessStep");
  Add(Add(step, "gmd:description"), "AX_LI_ProcessStep_Punktort_Description", "Erhebung");
  Add(Add(Add(Add(step, "gmd:source"), "gmd:LI_Source"), "gmd:description"), "AX_Datenerhebung_Punktort", "1000");
  Add(quality, "genauigkeitsstufe", "2100");
}

}  // namespace

int main(int argc, char** argv) {
  pugi::xml_document document;
  if (argc < 4 || !document.load_file(argv[2])) return 1;
  if (std::strcmp(argv[1], "xml") == 0) return document.save_file(argv[3]) ? 0 : 1;
  if (argc < 5) return 1;
  pugi::xml_node transaction = document.document_element().child("geaenderteObjekte").child("wfs:Transaction");
  const int points = std::atoi(argv[3]);
  for (int n = 0; n < points; ++n) AddPoint(transaction, n);
  return document.save_file(argv[4]) ? 0 : 1;
}
