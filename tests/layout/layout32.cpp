#include "entry/host/host.h"
#include "store/point_record.h"

static_assert(sizeof(void*) == 4, "the assertions of the headers hold for pointers of four bytes");
