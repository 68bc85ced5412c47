// A dBase table read from any bytes, then written to as the ERP export does.
#include "FuzzInput.h"
#include "vek/db/dbase/DbfTable.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const auto file = vek::fuzz::ScratchFile(data, size, ".dbf");
  return vek::fuzz::Refusable([&] {
    vek::dbase::DbfTable table(file, "SE1");
    (void)table.RecordCount();
    (void)table.FieldIndex("E1_NUM");
    table.Append(std::vector<vek::dbase::CellValue>(table.Fields().size()));
    table.MarkAllDeleted();
  });
}
