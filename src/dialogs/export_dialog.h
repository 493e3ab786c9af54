// Export of plain building points: all points of the table, ticked by hand, with the same few values for all.
#pragma once

#include <vector>

#include "nas/batch.h"
#include "toolkit/dialog.h"

namespace pktaus {

class CExportDlg : public toolkit::Dialog {
 public:
  CExportDlg();

 private:
  void OnOpened() override;
  void OnPressed(toolkit::ControlId id) override;
  void OnChanged(toolkit::ControlId id) override;
  void OnRowSelected(toolkit::ControlId id) override;

  void FillStates();
  void ReadTable();
  void Filter();
  void TickAll(bool on);
  void ShowCount();
  void WriteAndEnd();
  BatchPoint* LinkTickedRows();

  toolkit::TickList points_;
  toolkit::TextField filter_;
  toolkit::Button apply_filter_;
  toolkit::Button all_on_;
  toolkit::Button all_off_;
  toolkit::TextField count_;
  toolkit::TextField application_number_;
  toolkit::TextField order_number_;
  toolkit::ChoiceList state_;
  toolkit::TextField kst_;
  toolkit::TextField her_;
  toolkit::TextField gst_;
  toolkit::TextField zst_;
  toolkit::Button write_;
  toolkit::Button cancel_;

  std::vector<BatchPoint> table_;  ///< one row for each record of the point table
  std::size_t rows_in_use_ = 0;    ///< position of the last record that could be read
};

/// Opens the export dialog under the host's main window and waits for its end.
void export_dialog();

}  // namespace pktaus
