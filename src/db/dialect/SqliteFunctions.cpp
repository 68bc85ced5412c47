#include "vek/db/dialect/SqliteFunctions.h"

#include "vek/db/dialect/SqliteApi.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <limits>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "vek/db/dialect/DateText.h"
#include "vek/platform/VekError.h"
#include "vek/platform/Text.h"

namespace vek::dialect {
namespace {

// A failure with SQL Server's message, turned into an SQLite error result.
struct SqlFailure {
  std::string message;
};

constexpr const char* kDateConversionFailed =
    "Conversion failed when converting date and/or time from character string.";
constexpr const char* kDateOverflow = "Adding a value to a 'datetime' column caused an overflow.";


int64_t CountChars(std::string_view text) {
  int64_t count = 0;
  for (size_t pos = 0; pos < text.size(); ++count) NextCodePoint(text, pos);
  return count;
}

// Byte offset of the character with 0-based index `index` (text.size() past the end).
size_t OffsetOfChar(std::string_view text, int64_t index) {
  size_t pos = 0;
  while (index > 0 && pos < text.size()) {
    NextCodePoint(text, pos);
    --index;
  }
  return pos;
}

std::string_view TrimTrailingSpaces(std::string_view text) {
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  return text;
}

// ---- the collation's weights ---------------------------------------------

// Base letters of Latin-1 (from U+00C0) and Latin Extended-A (to U+017F):
// accented letters sort beside their base letter; '.' marks a letter that
// sorts on its own (Æ, Ð, ×, Þ, ß, Ĳ, Œ ...).
constexpr char kBaseLetters[] =
    "aaaaaa.ceeeeiiii"   // C0
    ".nooooo.ouuuuy.."   // D0
    "aaaaaa.ceeeeiiii"   // E0
    ".nooooo.ouuuuy.y"   // F0
    "aaaaaaccccccccdd"   // 100
    "ddeeeeeeeeeegggg"   // 110
    "gggghhhhiiiiiiii"   // 120
    "ii..jjkkklllllll"   // 130
    "lllnnnnnnnnnoooo"   // 140
    "oo..rrrrrrssssss"   // 150
    "ssttttttuuuuuuuu"   // 160
    "uuuuwwyyyzzzzzzs";  // 170
static_assert(sizeof(kBaseLetters) - 1 == 0x180 - 0xC0, "one base letter per character");

struct Weight {
  char32_t primary;    // the base letter, case folded
  char32_t secondary;  // the accent: 0 for none
};

Weight WeightOf(char32_t c) {
  if (c < 0x80) return {(c >= 'A' && c <= 'Z') ? c + 0x20 : c, 0};
  if (c >= 0xC0 && c < 0x180) {
    const char base = kBaseLetters[c - 0xC0];
    if (base != '.') return {static_cast<char32_t>(base), LowerChar(c)};
  }
  return {LowerChar(c), 0};
}

int CompareChars(char32_t a, char32_t b) {
  const Weight wa = WeightOf(a);
  const Weight wb = WeightOf(b);
  if (wa.primary != wb.primary) return wa.primary < wb.primary ? -1 : 1;
  if (wa.secondary != wb.secondary) return wa.secondary < wb.secondary ? -1 : 1;
  return 0;
}

// ---- LIKE ----------------------------------------------------------------

struct LikeElement {
  enum class Kind : uint8_t { Char, One, Many, Set } kind = Kind::Char;
  bool negated = false;
  char32_t folded = 0;     // Char: the character, case folded
  uint32_t set_begin = 0;  // Set: its ranges in LikePattern::ranges
  uint32_t set_end = 0;
};

struct LikePattern {
  std::vector<LikeElement> elements;
  std::vector<std::pair<char32_t, char32_t>> ranges;  // inclusive, in collation order
  char32_t escape = 0;
};

LikePattern CompileLike(std::string_view pattern, char32_t escape) {
  LikePattern compiled;
  compiled.escape = escape;
  size_t pos = 0;
  while (pos < pattern.size()) {
    char32_t c = NextCodePoint(pattern, pos);
    LikeElement element;
    if (escape != 0 && c == escape) {
      if (pos >= pattern.size()) {
        // An escape with nothing after it matches nothing, as in SQL Server.
        element.kind = LikeElement::Kind::Set;
        element.set_begin = element.set_end = static_cast<uint32_t>(compiled.ranges.size());
        compiled.elements.push_back(element);
        break;
      }
      element.folded = LowerChar(NextCodePoint(pattern, pos));
    } else if (c == '%') {
      if (!compiled.elements.empty() && compiled.elements.back().kind == LikeElement::Kind::Many)
        continue;
      element.kind = LikeElement::Kind::Many;
    } else if (c == '_') {
      element.kind = LikeElement::Kind::One;
    } else if (c == '[' && pattern.find(']', pos) != std::string_view::npos) {
      element.kind = LikeElement::Kind::Set;
      element.set_begin = static_cast<uint32_t>(compiled.ranges.size());
      size_t inner = pos;
      if (inner < pattern.size() && pattern[inner] == '^') {
        element.negated = true;
        ++inner;
      }
      while (inner < pattern.size() && pattern[inner] != ']') {
        const char32_t low = NextCodePoint(pattern, inner);
        char32_t high = low;
        if (inner + 1 < pattern.size() && pattern[inner] == '-' && pattern[inner + 1] != ']') {
          ++inner;
          high = NextCodePoint(pattern, inner);
        }
        compiled.ranges.emplace_back(low, high);
      }
      pos = inner + 1;
      element.set_end = static_cast<uint32_t>(compiled.ranges.size());
    } else {
      element.folded = LowerChar(c);
    }
    compiled.elements.push_back(element);
  }
  return compiled;
}

bool ElementMatches(const LikePattern& pattern, const LikeElement& element, char32_t c) {
  switch (element.kind) {
    case LikeElement::Kind::Char:
      return LowerChar(c) == element.folded;
    case LikeElement::Kind::One:
      return true;
    case LikeElement::Kind::Many:
      return true;
    case LikeElement::Kind::Set: {
      bool inside = false;
      for (uint32_t r = element.set_begin; r < element.set_end && !inside; ++r) {
        const auto& [low, high] = pattern.ranges[r];
        inside = CompareChars(low, c) <= 0 && CompareChars(c, high) <= 0;
      }
      return inside != element.negated;
    }
  }
  return false;
}

// Greedy match with one backtracking point per '%', over the value's bytes.
bool MatchLike(const LikePattern& pattern, std::string_view value) {
  const auto& elements = pattern.elements;
  const size_t count = elements.size();
  // Trailing blanks of the value need not be matched.
  const size_t blanks_from = TrimTrailingSpaces(value).size();
  size_t i = 0;
  size_t j = 0;
  size_t star_i = std::string_view::npos;
  size_t star_j = 0;
  while (true) {
    if (i == count && j >= blanks_from) return true;
    if (i < count && elements[i].kind == LikeElement::Kind::Many) {
      star_i = i++;
      star_j = j;
      continue;
    }
    if (i < count && j < value.size()) {
      size_t next = j;
      const char32_t c = NextCodePoint(value, next);
      if (ElementMatches(pattern, elements[i], c)) {
        ++i;
        j = next;
        continue;
      }
    }
    if (star_i == std::string_view::npos || star_j >= value.size()) return false;
    NextCodePoint(value, star_j);
    i = star_i + 1;
    j = star_j;
  }
}

// ---- reading SQLite values ---------------------------------------------------

std::string_view TextOf(sqlite3_value* value) {
  const unsigned char* text = sqlite3_value_text(value);
  const int bytes = sqlite3_value_bytes(value);
  if (text == nullptr) return std::string_view();
  return std::string_view(reinterpret_cast<const char*>(text), static_cast<size_t>(bytes));
}

bool IsNull(sqlite3_value* value) { return sqlite3_value_type(value) == SQLITE_NULL; }

void ResultText(sqlite3_context* context, std::string_view text) {
  sqlite3_result_text(context, text.data(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
}

struct ParsedNumber {
  bool integral = false;
  int64_t integer = 0;
  double real = 0.0;
};

std::optional<ParsedNumber> ParseNumber(std::string_view text) {
  while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
  text = TrimTrailingSpaces(text);
  if (!text.empty() && text.front() == '+') text.remove_prefix(1);
  if (text.empty()) return std::nullopt;
  ParsedNumber number;
  const char* end = text.data() + text.size();
  auto [int_end, int_error] = std::from_chars(text.data(), end, number.integer);
  if (int_error == std::errc() && int_end == end) {
    number.integral = true;
    number.real = static_cast<double>(number.integer);
    return number;
  }
  auto [real_end, real_error] = std::from_chars(text.data(), end, number.real);
  if (real_error == std::errc() && real_end == end && std::isfinite(number.real)) return number;
  return std::nullopt;
}

[[noreturn]] void FailConversion(std::string_view text, std::string_view type) {
  throw SqlFailure{"Conversion failed when converting the varchar value '" + std::string(text) +
                   "' to data type " + std::string(type) + "."};
}

// A number argument; nullopt for NULL.
std::optional<double> NumberArg(sqlite3_value* value) {
  switch (sqlite3_value_type(value)) {
    case SQLITE_NULL:
      return std::nullopt;
    case SQLITE_INTEGER:
      return static_cast<double>(sqlite3_value_int64(value));
    case SQLITE_FLOAT:
      return sqlite3_value_double(value);
    default: {
      const std::string_view text = TextOf(value);
      const auto number = ParseNumber(text);
      if (!number) FailConversion(text, "float");
      return number->real;
    }
  }
}

// A whole-number argument, truncated toward zero as SQL Server does.
std::optional<int64_t> IntegerArg(sqlite3_value* value) {
  if (sqlite3_value_type(value) == SQLITE_INTEGER) return sqlite3_value_int64(value);
  const auto number = NumberArg(value);
  if (!number) return std::nullopt;
  if (std::fabs(*number) > 9.2e18)
    throw SqlFailure{"Arithmetic overflow error converting expression to data type int."};
  return static_cast<int64_t>(std::trunc(*number));
}

const int64_t kMomentOf1900 = DayNumber(1900, 1, 1) * kMillisecondsPerDay;
const int64_t kLastMoment = DayNumber(9999, 12, 31) * kMillisecondsPerDay + kMillisecondsPerDay - 1;

int64_t CheckedMoment(double moment) {
  if (!std::isfinite(moment) || moment < 0 || moment > static_cast<double>(kLastMoment)) {
    throw SqlFailure{kDateOverflow};
  }
  return static_cast<int64_t>(moment);
}

// A date argument as a moment; nullopt for NULL. Numbers count days from
// 1900-01-01, as SQL Server reads them.
std::optional<int64_t> MomentArg(sqlite3_value* value) {
  switch (sqlite3_value_type(value)) {
    case SQLITE_NULL:
      return std::nullopt;
    case SQLITE_INTEGER:
    case SQLITE_FLOAT:
      return CheckedMoment(
          static_cast<double>(kMomentOf1900) +
          std::round(sqlite3_value_double(value) * static_cast<double>(kMillisecondsPerDay)));
    default: {
      const auto parts = ParseDateText(TextOf(value), true);
      if (!parts) throw SqlFailure{kDateConversionFailed};
      return MomentOf(*parts);
    }
  }
}

DatePart PartArg(sqlite3_value* value, std::string_view function) {
  const auto part = ParseDatePart(TextOf(value));
  if (!part) throw SqlFailure{"Invalid parameter 1 specified for " + std::string(function) + "."};
  return *part;
}

void ResultMoment(sqlite3_context* context, int64_t moment) {
  const auto parts = PartsOf(moment);
  if (!parts || moment > kLastMoment) throw SqlFailure{kDateOverflow};
  ResultText(context, FormatCanonical(*parts));
}

// Numbers as SQL Server writes them into text: whole values without ".0".
std::string FormatNumber(double value) {
  if (std::isfinite(value) && std::trunc(value) == value && std::fabs(value) < 1e15) {
    return std::to_string(static_cast<int64_t>(value));
  }
  char buffer[40];
  std::snprintf(buffer, sizeof buffer, "%.15g", value);
  return buffer;
}

// ---- date functions --------------------------------------------------------------

int64_t AddMonths(int64_t moment, int64_t months) {
  const DateTimeParts parts = *PartsOf(moment);
  if (std::llabs(months) > 120000) throw SqlFailure{kDateOverflow};
  const int64_t total = int64_t{parts.year} * 12 + (parts.month - 1) + months;
  const int64_t year = total >= 0 ? total / 12 : -1;
  const int64_t month = total >= 0 ? total % 12 + 1 : 1;
  if (year < 1 || year > 9999) throw SqlFailure{kDateOverflow};
  const int64_t time_of_day = moment % kMillisecondsPerDay;
  const int32_t day =
      std::min(parts.day, DaysInMonth(static_cast<int32_t>(year), static_cast<int32_t>(month)));
  return DayNumber(static_cast<int32_t>(year), static_cast<int32_t>(month), day) *
             kMillisecondsPerDay +
         time_of_day;
}

int64_t DateDiff(DatePart part, int64_t from, int64_t to) {
  const DateTimeParts a = *PartsOf(from);
  const DateTimeParts b = *PartsOf(to);
  const int64_t day_a = from / kMillisecondsPerDay;
  const int64_t day_b = to / kMillisecondsPerDay;
  switch (part) {
    case DatePart::Year:
      return int64_t{b.year} - a.year;
    case DatePart::Quarter:
      return (int64_t{b.year} * 4 + (b.month - 1) / 3) - (int64_t{a.year} * 4 + (a.month - 1) / 3);
    case DatePart::Month:
      return (int64_t{b.year} * 12 + b.month) - (int64_t{a.year} * 12 + a.month);
    case DatePart::DayOfYear:
    case DatePart::Day:
    case DatePart::Weekday:
      return day_b - day_a;
    // Weeks start on Sunday; day 0 (0001-01-01) was a Monday.
    case DatePart::Week:
      return (day_b + 1) / 7 - (day_a + 1) / 7;
    case DatePart::Hour:
      return to / 3'600'000 - from / 3'600'000;
    case DatePart::Minute:
      return to / 60'000 - from / 60'000;
    case DatePart::Second:
      return to / 1000 - from / 1000;
    case DatePart::Millisecond:
      return to - from;
  }
  return 0;
}

int64_t DatePartOf(DatePart part, int64_t moment) {
  const DateTimeParts parts = *PartsOf(moment);
  const int64_t day = moment / kMillisecondsPerDay;
  const int64_t first_of_year = DayNumber(parts.year, 1, 1);
  switch (part) {
    case DatePart::Year:
      return parts.year;
    case DatePart::Quarter:
      return (parts.month - 1) / 3 + 1;
    case DatePart::Month:
      return parts.month;
    case DatePart::DayOfYear:
      return day - first_of_year + 1;
    case DatePart::Day:
      return parts.day;
    case DatePart::Week:
      return (day + 1) / 7 - (first_of_year + 1) / 7 + 1;
    case DatePart::Weekday:
      return (day + 1) % 7 + 1;  // Sunday is 1
    case DatePart::Hour:
      return parts.hour;
    case DatePart::Minute:
      return parts.minute;
    case DatePart::Second:
      return parts.second;
    case DatePart::Millisecond:
      return parts.millisecond;
  }
  return 0;
}

void GetDate(sqlite3_context* context, int, sqlite3_value**) {
  const auto* now = static_cast<const std::function<vek::Date()>*>(sqlite3_user_data(context));
  const vek::DateParts split = vek::SplitDate((*now)());
  DateTimeParts parts;
  parts.year = split.year;
  parts.month = split.month;
  parts.day = split.day;
  parts.hour = split.hour;
  parts.minute = split.minute;
  parts.second = split.second;
  ResultText(context, FormatCanonical(parts));
}

void DateDiffFunction(sqlite3_context* context, int, sqlite3_value** argv) {
  const DatePart part = PartArg(argv[0], "datediff");
  const auto from = MomentArg(argv[1]);
  const auto to = MomentArg(argv[2]);
  if (!from || !to) return sqlite3_result_null(context);
  const int64_t difference = DateDiff(part, *from, *to);
  if (difference > std::numeric_limits<int32_t>::max() ||
      difference < std::numeric_limits<int32_t>::min()) {
    throw SqlFailure{
        "The datediff function resulted in an overflow. The number of dateparts separating two "
        "date/time instances is too large."};
  }
  sqlite3_result_int64(context, difference);
}

void DateAddFunction(sqlite3_context* context, int, sqlite3_value** argv) {
  const DatePart part = PartArg(argv[0], "dateadd");
  const auto number = IntegerArg(argv[1]);
  const auto moment = MomentArg(argv[2]);
  if (!number || !moment) return sqlite3_result_null(context);
  const int64_t n = *number;
  // Anything beyond these counts leaves years 1 to 9999 anyway.
  if (std::llabs(n) > 400'000'000'000'000LL) throw SqlFailure{kDateOverflow};
  const auto shift = [&](int64_t unit) {
    int64_t result = 0;
    if (__builtin_mul_overflow(n, unit, &result) ||
        __builtin_add_overflow(result, *moment, &result) || result < 0) {
      throw SqlFailure{kDateOverflow};
    }
    return result;
  };
  int64_t result = *moment;
  switch (part) {
    case DatePart::Year:
      result = AddMonths(*moment, n * 12);
      break;
    case DatePart::Quarter:
      result = AddMonths(*moment, n * 3);
      break;
    case DatePart::Month:
      result = AddMonths(*moment, n);
      break;
    case DatePart::DayOfYear:
    case DatePart::Day:
    case DatePart::Weekday:
      result = shift(kMillisecondsPerDay);
      break;
    case DatePart::Week:
      result = shift(7 * kMillisecondsPerDay);
      break;
    case DatePart::Hour:
      result = shift(3'600'000);
      break;
    case DatePart::Minute:
      result = shift(60'000);
      break;
    case DatePart::Second:
      result = shift(1000);
      break;
    case DatePart::Millisecond:
      result = shift(1);
      break;
  }
  ResultMoment(context, result);
}

void DatePartFunction(sqlite3_context* context, int, sqlite3_value** argv) {
  const DatePart part = PartArg(argv[0], "datepart");
  const auto moment = MomentArg(argv[1]);
  if (!moment) return sqlite3_result_null(context);
  sqlite3_result_int64(context, DatePartOf(part, *moment));
}

// date + number: the number counts days, fractions included.
void DatePlusDays(sqlite3_context* context, int, sqlite3_value** argv) {
  const auto moment = MomentArg(argv[0]);
  const auto days = NumberArg(argv[1]);
  if (!moment || !days) return sqlite3_result_null(context);
  ResultMoment(context,
               CheckedMoment(static_cast<double>(*moment) +
                             std::round(*days * static_cast<double>(kMillisecondsPerDay))));
}

void DateOnly(sqlite3_context* context, int, sqlite3_value** argv) {
  const auto moment = MomentArg(argv[0]);
  if (!moment) return sqlite3_result_null(context);
  ResultMoment(context, *moment - *moment % kMillisecondsPerDay);
}

void DateTimeValue(sqlite3_context* context, int, sqlite3_value** argv) {
  const auto moment = MomentArg(argv[0]);
  if (!moment) return sqlite3_result_null(context);
  ResultMoment(context, *moment);
}

// ---- conversions and arithmetic ------------------------------------------------

// vek_text(x, length, style, is_date, pad)
void ConvertToText(sqlite3_context* context, int, sqlite3_value** argv) {
  if (IsNull(argv[0])) return sqlite3_result_null(context);
  const int64_t length = sqlite3_value_int64(argv[1]);
  const int64_t style = sqlite3_value_int64(argv[2]);
  const bool is_date = sqlite3_value_int64(argv[3]) != 0;
  const bool pad = sqlite3_value_int64(argv[4]) != 0;
  std::string text;
  bool numeric = false;
  switch (sqlite3_value_type(argv[0])) {
    case SQLITE_INTEGER:
      text = std::to_string(sqlite3_value_int64(argv[0]));
      numeric = true;
      break;
    case SQLITE_FLOAT:
      text = FormatNumber(sqlite3_value_double(argv[0]));
      numeric = true;
      break;
    default: {
      const std::string_view value = TextOf(argv[0]);
      std::optional<DateTimeParts> parts;
      if (is_date || style > 0) parts = ParseDateText(value, true);
      text = parts ? FormatDateStyle(*parts, style < 0 ? 0 : style) : std::string(value);
      break;
    }
  }
  if (length >= 0) {
    const int64_t chars = CountChars(text);
    if (chars > length) {
      // A number that does not fit shows as "*", as SQL Server writes it.
      text = numeric ? std::string("*") : text.substr(0, OffsetOfChar(text, length));
    } else if (pad) {
      text.append(static_cast<size_t>(length - chars), ' ');
    }
  }
  ResultText(context, text);
}

// "+" on operands whose types only the values tell.
void Add(sqlite3_context* context, int, sqlite3_value** argv) {
  const int type_a = sqlite3_value_type(argv[0]);
  const int type_b = sqlite3_value_type(argv[1]);
  if (type_a == SQLITE_NULL || type_b == SQLITE_NULL) return sqlite3_result_null(context);
  if (type_a == SQLITE_BLOB || type_b == SQLITE_BLOB) {
    throw SqlFailure{"Operand type clash: varbinary is incompatible with the + operator."};
  }
  if (type_a == SQLITE_TEXT && type_b == SQLITE_TEXT) {
    std::string joined(TextOf(argv[0]));
    joined.append(TextOf(argv[1]));
    return ResultText(context, joined);
  }
  const auto read = [](sqlite3_value* value, int other_type) {
    ParsedNumber number;
    const int type = sqlite3_value_type(value);
    if (type == SQLITE_INTEGER) {
      number.integral = true;
      number.integer = sqlite3_value_int64(value);
      number.real = static_cast<double>(number.integer);
    } else if (type == SQLITE_FLOAT) {
      number.real = sqlite3_value_double(value);
    } else {
      const std::string_view text = TextOf(value);
      const auto parsed = ParseNumber(text);
      if (!parsed) FailConversion(text, other_type == SQLITE_INTEGER ? "int" : "float");
      number = *parsed;
    }
    return number;
  };
  const ParsedNumber a = read(argv[0], type_b);
  const ParsedNumber b = read(argv[1], type_a);
  int64_t sum = 0;
  if (a.integral && b.integral && !__builtin_add_overflow(a.integer, b.integer, &sum)) {
    return sqlite3_result_int64(context, sum);
  }
  sqlite3_result_double(context, a.real + b.real);
}

int64_t RoundInteger(int64_t value, int64_t digits, bool truncate) {
  if (digits >= 0) return value;
  if (digits < -18) return 0;
  int64_t power = 1;
  for (int64_t i = 0; i < -digits; ++i) power *= 10;
  const int64_t kept = value / power * power;
  const int64_t rest = value - kept;
  int64_t rounded = kept;
  if (!truncate && (rest >= 0 ? rest : -rest) * 2 >= power &&
      __builtin_add_overflow(kept, value < 0 ? -power : power, &rounded)) {
    throw SqlFailure{"Arithmetic overflow error converting expression to data type bigint."};
  }
  return rounded;
}

// Rounds in decimal on the value's 15 significant digits, so that 2.675
// (held as 2.67499999...) rounds to 2.68 as SQL Server's decimals do.
double RoundDecimal(double value, int64_t digits, bool truncate) {
  if (!std::isfinite(value) || value == 0.0) return value;
  char buffer[40];
  std::snprintf(buffer, sizeof buffer, "%.14e", std::fabs(value));
  std::string mantissa;
  mantissa.push_back(buffer[0]);
  mantissa.append(buffer + 2, 14);
  const int64_t exponent = std::strtol(buffer + 17, nullptr, 10);
  const int64_t keep = exponent + 1 + digits;
  if (keep >= 15) return value;
  if (keep < 0) return 0.0;
  const bool up = !truncate && mantissa[static_cast<size_t>(keep)] >= '5';
  std::string kept = mantissa.substr(0, static_cast<size_t>(keep));
  if (up) {
    size_t i = kept.size();
    while (i > 0 && kept[i - 1] == '9') kept[--i] = '0';
    if (i == 0) {
      kept.insert(kept.begin(), '1');
    } else {
      ++kept[i - 1];
    }
  }
  if (kept.empty()) return 0.0;
  kept += "e" + std::to_string(exponent + 1 - keep);
  const double rounded = std::strtod(kept.c_str(), nullptr);
  return value < 0 ? -rounded : rounded;
}

// vek_round(x, digits[, truncate])
void Round(sqlite3_context* context, int argc, sqlite3_value** argv) {
  if (IsNull(argv[0]) || IsNull(argv[1])) return sqlite3_result_null(context);
  const int64_t digits = *IntegerArg(argv[1]);
  const bool truncate = argc > 2 && !IsNull(argv[2]) && *IntegerArg(argv[2]) != 0;
  const int type = sqlite3_value_numeric_type(argv[0]);
  if (type == SQLITE_INTEGER) {
    return sqlite3_result_int64(context,
                                RoundInteger(sqlite3_value_int64(argv[0]), digits, truncate));
  }
  if (type != SQLITE_FLOAT) FailConversion(TextOf(argv[0]), "float");
  sqlite3_result_double(context, RoundDecimal(sqlite3_value_double(argv[0]), digits, truncate));
}

// ---- money -------------------------------------------------------------------------

// SQL Server's money is a 64-bit count of ten-thousandths. Here a money value
// is the double nearest its count: every money result is made again from its
// count, so sums, differences and products of money compare exactly.
constexpr double kMoneyLimit = 922337203685477.5807;

[[noreturn]] void FailMoneyOverflow() {
  throw SqlFailure{"Arithmetic overflow error converting expression to data type money."};
}

int64_t MoneyCount(double value) {
  if (!(value >= -kMoneyLimit - 0.00005 && value <= kMoneyLimit + 0.00005)) FailMoneyOverflow();
  return std::llround(value * 10000.0);
}

double MoneyValueOf(sqlite3_value* value) {
  switch (sqlite3_value_type(value)) {
    case SQLITE_INTEGER: return static_cast<double>(sqlite3_value_int64(value));
    case SQLITE_FLOAT: return sqlite3_value_double(value);
    default: {
      const std::string_view text = TextOf(value);
      const auto number = ParseNumber(text);
      if (!number) throw SqlFailure{"Cannot convert a char value to money. The char value has incorrect syntax."};
      return number->integral ? static_cast<double>(number->integer) : number->real;
    }
  }
}

void Money(sqlite3_context* context, int, sqlite3_value** argv) {
  if (IsNull(argv[0])) return sqlite3_result_null(context);
  sqlite3_result_double(context, static_cast<double>(MoneyCount(MoneyValueOf(argv[0]))) / 10000.0);
}

// The sum of money counts, exact however many rows it adds.
void MoneySumStep(sqlite3_context* context, int, sqlite3_value** argv) {
  if (IsNull(argv[0])) return;
  auto* total = static_cast<int64_t*>(sqlite3_aggregate_context(context, 2 * sizeof(int64_t)));
  if (total == nullptr) return sqlite3_result_error_nomem(context);
  if (__builtin_add_overflow(total[0], MoneyCount(MoneyValueOf(argv[0])), &total[0])) FailMoneyOverflow();
  total[1] = 1;  // a row was added: the sum of no rows is NULL
}

void MoneySumFinal(sqlite3_context* context) {
  auto* total = static_cast<int64_t*>(sqlite3_aggregate_context(context, 0));
  if (total == nullptr || total[1] == 0) return sqlite3_result_null(context);
  sqlite3_result_double(context, static_cast<double>(total[0]) / 10000.0);
}

// CONVERT(varchar, money[, style]): two decimals (style 0), with thousands
// separated by commas (1), or four decimals (2).
void MoneyText(sqlite3_context* context, int, sqlite3_value** argv) {
  if (IsNull(argv[0])) return sqlite3_result_null(context);
  const int64_t count = MoneyCount(MoneyValueOf(argv[0]));
  const int64_t style = IsNull(argv[1]) ? 0 : sqlite3_value_int64(argv[1]);
  const bool negative = count < 0;
  uint64_t magnitude = negative ? 0 - static_cast<uint64_t>(count) : static_cast<uint64_t>(count);
  int decimals = 4;
  if (style != 2) {
    magnitude = (magnitude + 50) / 100;  // half away from zero
    decimals = 2;
  }
  const uint64_t scale = decimals == 4 ? 10000 : 100;
  std::string whole = std::to_string(magnitude / scale);
  if (style == 1) {
    for (int at = static_cast<int>(whole.size()) - 3; at > 0; at -= 3) whole.insert(static_cast<size_t>(at), ",");
  }
  std::string fraction = std::to_string(magnitude % scale);
  fraction.insert(0, static_cast<size_t>(decimals) - fraction.size(), '0');
  ResultText(context, (negative && magnitude != 0 ? "-" : "") + whole + "." + fraction);
}

// A text read as a number of a SQL Server kind ('int', 'money', 'decimal',
// 'float'), as T-SQL converts a varchar that meets a number.
void NumberFromText(sqlite3_context* context, int, sqlite3_value** argv) {
  if (IsNull(argv[0])) return sqlite3_result_null(context);
  const std::string_view kind = TextOf(argv[1]);
  if (sqlite3_value_type(argv[0]) != SQLITE_TEXT) return sqlite3_result_value(context, argv[0]);
  const std::string_view text = TextOf(argv[0]);
  const auto number = ParseNumber(text);
  if (kind == "int") {
    if (!number || !number->integral || number->integer < INT32_MIN || number->integer > INT32_MAX)
      FailConversion(text, "int");
    return sqlite3_result_int64(context, number->integer);
  }
  if (kind == "money") {
    if (!number) throw SqlFailure{"Cannot convert a char value to money. The char value has incorrect syntax."};
    const double value = number->integral ? static_cast<double>(number->integer) : number->real;
    return sqlite3_result_double(context, static_cast<double>(MoneyCount(value)) / 10000.0);
  }
  if (!number) {
    throw SqlFailure{"Error converting data type varchar to " + std::string(kind == "float" ? "float" : "numeric") + "."};
  }
  if (number->integral) return sqlite3_result_int64(context, number->integer);
  sqlite3_result_double(context, number->real);
}

// ---- text functions ------------------------------------------------------------

void Substring(sqlite3_context* context, int, sqlite3_value** argv) {
  if (IsNull(argv[0]) || IsNull(argv[1]) || IsNull(argv[2])) return sqlite3_result_null(context);
  const int64_t start = *IntegerArg(argv[1]);
  const int64_t length = *IntegerArg(argv[2]);
  if (length < 0) throw SqlFailure{"Invalid length parameter passed to the substring function."};
  const std::string_view text = TextOf(argv[0]);
  // Characters start .. start+length-1, of those that exist (positions from 1).
  const int64_t first = std::max<int64_t>(start, 1);
  const int64_t end = start > std::numeric_limits<int64_t>::max() - length
                          ? std::numeric_limits<int64_t>::max()
                          : start + length;
  if (end <= first) return ResultText(context, "");
  const size_t begin_byte = OffsetOfChar(text, first - 1);
  const std::string_view rest = text.substr(begin_byte);
  ResultText(context, rest.substr(0, OffsetOfChar(rest, end - first)));
}

void Length(sqlite3_context* context, int, sqlite3_value** argv) {
  if (IsNull(argv[0])) return sqlite3_result_null(context);
  sqlite3_result_int64(context, CountChars(TrimTrailingSpaces(TextOf(argv[0]))));
}

std::vector<char32_t> FoldedChars(std::string_view text, std::vector<size_t>* offsets = nullptr) {
  std::vector<char32_t> chars;
  chars.reserve(text.size());
  size_t pos = 0;
  while (pos < text.size()) {
    if (offsets != nullptr) offsets->push_back(pos);
    chars.push_back(LowerChar(NextCodePoint(text, pos)));
  }
  if (offsets != nullptr) offsets->push_back(text.size());
  return chars;
}

// Position (0-based) of `find` in `text` from `from`, or npos.
size_t FindFolded(const std::vector<char32_t>& text, const std::vector<char32_t>& find,
                  size_t from) {
  if (find.empty() || find.size() > text.size()) return std::string_view::npos;
  for (size_t i = from; i + find.size() <= text.size(); ++i) {
    size_t k = 0;
    while (k < find.size() && text[i + k] == find[k]) ++k;
    if (k == find.size()) return i;
  }
  return std::string_view::npos;
}

// vek_charindex(find, text[, start]): 1-based, 0 when absent.
void CharIndex(sqlite3_context* context, int argc, sqlite3_value** argv) {
  if (IsNull(argv[0]) || IsNull(argv[1])) return sqlite3_result_null(context);
  int64_t start = 1;
  if (argc > 2) {
    if (IsNull(argv[2])) return sqlite3_result_null(context);
    start = std::max<int64_t>(*IntegerArg(argv[2]), 1);
  }
  const auto find = FoldedChars(TextOf(argv[0]));
  const auto text = FoldedChars(TextOf(argv[1]));
  if (static_cast<size_t>(start - 1) > text.size()) return sqlite3_result_int64(context, 0);
  const size_t found = FindFolded(text, find, static_cast<size_t>(start - 1));
  sqlite3_result_int64(context,
                       found == std::string_view::npos ? 0 : static_cast<int64_t>(found) + 1);
}

void Replace(sqlite3_context* context, int, sqlite3_value** argv) {
  if (IsNull(argv[0]) || IsNull(argv[1]) || IsNull(argv[2])) return sqlite3_result_null(context);
  const std::string_view text = TextOf(argv[0]);
  std::vector<size_t> offsets;
  const auto folded = FoldedChars(text, &offsets);
  const auto find = FoldedChars(TextOf(argv[1]));
  const std::string with(TextOf(argv[2]));
  std::string out;
  out.reserve(text.size());
  size_t copied = 0;  // in characters
  for (size_t at = FindFolded(folded, find, 0); at != std::string_view::npos;
       at = FindFolded(folded, find, copied)) {
    out.append(text.substr(offsets[copied], offsets[at] - offsets[copied]));
    out.append(with);
    copied = at + find.size();
  }
  out.append(text.substr(offsets[copied]));
  ResultText(context, out);
}

void Upper(sqlite3_context* context, int, sqlite3_value** argv) {
  if (IsNull(argv[0])) return sqlite3_result_null(context);
  ResultText(context, vek::UCase(TextOf(argv[0])));
}

void Lower(sqlite3_context* context, int, sqlite3_value** argv) {
  if (IsNull(argv[0])) return sqlite3_result_null(context);
  ResultText(context, vek::LCase(TextOf(argv[0])));
}

void LeftOrRight(sqlite3_context* context, sqlite3_value** argv, bool left) {
  if (IsNull(argv[0]) || IsNull(argv[1])) return sqlite3_result_null(context);
  const int64_t count = *IntegerArg(argv[1]);
  if (count < 0) {
    throw SqlFailure{std::string("Invalid length parameter passed to the ") +
                     (left ? "left" : "right") + " function."};
  }
  const std::string_view text = TextOf(argv[0]);
  if (left) return ResultText(context, text.substr(0, OffsetOfChar(text, count)));
  const int64_t chars = CountChars(text);
  ResultText(context, text.substr(OffsetOfChar(text, std::max<int64_t>(chars - count, 0))));
}

void Left(sqlite3_context* context, int, sqlite3_value** argv) { LeftOrRight(context, argv, true); }
void Right(sqlite3_context* context, int, sqlite3_value** argv) {
  LeftOrRight(context, argv, false);
}

// The name under which sys.databases lists a database of pragma_database_list.
void DatabaseName(sqlite3_context* context, int, sqlite3_value** argv) {
  const std::string_view name = TextOf(argv[0]);
  const std::string_view file = TextOf(argv[1]);
  if (name == "main" && !file.empty()) {
    return ResultText(context, std::filesystem::path(std::string(file)).stem().string());
  }
  ResultText(context, name);
}

void Like(sqlite3_context* context, int argc, sqlite3_value** argv) {
  if (IsNull(argv[0]) || IsNull(argv[1])) return sqlite3_result_null(context);
  char32_t escape = 0;
  if (argc > 2) {
    if (IsNull(argv[2])) return sqlite3_result_null(context);
    const std::string_view text = TextOf(argv[2]);
    size_t pos = 0;
    if (!text.empty()) escape = NextCodePoint(text, pos);
    if (text.empty() || pos != text.size())
      throw SqlFailure{"ESCAPE expression must be a single character"};
  }
  // The compiled pattern lives as long as SQLite keeps the pattern argument
  // constant, that is usually for the whole statement.
  auto* cached = static_cast<LikePattern*>(sqlite3_get_auxdata(context, 0));
  std::unique_ptr<LikePattern> fresh;
  if (cached == nullptr || cached->escape != escape) {
    fresh = std::make_unique<LikePattern>(CompileLike(TextOf(argv[0]), escape));
    cached = fresh.get();
  }
  sqlite3_result_int(context, MatchLike(*cached, TextOf(argv[1])) ? 1 : 0);
  if (fresh) {
    // SQLite may free it at once, so it is handed over last.
    sqlite3_set_auxdata(context, 0, fresh.release(),
                        [](void* p) { delete static_cast<LikePattern*>(p); });
  }
}

// ---- registration ------------------------------------------------------------

using Body = void (*)(sqlite3_context*, int, sqlite3_value**);
using FinalBody = void (*)(sqlite3_context*);

template <FinalBody body>
void GuardedFinal(sqlite3_context* context) noexcept {
  try {
    body(context);
  } catch (const SqlFailure& failure) {
    sqlite3_result_error(context, failure.message.data(), static_cast<int>(failure.message.size()));
  } catch (...) {
    sqlite3_result_error(context, "unexpected failure in a SQL Server function", -1);
  }
}

template <Body body>
void Guarded(sqlite3_context* context, int argc, sqlite3_value** argv) noexcept {
  try {
    body(context, argc, argv);
  } catch (const SqlFailure& failure) {
    sqlite3_result_error(context, failure.message.data(), static_cast<int>(failure.message.size()));
  } catch (const std::bad_alloc&) {
    sqlite3_result_error_nomem(context);
  } catch (const VekError& error) {
    sqlite3_result_error(context, error.Description().data(),
                         static_cast<int>(error.Description().size()));
  } catch (const std::exception& error) {
    sqlite3_result_error(context, error.what(), -1);
  } catch (...) {
    sqlite3_result_error(context, "unexpected failure in a SQL Server function", -1);
  }
}

int Collate(void*, int size_a, const void* a, int size_b, const void* b) {
  return CompareSqlServerText(
      std::string_view(static_cast<const char*>(a), static_cast<size_t>(size_a)),
      std::string_view(static_cast<const char*>(b), static_cast<size_t>(size_b)));
}

void Check(sqlite3* db, int rc) {
  if (rc != SQLITE_OK) throw VekError(kUnspecifiedError, "SQLite", sqlite3_errmsg(db));
}

}  // namespace

int CompareSqlServerText(std::string_view a, std::string_view b) {
  a = TrimTrailingSpaces(a);
  b = TrimTrailingSpaces(b);
  // Base letters decide first; accents only between otherwise equal texts.
  size_t i = 0;
  size_t j = 0;
  while (i < a.size() && j < b.size()) {
    const Weight wa = WeightOf(NextCodePoint(a, i));
    const Weight wb = WeightOf(NextCodePoint(b, j));
    if (wa.primary != wb.primary) return wa.primary < wb.primary ? -1 : 1;
  }
  if (i < a.size()) return 1;
  if (j < b.size()) return -1;
  i = 0;
  j = 0;
  while (i < a.size() && j < b.size()) {
    const Weight wa = WeightOf(NextCodePoint(a, i));
    const Weight wb = WeightOf(NextCodePoint(b, j));
    if (wa.secondary != wb.secondary) return wa.secondary < wb.secondary ? -1 : 1;
  }
  return 0;
}

bool MatchesSqlServerLike(std::string_view value, std::string_view pattern, char32_t escape) {
  return MatchLike(CompileLike(pattern, escape), value);
}

void RegisterSqlServerFunctions(sqlite3* db, std::function<vek::Date()> now) {
  if (db == nullptr)
    throw VekError(kUnspecifiedError, "SQLite", "No database connection to register on");
  if (!now) throw VekError(kUnspecifiedError, "SQLite", "No clock to read the server's date from");

  struct FunctionEntry {
    const char* name;
    int args;
    Body body;
  };
  static constexpr FunctionEntry kFunctions[] = {
      {"vek_datediff", 3, &Guarded<DateDiffFunction>},
      {"vek_dateadd", 3, &Guarded<DateAddFunction>},
      {"vek_datepart", 2, &Guarded<DatePartFunction>},
      {"vek_date_add", 2, &Guarded<DatePlusDays>},
      {"vek_date", 1, &Guarded<DateOnly>},
      {"vek_datetime", 1, &Guarded<DateTimeValue>},
      {"vek_text", 5, &Guarded<ConvertToText>},
      {"vek_add", 2, &Guarded<Add>},
      {"vek_round", 2, &Guarded<Round>},
      {"vek_round", 3, &Guarded<Round>},
      {"vek_substring", 3, &Guarded<Substring>},
      {"vek_len", 1, &Guarded<Length>},
      {"vek_charindex", 2, &Guarded<CharIndex>},
      {"vek_charindex", 3, &Guarded<CharIndex>},
      {"vek_replace", 3, &Guarded<Replace>},
      {"vek_upper", 1, &Guarded<Upper>},
      {"vek_lower", 1, &Guarded<Lower>},
      {"vek_left", 2, &Guarded<Left>},
      {"vek_right", 2, &Guarded<Right>},
      {"vek_database_name", 2, &Guarded<DatabaseName>},
      {"vek_money", 1, &Guarded<Money>},
      {"vek_money_text", 2, &Guarded<MoneyText>},
      {"vek_number", 2, &Guarded<NumberFromText>},
      {"like", 2, &Guarded<Like>},
      {"like", 3, &Guarded<Like>},
  };
  const int pure = SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS;
  for (const FunctionEntry& entry : kFunctions) {
    Check(db, sqlite3_create_function_v2(db, entry.name, entry.args, pure, nullptr, entry.body,
                                         nullptr, nullptr, nullptr));
  }
  Check(db, sqlite3_create_function_v2(db, "vek_money_sum", 1, pure, nullptr, nullptr,
                                       &Guarded<MoneySumStep>, &GuardedFinal<MoneySumFinal>, nullptr));
  // The clock is owned by SQLite from here on and freed with the connection.
  auto clock = std::make_unique<std::function<vek::Date()>>(std::move(now));
  const int rc = sqlite3_create_function_v2(
      db, "vek_getdate", 0, SQLITE_UTF8 | SQLITE_INNOCUOUS, clock.get(), &Guarded<GetDate>, nullptr,
      nullptr, [](void* p) { delete static_cast<std::function<vek::Date()>*>(p); });
  if (rc == SQLITE_OK) {
    clock.release();
  } else {
    Check(db, rc);
  }
  Check(db, sqlite3_create_collation_v2(db, kSqlServerCollation, SQLITE_UTF8, nullptr, &Collate,
                                        nullptr));
#ifdef SQLITE_DBCONFIG_DQS_DML
  Check(db, sqlite3_db_config(db, SQLITE_DBCONFIG_DQS_DML, 0, static_cast<int*>(nullptr)));
#endif
}

}  // namespace vek::dialect
