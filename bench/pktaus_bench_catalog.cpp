#include <cstdio>

#include "bench/pktaus_bench.h"
#include "catalog/catalog.h"
#include "catalog/reserved_numbers.h"

namespace pktaus {

int BenchCatalog(const char* file) {
  Phases phases;
  CatalogFacts facts;
  const bool loaded = ReadCatalog(file, &facts);
  phases.Mark("load");
  long types = 0, values = 0;
  for (const CatalogObject* type = FirstCatalogObject(); type != nullptr; type = type->next) {
    ++types;
    const CatalogTable* marks = type->abmarkung_Marke != nullptr ? type->abmarkung_Marke : type->vermarkung_Marke;
    const CatalogEntry* entry = marks != nullptr ? marks->entries : nullptr;
    for (; entry != nullptr; entry = entry->next) ++values;
  }
  std::printf("%ld object types, %ld marks\n", types, values);
  return loaded ? 0 : 1;
}

int BenchReserved(const char* folder) {
  Phases phases;
  ReservedNumbers first = ReadReservedNumbers(folder, "2026-0042");
  phases.Mark("read");
  long numbers = 0;
  for (const ReservedNumber* entry = first.get(); entry != nullptr; entry = entry->next) ++numbers;
  first.reset();
  phases.Mark("free");
  std::printf("%ld numbers\n", numbers);
  return numbers > 0 ? 0 : 1;
}

}  // namespace pktaus
