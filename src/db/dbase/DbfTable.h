#pragma once
// One dBase table file (.dbf) written through shapelib's DBF API: the
// dBase provider's storage. Internal: only the provider uses it.
//
// Texts are stored in Windows-1252 (the header's language byte 0x03 and a
// .cpg file say so), numbers in plain decimal with a point whatever the
// process locale, dates as yyyymmdd. Every failure is a VekError with
// Source "dBase" naming the table, the field and the record.

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vek::dbase {

struct FieldDef {
  std::string name;
  char type = 'C';  // C text, N number, D date, L logical
  int32_t width = 0;
  int32_t decimals = 0;
};

// A number kept exact as a fraction (numerator / denominator, the latter
// positive), as the statements' "12345 / 100" amounts are.
struct ExactNumber {
  __int128 numerator = 0;
  __int128 denominator = 1;
};

// A value that a statement gives a field.
struct CellValue {
  enum class Kind { Null, Text, Number, Logical };
  Kind kind = Kind::Null;
  std::string text;  // UTF-8
  ExactNumber number;
  bool logical = false;
};

// The provider's errors: number 0x80004005, Source "dBase".
[[noreturn]] void RaiseDbaseError(std::string description);

// The text in Windows-1252, cut to `width` characters (never inside one)
// and padded with blanks; a character the code page lacks becomes "?".
std::string Windows1252Field(std::string_view utf8, int32_t width);

// The number rounded (half away from zero) to `decimals` places, written
// with a point and no grouping; empty when it is not finite.
std::string DecimalText(const ExactNumber& number, int32_t decimals);

class DbfTable {
 public:
  // Opens an existing table for writing. `name` is how statements call it.
  DbfTable(const std::filesystem::path& file, std::string name);
  ~DbfTable();
  DbfTable(const DbfTable&) = delete;
  DbfTable& operator=(const DbfTable&) = delete;

  // Writes a new, empty table in Windows-1252 with its .cpg file; refuses a
  // file that is already there.
  static void Create(const std::filesystem::path& file, std::string_view name, const std::vector<FieldDef>& fields);

  const std::vector<FieldDef>& Fields() const { return fields_; }
  // The field of that name in any case; -1 when the table has none.
  int32_t FieldIndex(std::string_view name) const;
  int32_t RecordCount() const;

  // Marks every record that is not yet deleted as deleted (the file keeps
  // them, as dBase does until it is packed); returns how many were marked.
  int32_t MarkAllDeleted();
  // Appends one record: each field gets its value (Null for the fields not
  // given: blanks). Every value is checked and encoded before anything is
  // written, so a refused value adds no record.
  void Append(const std::vector<CellValue>& values);
  // Sets the header's date of last update.
  void Touch(int32_t year, int32_t month, int32_t day);

 private:
  std::string Encode(const FieldDef& field, const CellValue& value, int32_t record) const;

  struct Handle;
  std::unique_ptr<Handle> handle_;
  std::string name_;
  std::vector<FieldDef> fields_;
};

}  // namespace vek::dbase
