// The sheet in which a point gets its ALKIS attributes, and in which their defaults are kept.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "catalog/catalog.h"
#include "dialogs/point_sheet_pages.h"
#include "store/point_record.h"
#include "toolkit/dialog.h"

namespace pktaus {

/// With a point number it edits the record of that point; without one the defaults of the store and its settings.
/// Which attributes it offers, and with which values, the catalogue in force decides.
class CPointSheetDlg : public toolkit::Dialog {
 public:
  /// `point_number` may be null; coordinates in metres. `record` must outlive the dialog and changes with OK alone.
  /// `state` is what point_read gave: 1 means that the point has no attributes yet.
  CPointSheetDlg(const char* point_number, double east, double north, PointRecord* record, std::int32_t state);

  /// Whether the surveyor has confirmed that the point shall lose its attributes.
  bool remove_confirmed() const { return remove_confirmed_; }

 private:
  /// A list that the catalogue fills, and the field of a record that holds its choice.
  struct Attribute {
    enum class Otherwise { kNone, kNotMarked, kFirst };
    toolkit::ChoiceList* list;
    std::int32_t PointRecord::*field;
    const CatalogTable* (*values)(const CatalogObject&);  ///< null for an object type without the attribute
    Otherwise otherwise = Otherwise::kNone;               ///< what is selected for a value that the list lacks
  };

  void OnOpened() override;
  void OnPressed(toolkit::ControlId id) override;
  void OnChanged(toolkit::ControlId id) override;

  void AddControls();
  void FillStates();
  void OpenMode();
  void OpenAction();
  void LoadBundeslandCatalogue();
  void AdaptToObjectType();
  void FillAttribute(const Attribute& attribute, const CatalogObject& type);
  void ShowTexts();
  void ShowGids(bool of_existing_object);

  const CatalogObject* SelectedType() const;
  std::string_view Pattern() const;

  /// Builds an identifier for the selected object type and shows it.
  void BuildPointIdentifier(bool use_point_number);
  bool CheckPointIdentifier(std::string_view identifier, std::string_view pattern) const;
  void AskForIdentifier();
  void CheckReservation();

  void ChooseOriginalXml();
  void ChooseReservedFolder();
  void Remove();
  void Accept();
  void ReplaceQuotes();
  void SaveSettings();
  /// Why what was read cannot be stored; empty where it can.
  std::string Fault() const;
  void StoreFields();

  const bool one_point_;
  const std::string point_number_;
  const double east_;
  const double north_;
  const std::int32_t state_;
  PointRecord* const target_;
  PointRecord record_;  ///< the working copy
  bool remove_confirmed_ = false;
  std::string original_xml_;
  std::string reserved_folder_;

  HeldText text_line_;
  HeldText application_;
  HeldText order_;
  toolkit::ChoiceList states_;
  HeldText organisation_;
  toolkit::ChoiceList types_;
  toolkit::RadioGroup action_;
  HeldText more_positions_;
  toolkit::Button original_xml_button_;
  toolkit::Button reserved_button_;
  toolkit::Button remove_;
  toolkit::Button ok_;
  toolkit::Button cancel_;
  TabWerte pages_;
  TlbPktAusWerte object_;
  TlbPktAusW2 position_;
  TlbNasWeitere more_;
  TlbV2Daten host_;
  const std::array<Attribute, 9> attributes_;
};

/// Whether the surveyor was told in this run of the plug-in that the settings cannot be written.
inline bool settings_failure_told = false;

/// Results of point_sheet beside toolkit::kCancel: nothing to do.
inline constexpr int kSheetConfirmed = 1;  ///< the record holds the new values
inline constexpr int kSheetRemove = 10;    ///< the point shall lose its attributes

/// Runs the sheet under the host's main window; arguments as the dialog's, an empty number like none.
int point_sheet(const char* point_number, double east, double north, PointRecord* record, std::int32_t state);

}  // namespace pktaus
