#include "vek/db/odbc/OdbcDriver.h"

#include <sql.h>
#include <sqlext.h>
#include <sqlucode.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <list>
#include <unordered_map>
#include <utility>

#include "vek/db/Command.h"
#include "vek/db/DbError.h"
#include "vek/db/backup/ServerDump.h"
#include "vek/db/dialect/ColumnKinds.h"
#include "vek/platform/VekError.h"
#include "vek/platform/Text.h"

namespace vek {
namespace {

constexpr const char* kSource = "ODBC";
// Each cached statement holds a prepared statement on the server as well.
constexpr size_t kMaxCachedStatements = 64;
constexpr SQLULEN kLoginTimeoutSeconds = 30;
constexpr size_t kTextChunk = 2048;  // characters per SQLGetData call
constexpr int32_t kUnbounded = std::numeric_limits<int32_t>::max();
// psqlODBC's defaults that this driver does not rely on staying defaults.
constexpr std::pair<const char*, const char*> kPostgresOptions[] = {
    {"BoolsAsChar", "0"}, {"UseDeclareFetch", "0"}, {"LFConversion", "0"}};

using WideString = std::basic_string<SQLWCHAR>;

// ---- text ----------------------------------------------------------------

WideString Wide(std::string_view text) {
  WideString out;
  out.reserve(text.size());
  size_t pos = 0;
  while (pos < text.size()) {
    char32_t c = NextCodePoint(text, pos);
    if (c >= 0x10000) {
      c -= 0x10000;
      out.push_back(static_cast<SQLWCHAR>(0xD800 + (c >> 10)));
      out.push_back(static_cast<SQLWCHAR>(0xDC00 + (c & 0x3FF)));
    } else {
      out.push_back(static_cast<SQLWCHAR>(c));
    }
  }
  return out;
}

std::string Narrow(const SQLWCHAR* text, size_t length) {
  std::string out;
  out.reserve(length);
  for (size_t i = 0; i < length; ++i) {
    char32_t c = text[i];
    if (c >= 0xD800 && c < 0xE000) {
      const bool paired = c < 0xDC00 && i + 1 < length && text[i + 1] >= 0xDC00 && text[i + 1] < 0xE000;
      if (paired) {
        c = 0x10000 + ((c - 0xD800) << 10) + (text[i + 1] - 0xDC00);
        ++i;
      } else {
        c = 0xFFFD;
      }
    }
    AppendUtf8(out, c);
  }
  return out;
}

std::string Narrow(const WideString& text) { return Narrow(text.data(), text.size()); }

// The characters in a buffer of `capacity` characters that a call reported
// as `length` units (bytes or characters), without its terminating null.
size_t Filled(SQLSMALLINT length, size_t unit, size_t capacity) {
  return std::min(static_cast<size_t>(std::max<SQLSMALLINT>(length, 0)) / unit, capacity - 1);
}

// ---- errors --------------------------------------------------------------

int32_t ErrorNumber(std::string_view sqlstate) {
  if (sqlstate.starts_with("42")) return adErrSyntax;
  if (sqlstate.starts_with("23")) return adErrConstraint;
  return adErrUnspecified;
}

// The first diagnostic record of the handle: its SQLSTATE picks the number
// and its message, as the driver wrote it, is the description.
[[noreturn]] void RaiseOdbcError(SQLSMALLINT handle_type, SQLHANDLE handle, SQLRETURN code) {
  SQLWCHAR sqlstate[6] = {};
  SQLINTEGER native = 0;
  std::vector<SQLWCHAR> message(1024);
  SQLSMALLINT length = 0;
  SQLRETURN got = SQL_ERROR;
  if (handle != SQL_NULL_HANDLE) {
    got = SQLGetDiagRecW(handle_type, handle, 1, sqlstate, &native, message.data(),
                         static_cast<SQLSMALLINT>(message.size()), &length);
    if (got == SQL_SUCCESS_WITH_INFO && static_cast<size_t>(length) >= message.size()) {
      message.resize(static_cast<size_t>(length) + 1);
      got = SQLGetDiagRecW(handle_type, handle, 1, sqlstate, &native, message.data(),
                           static_cast<SQLSMALLINT>(message.size()), &length);
    }
  }
  if (!SQL_SUCCEEDED(got)) {
    RaiseDbError(adErrUnspecified, kSource,
                 code == SQL_INVALID_HANDLE ? "Invalid ODBC handle." : "The ODBC call failed without a message.");
  }
  RaiseDbError(ErrorNumber(Narrow(sqlstate, 5)), kSource, Narrow(message.data(), Filled(length, 1, message.size())));
}

void Check(SQLRETURN code, SQLSMALLINT handle_type, SQLHANDLE handle) {
  if (!SQL_SUCCEEDED(code)) RaiseOdbcError(handle_type, handle, code);
}

// ---- handles ---------------------------------------------------------------

// Owns one ODBC handle; a connection handle that connected is disconnected
// before it is freed.
template <SQLSMALLINT kType>
class Handle {
 public:
  Handle() = default;
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  Handle(Handle&& other) noexcept
      : handle_(std::exchange(other.handle_, nullptr)), connected_(std::exchange(other.connected_, false)) {}
  Handle& operator=(Handle&& other) noexcept {
    if (this != &other) {
      Reset();
      handle_ = std::exchange(other.handle_, nullptr);
      connected_ = std::exchange(other.connected_, false);
    }
    return *this;
  }
  ~Handle() { Reset(); }

  // Allocates under `parent` (of type parent_type); raises the parent's error.
  static Handle Allocate(SQLSMALLINT parent_type, SQLHANDLE parent) {
    Handle owner;
    const SQLRETURN code = SQLAllocHandle(kType, parent, &owner.handle_);
    if (!SQL_SUCCEEDED(code)) {
      owner.handle_ = SQL_NULL_HANDLE;
      if (parent == SQL_NULL_HANDLE) {
        RaiseDbError(adErrUnspecified, kSource, "The ODBC environment could not be allocated.");
      }
      RaiseOdbcError(parent_type, parent, code);
    }
    return owner;
  }

  SQLHANDLE Get() const { return handle_; }
  explicit operator bool() const { return handle_ != SQL_NULL_HANDLE; }
  void MarkConnected() { connected_ = true; }

