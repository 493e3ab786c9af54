// Trees as one line of text, for tables of cases.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "tree/document.h"
#include "tree/text_stream.h"

namespace support {

/// Name, attributes in brackets, value in quotes, children in parentheses: a[b=c]"v"(d e"x"). "-" for no node.
/// Markup nodes have a "!" in front.
inline std::string TreeText(const pktaus::CTreeNode* root) {
  if (root == nullptr) return "-";
  std::string text;
  std::vector<const pktaus::CTreeNode*> open;
  const pktaus::CTreeNode* node = root;
  for (;;) {
    if (dynamic_cast<const pktaus::CTreeMarkupNode*>(node) != nullptr) text += '!';
    text += node->GetName();
    if (const pktaus::CTreeAttribute* a = node->GetFirstAttribute(); a != nullptr) {
      text += '[';
      for (; a != nullptr; a = a->next) {
        text += node->GetDocument()->NameOf(a->name);
        text += '=';
        text += a->value;
        if (a->next != nullptr) text += ' ';
      }
      text += ']';
    }
    if (!node->GetValue().empty()) text.append("\"").append(node->GetValue()).append("\"");
    if (node->GetFirstChild() != nullptr) {
      text += '(';
      open.push_back(node);
      node = node->GetFirstChild();
      continue;
    }
    while (!open.empty() && node->GetNextSibling() == nullptr) {
      text += ')';
      node = open.back();
      open.pop_back();
    }
    if (open.empty()) return text;
    text += ' ';
    node = node->GetNextSibling();
  }
}

inline std::unique_ptr<pktaus::CTreeDocument> ReadXmlText(std::string_view xml) {
  auto document = std::make_unique<pktaus::CTreeDocument>();
  pktaus::TextStream stream;
  stream.OpenText(xml);
  document->ReadXml(&stream);
  return document;
}

}  // namespace support
