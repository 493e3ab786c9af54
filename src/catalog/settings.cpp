// The settings file of CCatalogStore.
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "base/bounded.h"
#include "base/path.h"
#include "catalog/catalog_store.h"
#include "catalog/number.h"
#include "entry/host/desktop.h"
#include "store/object_types.h"
#include "tree/document.h"

namespace pktaus {
namespace {

constexpr std::string_view kSection = "EINSTELLUNGEN";

struct NumberKey {
  std::string_view name;
  std::int32_t PointRecord::*field;
};

/// Attributes of a point that have a default, in the file's order.
constexpr NumberKey kNumbers[] = {
    {"ABM", &PointRecord::abm}, {"BZA", &PointRecord::bza}, {"ART", &PointRecord::art}, {"ZST", &PointRecord::zst},
    {"KST", &PointRecord::kst}, {"DAT", &PointRecord::dat}, {"HER", &PointRecord::her}, {"HIN", &PointRecord::hin},
    {"GST", &PointRecord::gst}, {"VTW", &PointRecord::vtw}, {"LZV", &PointRecord::lzv},
};

}  // namespace

std::string SettingsPath() { return path::Join(plugin_folder(), "pktausout.ini"); }

namespace {

CTreeNode* FindSection(const CTreeDocument& document) {
  const CTreeNode* root = document.GetRoot();
  return root != nullptr ? root->FindChild(kSection, true) : nullptr;
}

/// The section's child of that name, made where it is missing.
CTreeNode* ChildOf(CTreeNode* parent, std::string_view name) {
  CTreeNode* child = parent->FindChild(name, true);
  if (child == nullptr) {
    child = parent->GetDocument()->NewNode(name);
    parent->AddChild(child);
  }
  return child;
}

}  // namespace

void CCatalogStore::LoadSettings() {
  defaults.aktion = kAktionNew;
  put(defaults.pkn, "");
  put(defaults.obgid, "");
  const auto document = std::make_unique<CTreeDocument>();
  document->LoadIni(SettingsPath(), false);
  const CTreeNode* section = FindSection(*document);
  if (section == nullptr) return;

  const auto key = [section](std::string_view name) { return section->FindChild(name, true); };
  const auto text = [&key](std::string_view name, std::string* value) {
    if (const CTreeNode* node = key(name)) *value = node->GetValue();
  };
  defaults.bundesland = 13;
  if (const CTreeNode* land = key("BUNDESLAND")) {
    catalog_number = defaults.bundesland = ReadNumber(land->GetValue());
    LoadCatalog(catalog_number);
  }
  text("ORGANISATION", &organisation);
  // The catalogue has rewritten the rows by now.
  defaults.oa = 0;
  if (const CTreeNode* type = key("PUNKTTYPE")) {
    int row = 0;
    while (row < kObjectTypeCount && type->GetValue() != object_types[row]) ++row;
    if (row < kObjectTypeCount) defaults.oa = row;
  }
  if (const CTreeNode* antragn = key("ANTRAGNUMMER")) put(defaults.antragn, std::string(antragn->GetValue()).c_str());
  if (const CTreeNode* auftrag = key("AUFTRAGNR")) put(defaults.auftrag, std::string(auftrag->GetValue()).c_str());
  text("ORIGXML", &orig_xml);
  text("PUNKTXMLFOLDER", &point_xml_folder);
  for (const NumberKey& number : kNumbers) {
    const CTreeNode* node = key(number.name);
    defaults.*number.field = node != nullptr ? ReadNumber(node->GetValue()) : 0;
  }
}

bool CCatalogStore::SaveSettings() const {
  const auto document = std::make_unique<CTreeDocument>();
  document->LoadIni(SettingsPath(), false);
  if (document->GetRoot() == nullptr) document->SetRoot(document->NewNode("THEINI"));
  CTreeNode* section = ChildOf(document->GetRoot(), kSection);

  const auto set = [section](std::string_view name, std::string_view value) {
    ChildOf(section, name)->SetValue(value);
  };
  const bool has_row = defaults.oa >= 0 && defaults.oa < kObjectTypeCount;
  set("BUNDESLAND", std::to_string(defaults.bundesland));
  set("ORGANISATION", organisation);
  set("PUNKTTYPE", has_row ? object_types[defaults.oa] : "");
  set("ANTRAGNUMMER", defaults.antragn);
  set("AUFTRAGNR", defaults.auftrag);
  set("ORIGXML", orig_xml);
  set("PUNKTXMLFOLDER", point_xml_folder);
  for (const NumberKey& number : kNumbers) set(number.name, std::to_string(defaults.*number.field));
  return document->SaveIni(SettingsPath()) == 0;
}

}  // namespace pktaus