  void Reset() noexcept {
    if (handle_ == SQL_NULL_HANDLE) return;
    if (connected_) SQLDisconnect(handle_);
    SQLFreeHandle(kType, handle_);
    handle_ = SQL_NULL_HANDLE;
    connected_ = false;
  }

 private:
  SQLHANDLE handle_ = nullptr;
  bool connected_ = false;
};

using EnvironmentHandle = Handle<SQL_HANDLE_ENV>;
using ConnectionHandle = Handle<SQL_HANDLE_DBC>;
using StatementHandle = Handle<SQL_HANDLE_STMT>;

// Leaves a reused statement ready for its next run, whatever happened.
class CursorCloser {
 public:
  explicit CursorCloser(SQLHSTMT statement) : statement_(statement) {}
  CursorCloser(const CursorCloser&) = delete;
  CursorCloser& operator=(const CursorCloser&) = delete;
  ~CursorCloser() {
    SQLFreeStmt(statement_, SQL_CLOSE);
    SQLFreeStmt(statement_, SQL_RESET_PARAMS);
  }

 private:
  SQLHSTMT statement_;
};

// ---- connection string -----------------------------------------------------

// The keys of "Key=Value;..." folded, and the Driver value; a value between
// braces may hold semicolons.
struct ConnectionKeys {
  std::vector<std::string> keys;
  std::string driver;
};

ConnectionKeys ReadConnectionKeys(std::string_view text) {
  ConnectionKeys found;
  size_t pos = 0;
  while (pos < text.size()) {
    const size_t equals = text.find('=', pos);
    if (equals == std::string_view::npos) break;
    const std::string key = FoldCase(Trim(text.substr(pos, equals - pos)));
    size_t value_start = equals + 1;
    while (value_start < text.size() && text[value_start] == ' ') ++value_start;
    size_t end;
    if (value_start < text.size() && text[value_start] == '{') {
      const size_t close = text.find('}', value_start);
      end = close == std::string_view::npos ? text.size() : text.find(';', close);
    } else {
      end = text.find(';', value_start);
    }
    if (end == std::string_view::npos) end = text.size();
    if (key == "driver") found.driver = std::string(text.substr(value_start, end - value_start));
    found.keys.push_back(key);
    pos = end + 1;
  }
  return found;
}

std::string WithDriverOptions(const std::string& connection_string) {
  const ConnectionKeys found = ReadConnectionKeys(connection_string);
  if (FoldCase(found.driver).find("postgres") == std::string::npos) return connection_string;
  std::string text = connection_string;
  for (const auto& [key, value] : kPostgresOptions) {
    if (std::find(found.keys.begin(), found.keys.end(), FoldCase(key)) != found.keys.end()) continue;
    if (!text.empty() && text.back() != ';') text += ';';
    text += std::string(key) + "=" + value;
  }
  return text;
}

// ---- values ----------------------------------------------------------------

// How a column's values are read, decided once per statement.
enum class FetchKind { Long, Short, Byte, BigInt, Boolean, Double, Currency, Timestamp, Time, Text };

struct ColumnType {
  DataTypeEnum type;
  int32_t defined_size;
  FetchKind fetch;
};

int32_t SizeOrUnbounded(SQLULEN size) {
  return size == 0 || size > static_cast<SQLULEN>(kUnbounded) ? kUnbounded : static_cast<int32_t>(size);
}

// The field type as a SQL Server provider reports it. PostgreSQL has one kind
// of character type, which psqlODBC's Unicode driver reports as wide: there
// it reads as the plain kind, as the embedded engine's VARCHAR does.
ColumnType TypeOfColumn(SQLSMALLINT data_type, SQLULEN size, SQLSMALLINT digits, Dialect dialect) {
  const bool wide_is_plain = dialect == Dialect::PostgreSQL;
  switch (data_type) {
    case SQL_INTEGER: return {adInteger, 4, FetchKind::Long};
    case SQL_SMALLINT: return {adSmallInt, 2, FetchKind::Short};
    case SQL_TINYINT: return {adUnsignedTinyInt, 1, FetchKind::Byte};
    case SQL_BIGINT: return {adBigInt, 8, FetchKind::BigInt};
    case SQL_BIT: return {adBoolean, 2, FetchKind::Boolean};
    case SQL_NUMERIC:
    case SQL_DECIMAL:
      // NUMERIC(19,4) is how the servers hold money.
      if (size == 19 && digits == 4) return {adCurrency, 8, FetchKind::Currency};
      return {adNumeric, SizeOrUnbounded(size), FetchKind::Double};
    case SQL_DOUBLE:
    case SQL_FLOAT:
    case SQL_REAL: return {adDouble, 8, FetchKind::Double};
    case SQL_TYPE_TIMESTAMP:
    case SQL_TIMESTAMP:
    case SQL_TYPE_DATE:
    case SQL_DATETIME: return {adDBTimeStamp, 16, FetchKind::Timestamp};
    case SQL_TYPE_TIME:
    case SQL_TIME: return {adDBTimeStamp, 16, FetchKind::Time};
    case SQL_CHAR: return {adChar, SizeOrUnbounded(size), FetchKind::Text};
    case SQL_VARCHAR: return {adVarChar, SizeOrUnbounded(size), FetchKind::Text};
    case SQL_LONGVARCHAR: return {adVarChar, kUnbounded, FetchKind::Text};
    case SQL_WCHAR: return {wide_is_plain ? adChar : adWChar, SizeOrUnbounded(size), FetchKind::Text};
    case SQL_WVARCHAR: return {wide_is_plain ? adVarChar : adVarWChar, SizeOrUnbounded(size), FetchKind::Text};
    case SQL_WLONGVARCHAR: return {wide_is_plain ? adVarChar : adVarWChar, kUnbounded, FetchKind::Text};
    default: return {adVarChar, SizeOrUnbounded(size), FetchKind::Text};
  }
}

// Decimal text ("-12.34567") as Currency, rounding the fifth decimal on half
// to even; nullopt when the text is not a plain decimal number.
std::optional<Currency> ParseCurrency(std::string_view text) {
  text = std::string_view(text.data(), text.find_last_not_of(' ') + 1);
  size_t pos = 0;
  const bool negative = !text.empty() && text[0] == '-';
  if (!text.empty() && (text[0] == '-' || text[0] == '+')) ++pos;
  uint64_t raw = 0;
  int decimals = 0;
  bool digits = false;
  bool point = false;
  int first_dropped = -1;
  bool rest_dropped_nonzero = false;
  constexpr uint64_t kLimit = static_cast<uint64_t>(std::numeric_limits<int64_t>::max());
  for (; pos < text.size(); ++pos) {
    const char c = text[pos];
    if (c == '.' && !point) {
      point = true;
      continue;
    }
    if (c < '0' || c > '9') return std::nullopt;
    digits = true;
    const int digit = c - '0';
    if (point && decimals == 4) {
      if (first_dropped < 0) {
        first_dropped = digit;
      } else if (digit != 0) {
        rest_dropped_nonzero = true;
      }
      continue;
    }
    if (raw > (kLimit - static_cast<uint64_t>(digit)) / 10) RaiseRuntimeError(kOverflow);
    raw = raw * 10 + static_cast<uint64_t>(digit);
    if (point) ++decimals;
  }
  if (!digits) return std::nullopt;
  for (; decimals < 4; ++decimals) {
    if (raw > kLimit / 10) RaiseRuntimeError(kOverflow);
    raw *= 10;
  }
  if (first_dropped > 5 || (first_dropped == 5 && (rest_dropped_nonzero || raw % 2 == 1))) {
    if (raw == kLimit) RaiseRuntimeError(kOverflow);
    ++raw;
  }
  const int64_t value = static_cast<int64_t>(raw);
  return Currency::FromRaw(negative ? -value : value);
}

constexpr double kSecondsPerDay = 86400.0;

// A day serial and a time of day as the classic Date: before 30 Dec 1899 the
// time of day is subtracted, as the runtime kept it.
Date DateOf(int64_t day, double seconds_of_day) {
  const double fraction = seconds_of_day / kSecondsPerDay;
  return Date(static_cast<double>(day) + (day < 0 ? -fraction : fraction));
}

Date DateOf(const SQL_TIMESTAMP_STRUCT& value) {
  const int64_t day = SerialFromCivil(value.year, value.month, value.day);
  const double seconds = value.hour * 3600.0 + value.minute * 60.0 + value.second + value.fraction / 1e9;
  return DateOf(day, seconds);
}

// `fraction_digits` is the precision the server keeps (3 for SQL Server's
// datetime, 6 for PostgreSQL's timestamp); finer parts of a second round.
SQL_TIMESTAMP_STRUCT TimestampOf(Date date, int fraction_digits) {
  const int64_t ticks_per_second = fraction_digits == 3 ? 1000 : 1000000;
  const int64_t ticks_per_day = 86400 * ticks_per_second;
  const double serial = date.Serial();
  const double whole = std::trunc(serial);
  int64_t day = static_cast<int64_t>(whole);
  int64_t ticks = std::llround(std::fabs(serial - whole) * static_cast<double>(ticks_per_day));
  if (ticks >= ticks_per_day) {
    ticks -= ticks_per_day;
    day += serial < 0 ? -1 : 1;
  }
  const CivilDay civil = CivilFromSerial(day);
  if (civil.year < 1 || civil.year > 9999) RaiseRuntimeError(kOverflow);
  SQL_TIMESTAMP_STRUCT value{};
  value.year = static_cast<SQLSMALLINT>(civil.year);
  value.month = static_cast<SQLUSMALLINT>(civil.month);
  value.day = static_cast<SQLUSMALLINT>(civil.day);
  const int64_t seconds = ticks / ticks_per_second;
  value.hour = static_cast<SQLUSMALLINT>(seconds / 3600);
  value.minute = static_cast<SQLUSMALLINT>(seconds / 60 % 60);
  value.second = static_cast<SQLUSMALLINT>(seconds % 60);
  value.fraction = static_cast<SQLUINTEGER>(ticks % ticks_per_second * (1000000000 / ticks_per_second));
  return value;
}

template <class T>
bool ReadFixed(SQLHSTMT statement, SQLUSMALLINT column, SQLSMALLINT c_type, T& value) {
  SQLLEN indicator = 0;
  Check(SQLGetData(statement, column, c_type, &value, sizeof value, &indicator), SQL_HANDLE_STMT, statement);
  return indicator != SQL_NULL_DATA;
}

// The whole text of a column, in as many pieces as the driver hands it over;
// nullopt for NULL.
std::optional<std::string> ReadText(SQLHSTMT statement, SQLUSMALLINT column) {
  WideString text;
  SQLWCHAR buffer[kTextChunk + 1];
  for (;;) {
    SQLLEN indicator = 0;
    const SQLRETURN code = SQLGetData(statement, column, SQL_C_WCHAR, buffer, sizeof buffer, &indicator);
    if (code == SQL_NO_DATA) break;
    Check(code, SQL_HANDLE_STMT, statement);
    if (indicator == SQL_NULL_DATA) return std::nullopt;
    const size_t available = indicator == SQL_NO_TOTAL ? kTextChunk : static_cast<size_t>(indicator) / sizeof(SQLWCHAR);
    text.append(buffer, std::min(available, kTextChunk));
    if (code == SQL_SUCCESS) break;
  }
  return Narrow(text);
}

Variant ReadValue(SQLHSTMT statement, SQLUSMALLINT column, FetchKind kind) {
  switch (kind) {
    case FetchKind::Long: {
      SQLINTEGER value = 0;
      return ReadFixed(statement, column, SQL_C_SLONG, value) ? Variant(static_cast<int32_t>(value)) : Variant::Null();
    }
    case FetchKind::Short: {
      SQLSMALLINT value = 0;
      return ReadFixed(statement, column, SQL_C_SSHORT, value) ? Variant(static_cast<int16_t>(value)) : Variant::Null();
    }
    case FetchKind::Byte: {
      SQLCHAR value = 0;
      return ReadFixed(statement, column, SQL_C_UTINYINT, value) ? Variant(uint8_t{value}) : Variant::Null();
    }
    case FetchKind::BigInt: {
      SQLBIGINT value = 0;
      return ReadFixed(statement, column, SQL_C_SBIGINT, value) ? Variant(int64_t{value}) : Variant::Null();
    }
    case FetchKind::Boolean: {
      SQLCHAR value = 0;
      return ReadFixed(statement, column, SQL_C_BIT, value) ? Variant(value != 0) : Variant::Null();
    }
    case FetchKind::Double: {
      SQLDOUBLE value = 0;
      return ReadFixed(statement, column, SQL_C_DOUBLE, value) ? Variant(static_cast<double>(value)) : Variant::Null();
    }
    case FetchKind::Currency: {
      // Read as text: a double holds fewer digits than NUMERIC(19,4).
      std::optional<std::string> text = ReadText(statement, column);
      if (!text) return Variant::Null();
      if (std::optional<Currency> value = ParseCurrency(*text)) return Variant(*value);
      return Variant(std::move(*text));
    }
    case FetchKind::Timestamp: {
      SQL_TIMESTAMP_STRUCT value{};
      return ReadFixed(statement, column, SQL_C_TYPE_TIMESTAMP, value) ? Variant(DateOf(value)) : Variant::Null();
    }
    case FetchKind::Time: {
      // A time alone lies on day zero; read as a timestamp it would take today's date.
      SQL_TIME_STRUCT value{};
      if (!ReadFixed(statement, column, SQL_C_TYPE_TIME, value)) return Variant::Null();
      return Variant(DateOf(0, value.hour * 3600.0 + value.minute * 60.0 + value.second));
    }
    case FetchKind::Text: {
      std::optional<std::string> text = ReadText(statement, column);
      return text ? Variant(std::move(*text)) : Variant::Null();
    }
  }
  return Variant::Null();
}

// One parameter's buffer, alive until the statement has run (and, for an
// output parameter, until its value has been read back).
struct BoundParameter {
  SQLLEN indicator = 0;
  SQLINTEGER integer = 0;
  SQLBIGINT big = 0;
  SQLDOUBLE number = 0;
  SQLCHAR bit = 0;
  SQL_TIMESTAMP_STRUCT timestamp{};
  std::string narrow;
  WideString wide;
};

// How an output parameter of a procedure is received, by its declared type.
FetchKind KindOfParameter(DataTypeEnum type) {
  switch (type) {
    case adInteger: return FetchKind::Long;
    case adSmallInt: return FetchKind::Short;
    case adTinyInt:
    case adUnsignedTinyInt: return FetchKind::Byte;
    case adBigInt: return FetchKind::BigInt;
    case adBoolean: return FetchKind::Boolean;
    case adSingle:
    case adDouble: return FetchKind::Double;
    case adCurrency:
    case adDecimal:
    case adNumeric: return FetchKind::Currency;
    case adDate:
    case adDBDate:
    case adDBTimeStamp: return FetchKind::Timestamp;
    case adDBTime: return FetchKind::Time;
    default: return FetchKind::Text;
  }
}

// How a result column of a type is read; a decimal reads as a Double.
FetchKind FetchOf(DataTypeEnum type) { return type == adNumeric ? FetchKind::Double : KindOfParameter(type); }

Variant OutputValue(const BoundParameter& buffer, FetchKind kind) {
  if (buffer.indicator == SQL_NULL_DATA) return Variant::Null();
  switch (kind) {
    case FetchKind::Long: return Variant(static_cast<int32_t>(buffer.integer));
    case FetchKind::Short: return Variant(static_cast<int16_t>(buffer.integer));
    case FetchKind::Byte: return Variant(static_cast<uint8_t>(buffer.integer));
    case FetchKind::BigInt: return Variant(static_cast<int64_t>(buffer.big));
    case FetchKind::Boolean: return Variant(buffer.bit != 0);
    case FetchKind::Double: return Variant(static_cast<double>(buffer.number));
    case FetchKind::Currency: {
      const std::string text(buffer.narrow.c_str());
      if (std::optional<Currency> value = ParseCurrency(text)) return Variant(*value);
      return Variant(text);
    }
    case FetchKind::Timestamp:
    case FetchKind::Time: return Variant(DateOf(buffer.timestamp));
    case FetchKind::Text: {
      const size_t length = buffer.indicator == SQL_NO_TOTAL
                                ? std::char_traits<SQLWCHAR>::length(buffer.wide.data())
                                : static_cast<size_t>(buffer.indicator) / sizeof(SQLWCHAR);
      return Variant(Narrow(buffer.wide.data(), std::min(length, buffer.wide.size() - 1)));
    }
  }
  return Variant::Null();
}

std::optional<int64_t> IdentityOf(const Variant& value) {
  switch (value.Type()) {
    case VariantType::Null:
    case VariantType::Empty: return std::nullopt;
    case VariantType::Double: return std::llround(*value.Get<double>());
    case VariantType::Currency: return value.Get<Currency>()->Raw() / 10000;
    case VariantType::String: return static_cast<int64_t>(std::llround(CDbl(value)));
    default: return CLng(value);
  }
}

// ---- the driver ------------------------------------------------------------

class OdbcDriver final : public Driver {
 public:
  OdbcDriver(EnvironmentHandle environment, ConnectionHandle connection, Dialect dialect,
             std::string connection_string, std::function<Date()> now)
      : environment_(std::move(environment)),
        connection_(std::move(connection)),
        dialect_(dialect),
        connection_string_(std::move(connection_string)),
        now_(std::move(now)) {}
  ~OdbcDriver() override { Close(); }

