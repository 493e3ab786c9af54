#include "catalog/catalog.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <deque>
#include <memory>
#include <unordered_map>
#include <vector>

#include "base/bounded.h"
#include "base/text.h"
#include "catalog/number.h"
#include "store/object_types.h"
#include "tree/document.h"

namespace pktaus {
namespace {

constexpr std::string_view kListPrefix = "T_";
constexpr std::string_view kTypePrefix = "AX_";

/// A list that is filled at its head, owner of its records, with an index for the search from the head.
template <typename Record>
class NamedList {
 public:
  const Record* head() const { return records_.empty() ? nullptr : &records_.back(); }

  Record* Add(std::string_view name) {
    const Record* before = head();
    Record* record = &records_.emplace_back();
    record->next = before;
    name.copy(record->name, sizeof record->name - 1);
    newest_[record->name] = {records_.size(), record};
    return record;
  }

  /// The record nearest to the head whose name equals `name`, or does so with the prefix in front.
  const Record* Find(std::string_view name, std::string_view prefix) const {
    Place place = Newest(name);
    if (name.starts_with(prefix)) place = std::max(place, Newest(name.substr(prefix.size())));
    return place.second;
  }

 private:
  using Place = std::pair<std::size_t, const Record*>;  // number of the record from 1, 0 for none

  Place Newest(std::string_view name) const {
    const auto found = newest_.find(name);
    return found == newest_.end() ? Place{} : found->second;
  }

  std::deque<Record> records_;
  std::unordered_map<std::string_view, Place> newest_;
};

struct Catalog {
  NamedList<CatalogTable> tables;
  std::vector<std::vector<CatalogEntry>> entries;  // those of a table together
  NamedList<CatalogPunktort> places;
  // In the file's order, the last few alone: a row of `object_types` each.
  std::deque<CatalogObject> objects;
};

std::unique_ptr<Catalog> in_force = std::make_unique<Catalog>();

template <std::size_t N>
void CopyCut(char (&dst)[N], std::string_view text) {
  text.copy(dst, N - 1);
}

void AddTable(const CTreeNode& section, std::string_view name) {
  CatalogTable* table = in_force->tables.Add(name);
  const CTreeNode* values = section.FindKey("==FREEDATA");
  if (values == nullptr) return;
  std::size_t count = 0;
  for (const CTreeNode* node = values->GetFirstChild(); node != nullptr; node = node->GetNextSibling()) ++count;
  const CTreeNode* node = values->GetFirstChild();
  for (CatalogEntry& entry : in_force->entries.emplace_back(count)) {
    entry.code = ReadNumber(node->GetName());
    CopyCut(entry.text, node->GetValue());
    entry.next = table->entries;
    table->entries = &entry;
    node = node->GetNextSibling();
  }
}

/// The list that a key names; null where the key is missing or names none.
const CatalogTable* ListOf(const CTreeNode& section, std::string_view key) {
  const CTreeNode* node = section.FindKey(key);
  return node == nullptr ? nullptr : FindValueList(node->GetValue());
}

void AddPlace(const CTreeNode& section, std::string_view name) {
  CatalogPunktort* place = in_force->places.Add(name);
  place->koordinatenstatus = ListOf(section, "==KOORDINATENSTATUS");
  place->hinweise = ListOf(section, "==HINWEISE");
  place->herkunft = ListOf(section, "==HERKUNFT");
  place->genauigkeitsstufe = ListOf(section, "==GENAUIGKEITSSTUFE");
  place->vertrauenswuerdigkeit = ListOf(section, "==VERTRAUENSWUERDIGKEIT");
  place->ueberpruefungsdatum = section.FindKey("==UEBERPRUEFUNGSDATUM") != nullptr;
  place->lagezuverlaessigkeit = section.FindKey("==LAGEZUVERLAESSIGKEIT") != nullptr;
}

void AddObject(const CTreeNode& section, std::string_view name, std::vector<std::string>* surplus) {
  std::deque<CatalogObject>& objects = in_force->objects;
  if (objects.size() == kObjectTypeCount) {
    surplus->emplace_back(objects.front().name);
    objects.pop_front();
    objects.front().next = nullptr;
  }
  const CatalogObject* before = FirstCatalogObject();
  CatalogObject& object = objects.emplace_back();
  object.next = before;
  CopyCut(object.name, name);
  object.abmarkung_Marke = ListOf(section, "==ABMARKUNG_MARKE");
  object.vermarkung_Marke = ListOf(section, "==VERMARKUNG_MARKE");
  object.bemerkungZurAbmarkung = ListOf(section, "==BEMERKUNGZURABMARKUNG");
  object.art = ListOf(section, "==ART");
  object.zustaendige_stelle = ListOf(section, "==ZUSTAENDIGE_STELLE");
  if (const CTreeNode* ort = section.FindKey("==ORT")) object.ort = FindCatalogPunktort(ort->GetValue());
  if (const CTreeNode* pattern = section.FindKey("==PUNKTKENNUNG")) {
    object.has_punktkennung = true;
    CopyCut(object.punktkennung, pattern->GetValue());
  }
}

void AddSection(const CTreeNode& section, CatalogFacts* facts) {
  const std::string_view name = section.GetName();
  if (text::EqualIgnoringCase(name, "GLOBAL")) {
    if (const CTreeNode* header = section.FindKey("==HEADER")) facts->header = header->GetValue();
  } else if (name.starts_with(kListPrefix)) {
    AddTable(section, name.substr(kListPrefix.size()));
  } else if (name.starts_with(kTypePrefix)) {
    const std::string_view type = name.substr(kTypePrefix.size());
    if (type.starts_with("Punktort")) {
      AddPlace(section, type);
    } else {
      AddObject(section, type, &facts->surplus);
    }
  }
}

void FillRows() {
  const CatalogObject* object = FirstCatalogObject();
  for (auto& row : object_types) {
    put(row, object != nullptr ? object->name : "leer");
    if (object != nullptr) object = object->next;
  }
}

}  // namespace

const CatalogObject* FirstCatalogObject() { return in_force->objects.empty() ? nullptr : &in_force->objects.back(); }

const CatalogTable* FindValueList(std::string_view name) { return in_force->tables.Find(name, kListPrefix); }

const CatalogPunktort* FindCatalogPunktort(std::string_view name) { return in_force->places.Find(name, kTypePrefix); }

const CatalogObject* FindCatalogObject(std::string_view name) {
  const CatalogObject* object = FirstCatalogObject();
  while (object != nullptr && object->name != name) object = object->next;
  return object;
}

const CatalogObject* CatalogObjectOfRow(std::int32_t oa) {
  return oa < 0 || oa >= kObjectTypeCount ? nullptr : FindCatalogObject(object_types[oa]);
}

bool ReadCatalog(const std::string& path, CatalogFacts* facts) {
  in_force = std::make_unique<Catalog>();
  const auto document = std::make_unique<CTreeDocument>();
  if (!document->LoadIni(path, true)) return false;
  const CTreeNode* root = document->GetRoot();
  const CTreeNode* section = root != nullptr ? root->GetFirstChild() : nullptr;
  for (; section != nullptr; section = section->GetNextSibling()) AddSection(*section, facts);
  FillRows();
  return true;
}

}  // namespace pktaus
