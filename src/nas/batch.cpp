#include "nas/batch.h"

#include <memory>

#include "base/bounded.h"
#include "base/text.h"
#include "nas/identifiers.h"
#include "nas/member.h"
#include "platform/file.h"
#include "tree/document.h"

namespace pktaus {
namespace {

using namespace text::literals;

/// A direct child, whatever its prefix.
CTreeNode* Child(CTreeNode* node, const char* name) {
  return node != nullptr ? node->FindChild(name, /*local_name=*/true) : nullptr;
}

/// Sets the two numbers of the order; false where the template has no place for them.
bool SetOrderNumbers(CTreeNode* root, const std::string& application_number, const std::string& order_number) {
  CTreeNode* application = Child(root, "antragsnummer");
  CTreeNode* order = Child(root, "auftragsnummer");
  if (application == nullptr || order == nullptr) return false;
  application->SetValue(application_number);
  order->SetValue(order_number);
  return true;
}

/// Appends both members of every point that has a place; the number of these points.
int AppendMembers(CTreeDocument* document, CTreeNode* transaction, BatchPoint* points, const std::string& land) {
  int count = 0;
  for (BatchPoint* point = points; point != nullptr; point = point->next) {
    if (point->east.empty() || point->north.empty()) continue;
    transaction->AddChild(WriteBatchObject(document, point, land));
    transaction->AddChild(WriteBatchPunktort(document, point));
    ++count;
  }
  return count;
}

}  // namespace

void PutBatchText(std::string* field, const char* text) {
  char limited[kBatchTextSize];
  *field = put(limited, text);
}

std::string WriteBatchFile(BatchPoint* points, const std::string& output_path, const std::string& template_path,
                           const std::string& land, const std::string& application_number,
                           const std::string& order_number) {
  id_counter = 1;
  point_counter = 1;
  const auto document = std::make_unique<CTreeDocument>();
  if (!platform::FileExists(template_path)) return "Fehler: Datei '" + template_path + "' wurde nicht gefunden";
  document->LoadXml(template_path, /*scan_all=*/false);
  CTreeNode* root = document->GetRoot();
  if (!SetOrderNumbers(root, application_number, order_number)) {
    return "Fehler: Vorlage '" + template_path + "' ist unvollständig"_ansi;
  }
  CTreeNode* transaction = Child(Child(root, "geaenderteObjekte"), "Transaction");
  const int count = transaction != nullptr ? AppendMembers(document.get(), transaction, points, land) : 0;
  if (count == 0) return "Fehler: keine passenden Daten gefunden";
  if (document->SaveXml(output_path) != 0) {
    return "Fehler: Datei '" + output_path + "' konnte nicht geschrieben werden";
  }
  return "Erfolgreich: " + std::to_string(count) + " Punkte ausgegeben";
}

CTreeNode* WriteBatchObject(CTreeDocument* document, BatchPoint* point, const std::string& land) {
  PutBatchText(&point->objid, NewObjectId().c_str());
  MemberRows row(document);
  row(0, "wfs:Insert");
  row(1, "AX_BesondererGebaeudepunkt")->SetAttribute("gml:id", point->objid);
  RowsOfLebenszeitintervall(row);
  RowsOfModellart(row);
  row(2, NewAnlassNode(document, land));
  row(2, "punktkennung", point->name);
  RowsOfZustaendigeStelle(row, land, point->zst);
  return row.member();
}

CTreeNode* WriteBatchPunktort(CTreeDocument* document, BatchPoint* point) {
  MemberRows row(document);
  row(0, "wfs:Insert");
  row(1, "AX_PunktortAG")->SetAttribute("gml:id", NewObjectId());
  RowsOfModellart(row);
  RowsOfIstTeilVon(row, point->objid);
  RowsOfPosition(row, CoordinateText(&point->east, &point->north));
  row(2, "kartendarstellung", "true");
  row(2, "koordinatenstatus", point->kst);
  row(2, "qualitaetsangaben");
  row(3, "AX_DQPunktort");
  row(4, "herkunft");
  row(5, "gmd:LI_Lineage");
  row(6, "gmd:processStep");
  row(7, "gmd:LI_ProcessStep");
  row(8, "gmd:description");
  row(9, "AX_LI_ProcessStep_Punktort_Description", "Erhebung");
  row(8, "gmd:source");
  row(9, "gmd:LI_Source");
  row(10, "gmd:description");
  row(11, "AX_Datenerhebung_Punktort", point->her);
  row(4, "genauigkeitsstufe", point->gst);
  return row.member();
}

}  // namespace pktaus