  Dialect SqlDialect() const override { return dialect_; }

  QueryResult RunTyped(const std::string& text, std::span<const Variant> parameters,
                       const dialect::ResultTypes* types) override {
    return RunText(text, parameters, false, types);
  }

  const dialect::ColumnKinds* DeclaredKinds() override {
    if (dialect_ != Dialect::PostgreSQL) return nullptr;
    if (!kinds_read_) {
      kinds_ = dialect::ColumnKinds();
      const QueryResult columns = RunText(
          "SELECT column_name, data_type, numeric_precision, numeric_scale FROM information_schema.columns "
          "WHERE table_schema IN ('public', 'mdestacionamento')",
          {}, false);
      for (const Row& row : columns.rows) {
        const auto number = [](const Variant& value) { return value.IsNull() ? 0 : static_cast<int>(CLng(value)); };
        kinds_.Add(CStr(row[0]), dialect::KindOfDeclaredType(CStr(row[1]), number(row[2]), number(row[3])));
      }
      kinds_read_ = true;
    }
    return &kinds_;
  }

  std::optional<int64_t> Insert(const RowWrite& row) override {
    std::string text = InsertText(row, QualifiedTable(row), Quoter());
    if (row.identity_column.empty()) {
      RunText(text, row.values, false);
      return std::nullopt;
    }
    // The identity comes back from the same statement (PostgreSQL) or the
    // same batch (SQL Server), so no other session's insert can intervene.
    if (dialect_ == Dialect::PostgreSQL) {
      text += " RETURNING " + QuoteName(row.identity_column);
    } else {
      text += "; SELECT SCOPE_IDENTITY()";
    }
    const QueryResult result = RunText(text, row.values, true);
    if (result.rows.empty() || result.rows.front().empty()) return std::nullopt;
    return IdentityOf(result.rows.front().front());
  }

