#include "vek/db/workbook/Worksheet.h"

#include "vek/platform/VekError.h"

namespace vek::workbook {

void Worksheet::RaiseRangeError(std::string_view reference) {
  throw VekError(kObjectDefinedError, "Worksheet",
                 "Method 'Range' of object '_Worksheet' failed: \"" + std::string(reference) +
                     "\" is not one cell's reference");
}

}  // namespace vek::workbook
