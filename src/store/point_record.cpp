#include "store/point_record.h"

#include <cstring>
#include <initializer_list>

namespace pktaus {

void SetEmptyRecord(PointRecord* record) {
  PointRecord empty;
  std::memset(&empty, 0, sizeof empty);
  for (auto code :
       {&PointRecord::oa, &PointRecord::abm, &PointRecord::bza, &PointRecord::art, &PointRecord::zst, &PointRecord::kst,
        &PointRecord::dat, &PointRecord::hin, &PointRecord::her, &PointRecord::gst, &PointRecord::vtw}) {
    empty.*code = kNoChoice;
  }
  empty.lzv = kLzvNotGiven;

  std::memcpy(empty.objid, record->objid, sizeof empty.objid);
  empty.bundesland = record->bundesland;
  empty.next = record->next;
  empty.east = record->east;
  empty.north = record->north;
  *record = empty;
}

}  // namespace pktaus