  int64_t Update(const RowWrite& row) override {
    const WriteStatement update =
        UpdateStatement(row, QualifiedTable(row), Quoter(), KeyColumns(row.database, row.table), kSource);
    return RunText(update.text, update.values, false).records_affected;
  }

  void CallProcedure(const std::string& name, Parameters& parameters) override {
    if (!connection_) RaiseDbError(adErrUnspecified, kSource, "The connection is closed.");
    // The call escape, which each driver turns into its server's own call
    // (PostgreSQL: a SELECT of the function, whose OUT values fill the outputs).
    const int32_t count = parameters.Count();
    const bool returns_value = count > 0 && parameters.Item(0).Direction() == adParamReturnValue;
    std::string text = returns_value ? "{? = call " : "{call ";
    text += name + "(";
    for (int32_t i = returns_value ? 1 : 0; i < count; ++i) text += i > (returns_value ? 1 : 0) ? ",?" : "?";
    text += ")}";
    CachedStatement& cached = Prepare(text);
    SQLHSTMT statement = cached.handle.Get();
    std::vector<BoundParameter> bound(static_cast<size_t>(count));
    std::vector<FetchKind> kinds(static_cast<size_t>(count));
    {
      CursorCloser closer(statement);
      for (int32_t i = 0; i < count; ++i) {
        const Parameter& parameter = parameters.Item(i);
        const auto number = static_cast<SQLUSMALLINT>(i + 1);
        BoundParameter& buffer = bound[static_cast<size_t>(i)];
        if (IsOutput(parameter.Direction())) {
          kinds[static_cast<size_t>(i)] = KindOfParameter(parameter.Type());
          BindOutput(statement, number, parameter, kinds[static_cast<size_t>(i)], buffer);
        } else {
          Bind(statement, number, parameter.Value(), buffer);
        }
      }
      SQLRETURN code = SQLExecute(statement);
      if (code != SQL_NO_DATA) Check(code, SQL_HANDLE_STMT, statement);
      // The result set the call opens is closed; SQL Server hands the output
      // values over only after its last result.
      while ((code = SQLMoreResults(statement)) != SQL_NO_DATA) Check(code, SQL_HANDLE_STMT, statement);
    }
    for (int32_t i = 0; i < count; ++i) {
      Parameter& parameter = parameters.Item(i);
      if (IsOutput(parameter.Direction())) {
        parameter.Value(OutputValue(bound[static_cast<size_t>(i)], kinds[static_cast<size_t>(i)]));
      }
    }
  }

