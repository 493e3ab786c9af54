// What the host's operations work on: one set of tables for the process. For korvo/host alone.
#pragma once

#include <string>

#include "entry/host/host.h"
#include "korvo/dbase/table.h"
#include "korvo/host/front_end.h"
#include "korvo/host/lock.h"

namespace korvo {

struct TableSlot {
  HostTable handle{};  ///< what a plug-in has of it; `data` and `index` are null while the table is closed
  Table table;
};

struct Host {
  HostState state{};
  TableSlot points, dba, dbv, dbh;
  /// Columns of the open point table, -1 for one that it lacks.
  int pt_no = -1, east = -1, north = -1, elev = -1;
  Table* current = nullptr;  ///< of d4select
  FrontEnd* front_end = nullptr;
  bool plugin_runs = false;
  bool told_stale = false;  ///< in this command: the table takes no writes

  std::string name, folder, only_looking;
  ProjectLock lock;
};

Host& TheHost();

/// False with the reason; the table is closed then.
bool OpenPoints(Host& host, std::string* why);
void ClosePoints(Host& host);
bool OpenOther(Host& host, TableSlot& slot, std::string* why);
void CloseOther(Host& host, TableSlot& slot);

/// What was written goes to the disk before a person sees what is next.
void SyncTables(Host& host);

/// Tells the person something that the host itself has to say.
void Tell(const std::string& text);

}  // namespace korvo
