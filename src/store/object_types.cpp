#include "store/object_types.h"

namespace pktaus {

char object_types[kObjectTypeCount][kObjectTypeSize] = {
    "Aufnahmepunkt", "BesondererBauwerkspunkt", "BesondererGebaeudepunkt",   "BesondererTopographischerPunkt",
    "Grenzpunkt",    "Sicherungspunkt",         "SonstigerVermessungspunkt",
};

int FindObjectTypeRow(std::string_view name) {
  for (int row = 0; row < kObjectTypeCount; ++row) {
    const std::string_view text = object_types[row];
    if (name == text || (name.size() >= 3 && name.substr(3) == text)) return row;
  }
  return -1;
}

}  // namespace pktaus
