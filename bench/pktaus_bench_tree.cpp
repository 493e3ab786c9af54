// The tree's forms: load, save, delete.
#include <cstdio>
#include <memory>
#include <vector>

#include "bench/pktaus_bench.h"
#include "tree/document.h"

namespace pktaus {
namespace {

// Nodes of the tree, its root included.
std::size_t CountNodes(const CTreeNode* root) {
  std::size_t count = 0;
  std::vector<const CTreeNode*> open;
  if (root != nullptr) open.push_back(root);
  while (!open.empty()) {
    const CTreeNode* node = open.back();
    open.pop_back();
    ++count;
    for (const CTreeNode* child = node->GetFirstChild(); child != nullptr; child = child->GetNextSibling()) {
      open.push_back(child);
    }
  }
  return count;
}

int Report(const CTreeDocument& document, bool loaded, int saved) {
  std::printf("%s, %zu nodes, save %d\n", loaded ? "loaded" : "not loaded", CountNodes(document.GetRoot()), saved);
  return loaded && document.GetRoot() != nullptr && saved == 0 ? 0 : 1;
}

}  // namespace

int BenchXml(const char* in, const char* out) {
  Phases phases;
  auto document = std::make_unique<CTreeDocument>();
  const bool loaded = document->LoadXml(in, false);
  phases.Mark("load");
  const int saved = document->SaveXml(out);
  phases.Mark("save");
  const int result = Report(*document, loaded, saved);
  phases.Mark("count");
  document.reset();
  phases.Mark("delete");
  return result;
}

int BenchIni(const char* in, const char* out) {
  Phases phases;
  auto document = std::make_unique<CTreeDocument>();
  const bool loaded = document->LoadIni(in, true);
  phases.Mark("load");
  const int saved = document->SaveIni(out);
  phases.Mark("save");
  const int result = Report(*document, loaded, saved);
  phases.Mark("count");
  document.reset();
  phases.Mark("delete");
  return result;
}

}  // namespace pktaus
