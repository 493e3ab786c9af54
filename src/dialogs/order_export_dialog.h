// Export of the points that have attributes, order by order.
#pragma once

#include <string>
#include <vector>

#include "catalog/catalog_store.h"
#include "toolkit/dialog.h"

namespace pktaus {

/// Lists the store's orders as orders_collect has left them, and the points of one of them.
class COrderExportDlg : public toolkit::Dialog {
 public:
  COrderExportDlg();

 private:
  void OnOpened() override;
  void OnPressed(toolkit::ControlId id) override;
  void OnChanged(toolkit::ControlId id) override;

  void List();
  void ListPoints(const OrderEntry& order);
  void ShowCount();
  std::vector<std::string> TickedPoints() const;
  void Write();
  void Remove();

  toolkit::ChoiceList orders_;
  toolkit::TextField application_;
  toolkit::TickList points_;
  toolkit::Button all_on_;
  toolkit::Button all_off_;
  toolkit::TextField count_;
  toolkit::Button remove_;
  toolkit::Button write_;
  toolkit::Button cancel_;

  std::vector<std::string> numbers_;  ///< point number of each row
  int listed_ = -1;                   ///< position of the order whose points the rows are
};

/// Opens the dialog under the host's main window and waits for its end.
void order_export_dialog();

}  // namespace pktaus
