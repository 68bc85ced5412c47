#pragma once
// Sequence numbers: the data manager of the numbering table TbSequenciadores
// (one row per numbered column, keyed by the column's name) and the
// operation that hands out the next number of a column.

#include <cstdint>
#include <string_view>

#include "vek/foundation/RecordManager.h"
#include "vek/foundation/cgpVek.h"

namespace vek {

// Follows the protocol with the column name as its text key; the table
// itself is not numbered.
class cgdSequenciadores : public cgdRecord<cgpSequenciadores> {
 public:
  cgdSequenciadores() : cgdRecord("TbSequenciadores") {}
};

// The next number of `attribute` (1 for a column never numbered before),
// taken in one statement, so that two workstations never get the same one.
int32_t NextSequenceValue(cgpSistema& session, std::string_view attribute);

}  // namespace vek
