#include "dialogs/point_sheet_pages.h"

#include <utility>

#include "base/text.h"
#include "entry/host/desktop.h"
#include "platform/clock.h"

namespace pktaus {
namespace {

using namespace text::literals;
using toolkit::TextField;

constexpr const char* kHinExplanation[] = {
    "3.1.14 Hinweise (HIN)",
    "Das Attribut HIN regelt das Verhalten eines Punktes bei Kartenverbesserungen (Homogenisierungen).",
    "Hierbei wird festgelegt, wie der Punkt bei der Verbesserung der aus PD83/GK transformierten",
    "ETRS89/UTM-Koordinate (Koordinatenhomogenisierung) und bei der Kartenhomogenisierung wirkt.",
    " ",
    "Im Sinne der Homogenisierung ist",
    "\tein Sollpunkt ein Punkt, welcher mit einer vorher definierten Koordinate an der Ausgleichung teilnimmt, ",
    "\tein Stützpunkt ein Sollpunkt, der auf die zu homogenisierende Geometrien wirkt und "_ansi,
    "\tein Neupunkt, ein noch nicht im Datenbestand vorhandener Punkt.",
    " ",
    "Punkte der Herkunft 2000  Aus Luftbildmessung oder Fernerkundungsdaten ermittelt sind grundsätzlich"_ansi,
    "Sollpunkte und keine Stützpunkte. Erstmalig mit einem PKZ versehene und im Datenbestand bereits"_ansi,
    "vorhandene Punkte, sind als veränderte Altpunkte ohne PD83-Punktort zu verstehen."_ansi,
    " ",
    "Das Attribut HIN setzt sich wie folgt zusammen:",
    "1. und 2. Stelle: Verbesserung der aus PD83/GK transformierten ETRS89/UTM-Koordinate:",
    "\t'10' Vermessungspunkt ist ein Sollpunkt und kein Stützpunkt"_ansi,
    "\t'11' Vermessungspunkt ist ein Sollpunkt und Stützpunkt"_ansi,
    "3. und 4. Stelle: Kartenhomogenisierung:",
    "\t'10' Vermessungspunkt ist ein Sollpunkt und kein Stützpunkt"_ansi,
    "\t'11' Vermessungspunkt ist ein Sollpunkt und Stützpunkt"_ansi,
    " ",
    "Folgende Werte sind zu vergeben:",
    "Neupunkt -> 1010",
    "Veränderter Altpunkt(Grenz-, Gebäude- oder Bauwerkspunkt) mit PD83-Punktort -> 1111"_ansi,
    "Veränderter Altpunkt(Aufnahmepunkt, sonst. Vermessungspunkt) mit PD83-Punktort -> 1110"_ansi,
    "Veränderter Altpunkt(Grenz-, Gebäude- oder Bauwerkspunkt) ohne PD83-Punktort -> 1011"_ansi,
    "Veränderter Altpunkt(Aufnahmepunkt, sonst. Vermessungspunkt) ohne PD83-Punktort -> 1010"_ansi,
    "aufgemessener Gebäudepunkt aus Befliegung -> 1010"_ansi,
};

bool SameDay(const platform::CivilTime& a, const platform::CivilTime& b) {
  return a.year == b.year && a.month == b.month && a.day == b.day;
}

}  // namespace

TabWerte::TabWerte() : Pages(kId, {"Objekt", "Punktort"}) {}

void SheetPage::Place(TabWerte::Page page, std::vector<toolkit::Control*> all) {
  controls = std::move(all);
  for (toolkit::Control* control : controls) {
    control->pages_id = TabWerte::kId;
    control->page = page;
  }
}

TlbPktAusWerte::TlbPktAusWerte()
    : pkn(7078, "Punktkennzeichen ( PKN ) "),
      ask(kAsk, "?"),
      from_point_number(kFromPointNumber, "Aus Punktnummer"),
      check_reservation(kCheckReservation, "via XML Prüfen"_ansi),
      abm(7035, "Abmarkung Marke ( ABM ) ", /*sorted=*/true),
      bza(7009, "Bermerkung  ABM  ( BZA ) ", /*sorted=*/true),
      art(7040, "art", /*sorted=*/true),
      zst(7047, "Zuständige Stelle ( ZST ) "_ansi, /*sorted=*/true),
      gid(7062, "GID: ") {
  Place(TabWerte::kObject,
        {&pkn.field, &ask, &from_point_number, &check_reservation, &abm, &bza, &art, &zst, &gid.field});
  ask.beside = from_point_number.beside = check_reservation.beside = true;
}

void TlbPktAusWerte::Show() {
  pkn.Show();
  gid.Show();
}

void TlbPktAusWerte::Read() {
  pkn.Read();
  gid.Read();
}

void TlbPktAusWerte::ShowIdentifierGroup(bool on) {
  pkn.field.visible = ask.visible = from_point_number.visible = check_reservation.visible = on;
}

TlbPktAusW2::TlbPktAusW2()
    : vtw(7052, "vertrauenswürdigkeit ( VWL ) "_ansi, /*sorted=*/true),
      lzv(7073, "Lagezuverläßigkeit ( LZK ) "_ansi, /*sorted=*/false),
      hin(7058, "Hinweis (HIN)", /*sorted=*/true),
      explain(kExplain, "Erläuterung"_ansi),
      kst(7041, "Koordinatenstatus ( KST ) ", /*sorted=*/true),
      her(7044, "Herkunft", /*sorted=*/true),
      gst(7038, "Genauigkeitsstufe ( GST ) ", /*sorted=*/true),
      has_day(7030, "Prüfdatum"_ansi),
      day(7027, "", &has_day),
      gid(7059, "GID: ") {
  Place(TabWerte::kPosition, {&vtw, &lzv, &hin, &explain, &kst, &her, &gst, &has_day, &day, &gid.field});
  explain.beside = day.beside = true;
  for (const char* label : {"-- ohne --", "true", "false"}) lzv.Add({.label = label, .text = {}});
}

void TlbPktAusW2::Show() {
  ShowTexts();
  has_day.ticked = has_date;
  day.day = platform::CurrentClock().ToLocal(date);
}

void TlbPktAusW2::Read() {
  gid.Read();
  has_date = has_day.ticked;
  const platform::Clock& clock = platform::CurrentClock();
  // A day that nobody has touched keeps its time.
  if (SameDay(day.day, clock.ToLocal(date))) return;
  clock.FromLocal({.year = day.day.year, .month = day.day.month, .day = day.day.day}, &date);
}

void TlbPktAusW2::ShowCheckDate(bool on) { has_day.visible = day.visible = on; }

void TlbPktAusW2::SelectLzv(std::int32_t value) { lzv.Select(value < -2 || value > 0 ? -1 : value + 2); }

TlbNasWeitere::TlbNasWeitere()
    : fields{TextField{7021, ""}, TextField{7024, ""}, TextField{7027, ""}, TextField{7028, ""},
             TextField{7031, ""}, TextField{7033, ""}, TextField{7035, ""}, TextField{7037, ""},
             TextField{7038, ""}, TextField{7040, ""}, TextField{7043, ""}, TextField{7045, ""}} {
  std::vector<toolkit::Control*> all;
  for (TextField& field : fields) {
    field.beside = all.size() % 2 == 1;
    all.push_back(&field);
  }
  Place(TabWerte::kMore, std::move(all));
}

TlbV2Daten::TlbV2Daten()
    : point_number(7024, "Punktnummer", TextField::Form::kReadOnly),
      east(7028, "Rechtswert", TextField::Form::kReadOnly),
      north(7031, "Hochwert", TextField::Form::kReadOnly) {
  Place(TabWerte::kHost, {&point_number, &east, &north});
}

void TlbV2Daten::Fill(const std::string& number, double east_metres, double north_metres) {
  point_number.text = number;
  east.text = text::Decimal(east_metres, 3);
  north.text = text::Decimal(north_metres, 3);
}

void ShowHinExplanation() {
  std::string text;
  for (const char* line : kHinExplanation) text.append(line).append("\r\r\n");
  text_view("Erläuterungen zu Hinweis"_ansi, text.c_str());
}

}  // namespace pktaus
