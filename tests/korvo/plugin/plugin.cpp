// A plug-in that shows one thing of each kind, so that the tests can see what a front end makes of it.
#include <string>

#include "base/text.h"
#include "entry/host/host.h"
#include "toolkit/desktop.h"
#include "toolkit/dialog.h"

namespace {

using namespace text::literals;

class EverythingDlg : public toolkit::Dialog {
 public:
  EverythingDlg() : Dialog(9000, "Prüfen"_ansi) {
    choice_.Add({"Thüringen"_ansi, 16, ""});
    choice_.Add({"Hessen", 6, ""});
    choice_.Add({"Hamburg", 2, ""});
    choice_.SelectValue(6);
    for (int i = 1; i <= 25; ++i) rows_.Add({"P" + std::to_string(i), i, false});
    day_.day = {2016, 3, 2};
    hidden_.visible = false;
    locked_.enabled = false;
    shown_.text = "fest";
    on_page_.pages_id = 9010;
    on_page_.page = 1;
    lines_.text = "eins\r\r\nzwei\x1b[2J";
    for (toolkit::Control* control :
         std::initializer_list<toolkit::Control*>{&text_, &hidden_, &locked_, &shown_, &lines_, &tick_, &radio_, &day_,
                                                  &choice_, &rows_, &pages_, &on_page_, &report_, &ok_, &cancel_}) {
      Add(control);
    }
  }

 private:
  void OnPressed(toolkit::ControlId id) override {
    if (id == 9011) {
      const std::string told = text_.text + "|" + std::to_string(choice_.SelectedValue()) + "|" +
                               std::to_string(radio_.chosen) + "|" + std::to_string(rows_.ticked()) + "|" +
                               std::to_string(rows_.selected) + "|" + std::to_string(day_.day.day) + "|" +
                               (day_.on ? "on" : "off") + "|" + on_page_.text;
      korvo_desktop->ShowBox(told, "Stand", toolkit::kBoxOk, 0);
    } else {
      End(id);
    }
  }
  void OnChanged(toolkit::ControlId id) override {
    if (id == 9005) hidden_.visible = tick_.ticked;
  }

  toolkit::TextField text_{9000, "Text:"}, hidden_{9001, "Verborgen:"}, locked_{9002, "Gesperrt:"};
  toolkit::TextField shown_{9003, "Fest:", toolkit::TextField::Form::kReadOnly};
  toolkit::TextField lines_{9004, "Zeilen:", toolkit::TextField::Form::kReadOnlyLines};
  toolkit::TickBox tick_{9005, "Mehr"};
  toolkit::RadioGroup radio_{9006, "Art:", {"neu", "alt"}};
  toolkit::DateField day_{9007, "Tag:", true};
  toolkit::ChoiceList choice_{9008, "Land:", true};
  toolkit::TickList rows_{9009, ""};
  toolkit::Pages pages_{9010, {"Erste", "Zweite"}};
  toolkit::TextField on_page_{9012, "Seite 2:"};
  toolkit::Button report_{9011, "Melden"}, ok_{toolkit::kOk, "OK"}, cancel_{toolkit::kCancel, "Abbruch"};
};

void PickPoints() {
  HostPoint point{}, found{};
  std::int32_t kept = 0, error = 0;
  while (v2_point_ask(V2_VAR->points, &point, &kept, 0) == 0) {
    d4select(V2_VAR->points->data);
    for (std::int32_t i = 1; i <= d4reccount(); ++i) {
      vm_dbk_read(V2_VAR->points, &found, i, &error);
      if (error != 0 || std::string(found.pt_no) != point.pt_no) continue;
      d4go(i);
      f4r_double(f4ref("ELEV"), point.elev + 1);
      db_write(i);
      break;
    }
  }
}

void PickFile() {
  toolkit::FilePick pick;
  pick.save = true;
  std::string path;
  int filter = -1;
  const bool picked = korvo_desktop->PickFile(pick, &path, &filter);
  korvo_desktop->ShowBox(picked ? path : "nichts", "Test", toolkit::kBoxOk, 0);
}

}  // namespace

extern "C" __attribute__((visibility("default"))) std::int32_t pkt_aus(HostState** state) {
  if (*state != V2_VAR) return 1;
  void* menu = nullptr;
  _load_men("PKTAUMEN", &menu, 30);
  char text[100] = "";
  for (;;) {
    const int command = get_menu_no(menu, 1, text);
    if (command == 0) return 0;
    if (command == 2) {
      EverythingDlg dialog;
      toolkit::RunModal(*korvo_desktop, dialog, 0);
    }
    if (command == 4) {
      const int answer = korvo_desktop->ShowBox("ja oder nein?", "Test", toolkit::kBoxYesNo, 0);
      korvo_desktop->ShowBox(std::to_string(answer), "Antwort", toolkit::kBoxOk, 0);
    }
    if (command == 6) PickPoints();
    if (command == 8) PickFile();
  }
}
