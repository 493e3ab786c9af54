// The real readers and writers beside the naive ones: for the fuzzers on small inputs, and for tests over small worlds.
#pragma once

#include <cstdio>
#include <string>
#include <string_view>

#include "fuzz/reference_tree.h"
#include "fuzz/tree_inputs.h"
#include "tree/document.h"
#include "tree/text_stream.h"

namespace fuzz {

using pktaus::CTreeDocument;
using pktaus::CTreeNode;
using pktaus::TextStream;

inline std::string Legible(std::string_view bytes) {
  std::string out;
  for (const char c : bytes) {
    char code[8];
    std::snprintf(code, sizeof(code), c >= ' ' && c < 127 ? "%c" : "\\x%02X", static_cast<unsigned char>(c));
    out += code;
  }
  return out;
}

// Everything that a tree holds, as a text. Lengths keep texts apart whatever is in them.
inline void DumpText(char what, std::string_view text, std::string* out) {
  *out += what + std::to_string(text.size()) + ":";
  *out += text;
}

inline void Dump(const reference::Node* node, std::string* out) {
  if (node == nullptr) return;
  *out += "(" + std::to_string(node->kind);
  DumpText('n', node->name, out);
  DumpText('v', node->value, out);
  for (const auto& [name, value] : node->attributes) {
    DumpText('a', name, out);
    DumpText('=', value, out);
  }
  for (const auto& child : node->children) Dump(child.get(), out);
  *out += ")";
}

inline void Dump(const CTreeNode* node, std::string* out) {
  if (node == nullptr) return;
  *out += "(" + std::to_string(dynamic_cast<const pktaus::CTreeHeaderNode*>(node)   ? reference::Node::kHeader
                               : dynamic_cast<const pktaus::CTreeMarkupNode*>(node) ? reference::Node::kMarkup
                                                                                    : reference::Node::kElement);
  DumpText('n', node->GetName(), out);
  DumpText('v', node->GetValue(), out);
  for (const auto* attribute = node->GetFirstAttribute(); attribute != nullptr; attribute = attribute->next) {
    DumpText('a', node->GetDocument()->NameOf(attribute->name), out);
    DumpText('=', attribute->value.get(), out);
  }
  for (const CTreeNode* child = node->GetFirstChild(); child != nullptr; child = child->GetNextSibling()) {
    Dump(child, out);
  }
  *out += ")";
}

template <typename Header, typename Root>
inline std::string Tree(const Header& header, const Root& root) {
  std::string out = "header";
  Dump(header, &out);
  out += "root";
  Dump(root, &out);
  return out;
}

inline std::string Tree(const CTreeDocument& document) { return Tree(document.GetHeader(), document.GetRoot()); }
inline std::string Tree(const reference::Document& document) {
  return Tree(document.header.get(), document.root.get());
}

inline void ReadXml(std::string_view bytes, CTreeDocument* document) {
  TextStream stream;
  stream.OpenText(bytes);
  document->ReadXml(&stream);
}

// Whether a second save must equal the first.
inline bool SecondSaveEqual(const reference::Node& node) {
  if (node.kind == reference::Node::kMarkup) return fuzz::MarkupReadsBack(node.name, node.value);
  for (const auto& [name, value] : node.attributes) {
    if (!fuzz::AttributeReadsBack(name)) return false;
  }
  for (const auto& child : node.children) {
    if (!SecondSaveEqual(*child)) return false;
  }
  return true;
}

/// What the real ones and the naive ones say about a text, documents being used again; empty where they agree. `trees`
/// and `exceptions` (of the law of the second save) count.
struct Comparison {
  CTreeDocument document;
  CTreeDocument again;
  int trees = 0;
  int exceptions = 0;

  static std::string Difference(const char* what, std::string_view bytes, const std::string& is,
                                const std::string& should) {
    if (is == should) return {};
    return std::string(what) + " of " + Legible(bytes) + "\n  is     " + Legible(is) + "\n  should " + Legible(should);
  }

  std::string Xml(std::string_view bytes) {
    const reference::Document expected = reference::ReadXml(bytes);
    ReadXml(bytes, &document);
    std::string told = Difference("tree", bytes, Tree(document), Tree(expected));
    if (!expected.header && !expected.root) return told;
    ++trees;
    const std::string saved = SaveXml(document);
    told += Difference("save", bytes, saved, reference::WriteXml(expected));
    if (expected.root && !SecondSaveEqual(*expected.root)) {
      ++exceptions;
      return told;
    }
    ReadXml(saved, &again);
    return told + Difference("second save", bytes, SaveXml(again), saved);
  }

  std::string Ini(std::string_view bytes) {
    std::string told;
    for (const bool free_keys : {false, true}) {
      TextStream in;
      in.OpenText(bytes);
      document.ReadIni(&in, free_keys);
      std::string saved;
      TextStream out;
      out.CreateText(&saved);
      document.WriteIni(&out);
      out.Close();
      const reference::Document expected = reference::ReadIni(bytes, free_keys);
      told += Difference("tree", bytes, Tree(document), Tree(expected));
      told += Difference("save", bytes, saved, reference::WriteIni(expected));
    }
    return told;
  }
};

}  // namespace fuzz
