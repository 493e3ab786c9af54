// What only the front end of the host itself does, beside the desktop that every plug-in sees.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "toolkit/desktop.h"

struct HostPoint;

namespace korvo {

/// A menu of the host. Texts are Windows-1252.
struct Menu {
  struct Entry {
    int number;
    std::string text;
  };
  std::string name;  ///< by which a plug-in asks for it
  std::string title;
  std::vector<Entry> entries;  ///< the one with number 0 leaves the menu
};

class FrontEnd : public toolkit::Desktop {
 public:
  /// Shows the menu and waits; the number of an entry, 0 when the person leaves.
  virtual int ChooseFromMenu(const Menu& menu) = 0;
  /// Lets the person pick a point of the open point table (korvo/host/points.h): true and `point` filled, or false and
  /// `point` untouched.
  virtual bool PickPoint(HostPoint* point) = 0;
  /// The plug-in has written record `number` (from 1) of the point table; 0: it had the table opened anew.
  virtual void PointChanged(std::int32_t /*number*/) {}
};

/// Sets the front end in force, which must outlive its use; null for none, when menus are left at once, nothing is
/// picked and no box is shown. The plug-in sees it as korvo_desktop.
void SetFrontEnd(FrontEnd* front_end);
FrontEnd* CurrentFrontEnd();

}  // namespace korvo
