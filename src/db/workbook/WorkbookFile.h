#pragma once
// An Office Open XML workbook (.xlsx) opened for writing cells of its
// sheets. The file is read once; a sheet's cells are changed in memory and
// Save writes the workbook whole to a temporary file beside it and renames
// it over the old one, so a failure leaves the file as it was. Every part
// of the file that no cell change touches (other sheets, styles, charts,
// formulas) is copied as it is; formulas are recalculated when the workbook
// is next opened (calcPr fullCalcOnLoad). Internal: the workbook provider
// (Jet's Excel connection) and the worksheet object use it.
//
// Errors are VekError with Source kWorkbookSource: 0x80004005 for a file
// that is missing, not a workbook, or can't be written (read-only, folder
// gone); 0x80040E37 for a sheet the workbook lacks.

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "vek/platform/Date.h"
#include "vek/platform/Variant.h"

namespace vek::workbook {

inline constexpr const char* kWorkbookSource = "Microsoft Excel Workbook";
inline constexpr int32_t kNoSuchSheet = static_cast<int32_t>(0x80040E37u);

class WorkbookFile;

// One worksheet's cells. Rows are numbered from 1, columns from 0 (A).
class Sheet {
 public:
  const std::string& Name() const { return name_; }
  // The last row that holds a <row> element (0 when none).
  int32_t LastRow() const;
  // The value a cell shows: Empty for a missing or blank cell, a Double for
  // a number, a Date for a number under a date format, a String for text,
  // a Boolean, and Null for an error value.
  Variant Value(int32_t row, int32_t column) const;
  // A number given as its decimal text ("1234.56", "-3"), written as it is:
  // no binary rounding comes between the caller and the file.
  void SetNumber(int32_t row, int32_t column, std::string_view decimal_text);
  // A date as its serial number under a date format (the cell's own when it
  // already has one, else "dd/mm/yyyy").
  void SetDate(int32_t row, int32_t column, Date date);
  // Any value: numbers, currency, dates, booleans, text (inline), Empty or
  // Null (the cell is emptied).
  void SetValue(int32_t row, int32_t column, const Variant& value);

  // "B2" -> row 2, column 1; false when the text is no cell reference.
  static bool ParseReference(std::string_view reference, int32_t& row, int32_t& column);
  static std::string ColumnLetters(int32_t column);

  struct Impl;  // the sheet's XML, defined where it is used

 private:
  friend class WorkbookFile;
  explicit Sheet(WorkbookFile& owner, std::string name, std::string part);
  WorkbookFile& owner_;
  std::string name_;
  std::string part_;  // its path inside the package
  std::shared_ptr<Impl> impl_;
};

class WorkbookFile {
 public:
  // Reads the workbook; raises 0x80004005 naming the file when it is
  // missing or not an .xlsx package.
  explicit WorkbookFile(std::filesystem::path path);
  ~WorkbookFile();
  WorkbookFile(const WorkbookFile&) = delete;
  WorkbookFile& operator=(const WorkbookFile&) = delete;

  const std::filesystem::path& Path() const { return path_; }
  std::vector<std::string> SheetNames() const;
  bool HasSheet(std::string_view name) const;
  // The sheet of that name (compared in any case); raises 0x80040E37 naming
  // the sheet and the file when there is none.
  Sheet& Worksheet(std::string_view name);
  // Makes the sheet the one the workbook opens on (raises as Worksheet).
  void Activate(std::string_view name);
  // Whether a cell change is waiting for Save.
  bool Changed() const { return changed_; }

  // Writes the changed sheets into the file (temporary file, then rename).
  // Raises 0x80004005 naming the file when it is read-only or can't be
  // written; the file is then untouched.
  void Save();

 private:
  friend class Sheet;
  struct Parts;
  void MarkChanged() { changed_ = true; }
  // The style index of a date cell: `current` when it already shows a date.
  uint32_t DateStyle(uint32_t current);
  bool IsDateStyle(uint32_t style) const;
  void DropCachedFormulaResults();

  std::filesystem::path path_;
  std::unique_ptr<Parts> parts_;
  std::map<std::string, std::unique_ptr<Sheet>, std::less<>> sheets_;  // loaded, by folded name
  // The sheets not loaded whose formulas had cached results: their parts
  // without them, written with every Save.
  std::vector<std::pair<std::string, std::string>> uncached_;
  bool formulas_uncached_ = false;
  bool changed_ = false;
};

// Writes a new .xlsx from its parts (path inside the package -> content),
// through a temporary file renamed over `path`. Raises 0x80004005 naming the
// file when it can't be written.
void WritePackage(const std::filesystem::path& path, const std::vector<std::pair<std::string, std::string>>& parts);

}  // namespace vek::workbook
