// Offer of what an import of cadastre data has left beside a point.
#pragma once

#include <cstdint>
#include <string>

#include "catalog/catalog.h"
#include "store/point_record.h"
#include "toolkit/dialog.h"

namespace pktaus {

/// Starts the attributes of a point of the cadastre from the original NAS file or from single values.
class CAdoptDataDlg : public toolkit::Dialog {
 public:
  /// `record` must outlive the dialog and changes when the surveyor goes on.
  CAdoptDataDlg(const char* pkn_abm_bza, const char* nastable, const char* gid, PointRecord* record);

 private:
  void OnOpened() override;
  void OnPressed(toolkit::ControlId id) override;

  void AddCode(const char* label, std::int32_t row, const CatalogTable* values, std::int32_t code);
  void Adopt();
  void FetchFromOriginal();

  toolkit::TextField fetch_text_;
  toolkit::Button fetch_;
  toolkit::TextField adopt_text_;
  toolkit::TickList attributes_;
  toolkit::Button all_;
  toolkit::Button none_;
  toolkit::Button adopt_;
  toolkit::Button cancel_;

  std::string nastable_;  ///< without padding
  std::int32_t type_;     ///< row of the table of object types, -1 for none
  std::string identifier_;
  std::int32_t abm_ = 0;
  std::int32_t bza_ = 0;
  std::int32_t kst_ = 0;
  const std::string gid_;
  PointRecord* const record_;
};

/// Runs the dialog under the host's main window; kOk where the surveyor goes on. The texts are those of the columns,
/// the GMLID without blanks.
int adopt_dialog(const char* point_number, const char* pkn_abm_bza, const char* nastable, const char* gid,
                 PointRecord* record);

/// Offers the imported data of a point, if there is any, to be taken into the record. 0 to go on, -1 when the surveyor
/// gave up.
int point_adopt_imported(const char* point_number, PointRecord* record);

}  // namespace pktaus