  QueryResult Backup(const std::string& text) override {
    if (!connection_) RaiseDbError(adErrUnspecified, kSource, "The connection is closed.");
    if (dialect_ == Dialect::PostgreSQL) {
      return backup::BackupServerDatabase(backup::ServerFromConnectionString(connection_string_),
                                          backup::ParseBackupStatement(text, kSource), now_());
    }
    // SQL Server runs it, outside any transaction. Over ODBC a backup sends
    // a message per STATS step; until each is read the server may hold the
    // backup halfway, so every result and message is read to the end.
    Check(SQLSetConnectAttrW(connection_.Get(), SQL_ATTR_AUTOCOMMIT, reinterpret_cast<SQLPOINTER>(SQL_AUTOCOMMIT_ON), 0),
          SQL_HANDLE_DBC, connection_.Get());
    StatementHandle handle = StatementHandle::Allocate(SQL_HANDLE_DBC, connection_.Get());
    SQLHSTMT statement = handle.Get();
    WideString wide = Wide(text);
    SQLRETURN code = SQLExecDirectW(statement, wide.data(), static_cast<SQLINTEGER>(wide.size()));
    while (code != SQL_NO_DATA) {
      Check(code, SQL_HANDLE_STMT, statement);
      SQLSMALLINT columns = 0;
      Check(SQLNumResultCols(statement, &columns), SQL_HANDLE_STMT, statement);
      if (columns > 0) {
        while ((code = SQLFetch(statement)) != SQL_NO_DATA) Check(code, SQL_HANDLE_STMT, statement);
      }
      code = SQLMoreResults(statement);
    }
    return QueryResult{};
  }

  void Close() noexcept override {
    statements_.clear();
    lru_.clear();
    tables_.clear();
    connection_.Reset();
    environment_.Reset();
  }

 private:
  struct CachedStatement {
    StatementHandle handle;
    SQLSMALLINT parameter_count = 0;
    std::vector<FetchKind> fetch;
    std::shared_ptr<const ColumnSet> column_set;
    dialect::ResultTypes described_with;
    std::list<std::string>::iterator lru_position;
  };

  QueryResult RunText(const std::string& text, std::span<const Variant> parameters, bool skip_counts,
                      const dialect::ResultTypes* types = nullptr) {
    if (!connection_) RaiseDbError(adErrUnspecified, kSource, "The connection is closed.");
    CachedStatement& cached = Prepare(text);
    QueryResult result;
    try {
      result = Execute(cached, parameters, skip_counts, types);
    } catch (...) {
      // A statement that failed is prepared afresh next time.
      Forget(text);
      throw;
    }
    if (ChangesSchema(text)) ForgetSchema();
    return result;
  }

  CachedStatement& Prepare(const std::string& text) {
    if (auto hit = statements_.find(text); hit != statements_.end()) {
      lru_.splice(lru_.begin(), lru_, hit->second.lru_position);
      return hit->second;
    }
    StatementHandle handle = StatementHandle::Allocate(SQL_HANDLE_DBC, connection_.Get());
    WideString wide = Wide(text);
    Check(SQLPrepareW(handle.Get(), wide.data(), static_cast<SQLINTEGER>(wide.size())), SQL_HANDLE_STMT,
          handle.Get());
    SQLSMALLINT parameter_count = 0;
    Check(SQLNumParams(handle.Get(), &parameter_count), SQL_HANDLE_STMT, handle.Get());
    if (statements_.size() >= kMaxCachedStatements) {
      statements_.erase(lru_.back());
      lru_.pop_back();
    }
    lru_.push_front(text);
    CachedStatement& cached = statements_[text];
    cached.handle = std::move(handle);
    cached.parameter_count = parameter_count;
    cached.lru_position = lru_.begin();
    return cached;
  }

