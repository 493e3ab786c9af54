// What pktaus-bench measures: each function does one whole piece of work on the real code, prints what it found to
// stdout and how long its phases took to stderr. They give the program's exit code: 0, or 1 for work that failed.
#pragma once

#include <string>

namespace pktaus {

/// CPU time of this process by phases, printed to stderr as "phase load=0.100 save=0.200" when it goes.
class Phases {
 public:
  Phases();
  ~Phases();
  Phases(const Phases&) = delete;
  Phases& operator=(const Phases&) = delete;
  /// Ends a phase and gives it its name.
  void Mark(const char* name);

 private:
  double last_;
  std::string text_;
};

[[gnu::weak]] int BenchXml(const char* in, const char* out);                   ///< LoadXml, SaveXml, delete
[[gnu::weak]] int BenchIni(const char* in, const char* out);                   ///< LoadIni with free keys, SaveIni
[[gnu::weak]] int BenchDbf(const char* file);                                  ///< schema_extend
[[gnu::weak]] int BenchLookup(const char* table, const char* names);           ///< point_read for each line of a file
[[gnu::weak]] int BenchBatch(const char* tmpl, long points, const char* out);  ///< WriteBatchFile
[[gnu::weak]] int BenchCatalog(const char* file);                              ///< load of a catalogue
[[gnu::weak]] int BenchReserved(const char* folder);                           ///< ReadReservedNumbers
[[gnu::weak]] int BenchWalk(const char* table);                                ///< point_read_at over all records
[[gnu::weak]] int BenchExportDialog(const char* table);                        ///< open, tick all, choose

}  // namespace pktaus
