// Search of a point by the identifier of its position object.
#pragma once

#include <cstddef>

#include "toolkit/dialog.h"

namespace pktaus {

class CGidSearchDlg : public toolkit::Dialog {
 public:
  /// The coordinates (metres) are set by each search that finds a point; both must outlive the dialog.
  CGidSearchDlg(double* east, double* north);

  /// Whether the surveyor wants to edit the point that was found last.
  bool confirmed() const { return confirmed_; }
  const char* point_number() const { return point_number_; }

 private:
  void OnPressed(toolkit::ControlId id) override;
  void Search();

  toolkit::TextField gid_;
  toolkit::Button search_;
  toolkit::TextField result_;
  toolkit::Button edit_;
  toolkit::Button cancel_;

  char point_number_[81] = "";
  double* const east_;
  double* const north_;
  bool confirmed_ = false;
};

/// Lets the surveyor search under the host's main window. The point number in `point_number` (`size` bytes), with
/// `east` and `north` its coordinates; null when he gave up.
char* gid_search(double* east, double* north, char* point_number, std::size_t size);

}  // namespace pktaus
