#include "korvo/host/menus.h"

#include "base/text.h"

namespace korvo {

using namespace text::literals;

const Menu* FindMenu(std::string_view name) {
  static const Menu kPoints = {"PKTAUMEN",
                               "Punkte mit ALKIS-Angaben"_ansi,
                               {{2, "Vorgabewerte"_ansi},
                                {4, "Punkt über Kennung suchen (GID)"_ansi},
                                {6, "Punkte wählen und bearbeiten"_ansi},
                                {8, "Nach Auftrag ausgeben"_ansi},
                                {10, "Exportieren"_ansi},
                                {0, "Ende"_ansi}}};
  return name == kPoints.name ? &kPoints : nullptr;
}

}  // namespace korvo
