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

int BenchXml(const char* in, const char* out);                   ///< LoadXml, SaveXml, delete
int BenchIni(const char* in, const char* out);                   ///< LoadIni with free keys, SaveIni
int BenchDbf(const char* file);                                  ///< schema_extend
int BenchLookup(const char* table, const char* names);           ///< point_read_all for the lines of a file
int BenchBatch(const char* tmpl, long points, const char* out);  ///< WriteBatchFile
int BenchOrderFile(long points, const char* out);                ///< WriteOrderFile of new points
int BenchSearch(const char* file, const char* ids);  ///< a search of the original file for each line of a file
int BenchOrders(const char* table);                  ///< orders_collect, listing of the first order
/// The first order of the table, all its points, from listing to file. `folder` holds catalogues and templates.
int BenchExport(const char* folder, const char* table, const char* original, const char* out);
int BenchCatalog(const char* file);        ///< load of a catalogue
int BenchReserved(const char* folder);     ///< ReadReservedNumbers
int BenchWalk(const char* table);          ///< point_read_at over all records
int BenchSheet(const char* table);         ///< open a point in the sheet, take OK
int BenchExportDialog(const char* table);  ///< open, tick all, choose

}  // namespace pktaus
