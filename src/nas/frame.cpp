#include "nas/frame.h"

#include "base/text.h"
#include "nas/identifiers.h"
#include "platform/file.h"
#include "platform/system.h"
#include "tree/document.h"

namespace pktaus {
namespace {

using namespace text::literals;

/// A direct child, whatever its prefix.
CTreeNode* Child(CTreeNode* node, const char* name) {
  return node != nullptr ? node->FindChild(name, /*local_name=*/true) : nullptr;
}

/// Why a template cannot be used. The last system error is that of the load.
std::string Refusal(const std::string& template_path, const XmlFault& fault) {
  const std::string reason = ": " + platform::SystemErrorText(platform::LastSystemError());
  const std::string start = "Fehler: Vorlage '" + template_path + "' ";
  switch (fault.kind) {
    case XmlFault::Kind::kNone:
      return start + "ist unvollständig"_ansi;
    case XmlFault::Kind::kNotStaged:
      return start + "konnte nicht in den Ordner '" + platform::TempFolder() + "' kopiert werden" + reason;
    case XmlFault::Kind::kNotRead:
      return start + "konnte nicht gelesen werden" + reason;
    default:
      return start + "ist kein XML ab Zeile " + std::to_string(fault.line);
  }
}

}  // namespace

Frame::Frame() : document_(std::make_unique<CTreeDocument>()) {
  id_counter = 1;
  point_counter = 1;
}
Frame::~Frame() = default;

std::string Frame::Open(const std::string& template_path, const std::string& application_number,
                        const std::string& order_number) {
  if (!platform::FileExists(template_path)) return "Fehler: Datei '" + template_path + "' wurde nicht gefunden";
  document_->LoadXml(template_path, /*scan_all=*/false);
  CTreeNode* root = document_->GetRoot();
  CTreeNode* application = Child(root, "antragsnummer");
  CTreeNode* order = Child(root, "auftragsnummer");
  if (application == nullptr || order == nullptr) {
    return Refusal(template_path, document_->GetXmlFault());
  }
  application->SetValue(application_number);
  order->SetValue(order_number);
  members_ = ChildAppender(Child(Child(root, "geaenderteObjekte"), "Transaction"));
  return {};
}

std::string Frame::Close(const std::string& output_path, int count) {
  if (count == 0) return kNothingFound;
  if (document_->SaveXml(output_path) != 0) {
    return "Fehler: Datei '" + output_path + "' konnte nicht geschrieben werden";
  }
  return WrittenMessage(count);
}

std::string WrittenMessage(int count) { return "Erfolgreich: " + std::to_string(count) + " Punkte ausgegeben"; }

}  // namespace pktaus
