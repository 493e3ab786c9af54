// The XML form and the ini form of a tree.
#include <vector>

#include "tree/document.h"
#include "tree/node.h"
#include "tree/text_stream.h"

namespace pktaus {
namespace {

std::string_view NameOf(const CTreeNode& node) { return node.GetDocument()->NameOf(node.GetNameId()); }

void WriteStartTag(const CTreeNode& node, TextStream* stream) {
  stream->WriteMark("<");
  stream->WriteString(NameOf(node));
  for (const CTreeAttribute* a = node.GetFirstAttribute(); a != nullptr; a = a->next) {
    const std::string_view name = node.GetDocument()->NameOf(a->name);
    if (name.empty()) continue;
    stream->WriteMark(" ");
    stream->WriteString(name);
    stream->WriteMark("=\"");
    stream->WriteString(a->value.get());
    stream->WriteMark("\"");
  }
  stream->WriteMark(">");
}

void WriteValueAndEndTag(const CTreeNode& node, TextStream* stream) {
  stream->WriteUmlauts(node.GetValue());
  stream->WriteMark("</");
  stream->WriteString(NameOf(node));
  stream->WriteMark(">");
}

void WriteKey(const CTreeNode& key, TextStream* stream) {
  const std::string_view form = key.GetAttribute("REF");
  const std::string_view quote = form == "0" ? "" : form == "1" ? "'" : "\"";
  stream->WriteString(key.GetName());
  stream->WriteString(" = ");
  stream->WriteString(quote);
  stream->WriteString(key.GetValue());
  stream->WriteString(quote);
  stream->WriteString("\n");
}

}  // namespace

void CTreeNode::Write(TextStream* stream) const {
  std::vector<const CTreeNode*> open = {this};
  WriteStartTag(*this, stream);
  const CTreeNode* child = first_child_;
  while (!open.empty()) {
    if (child == nullptr) {
      WriteValueAndEndTag(*open.back(), stream);
      child = open.back()->next_sibling_;
      open.pop_back();
      continue;
    }
    stream->WriteLineEnd(open.size() - 1);
    if (child->kind_ == Kind::kElement) {
      WriteStartTag(*child, stream);
      open.push_back(child);
      child = child->first_child_;
    } else {
      child->Write(stream);
      child = child->next_sibling_;
    }
  }
}

void CTreeHeaderNode::Write(TextStream* stream) const {
  stream->WriteString("<");
  stream->WriteString(GetName());
  stream->WriteString(GetValue());
  stream->WriteString(GetName());
  stream->WriteString(">\n");
}

void CTreeMarkupNode::Write(TextStream* stream) const {
  stream->WriteString("<!");
  stream->WriteString(GetName());
  stream->WriteString(GetValue());
  stream->WriteString(GetName() == "[" ? "]" : GetName());
  stream->WriteString(">\n");
}

void CTreeDocument::WriteXml(TextStream* stream) const {
  if (header_ != nullptr) header_->Write(stream);
  if (root_ != nullptr) root_->Write(stream);
}

void CTreeDocument::WriteIni(TextStream* stream) const {
  if (root_ == nullptr) return;
  for (const CTreeNode* section = root_->GetFirstChild(); section != nullptr; section = section->GetNextSibling()) {
    stream->WriteString("[");
    stream->WriteString(section->GetName());
    stream->WriteString("]\n");
    for (const CTreeNode* key = section->GetFirstChild(); key != nullptr; key = key->GetNextSibling()) {
      if (key->GetName() != "FREEDATA") WriteKey(*key, stream);
    }
  }
}

}  // namespace pktaus
