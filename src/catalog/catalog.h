// The catalogue of a federal state: which ALKIS attributes an object type has and which values each may take.
//
// One catalogue is in force in the process. Its records are plain, linked by `next`, and each list runs in the reverse
// of the file's order. A load replaces them all, so nobody keeps a pointer to one across dialogs.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace pktaus {

/// One value of a value list.
struct CatalogEntry {
  std::int32_t code;
  char text[128];
  const CatalogEntry* next;
};

/// A value list, section "T_name".
struct CatalogTable {
  char name[64];  ///< without "T_"
  const CatalogTable* next;
  const CatalogEntry* entries;
};

/// A kind of position object, section "AX_Punktort...". A null list: the kind does not have the attribute.
struct CatalogPunktort {
  char name[64];  ///< without "AX_", such as "PunktortTA"
  const CatalogTable* koordinatenstatus;
  const CatalogTable* hinweise;
  bool ueberpruefungsdatum;
  const CatalogTable* herkunft;
  const CatalogTable* genauigkeitsstufe;
  const CatalogTable* vertrauenswuerdigkeit;
  bool lagezuverlaessigkeit;
  const CatalogPunktort* next;
};

/// An object type, any other section "AX_...". A null list: the type does not have the attribute.
struct CatalogObject {
  const CatalogObject* next;
  char name[64];               ///< without "AX_", such as "Grenzpunkt"
  const CatalogPunktort* ort;  ///< null where the key is missing or names no position entry above the section
  bool has_punktkennung;
  char punktkennung[64];  ///< pattern of the point identifier
  const CatalogTable* abmarkung_Marke;
  const CatalogTable* vermarkung_Marke;
  const CatalogTable* bemerkungZurAbmarkung;
  const CatalogTable* art;
  const CatalogTable* zustaendige_stelle;
};

/// Head of the list of object types; null while none is loaded. Its order is that of the rows of `object_types`.
const CatalogObject* FirstCatalogObject();

/// The list of that name, with or without "T_" in front; null where there is none.
const CatalogTable* FindValueList(std::string_view name);

/// The position entry of that name, with or without "AX_" in front; null where there is none.
const CatalogPunktort* FindCatalogPunktort(std::string_view name);

/// The object type of exactly that name, such as a row of `object_types`; null where there is none.
const CatalogObject* FindCatalogObject(std::string_view name);

/// The object type of a record's `oa`; null where `oa` is no row or the row has no entry in the catalogue.
const CatalogObject* CatalogObjectOfRow(std::int32_t oa);

/// What a catalogue file holds beside the lists.
struct CatalogFacts {
  std::optional<std::string> header;  ///< HEADER: file name of the state's NAS template
  std::vector<std::string> surplus;   ///< object types without a row, in the file's order; in no list
};

/// Puts the catalogue of a file (form inside) in force and rewrites `object_types`; of more object types than it has
/// rows, the last ones of the file count. False where the file cannot be opened: the lists are empty then, the rows
/// stay. Lines and references that fit nothing are passed over; names and texts that do not fit are cut.
bool ReadCatalog(const std::string& path, CatalogFacts* facts);

}  // namespace pktaus
