// The tree's forms: load, save, delete.
#include <cstdio>
#include <memory>
#include <string>

#include "bench/pktaus_bench.h"
#include "tree/document.h"

namespace pktaus {
namespace {

// Not a walk over the tree, which would be measured as well.
int Report(const CTreeDocument& document, bool loaded, int saved) {
  const std::string root(document.GetRoot() == nullptr ? "no root" : document.GetRoot()->GetName());
  std::printf("%s: %s, save %d\n", loaded ? "loaded" : "not loaded", root.c_str(), saved);
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
  document.reset();
  phases.Mark("delete");
  return result;
}

}  // namespace pktaus
