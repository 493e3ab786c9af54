#include "bench/pktaus_bench.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fstream>
#include <string>

namespace pktaus {
namespace {

double CpuSeconds() { return static_cast<double>(std::clock()) / CLOCKS_PER_SEC; }

/// Of this program alone: what the system tells who waits for it counts the caller's memory in.
long PeakKilobytes() {
  std::ifstream status("/proc/self/status");
  std::string word;
  long kilobytes = 0;
  while (status >> word && word != "VmHWM:") continue;
  status >> kilobytes;
  return kilobytes;
}

struct Work {
  const char* name;
  const char* arguments;
  int count;
  int (*run)(char** arguments);
};

const Work kWork[] = {
    {"xml", "IN OUT", 2, [](char** a) { return BenchXml(a[0], a[1]); }},
    {"ini", "IN OUT", 2, [](char** a) { return BenchIni(a[0], a[1]); }},
    {"dbf", "FILE", 1, [](char** a) { return BenchDbf(a[0]); }},
    {"lookup", "TABLE NAMES", 2, [](char** a) { return BenchLookup(a[0], a[1]); }},
    {"batch", "TEMPLATE M OUT", 3, [](char** a) { return BenchBatch(a[0], std::atol(a[1]), a[2]); }},
    {"order", "M OUT", 2, [](char** a) { return BenchOrderFile(std::atol(a[0]), a[1]); }},
    {"search", "FILE IDS", 2, [](char** a) { return BenchSearch(a[0], a[1]); }},
    {"orders", "TABLE", 1, [](char** a) { return BenchOrders(a[0]); }},
    {"export", "FOLDER TABLE NAS OUT", 4, [](char** a) { return BenchExport(a[0], a[1], a[2], a[3]); }},
    {"catalog", "FILE", 1, [](char** a) { return BenchCatalog(a[0]); }},
    {"reserved", "FOLDER", 1, [](char** a) { return BenchReserved(a[0]); }},
    {"walk", "TABLE", 1, [](char** a) { return BenchWalk(a[0]); }},
    {"sheet", "TABLE", 1, [](char** a) { return BenchSheet(a[0]); }},
    {"exportdialog", "TABLE", 1, [](char** a) { return BenchExportDialog(a[0]); }},
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

Phases::~Phases() { std::fprintf(stderr, "phase%s peak=%ld\n", text_.c_str(), PeakKilobytes()); }

}  // namespace pktaus

int main(int argc, char** argv) {
  for (const auto& work : pktaus::kWork) {
    if (argc == work.count + 2 && std::strcmp(argv[1], work.name) == 0) return work.run(argv + 2);
  }
  for (const auto& work : pktaus::kWork) std::fprintf(stderr, "pktaus-bench %s %s\n", work.name, work.arguments);
  return 2;
}
