// What every input of the tree's readers must hold: for the fuzzers, and for the tests that replay their corpus.
#pragma once

#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tree/document.h"
#include "tree/text_stream.h"

namespace fuzz {

inline void Require(bool holds) {
  if (!holds) std::abort();
}

/// Most bytes that a load reads, whatever the file holds: the reader's bound, and what one try may take beyond it.
inline std::uint64_t MostReads(std::size_t size) { return 10 * (size + 1) + 1024 * 1024; }

inline std::unique_ptr<pktaus::CTreeDocument> LoadXml(std::string_view xml) {
  auto document = std::make_unique<pktaus::CTreeDocument>();
  pktaus::TextStream stream;
  stream.OpenText(xml);
  document->ReadXml(&stream);
  Require(stream.ByteReads() <= MostReads(xml.size()));
  return document;
}

inline std::string SaveXml(const pktaus::CTreeDocument& document) {
  std::string out;
  pktaus::TextStream stream;
  stream.CreateText(&out);
  document.WriteXml(&stream);
  stream.Close();
  return out;
}

/// Whether a "<!" node comes back as it is written: a comment without an end mark inside, a section
/// whose brackets pair. The reader also keeps "<!x>...</x>" with any name, which is written without its tags; and it
/// takes "<!/-->...</-->" for a comment and "<!/[>...</[>" for a section, whatever stands inside.
inline bool MarkupReadsBack(std::string_view name, std::string_view value) {
  if (name == "--") {
    const std::string written = std::string(value) + "-->";
    for (const char* mark : {"/>", "?>", "-->"}) {
      if (written.find(mark) < value.size()) return false;
    }
    return true;
  }
  int depth = 1;
  for (const char c : value) {
    depth += c == '[' ? 1 : c == ']' ? -1 : 0;
    if (depth == 0) return false;
  }
  return name == "[" && depth == 1;
}

/// Whether an attribute's name comes back. Names are written without quotes, so one that took in a blank, tab, LF, '='
/// or '>' from between quotes falls apart.
inline bool AttributeReadsBack(std::string_view name) {
  return name.find_first_of(" \t\n=>") == std::string_view::npos;
}

/// Whether what is written of a tree reads as the same tree.
inline bool ReadsBack(const pktaus::CTreeNode* root) {
  std::vector<const pktaus::CTreeNode*> open;
  if (root != nullptr) open.push_back(root);
  while (!open.empty()) {
    const pktaus::CTreeNode* node = open.back();
    open.pop_back();
    if (dynamic_cast<const pktaus::CTreeMarkupNode*>(node) != nullptr) {
      if (!MarkupReadsBack(node->GetName(), node->GetValue())) return false;
      continue;  // its attributes and children are not written
    }
    for (const auto* a = node->GetFirstAttribute(); a != nullptr; a = a->next) {
      if (!AttributeReadsBack(node->GetDocument()->NameOf(a->name))) return false;
    }
    for (const auto* child = node->GetFirstChild(); child != nullptr; child = child->GetNextSibling()) {
      open.push_back(child);
    }
  }
  return true;
}

inline void TryXml(std::string_view xml) {
  const auto first = LoadXml(xml);
  const std::string saved = SaveXml(*first);
  const auto second = LoadXml(saved);
  if (ReadsBack(first->GetRoot())) Require(SaveXml(*second) == saved);
}

inline void TryIni(std::string_view ini) {
  for (const bool free_keys : {false, true}) {
    pktaus::CTreeDocument document;
    pktaus::TextStream stream;
    stream.OpenText(ini);
    Require(document.ReadIni(&stream, free_keys) && document.GetRoot() != nullptr);
    Require(stream.ByteReads() <= 3 * (ini.size() + 1));
    for (const auto* section = document.GetRoot()->GetFirstChild(); section != nullptr;
         section = section->GetNextSibling()) {
      Require(section->GetFirstChild() != nullptr && section->GetFirstChild()->GetName() == "FREEDATA");
    }
    std::string saved;
    pktaus::TextStream out;
    out.CreateText(&saved);
    document.WriteIni(&out);
    out.Close();
  }
}

}  // namespace fuzz
