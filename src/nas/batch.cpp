#include "nas/batch.h"

#include "base/bounded.h"
#include "nas/frame.h"
#include "nas/identifiers.h"
#include "nas/member.h"
#include "tree/document.h"

namespace pktaus {
namespace {

/// Appends both members of every point that has a place; the number of these points.
int AppendMembers(Frame* frame, BatchPoint* points, const std::string& land) {
  int count = 0;
  if (!frame->TakesMembers()) return count;
  for (BatchPoint* point = points; point != nullptr; point = point->next) {
    if (point->east.empty() || point->north.empty()) continue;
    frame->Append(WriteBatchObject(frame->document(), point, land));
    frame->Append(WriteBatchPunktort(frame->document(), point));
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
  Frame frame;
  std::string error = frame.Open(template_path, application_number, order_number);
  if (!error.empty()) return error;
  return frame.Close(output_path, AppendMembers(&frame, points, land));
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
  RowsOfProcessStep(row);
  RowsOfSource(row);
  row(11, "AX_Datenerhebung_Punktort", point->her);
  row(4, "genauigkeitsstufe", point->gst);
  return row.member();
}

}  // namespace pktaus
