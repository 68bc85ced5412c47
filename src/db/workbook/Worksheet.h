#pragma once
// The worksheet object of the spreadsheet's object model, as the monthly
// export writes cells through it: Activate, then Range("B2").Value(v). It
// works on a WorkbookFile; nothing is written to the file until the
// workbook is saved. Internal.

#include <memory>
#include <string>
#include <string_view>

#include "vek/db/workbook/WorkbookFile.h"
#include "vek/platform/Variant.h"

namespace vek::workbook {

// The classic "Application-defined or object-defined error" of a reference
// the sheet can't take.
inline constexpr int32_t kObjectDefinedError = 1004;

class Range {
 public:
  Variant Value() const { return sheet_->Value(row_, column_); }
  // Numbers, money (exact), dates (a date cell), booleans, text; Empty or
  // Null empties the cell.
  void Value(const Variant& value) { sheet_->SetValue(row_, column_, value); }

 private:
  friend class Worksheet;
  Range(Sheet& sheet, int32_t row, int32_t column) : sheet_(&sheet), row_(row), column_(column) {}
  Sheet* sheet_;
  int32_t row_;
  int32_t column_;
};

class Worksheet {
 public:
  // The sheet `name` of the workbook; raises 0x80040E37 naming it when the
  // workbook has none.
  Worksheet(std::shared_ptr<WorkbookFile> workbook, std::string_view name)
      : workbook_(std::move(workbook)), sheet_(&workbook_->Worksheet(name)) {}

  const std::string& Name() const { return sheet_->Name(); }
  // Makes it the sheet the workbook opens on.
  void Activate() { workbook_->Activate(sheet_->Name()); }
  // One cell by its reference ("B2"); 1004 for anything else.
  workbook::Range Range(std::string_view reference) {
    int32_t row = 0;
    int32_t column = 0;
    if (!Sheet::ParseReference(reference, row, column)) {
      RaiseRangeError(reference);
    }
    return workbook::Range(*sheet_, row, column);
  }
  WorkbookFile& Parent() { return *workbook_; }

 private:
  [[noreturn]] static void RaiseRangeError(std::string_view reference);
  std::shared_ptr<WorkbookFile> workbook_;
  Sheet* sheet_;
};

}  // namespace vek::workbook
