// The pages of the point sheet: controls, and beside them what the sheet has read from them. A rule of the sheet works
// on what was read; what somebody has typed since counts once it is read, and is gone when the field shows its value.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "toolkit/control.h"

namespace pktaus {

/// A field of text and the text that was read from it.
struct HeldText {
  HeldText(toolkit::ControlId id, std::string label, toolkit::TextField::Form form = toolkit::TextField::Form::kEdit)
      : field(id, std::move(label), form) {}
  void Show() { field.text = value; }
  void Read() { value = field.text; }

  toolkit::TextField field;
  std::string value;
};

/// The sheet of pages inside the point sheet.
class TabWerte : public toolkit::Pages {
 public:
  static constexpr toolkit::ControlId kId = 7050;
  enum Page { kObject = 0, kPosition = 1, kMore = 2, kHost = 3 };

  TabWerte();
};

/// A page: controls that know where they stand.
struct SheetPage {
  /// In order of the keyboard; pointers to members of the page.
  std::vector<toolkit::Control*> controls;

 protected:
  void Place(TabWerte::Page page, std::vector<toolkit::Control*> all);
};

/// "Objekt": attributes of the object itself, and the point identifier.
struct TlbPktAusWerte : SheetPage {
  static constexpr toolkit::ControlId kAsk = 7033;
  static constexpr toolkit::ControlId kFromPointNumber = 7012;
  static constexpr toolkit::ControlId kCheckReservation = 7079;

  TlbPktAusWerte();
  void Show();
  void Read();
  /// The identifier with its buttons.
  void ShowIdentifierGroup(bool on);

  HeldText pkn;
  toolkit::Button ask;
  toolkit::Button from_point_number;
  toolkit::Button check_reservation;
  toolkit::ChoiceList abm;
  toolkit::ChoiceList bza;
  toolkit::ChoiceList art;
  toolkit::ChoiceList zst;
  HeldText gid;
};

/// The named position type: attributes of the point's position object.
struct TlbPktAusW2 : SheetPage {
  static constexpr toolkit::ControlId kExplain = 7075;

  TlbPktAusW2();
  void ShowTexts() { gid.Show(); }
  /// All, the check date too.
  void Show();
  void Read();
  void ShowCheckDate(bool on);
  /// `lzv` of a point as the list's position, and back; a value that the list does not have selects nothing.
  void SelectLzv(std::int32_t value);
  std::int32_t Lzv() const { return lzv.selected() - 2; }

  toolkit::ChoiceList vtw;
  toolkit::ChoiceList lzv;
  toolkit::ChoiceList hin;
  toolkit::Button explain;
  toolkit::ChoiceList kst;
  toolkit::ChoiceList her;
  toolkit::ChoiceList gst;
  toolkit::TickBox has_day;
  toolkit::DateField day;
  HeldText gid;

  bool has_date = false;
  std::int64_t date = 0;  ///< seconds since 1970
};

/// "Weitere": fields that nothing fills or reads yet.
struct TlbNasWeitere : SheetPage {
  TlbNasWeitere();

  std::array<toolkit::TextField, 12> fields;
};

/// "V2 Daten": the point as the host has it.
struct TlbV2Daten : SheetPage {
  TlbV2Daten();
  void Fill(const std::string& number, double east_metres, double north_metres);

  toolkit::TextField point_number;
  toolkit::TextField east;
  toolkit::TextField north;
};

/// Explains the attribute HIN in a text view.
void ShowHinExplanation();

}  // namespace pktaus
