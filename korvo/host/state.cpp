#include "korvo/host/state.h"

#include <cstdio>

#include "base/path.h"
#include "base/text.h"
#include "korvo/host/points.h"

namespace korvo {

using namespace text::literals;

namespace {

/// The order of reading that the host keeps beside its point table; made from the table and with it again at any time.
void WriteReadingOrder(const Host& host) {
  char derived[70];
  ext_change(derived, host.points.handle.path, ext(16));
  if (derived[0] == '\0') return;
  platform::DeleteIfThere(derived);
  platform::File file;
  if (!file.Open(derived, platform::OpenMode::kCreateNew)) return;
  std::string order = "Korvo Leseordnung\r\nSpalte PT_NO\r\nSätze "_ansi;
  order += std::to_string(host.points.table.count()) + "\r\n";
  file.Write(order.data(), order.size());
}

}  // namespace

Host& TheHost() {
  static Host host;
  return host;
}

bool OpenPoints(Host& host, std::string* why) {
  ClosePoints(host);
  const bool working = host.only_looking.empty();
  Table& table = host.points.table;
  if (!table.Open(host.points.handle.path, working, why)) return false;
  if (working && table.Lock() == Table::Locked::kByAnother) {
    // Through another name of the file, or its lock file is gone.
    host.only_looking = "Das Projekt ist schon geöffnet: Ein anderes Programm hält die Punkttabelle."_ansi;
    return OpenPoints(host, why);
  }
  host.points.handle.data = &table;
  host.points.handle.index = &host.points;
  host.pt_no = table.Find("PT_NO");
  host.east = table.Find("EAST");
  host.north = table.Find("NORTH");
  host.elev = table.Find("ELEV");
  if (working) WriteReadingOrder(host);
  return true;
}

void ClosePoints(Host& host) { CloseOther(host, host.points); }

bool OpenOther(Host& host, TableSlot& slot, std::string* why) {
  CloseOther(host, slot);
  if (!slot.table.Open(slot.handle.path, host.only_looking.empty(), why)) return false;
  slot.handle.data = &slot.table;
  slot.handle.index = &slot;
  return true;
}

void CloseOther(Host& host, TableSlot& slot) {
  if (host.current == &slot.table) host.current = nullptr;
  slot.table.Close();
  slot.handle.data = nullptr;
  slot.handle.index = nullptr;
}

void SyncTables(Host& host) {
  for (TableSlot* slot : {&host.points, &host.dba, &host.dbv, &host.dbh}) {
    if (!slot->table.Sync()) {
      Tell(std::string("Die Tabelle "_ansi) + slot->handle.path + " konnte nicht auf die Platte gebracht werden."_ansi);
    }
  }
}

void Tell(const std::string& text) {
  if (korvo_desktop != nullptr) {
    korvo_desktop->ShowBox(text, "Korvo", toolkit::kBoxOk | toolkit::kBoxWarning, 0);
  } else {
    std::fprintf(stderr, "%s\n", text::ToUtf8(text).c_str());
  }
}

void SetFrontEnd(FrontEnd* front_end) {
  TheHost().front_end = front_end;
  korvo_desktop = front_end;
}

FrontEnd* CurrentFrontEnd() { return TheHost().front_end; }

}  // namespace korvo
