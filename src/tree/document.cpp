#include "tree/document.h"

#include <new>
#include <optional>

#include "tree/staging.h"
#include "tree/text_stream.h"

namespace pktaus {

CTreeDocument::CTreeDocument() : storage_(std::make_unique<Storage>(this)) {
  header_ = MakeHeader();
  header_->SetValue("xml version=\"1.0\" encoding=\"UTF-8\"");
}

CTreeNode* CTreeDocument::NewNode(std::string_view name) { return MakeNode(NameFor(name)); }

CTreeNode* CTreeDocument::NewTextNode(std::string_view name, std::string_view value) {
  CTreeNode* node = NewNode(name);
  node->SetValue(value);
  return node;
}

CTreeMarkupNode* CTreeDocument::NewMarkupNode(std::string_view name, std::string_view value) {
  CTreeMarkupNode* node = MakeMarkup(NameFor(name));
  node->SetValue(value);
  return node;
}

void CTreeDocument::SetRoot(CTreeNode* node) {
  if (node == nullptr) return;
  name_ = node->GetName();
  root_ = node;
}

bool CTreeDocument::LoadXml(std::string_view path, bool scan_all) {
  std::string opened(path);
  if (NeedsStaging(path, scan_all)) {
    const std::optional<std::string> copy = StageFile(path);
    if (!copy) {
      xml_fault_ = {XmlFault::Kind::kNotStaged};
      return false;
    }
    opened = *copy;
  }
  TextStream stream;
  if (!stream.OpenRead(opened)) {
    xml_fault_ = {XmlFault::Kind::kNotRead};
    return false;
  }
  ReadXml(&stream);
  path_ = opened;
  return true;
}

bool CTreeDocument::LoadIni(std::string_view path, bool free_keys) {
  TextStream stream;
  if (!stream.OpenRead(path) || !ReadIni(&stream, free_keys)) return false;
  path_ = path;
  return true;
}

int CTreeDocument::SaveXml(std::string_view path) {
  TextStream stream;
  if (spoilt_ || !stream.Create(path)) return -1;
  WriteXml(&stream);
  if (!stream.Close()) return -1;
  path_ = path;
  return 0;
}

int CTreeDocument::SaveIni(std::string_view path) {
  TextStream stream;
  if (spoilt_ || !stream.Create(path)) return -1;
  WriteIni(&stream);
  return stream.Close() ? 0 : -1;
}

NameId CTreeDocument::NameFor(std::string_view name) {
  const NameId id = names_.Intern(name);
  spoilt_ = spoilt_ || id == kNoName;
  return id;
}

void CTreeDocument::ForgetNodes() {
  root_ = nullptr;
  header_ = nullptr;
  storage_ = std::make_unique<Storage>(this);
}

CTreeNode* CTreeDocument::MakeNode(NameId name) { return new (storage_->objects.Take<CTreeNode>()) CTreeNode(name); }

CTreeMarkupNode* CTreeDocument::MakeMarkup(NameId name) {
  return new (storage_->objects.Take<CTreeMarkupNode>()) CTreeMarkupNode(name);
}

CTreeHeaderNode* CTreeDocument::MakeHeader() {
  return new (storage_->objects.Take<CTreeHeaderNode>()) CTreeHeaderNode(names_.Intern("?"));
}

CTreeAttribute* CTreeDocument::MakeAttribute(NameId name, std::string_view value) {
  return new (storage_->objects.Take<CTreeAttribute>()) CTreeAttribute{name, KeepText(value), nullptr};
}

}  // namespace pktaus
