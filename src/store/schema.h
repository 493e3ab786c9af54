// The columns that the point table file has to have.
#pragma once

namespace pktaus {

/// What schema_extend raises for a table that cannot be opened. Deliberately none of the framework's failures: whoever
/// takes it goes by the last system error, which is that of the open.
struct TableNotOpened {
  int system_error;
};

/// Gives the point table at `path` (form inside) the columns that it lacks, and drops its deleted records. The file is
/// read whole and replaced whole, whether or not a column was missing; the host must have closed it.
///
/// Raises TableNotOpened, with the last system error set, where the file cannot be opened for reading or `path` is null
/// or empty; and a CException by value, whose German text names file, reason and place, where the table is none that
/// would come out whole. The file is untouched then. A file that can be read but not written stays as it was, and the
/// answer is the system error, else 0.
[[nodiscard]] int schema_extend(const char* path);

}  // namespace pktaus
