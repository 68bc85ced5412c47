#include "vek/db/dialect/TranslatorBase.h"

namespace vek::dialect::detail {
namespace {

// Statements that have no form in any dialect.
constexpr auto kProceduralStatements = std::to_array<std::string_view>({
    "BACKUP", "BULK",    "CHECKPOINT", "CLOSE",   "DBCC",   "DEALLOCATE", "DECLARE", "DENY",
    "EXEC",   "EXECUTE", "FETCH",      "GO",      "GRANT",  "IF",         "KILL",    "MERGE",
    "OPEN",   "PRINT",   "RAISERROR",  "RESTORE", "RETURN", "REVOKE",     "SET",     "WAITFOR",
});

struct KeywordEntry {
  std::string_view upper;
  Kw keyword;
  bool reserved;
};
constexpr auto kKeywords = std::to_array<KeywordEntry>({
    {"ALL", Kw::All, true},
    {"ALTER", Kw::None, true},
    {"AND", Kw::None, true},
    {"APPLY", Kw::None, true},
    {"AS", Kw::As, true},
    {"ASC", Kw::Asc, true},
    {"BEGIN", Kw::Begin, true},
    {"BETWEEN", Kw::None, true},
    {"BY", Kw::By, true},
    {"CASE", Kw::Case, true},
    {"CHECK", Kw::None, true},
    {"COLLATE", Kw::None, true},
    {"COMMIT", Kw::Commit, true},
    {"CONSTRAINT", Kw::None, true},
    {"CREATE", Kw::Create, true},
    {"CROSS", Kw::None, true},
    {"DEFAULT", Kw::None, true},
    {"DELETE", Kw::Delete, true},
    {"DESC", Kw::Desc, true},
    {"DISTINCT", Kw::Distinct, true},
    {"DROP", Kw::None, true},
    {"ELSE", Kw::Else, true},
    {"END", Kw::End, true},
    {"ESCAPE", Kw::Escape, true},
    {"EXCEPT", Kw::Except, true},
    {"EXEC", Kw::Exec, true},
    {"EXECUTE", Kw::Execute, true},
    {"EXISTS", Kw::None, true},
    {"FOR", Kw::For, false},
    {"FOREIGN", Kw::None, true},
    {"FROM", Kw::From, true},
    {"FULL", Kw::None, true},
    {"GLOB", Kw::None, true},
    {"GROUP", Kw::Group, true},
    {"HAVING", Kw::Having, true},
    {"IDENTITY", Kw::Identity, false},
    {"IN", Kw::None, true},
    {"INDEX", Kw::None, true},
    {"INNER", Kw::None, true},
    {"INSERT", Kw::Insert, true},
    {"INTERSECT", Kw::Intersect, true},
    {"INTO", Kw::Into, true},
    {"IS", Kw::None, true},
    {"JOIN", Kw::Join, true},
    {"KEY", Kw::None, true},
    {"LEFT", Kw::Left, true},
    {"LIKE", Kw::Like, true},
    {"LIMIT", Kw::None, true},
    {"MAX", Kw::Max, false},
    {"NOT", Kw::Not, true},
    {"NULL", Kw::Null, false},
    {"OFFSET", Kw::None, true},
    {"ON", Kw::None, true},
    {"OPTION", Kw::Option, true},
    {"OR", Kw::None, true},
    {"ORDER", Kw::Order, true},
    {"OUTER", Kw::None, true},
    {"PERCENT", Kw::Percent, true},
    {"PRIMARY", Kw::None, true},
    {"REFERENCES", Kw::None, true},
    {"RIGHT", Kw::Right, true},
    {"ROLLBACK", Kw::Rollback, false},
    {"SELECT", Kw::Select, true},
    {"SET", Kw::Set, true},
    {"TABLE", Kw::Table, true},
    {"THEN", Kw::Then, true},
    {"TIES", Kw::Ties, false},
    {"TOP", Kw::Top, true},
    {"TRAN", Kw::Tran, false},
    {"TRANSACTION", Kw::Transaction, false},
    {"TRUNCATE", Kw::Truncate, false},
    {"UNION", Kw::Union, true},
    {"UPDATE", Kw::Update, true},
    {"VALUES", Kw::None, true},
    {"WHEN", Kw::When, true},
    {"WHERE", Kw::Where, true},
    {"WITH", Kw::With, true},
});
static_assert(std::is_sorted(kKeywords.begin(), kKeywords.end(),
                             [](const KeywordEntry& a, const KeywordEntry& b) {
                               return a.upper < b.upper;
                             }),
              "binary search needs sorted words");
static_assert(std::all_of(kKeywords.begin(), kKeywords.end(),
                          [](const KeywordEntry& entry) { return entry.upper.size() <= 11; }),
              "ClassifyWord reads words of up to 11 letters");

// Compares like std::string_view's operator<, without a library call: the
// words are short and this runs once per word of every statement.
int CompareWord(std::string_view a, std::string_view b) {
  const size_t common = std::min(a.size(), b.size());
  for (size_t i = 0; i < common; ++i) {
    if (a[i] != b[i])
      return static_cast<unsigned char>(a[i]) < static_cast<unsigned char>(b[i]) ? -1 : 1;
  }
  return a.size() == b.size() ? 0 : (a.size() < b.size() ? -1 : 1);
}

// The text between the quotes of a String or NationalString token, escapes
// as written; nullopt for any other token.
std::optional<std::string_view> QuotedText(const Token& token) {
  if (token.kind != TokenKind::String && token.kind != TokenKind::NationalString)
    return std::nullopt;
  std::string_view literal = token.text;
  if (token.kind == TokenKind::NationalString && !literal.empty()) literal.remove_prefix(1);
  if (literal.size() < 2) return std::string_view();
  return literal.substr(1, literal.size() - 2);
}

// The date that a literal's text is as a whole; only texts that begin and
// end with a digit and have "/" or "-" after the leading digits are tried,
// which leaves codes, plates and numbers as text.
std::optional<DateTimeParts> WholeDate(std::string_view inner) {
  if (inner.empty() || inner.front() < '0' || inner.front() > '9' || inner.back() < '0' ||
      inner.back() > '9') {
    return std::nullopt;
  }
  const size_t separator = inner.find_first_not_of("0123456789");
  if (separator == std::string_view::npos || (inner[separator] != '/' && inner[separator] != '-'))
    return std::nullopt;
  return ParseDateText(inner, false);
}

}  // namespace

bool IsDateLiteral(const Token& token) {
  const auto inner = QuotedText(token);
  return inner && WholeDate(*inner).has_value();
}

std::string StringLiteralValue(const Token& token) {
  const auto inner = QuotedText(token);
  if (!inner) return std::string();
  // A literal that is a whole date becomes canonical text, so that comparing
  // it with a stored date compares moments.
  if (const auto date = WholeDate(*inner)) return FormatCanonical(*date);
  return StringValue(token);
}

bool IsProceduralStatement(std::string_view word) {
  for (std::string_view statement : kProceduralStatements) {
    if (EqualsAsciiNoCase(word, statement)) return true;
  }
  return false;
}

bool StartsWithNoCase(std::string_view text, std::string_view prefix) {
  return text.size() >= prefix.size() && EqualsAsciiNoCase(text.substr(0, prefix.size()), prefix);
}

WordClass ClassifyWord(std::string_view word) {
  WordClass result;
  if (word.size() > 11) return result;  // no keyword is longer
  char upper[11];
  for (size_t i = 0; i < word.size(); ++i) upper[i] = AsciiUpper(word[i]);
  const std::string_view key(upper, word.size());
  size_t low = 0;
  size_t high = kKeywords.size();
  while (low < high) {
    const size_t middle = (low + high) / 2;
    const int order = CompareWord(kKeywords[middle].upper, key);
    if (order == 0) {
      result.keyword = kKeywords[middle].keyword;
      result.reserved = kKeywords[middle].reserved;
      return result;
    }
    if (order < 0) {
      low = middle + 1;
    } else {
      high = middle;
    }
  }
  return result;
}

ValueType TypeOfColumnName(std::string_view name) {
  if (StartsWithNoCase(name, "Dt_") || StartsWithNoCase(name, "Hr_")) return ValueType::Date;
  if (StartsWithNoCase(name, "Nm_") || StartsWithNoCase(name, "Ds_") ||
      StartsWithNoCase(name, "Sg_")) {
    return ValueType::Text;
  }
  if (StartsWithNoCase(name, "Vl_")) return ValueType::Money;
  if (StartsWithNoCase(name, "Qt_") || StartsWithNoCase(name, "Ic_")) return ValueType::Integer;
  if (StartsWithNoCase(name, "No_")) return ValueType::Number;
  return ValueType::Unknown;
}

ValueType Wider(ValueType a, ValueType b) {
  if (a == ValueType::Number || b == ValueType::Number) return ValueType::Number;
  const auto rank = [](ValueType type) {
    switch (type) {
      case ValueType::Integer: return 1;
      case ValueType::Money: return 2;
      case ValueType::Decimal: return 3;
      case ValueType::Float: return 4;
      default: return 0;
    }
  };
  if (rank(a) == 0) return b;
  if (rank(b) == 0) return a;
  return rank(a) >= rank(b) ? a : b;
}

ValueType ValueTypeOf(ColumnKind kind) {
  switch (kind) {
    case ColumnKind::Integer: return ValueType::Integer;
    case ColumnKind::Money: return ValueType::Money;
    case ColumnKind::Decimal: return ValueType::Decimal;
    case ColumnKind::Float: return ValueType::Float;
    case ColumnKind::Text: return ValueType::Text;
    case ColumnKind::Date: return ValueType::Date;
    case ColumnKind::Unknown: break;
  }
  return ValueType::Unknown;
}

DataTypeEnum DataTypeOf(ValueType type) {
  switch (type) {
    case ValueType::Integer:
    case ValueType::Null: return adInteger;  // SELECT NULL is an int column
    case ValueType::Money: return adCurrency;
    case ValueType::Decimal: return adNumeric;
    case ValueType::Float: return adDouble;
    case ValueType::Text: return adVarChar;
    case ValueType::Date: return adDBTimeStamp;
    default: return adEmpty;
  }
}

bool IsOneOf(std::string_view word, std::initializer_list<std::string_view> names) {
  for (std::string_view name : names) {
    if (EqualsAsciiNoCase(word, name)) return true;
  }
  return false;
}

}  // namespace vek::dialect::detail