  void Forget(const std::string& text) noexcept {
    if (auto hit = statements_.find(text); hit != statements_.end()) {
      lru_.erase(hit->second.lru_position);
      statements_.erase(hit);
    }
  }

  static bool ChangesSchema(const std::string& text) {
    const std::string first_word = UCase(Left(LTrim(text), 6));
    return first_word.starts_with("CREATE") || first_word.starts_with("ALTER") || first_word.starts_with("DROP");
  }

  // The server's prepared statements and what was read of the tables may no
  // longer hold once the schema changed.
  void ForgetSchema() noexcept {
    statements_.clear();
    lru_.clear();
    tables_.clear();
    kinds_read_ = false;
  }

  QueryResult Execute(CachedStatement& cached, std::span<const Variant> parameters, bool skip_counts,
                      const dialect::ResultTypes* types) {
    SQLHSTMT statement = cached.handle.Get();
    if (static_cast<SQLSMALLINT>(parameters.size()) != cached.parameter_count) {
      RaiseDbError(adErrUnspecified, kSource,
                   "The statement expects " + std::to_string(cached.parameter_count) + " parameter(s), " +
                       std::to_string(parameters.size()) + " given.");
    }
    CursorCloser closer(statement);
    std::vector<BoundParameter> bound(parameters.size());
    for (size_t i = 0; i < parameters.size(); ++i) {
      Bind(statement, static_cast<SQLUSMALLINT>(i + 1), parameters[i], bound[i]);
    }
    SQLRETURN code = SQLExecute(statement);
    QueryResult result;
    // A searched UPDATE or DELETE that touched no row answers SQL_NO_DATA,
    // and then has nothing more to describe (not even RETURNING's columns).
    if (code == SQL_NO_DATA) {
      result.records_affected = 0;
      return result;
    }
    Check(code, SQL_HANDLE_STMT, statement);

    SQLSMALLINT column_count = 0;
    Check(SQLNumResultCols(statement, &column_count), SQL_HANDLE_STMT, statement);
    SQLLEN row_count = -1;
    if (column_count == 0) Check(SQLRowCount(statement, &row_count), SQL_HANDLE_STMT, statement);
    // A batch (INSERT ...; SELECT SCOPE_IDENTITY()) gives counts before its rows.
    while (skip_counts && column_count == 0) {
      code = SQLMoreResults(statement);
      if (code == SQL_NO_DATA) break;
      Check(code, SQL_HANDLE_STMT, statement);
      Check(SQLNumResultCols(statement, &column_count), SQL_HANDLE_STMT, statement);
    }
    result.returns_rows = column_count > 0;
    if (!result.returns_rows) {
      result.records_affected = std::max<SQLLEN>(row_count, 0);
      return result;
    }
    if (!cached.column_set || cached.fetch.size() != static_cast<size_t>(column_count) ||
        !cached.described_with.Same(types)) {
      DescribeColumns(cached, column_count, types);
    }
    while ((code = SQLFetch(statement)) != SQL_NO_DATA) {
      Check(code, SQL_HANDLE_STMT, statement);
      Row row;
      row.reserve(cached.fetch.size());
      for (size_t i = 0; i < cached.fetch.size(); ++i) {
        row.push_back(ReadValue(statement, static_cast<SQLUSMALLINT>(i + 1), cached.fetch[i]));
      }
      result.rows.push_back(std::move(row));
    }
    result.columns = cached.column_set;
    return result;
  }

  void Bind(SQLHSTMT statement, SQLUSMALLINT number, const Variant& value, BoundParameter& buffer) {
    SQLRETURN code = SQL_SUCCESS;
    const auto bind = [&](SQLSMALLINT c_type, SQLSMALLINT sql_type, SQLULEN size, SQLSMALLINT digits, void* data,
                          SQLLEN length) {
      return SQLBindParameter(statement, number, SQL_PARAM_INPUT, c_type, sql_type, size, digits, data, length,
                              &buffer.indicator);
    };
    switch (value.Type()) {
      case VariantType::Empty:
      case VariantType::Null:
        buffer.indicator = SQL_NULL_DATA;
        code = bind(SQL_C_WCHAR, SQL_WVARCHAR, 1, 0, nullptr, 0);
        break;
      case VariantType::Boolean:
        buffer.bit = *value.Get<bool>() ? 1 : 0;
        code = bind(SQL_C_BIT, SQL_BIT, 1, 0, &buffer.bit, 0);
        break;
      case VariantType::Byte:
      case VariantType::Integer:
      case VariantType::Long:
        buffer.integer = CLng(value);
        code = bind(SQL_C_SLONG, SQL_INTEGER, 10, 0, &buffer.integer, 0);
        break;
      case VariantType::Double:
        buffer.number = *value.Get<double>();
        code = bind(SQL_C_DOUBLE, SQL_DOUBLE, 15, 0, &buffer.number, 0);
        break;
      case VariantType::Currency:
        // As decimal text: the server reads it exactly, with no binary rounding.
        buffer.narrow = value.Get<Currency>()->ToPlainString();
        buffer.indicator = static_cast<SQLLEN>(buffer.narrow.size());
        code = bind(SQL_C_CHAR, SQL_NUMERIC, 19, 4, buffer.narrow.data(), buffer.indicator);
        break;
      case VariantType::Date: {
        const int digits = dialect_ == Dialect::PostgreSQL ? 6 : 3;
        buffer.timestamp = TimestampOf(*value.Get<Date>(), digits);
        code = bind(SQL_C_TYPE_TIMESTAMP, SQL_TYPE_TIMESTAMP, static_cast<SQLULEN>(20 + digits),
                    static_cast<SQLSMALLINT>(digits), &buffer.timestamp, sizeof buffer.timestamp);
        break;
      }
      case VariantType::String: {
        buffer.wide = Wide(*value.Get<std::string>());
        buffer.indicator = static_cast<SQLLEN>(buffer.wide.size() * sizeof(SQLWCHAR));
        // SQL Server takes at most 4000 characters as nvarchar.
        const SQLSMALLINT sql_type = buffer.wide.size() > 4000 ? SQL_WLONGVARCHAR : SQL_WVARCHAR;
        code = bind(SQL_C_WCHAR, sql_type, std::max<SQLULEN>(buffer.wide.size(), 1), 0, buffer.wide.data(),
                    buffer.indicator);
        break;
      }
    }
    Check(code, SQL_HANDLE_STMT, statement);
  }

