// A workbook read from any bytes, every sheet's cells read, one written back.
#include <algorithm>

#include "FuzzInput.h"
#include "vek/db/workbook/WorkbookFile.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const auto file = vek::fuzz::ScratchFile(data, size, ".xlsx");
  return vek::fuzz::Refusable([&] {
    vek::workbook::WorkbookFile workbook(file);
    for (const std::string& name : workbook.SheetNames()) {
      vek::workbook::Sheet& sheet = workbook.Worksheet(name);
      for (int32_t row = 1; row <= std::min(sheet.LastRow(), 50); ++row) {
        for (int32_t column = 0; column < 8; ++column) (void)sheet.Value(row, column);
      }
      sheet.SetValue(2, 1, vek::Variant(std::string("x")));
    }
    if (workbook.Changed()) workbook.Save();
  });
}
