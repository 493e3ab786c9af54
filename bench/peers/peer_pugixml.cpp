// peer_pugixml xml IN OUT                               load and save
// peer_pugixml batch TEMPLATE M OUT                     the tree of M building points, printed
// peer_pugixml order TEMPLATE NEW REPLACED DELETED OUT  the tree of an order, printed
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

void AddFront(pugi::xml_node object, const std::string& id) {
  object.append_attribute("gml:id").set_value(id.c_str());
  Add(object, "gml:identifier", ("urn:adv:oid:" + id).c_str())
      .append_attribute("codeSpace")
      .set_value("http://www.adv-online.de/");
  Add(Add(Add(object, "lebenszeitintervall"), "AA_Lebenszeitintervall"), "beginnt", "2026-03-02T09:05:03Z");
  AddModel(object);
}

void AddOwner(pugi::xml_node transaction, const char* member, const std::string& id, int n) {
  pugi::xml_node object = Add(Add(transaction, member), "AX_Grenzpunkt");
  AddFront(object, id);
  pugi::xml_node cause = Add(object, "anlass");
  cause.append_attribute("xlink:title").set_value("Sonstiges");
  cause.append_attribute("xlink:href")
      .set_value("https://registry.gdi-de.org/codelist/de.adv-online.gid/AA_Anlassart/9999");
  pugi::xml_node link = Add(Add(object, "zeigtAufExternes"), "AA_Fachdatenverbindung");
  Add(link, "art", "urn:th:fdv:0001");
  Add(Add(Add(link, "fachdatenobjekt"), "AA_Fachdatenobjekt"), "name", "2026-0042");
  Add(object, "punktkennung", std::to_string(326505651000001 + n).c_str());
  Add(object, "abmarkung_Marke", "1110");
}

/// With the coordinates as a tree, or as the lines that the original file has.
void AddPosition(pugi::xml_node transaction, const char* member, const std::string& id, const std::string& owner, int n,
                 bool raw) {
  pugi::xml_node object = Add(Add(transaction, member), raw ? "AX_PunktortAU" : "AX_PunktortTA");
  AddFront(object, id);
  Add(object, "istTeilVon").append_attribute("xlink:href").set_value(("urn:adv:oid:" + owner).c_str());
  char text[200];
  if (raw) {
    std::snprintf(text, sizeof text,
                  "<gml:Point srsName=\"urn:adv:crs:ETRS89_UTM32\" gml:id=\"O%d\">\n<gml:pos>%d %d</gml:pos>\n"
                  "</gml:Point>\n",
                  n, n, n);
    Add(object, "position", text);
  } else {
    pugi::xml_node point = Add(Add(object, "position"), "gml:Point");
    point.append_attribute("srsName").set_value("urn:adv:crs:ETRS89_UTM32");
    std::snprintf(text, sizeof text, "P%d", n + 1);
    point.append_attribute("gml:id").set_value(text);
    std::snprintf(text, sizeof text, "%.3f %.3f", 650000 + n % 9973 * 1.3571, 5651000 + n / 9973 * 2.7183);
    Add(point, "gml:pos", text);
  }
  Add(object, "kartendarstellung", raw ? "false" : "true");
  Add(object, "koordinatenstatus", "1000");
  Add(object, "hinweise", "1110");
  pugi::xml_node quality = Add(Add(object, "qualitaetsangaben"), "AX_DQPunktort");
  pugi::xml_node step =
      Add(Add(Add(Add(quality, "herkunft"), "gmd:LI_Lineage"), "gmd:processStep"), "gmd:LI_ProcessStep");
  Add(Add(step, "gmd:description"), "AX_LI_ProcessStep_Punktort_Description", "Erhebung");
  Add(Add(Add(Add(step, "gmd:source"), "gmd:LI_Source"), "gmd:description"), "AX_Datenerhebung_Punktort", "1000");
  Add(quality, "genauigkeitsstufe", "2100");
}

void AddDelete(pugi::xml_node transaction, const char* class_name, const std::string& id) {
  pugi::xml_node member = Add(transaction, "wfs:Delete");
  member.append_attribute("typeName").set_value(class_name);
  Add(Add(member, "fes:Filter"), "fes:ResourceId").append_attribute("rid").set_value((id + "20140506T070809Z").c_str());
}

/// Known points have none to two further position objects.
void AddOrder(pugi::xml_node transaction, int fresh, int replaced, int deleted) {
  for (int n = 0; n < fresh + replaced + deleted; ++n) {
    const bool known = n >= fresh;
    const std::string owner = ObjectId(4 * n + 1), position = ObjectId(4 * n + 2);
    if (n < fresh + replaced) {
      const char* member = known ? "wfs:Replace" : "wfs:Insert";
      AddOwner(transaction, member, owner, n);
      AddPosition(transaction, member, position, owner, n, false);
      for (int k = 0; known && k < n % 3; ++k)
        AddPosition(transaction, member, ObjectId(4 * n + 3 + k), owner, n, true);
    } else {
      AddDelete(transaction, "AX_Grenzpunkt", owner);
      AddDelete(transaction, "AX_PunktortTA", position);
      for (int k = 0; k < n % 3; ++k) AddDelete(transaction, "AX_PunktortAU", ObjectId(4 * n + 3 + k));
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  pugi::xml_document document;
  if (argc < 4 || !document.load_file(argv[2])) return 1;
  if (std::strcmp(argv[1], "xml") == 0) return document.save_file(argv[3]) ? 0 : 1;
  pugi::xml_node transaction = document.document_element().child("geaenderteObjekte").child("wfs:Transaction");
  if (std::strcmp(argv[1], "order") == 0 && argc == 7) {
    AddOrder(transaction, std::atoi(argv[3]), std::atoi(argv[4]), std::atoi(argv[5]));
    return document.save_file(argv[6]) ? 0 : 1;
  }
  if (argc < 5) return 1;
  const int points = std::atoi(argv[3]);
  for (int n = 0; n < points; ++n) AddPoint(transaction, n);
  return document.save_file(argv[4]) ? 0 : 1;
}