  static bool IsOutput(ParameterDirectionEnum direction) {
    return direction == adParamOutput || direction == adParamInputOutput || direction == adParamReturnValue;
  }

  // An output (or input-output) parameter into a buffer of its declared type
  // and size; an input-output one starts with its value.
  void BindOutput(SQLHSTMT statement, SQLUSMALLINT number, const Parameter& parameter, FetchKind kind,
                  BoundParameter& buffer) {
    const bool input = parameter.Direction() == adParamInputOutput;
    const Variant& value = parameter.Value();
    const bool has_value = input && !value.IsNull() && !value.IsEmpty();
    buffer.indicator = input && !has_value ? SQL_NULL_DATA : 0;
    const auto bind = [&](SQLSMALLINT c_type, SQLSMALLINT sql_type, SQLULEN size, SQLSMALLINT digits, void* data,
                          SQLLEN length) {
      Check(SQLBindParameter(statement, number, input ? SQL_PARAM_INPUT_OUTPUT : SQL_PARAM_OUTPUT, c_type, sql_type,
                             size, digits, data, length, &buffer.indicator),
            SQL_HANDLE_STMT, statement);
    };
    switch (kind) {
      case FetchKind::Long:
      case FetchKind::Short:
      case FetchKind::Byte:
        if (has_value) buffer.integer = CLng(value);
        return bind(SQL_C_SLONG, SQL_INTEGER, 10, 0, &buffer.integer, 0);
      case FetchKind::BigInt:
        if (has_value) buffer.big = static_cast<SQLBIGINT>(std::llround(CDbl(value)));
        return bind(SQL_C_SBIGINT, SQL_BIGINT, 19, 0, &buffer.big, 0);
      case FetchKind::Boolean:
        if (has_value) buffer.bit = CBool(value) ? 1 : 0;
        return bind(SQL_C_BIT, SQL_BIT, 1, 0, &buffer.bit, 0);
      case FetchKind::Double:
        if (has_value) buffer.number = CDbl(value);
        return bind(SQL_C_DOUBLE, SQL_DOUBLE, 15, 0, &buffer.number, 0);
      case FetchKind::Currency:
        if (has_value) buffer.narrow = CCur(value).ToPlainString();
        if (has_value) buffer.indicator = static_cast<SQLLEN>(buffer.narrow.size());
        buffer.narrow.resize(48, '\0');
        return bind(SQL_C_CHAR, SQL_NUMERIC, 19, 4, buffer.narrow.data(), static_cast<SQLLEN>(buffer.narrow.size()));
      case FetchKind::Timestamp:
      case FetchKind::Time: {
        const int digits = dialect_ == Dialect::PostgreSQL ? 6 : 3;
        if (has_value) buffer.timestamp = TimestampOf(CDate(value), digits);
        return bind(SQL_C_TYPE_TIMESTAMP, SQL_TYPE_TIMESTAMP, static_cast<SQLULEN>(20 + digits),
                    static_cast<SQLSMALLINT>(digits), &buffer.timestamp, sizeof buffer.timestamp);
      }
      case FetchKind::Text: {
        if (has_value) buffer.wide = Wide(CStr(value));
        if (has_value) buffer.indicator = static_cast<SQLLEN>(buffer.wide.size() * sizeof(SQLWCHAR));
        const size_t capacity = std::max<size_t>({static_cast<size_t>(std::max(parameter.Size(), 0)),
                                                  buffer.wide.size(), 1});
        buffer.wide.resize(capacity + 1, 0);
        const SQLSMALLINT sql_type = capacity > 4000 ? SQL_WLONGVARCHAR : SQL_WVARCHAR;
        return bind(SQL_C_WCHAR, sql_type, capacity, 0, buffer.wide.data(),
                    static_cast<SQLLEN>(buffer.wide.size() * sizeof(SQLWCHAR)));
      }
    }
  }

  void DescribeColumns(CachedStatement& cached, SQLSMALLINT count, const dialect::ResultTypes* types) {
    cached.described_with = types ? *types : dialect::ResultTypes();
    SQLHSTMT statement = cached.handle.Get();
    std::vector<ColumnInfo> columns(static_cast<size_t>(count));
    std::vector<FetchKind> fetch(static_cast<size_t>(count));
    for (SQLUSMALLINT number = 1; number <= static_cast<SQLUSMALLINT>(count); ++number) {
      ColumnInfo& column = columns[number - 1];
      SQLWCHAR name[256];
      SQLSMALLINT name_length = 0;
      SQLSMALLINT data_type = 0;
      SQLULEN size = 0;
      SQLSMALLINT digits = 0;
      SQLSMALLINT nullable = 0;
      Check(SQLDescribeColW(statement, number, name, 256, &name_length, &data_type, &size, &digits, &nullable),
            SQL_HANDLE_STMT, statement);
      column.name = Narrow(name, Filled(name_length, 1, 256));
      const ColumnType type = TypeOfColumn(data_type, size, digits, dialect_);
      column.type = type.type;
      column.defined_size = type.defined_size;
      fetch[number - 1] = type.fetch;

      column.base_table = TextAttribute(statement, number, SQL_DESC_BASE_TABLE_NAME);
      if (column.base_table.empty()) {
        // An expression: the type SQL Server would give it, read as that type.
        const DataTypeEnum translated =
            types ? types->Of(number - 1u, static_cast<size_t>(count)) : adEmpty;
        if (translated != adEmpty && translated != column.type) {
          column.type = translated;
          fetch[number - 1] = FetchOf(translated);
          if (translated == adInteger || translated == adCurrency) column.defined_size = translated == adInteger ? 4 : 8;
        }
        continue;
      }
      column.base_column = TextAttribute(statement, number, SQL_DESC_BASE_COLUMN_NAME);
      if (column.base_column.empty()) column.base_column = column.name;
      // PostgreSQL's catalogue is the database; its schema is what tells
      // the access-control tables from the terminal's.
      const SQLUSMALLINT database_field =
          dialect_ == Dialect::PostgreSQL ? SQL_DESC_SCHEMA_NAME : SQL_DESC_CATALOG_NAME;
      column.base_database = TextAttribute(statement, number, database_field);
      SQLLEN auto_unique = SQL_FALSE;
      Check(SQLColAttributeW(statement, number, SQL_DESC_AUTO_UNIQUE_VALUE, nullptr, 0, nullptr, &auto_unique),
            SQL_HANDLE_STMT, statement);
      column.is_autoincrement = auto_unique == SQL_TRUE;
      for (const std::string& key : KeyColumns(column.base_database, column.base_table)) {
        if (EqualsIgnoreCase(key, column.base_column)) column.is_key = true;
      }
    }
    cached.fetch = std::move(fetch);
    cached.column_set = std::make_shared<const ColumnSet>(std::move(columns));
  }

