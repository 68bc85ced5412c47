#include "vek/db/dbase/DbfTable.h"
#include "vek/platform/FileModes.h"

#include <shapefil.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <utility>

#include "vek/db/DbError.h"
#include "vek/platform/Date.h"
#include "vek/platform/Text.h"

namespace vek::dbase {
namespace {

namespace fs = std::filesystem;

// The language byte of a Windows-1252 table (dBase's "Windows ANSI"); 0x57
// is the same code page as other writers mark it, and 0 leaves it to the
// machine, which is Windows-1252 on the ERP's side.
constexpr int kWindows1252Mark = 0x03;
constexpr int kAnsiMark = 0x57;

// shapelib reports through a hook without context: the message of the call
// running on this thread is kept here.
thread_local std::string shapelib_message;
void KeepShapelibMessage(const char* message) { shapelib_message = message ? message : ""; }

SAHooks Hooks() {
  SAHooks hooks;
  SASetupDefaultHooks(&hooks);
  hooks.Error = KeepShapelibMessage;
  return hooks;
}

// Windows-1252's characters at 0x80 to 0x9F (0 where the code page has none).
constexpr std::array<char32_t, 32> kHighControls = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

char Windows1252Byte(char32_t c) {
  if (c == 0) return '?';
  if (c < 0x80 || (c >= 0xA0 && c <= 0xFF)) return static_cast<char>(c);
  for (size_t i = 0; i < kHighControls.size(); ++i) {
    if (kHighControls[i] == c) return static_cast<char>(0x80 + i);
  }
  return '?';
}

std::string Describe(const FieldDef& field) {
  std::string text = field.name + " (" + field.type + "(" + std::to_string(field.width);
  if (field.type == 'N' || field.type == 'F') text += "," + std::to_string(field.decimals);
  return text + "))";
}

bool MultiplyChecked(__int128 a, __int128 b, __int128& result) { return !__builtin_mul_overflow(a, b, &result); }

}  // namespace

void RaiseDbaseError(std::string description) { RaiseDbError(adErrUnspecified, "dBase", std::move(description)); }

std::string Windows1252Field(std::string_view utf8, int32_t width) {
  std::string field;
  field.reserve(static_cast<size_t>(width));
  size_t pos = 0;
  while (pos < utf8.size() && static_cast<int32_t>(field.size()) < width) {
    field.push_back(Windows1252Byte(NextCodePoint(utf8, pos)));
  }
  field.resize(static_cast<size_t>(width), ' ');
  return field;
}

std::string DecimalText(const ExactNumber& number, int32_t decimals) {
  __int128 scale = 1;
  for (int32_t i = 0; i < decimals; ++i) {
    if (!MultiplyChecked(scale, 10, scale)) return {};
  }
  __int128 scaled = 0;
  if (number.denominator <= 0 || !MultiplyChecked(number.numerator, scale, scaled)) return {};
  __int128 quotient = scaled / number.denominator;
  const __int128 remainder = scaled % number.denominator;
  // Half away from zero, as dBase rounds a value into a field's decimals.
  if (remainder != 0 && (remainder < 0 ? -remainder : remainder) * 2 >= number.denominator) {
    quotient += scaled < 0 ? -1 : 1;
  }
  const bool negative = quotient < 0;
  __int128 magnitude = negative ? -quotient : quotient;
  std::string digits;
  while (magnitude > 0) {
    digits.insert(digits.begin(), static_cast<char>('0' + static_cast<int>(magnitude % 10)));
    magnitude /= 10;
  }
  if (static_cast<int32_t>(digits.size()) <= decimals) {
    digits.insert(0, static_cast<size_t>(decimals) + 1 - digits.size(), '0');
  }
  if (decimals > 0) digits.insert(digits.size() - static_cast<size_t>(decimals), 1, '.');
  return negative ? "-" + digits : digits;
}

struct DbfTable::Handle {
  DBFHandle dbf = nullptr;
  ~Handle() {
    if (dbf) DBFClose(dbf);
  }
};

DbfTable::DbfTable(const fs::path& file, std::string name) : handle_(std::make_unique<Handle>()), name_(std::move(name)) {
  SAHooks hooks = Hooks();
  shapelib_message.clear();
  errno = 0;
  handle_->dbf = DBFOpenLL(file.c_str(), "rb+", &hooks);
  if (!handle_->dbf) {
    const std::string reason = errno != 0 ? std::strerror(errno) : shapelib_message;
    RaiseDbaseError("Cannot open table " + name_ + " (" + file.string() + ") for writing" +
                    (reason.empty() ? std::string(".") : ": " + reason));
  }
  DBFHandle dbf = handle_->dbf;
  // A header that announces more records than the file holds is a damaged
  // table: writing after them would leave a hole of garbage records.
  std::error_code size_error;
  const uintmax_t bytes = fs::file_size(file, size_error);
  const uintmax_t announced = static_cast<uintmax_t>(std::max(dbf->nHeaderLength, 0)) +
                              static_cast<uintmax_t>(std::max(dbf->nRecords, 0)) *
                                  static_cast<uintmax_t>(std::max(dbf->nRecordLength, 0));
  if (size_error || dbf->nRecords < 0 || announced > bytes) {
    RaiseDbaseError("Table " + name_ + " (" + file.string() + ") is damaged: its header announces " +
                    std::to_string(dbf->nRecords) + " records of " + std::to_string(dbf->nRecordLength) +
                    " bytes, more than the file holds.");
  }
  const char* code_page = DBFGetCodePage(dbf);
  const bool marked_1252 = dbf->iLanguageDriver == 0 || dbf->iLanguageDriver == kWindows1252Mark ||
                           dbf->iLanguageDriver == kAnsiMark;
  const bool cpg_1252 = code_page == nullptr || std::strncmp(code_page, "LDID/", 5) == 0 ||
                        std::strstr(code_page, "1252") != nullptr;
  if (!marked_1252 || !cpg_1252) {
    RaiseDbaseError("Table " + name_ + " is not in Windows-1252 (" +
                    (code_page ? std::string(code_page) : "language byte " + std::to_string(dbf->iLanguageDriver)) +
                    "): the dBase provider writes Windows-1252 tables only.");
  }
  for (int i = 0; i < DBFGetFieldCount(dbf); ++i) {
    char field_name[XBASE_FLDNAME_LEN_READ + 1] = {};
    int width = 0;
    int decimals = 0;
    DBFGetFieldInfo(dbf, i, field_name, &width, &decimals);
    fields_.push_back({field_name, DBFGetNativeFieldType(dbf, i), width, decimals});
  }
}

DbfTable::~DbfTable() = default;

void DbfTable::Create(const fs::path& file, std::string_view name, const std::vector<FieldDef>& fields) {
  std::error_code ignored;
  if (fs::exists(file, ignored)) RaiseDbaseError("File " + file.string() + " already exists.");
  if (fields.empty()) RaiseDbaseError("Table " + std::string(name) + " needs at least one field.");
  for (const FieldDef& field : fields) {
    const bool plain_name = !field.name.empty() && field.name.size() <= XBASE_FLDNAME_LEN_WRITE &&
                            field.name.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_") ==
                                std::string::npos;
    bool valid_size = false;
    switch (field.type) {
      case 'C': valid_size = field.width >= 1 && field.width <= 254; break;
      case 'N':
      case 'F':
        valid_size = field.width >= 1 && field.width <= 20 && field.decimals >= 0 &&
                     (field.decimals == 0 || field.decimals <= field.width - 2);
        break;
      case 'D': valid_size = field.width == 8; break;
      case 'L': valid_size = field.width == 1; break;
      default: break;
    }
    if (!plain_name || !valid_size) {
      RaiseDbaseError("Field " + Describe(field) + " of table " + std::string(name) +
                      " is not a dBase field (names of up to 10 letters, digits and _; types C(1-254), "
                      "N(1-20,d), D, L).");
    }
  }
  SAHooks hooks = Hooks();
  shapelib_message.clear();
  DBFHandle dbf = DBFCreateLL(file.c_str(), ("LDID/" + std::to_string(kWindows1252Mark)).c_str(), &hooks);
  if (!dbf) RaiseDbaseError("Cannot create " + file.string() + ": " + shapelib_message);
  Handle owner{dbf};
  for (const FieldDef& field : fields) {
    if (DBFAddNativeFieldType(dbf, field.name.c_str(), field.type, field.width, field.decimals) < 0) {
      RaiseDbaseError("Cannot add field " + Describe(field) + " to " + file.string() + ": " + shapelib_message);
    }
  }
  DBFClose(std::exchange(owner.dbf, nullptr));
  fs::path cpg = file;
  cpg.replace_extension(".cpg");
  std::ofstream(cpg, std::ios::binary | std::ios::trunc) << "1252";
  detail::KeepOthersFromWriting(file);
  detail::KeepOthersFromWriting(cpg);
}

int32_t DbfTable::FieldIndex(std::string_view name) const {
  for (size_t i = 0; i < fields_.size(); ++i) {
    if (EqualsIgnoreCase(fields_[i].name, name)) return static_cast<int32_t>(i);
  }
  return -1;
}

int32_t DbfTable::RecordCount() const { return DBFGetRecordCount(handle_->dbf); }

int32_t DbfTable::MarkAllDeleted() {
  int32_t marked = 0;
  for (int i = 0; i < DBFGetRecordCount(handle_->dbf); ++i) {
    if (DBFIsRecordDeleted(handle_->dbf, i)) continue;
    if (!DBFMarkRecordDeleted(handle_->dbf, i, 1)) {
      RaiseDbaseError("Cannot mark record " + std::to_string(i + 1) + " of table " + name_ + " deleted: " +
                      shapelib_message);
    }
    ++marked;
  }
  return marked;
}

std::string DbfTable::Encode(const FieldDef& field, const CellValue& value, int32_t record) const {
  const auto where = [&] { return " of table " + name_ + ", record " + std::to_string(record); };
  const auto mismatch = [&](std::string_view wanted) {
    RaiseDbaseError("Data type mismatch: field " + Describe(field) + where() + " takes " + std::string(wanted) + ".");
  };
  if (value.kind == CellValue::Kind::Null) return std::string(static_cast<size_t>(field.width), ' ');
  switch (field.type) {
    case 'C':
      if (value.kind != CellValue::Kind::Text) mismatch("text");
      return Windows1252Field(value.text, field.width);
    case 'N':
    case 'F': {
      if (value.kind != CellValue::Kind::Number) mismatch("a number");
      const std::string text = DecimalText(value.number, field.decimals);
      if (text.empty() || static_cast<int32_t>(text.size()) > field.width) {
        RaiseDbaseError("Numeric overflow: the value does not fit field " + Describe(field) + where() +
                        (text.empty() ? std::string() : " (" + text + " needs " + std::to_string(text.size()) +
                                                            " positions)") + ".");
      }
      return std::string(static_cast<size_t>(field.width) - text.size(), ' ') + text;
    }
    case 'D': {
      if (value.kind != CellValue::Kind::Text) mismatch("a date 'dd/mm/yyyy'");
      const std::string text = Trim(value.text);
      if (text.empty()) return std::string(8, ' ');
      int day = 0, month = 0, year = 0;
      char tail = 0;
      const bool read = text.size() == 10 && std::sscanf(text.c_str(), "%2d/%2d/%4d%c", &day, &month, &year, &tail) == 3;
      if (!read || year < 1 || month < 1 || month > 12 || day < 1 || day > DaysInMonth(year, month)) {
        RaiseDbaseError("'" + value.text + "' is not a date (dd/mm/yyyy) for field " + Describe(field) + where() + ".");
      }
      char stamp[16];
      std::snprintf(stamp, sizeof stamp, "%04d%02d%02d", year, month, day);
      return stamp;
    }
    case 'L':
      if (value.kind != CellValue::Kind::Logical) mismatch(".T. or .F.");
      return value.logical ? "T" : "F";
    default:
      RaiseDbaseError("Field " + field.name + " of table " + name_ + " has type '" + field.type +
                      "', which the dBase provider does not write.");
  }
}

void DbfTable::Append(const std::vector<CellValue>& values) {
  const int32_t record = RecordCount() + 1;
  std::vector<std::string> cells;
  cells.reserve(fields_.size());
  for (size_t i = 0; i < fields_.size(); ++i) {
    cells.push_back(Encode(fields_[i], i < values.size() ? values[i] : CellValue{}, record));
  }
  const int entity = record - 1;
  for (size_t i = 0; i < cells.size(); ++i) {
    if (!DBFWriteAttributeDirectly(handle_->dbf, entity, static_cast<int>(i), cells[i].data())) {
      RaiseDbaseError("Cannot write field " + fields_[i].name + " of table " + name_ + ", record " +
                      std::to_string(record) + ": " + shapelib_message);
    }
  }
}

void DbfTable::Touch(int32_t year, int32_t month, int32_t day) {
  DBFSetLastModifiedDate(handle_->dbf, year - 1900, month, day);
}

}  // namespace vek::dbase
