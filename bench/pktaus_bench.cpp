#include "bench/pktaus_bench.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

namespace pktaus {
namespace {

double CpuSeconds() { return static_cast<double>(std::clock()) / CLOCKS_PER_SEC; }

struct Work {
  const char* name;
  const char* arguments;
  int count;
  int (*run)(char** arguments);
};

const Work kWork[] = {
    {"xml", "IN OUT", 2, [](char** a) { return BenchXml ? BenchXml(a[0], a[1]) : 2; }},
    {"ini", "IN OUT", 2, [](char** a) { return BenchIni ? BenchIni(a[0], a[1]) : 2; }},
    {"dbf", "FILE", 1, [](char** a) { return BenchDbf ? BenchDbf(a[0]) : 2; }},
    {"lookup", "TABLE NAMES", 2, [](char** a) { return BenchLookup ? BenchLookup(a[0], a[1]) : 2; }},
    {"batch", "TEMPLATE M OUT", 3, [](char** a) { return BenchBatch ? BenchBatch(a[0], std::atol(a[1]), a[2]) : 2; }},
    {"catalog", "FILE", 1, [](char** a) { return BenchCatalog ? BenchCatalog(a[0]) : 2; }},
    {"reserved", "FOLDER", 1, [](char** a) { return BenchReserved ? BenchReserved(a[0]) : 2; }},
    {"walk", "TABLE", 1, [](char** a) { return BenchWalk ? BenchWalk(a[0]) : 2; }},
    {"exportdialog", "TABLE", 1, [](char** a) { return BenchExportDialog ? BenchExportDialog(a[0]) : 2; }},
};

}  // namespace

Phases::Phases() : last_(CpuSeconds()) {}

void Phases::Mark(const char* name) {
  const double now = CpuSeconds();
  char text[64];
  std::snprintf(text, sizeof text, " %s=%.3f", name, now - last_);
  text_ += text;
  last_ = now;
}

Phases::~Phases() { std::fprintf(stderr, "phase%s\n", text_.c_str()); }

}  // namespace pktaus

int main(int argc, char** argv) {
  for (const auto& work : pktaus::kWork) {
    if (argc == work.count + 2 && std::strcmp(argv[1], work.name) == 0) return work.run(argv + 2);
  }
  for (const auto& work : pktaus::kWork) std::fprintf(stderr, "pktaus-bench %s %s\n", work.name, work.arguments);
  return 2;
}