  static std::string TextAttribute(SQLHSTMT statement, SQLUSMALLINT number, SQLUSMALLINT field) {
    SQLWCHAR text[256];
    SQLSMALLINT length = 0;  // in bytes
    Check(SQLColAttributeW(statement, number, field, text, sizeof text, &length, nullptr), SQL_HANDLE_STMT,
          statement);
    return Narrow(text, Filled(length, sizeof(SQLWCHAR), 256));
  }

  // The primary key of a table, in key order, read once per table.
  const std::vector<std::string>& KeyColumns(const std::string& database, const std::string& table) {
    const std::string cache_key = FoldCase(database) + "." + FoldCase(table);
    if (auto hit = tables_.find(cache_key); hit != tables_.end()) return hit->second;
    StatementHandle handle = StatementHandle::Allocate(SQL_HANDLE_DBC, connection_.Get());
    SQLHSTMT statement = handle.Get();
    const bool postgres = dialect_ == Dialect::PostgreSQL;
    WideString database_name = Wide(postgres ? LCase(database) : database);
    WideString table_name = Wide(postgres ? LCase(table) : table);
    SQLWCHAR* database_argument = database.empty() ? nullptr : database_name.data();
    const auto database_length = static_cast<SQLSMALLINT>(database.empty() ? 0 : database_name.size());
    const SQLRETURN code =
        postgres ? SQLPrimaryKeysW(statement, nullptr, 0, database_argument, database_length, table_name.data(),
                                   static_cast<SQLSMALLINT>(table_name.size()))
                 : SQLPrimaryKeysW(statement, database_argument, database_length, nullptr, 0, table_name.data(),
                                   static_cast<SQLSMALLINT>(table_name.size()));
    Check(code, SQL_HANDLE_STMT, statement);
    std::vector<std::pair<SQLSMALLINT, std::string>> keys;
    SQLRETURN fetched;
    while ((fetched = SQLFetch(statement)) != SQL_NO_DATA) {
      Check(fetched, SQL_HANDLE_STMT, statement);
      std::optional<std::string> name = ReadText(statement, 4);  // COLUMN_NAME
      SQLSMALLINT sequence = 0;                                   // KEY_SEQ
      ReadFixed(statement, 5, SQL_C_SSHORT, sequence);
      if (name) keys.emplace_back(sequence, std::move(*name));
    }
    std::sort(keys.begin(), keys.end());
    std::vector<std::string> names;
    for (auto& key : keys) names.push_back(std::move(key.second));
    return tables_.emplace(cache_key, std::move(names)).first->second;
  }

  std::string QuoteName(std::string_view name) const {
    if (dialect_ == Dialect::PostgreSQL) return "\"" + Replace(LCase(name), "\"", "\"\"") + "\"";
    return "[" + Replace(name, "]", "]]") + "]";
  }

  NameQuoter Quoter() const {
    return [this](std::string_view name) { return QuoteName(name); };
  }

  std::string QualifiedTable(const RowWrite& row) const {
    if (row.database.empty()) return QuoteName(row.table);
    // SQL Server names the database and leaves the owner to the default.
    return QuoteName(row.database) + (dialect_ == Dialect::PostgreSQL ? "." : "..") + QuoteName(row.table);
  }

  EnvironmentHandle environment_;
  ConnectionHandle connection_;
  Dialect dialect_;
  std::string connection_string_;  // what the server's client tools connect with
  std::function<Date()> now_;
  std::unordered_map<std::string, CachedStatement> statements_;
  std::list<std::string> lru_;
  std::unordered_map<std::string, std::vector<std::string>> tables_;
  dialect::ColumnKinds kinds_;
  bool kinds_read_ = false;
};

Dialect DialectOf(SQLHDBC connection) {
  SQLWCHAR name[128] = {};
  SQLSMALLINT length = 0;  // in bytes
  Check(SQLGetInfoW(connection, SQL_DBMS_NAME, name, sizeof name, &length), SQL_HANDLE_DBC, connection);
  const std::string dbms = Narrow(name, Filled(length, sizeof(SQLWCHAR), 128));
  if (EqualsIgnoreCase(dbms, "PostgreSQL")) return Dialect::PostgreSQL;
  return Dialect::SqlServer;
}

}  // namespace

std::unique_ptr<Driver> OpenOdbcDriver(const std::string& connection_string, std::function<Date()> now) {
  EnvironmentHandle environment = EnvironmentHandle::Allocate(SQL_HANDLE_ENV, SQL_NULL_HANDLE);
  Check(SQLSetEnvAttr(environment.Get(), SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3), 0),
        SQL_HANDLE_ENV, environment.Get());
  ConnectionHandle connection = ConnectionHandle::Allocate(SQL_HANDLE_ENV, environment.Get());
  Check(SQLSetConnectAttrW(connection.Get(), SQL_ATTR_LOGIN_TIMEOUT, reinterpret_cast<SQLPOINTER>(kLoginTimeoutSeconds),
                           0),
        SQL_HANDLE_DBC, connection.Get());
  WideString text = Wide(WithDriverOptions(connection_string));
  if (text.size() > static_cast<size_t>(std::numeric_limits<SQLSMALLINT>::max())) {
    RaiseDbError(adErrUnspecified, kSource, "The connection string is too long.");
  }
  SQLSMALLINT out_length = 0;
  Check(SQLDriverConnectW(connection.Get(), nullptr, text.data(), static_cast<SQLSMALLINT>(text.size()), nullptr, 0,
                          &out_length, SQL_DRIVER_NOPROMPT),
        SQL_HANDLE_DBC, connection.Get());
  connection.MarkConnected();
  const Dialect dialect = DialectOf(connection.Get());
  return std::make_unique<OdbcDriver>(std::move(environment), std::move(connection), dialect, connection_string,
                                      std::move(now));
}

}  // namespace vek
