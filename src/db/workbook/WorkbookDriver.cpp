#include "vek/db/workbook/WorkbookDriver.h"

#include <cctype>
#include <charconv>
#include <optional>
#include <utility>
#include <vector>

#include "vek/db/DbError.h"
#include "vek/db/workbook/WorkbookFile.h"
#include "vek/platform/Text.h"

namespace vek {
namespace {

using workbook::kWorkbookSource;

[[noreturn]] void RaiseSyntax(const std::string& why) {
  RaiseDbError(adErrSyntax, kWorkbookSource,
               "The workbook provider runs only [Sheet$], SELECT * FROM [Sheet$] and UPDATE [Sheet$] SET heading = "
               "value, ... WHERE heading = value: " + why);
}

struct Token {
  enum Kind { Word, Name, Number, DateText, Text, Symbol, End } kind = End;
  std::string text;
};

// The statement's tokens: words, [names], numbers, #dates#, 'texts' and
// one-character symbols. Carriage returns are blanks like any other.
std::vector<Token> Tokenize(std::string_view text) {
  std::vector<Token> tokens;
  size_t i = 0;
  while (i < text.size()) {
    const char c = text[i];
    if (std::isspace(static_cast<unsigned char>(c))) {
      ++i;
    } else if (c == '[') {
      const size_t end = text.find(']', i);
      if (end == std::string_view::npos) RaiseSyntax("a [ has no ]");
      tokens.push_back({Token::Name, std::string(text.substr(i + 1, end - i - 1))});
      i = end + 1;
    } else if (c == '#') {
      const size_t end = text.find('#', i + 1);
      if (end == std::string_view::npos) RaiseSyntax("a date has no closing #");
      tokens.push_back({Token::DateText, std::string(text.substr(i + 1, end - i - 1))});
      i = end + 1;
    } else if (c == '\'') {
      std::string value;
      size_t j = i + 1;
      while (true) {
        if (j >= text.size()) RaiseSyntax("a text has no closing quote");
        if (text[j] == '\'') {
          if (j + 1 < text.size() && text[j + 1] == '\'') {
            value.push_back('\'');
            j += 2;
            continue;
          }
          break;
        }
        value.push_back(text[j++]);
      }
      tokens.push_back({Token::Text, std::move(value)});
      i = j + 1;
    } else if (std::isdigit(static_cast<unsigned char>(c)) ||
               (c == '.' && i + 1 < text.size() && std::isdigit(static_cast<unsigned char>(text[i + 1])))) {
      size_t j = i;
      while (j < text.size() && (std::isdigit(static_cast<unsigned char>(text[j])) || text[j] == '.')) ++j;
      tokens.push_back({Token::Number, std::string(text.substr(i, j - i))});
      i = j;
    } else if (std::isalpha(static_cast<unsigned char>(c)) || c == '_' || static_cast<unsigned char>(c) >= 0x80) {
      size_t j = i;
      while (j < text.size() && (std::isalnum(static_cast<unsigned char>(text[j])) || text[j] == '_' || text[j] == '$' ||
                                 static_cast<unsigned char>(text[j]) >= 0x80)) {
        ++j;
      }
      tokens.push_back({Token::Word, std::string(text.substr(i, j - i))});
      i = j;
    } else {
      tokens.push_back({Token::Symbol, std::string(1, c)});
      ++i;
    }
  }
  tokens.push_back({Token::End, std::string()});
  return tokens;
}

// A decimal text's value, read the same whatever the process locale.
double DecimalValue(const std::string& text) {
  double value = 0.0;
  std::from_chars(text.data(), text.data() + text.size(), value);
  return value;
}

// A decimal text shifted `places` to the left: "12345", 2 -> "123.45".
std::string ShiftDecimal(std::string digits, size_t places) {
  size_t point = digits.find('.');
  if (point == std::string::npos) point = digits.size();
  std::string whole = digits.substr(0, point);
  std::string fraction = point < digits.size() ? digits.substr(point + 1) : std::string();
  while (whole.size() < places + 1) whole.insert(whole.begin(), '0');
  fraction = whole.substr(whole.size() - places) + fraction;
  whole.resize(whole.size() - places);
  while (whole.size() > 1 && whole.front() == '0') whole.erase(whole.begin());
  while (!fraction.empty() && fraction.back() == '0') fraction.pop_back();
  return fraction.empty() ? whole : whole + "." + fraction;
}

// A value of the statement: a number as exact decimal text, a date, a text,
// or Null.
struct Literal {
  enum Kind { Number, DateValue, Text, Null } kind = Null;
  std::string text;
  Date date;
};

Date ParseJetDate(const std::string& text) {
  // Jet reads #m/d/yyyy [h:mm:ss]#, month first, and ISO dates.
  int32_t parts[6] = {0, 0, 0, 0, 0, 0};
  size_t count = 0;
  const char* p = text.data();
  const char* end = p + text.size();
  bool iso = false;
  while (p < end && count < 6) {
    while (p < end && !std::isdigit(static_cast<unsigned char>(*p))) {
      if (*p == '-' && count == 1) iso = true;
      ++p;
    }
    if (p >= end) break;
    const auto parsed = std::from_chars(p, end, parts[count]);
    p = parsed.ptr;
    ++count;
  }
  if (count < 3) RaiseSyntax("#" + text + "# is not a date");
  const bool year_first = iso || parts[0] > 31;
  const int32_t year = year_first ? parts[0] : parts[2];
  const int32_t month = year_first ? parts[1] : parts[0];
  const int32_t day = year_first ? parts[2] : parts[1];
  if (month < 1 || month > 12 || day < 1 || day > 31) RaiseSyntax("#" + text + "# is not a date");
  return DateSerial(year, month, day) + TimeSerial(parts[3], parts[4], parts[5]);
}

class Parser {
 public:
  explicit Parser(std::string_view text) : tokens_(Tokenize(text)) {}

  const Token& Peek() const { return tokens_[position_]; }
  Token Next() {
    Token token = tokens_[position_];
    if (token.kind != Token::End) ++position_;
    return token;
  }
  bool AcceptWord(std::string_view word) {
    if (Peek().kind == Token::Word && EqualsIgnoreCase(Peek().text, word)) {
      ++position_;
      return true;
    }
    return false;
  }
  bool AcceptSymbol(char symbol) {
    if (Peek().kind == Token::Symbol && Peek().text[0] == symbol) {
      ++position_;
      return true;
    }
    return false;
  }
  void ExpectWord(std::string_view word) {
    if (!AcceptWord(word)) RaiseSyntax(std::string(word) + " was expected before \"" + Peek().text + "\"");
  }
  void ExpectSymbol(char symbol) {
    if (!AcceptSymbol(symbol)) RaiseSyntax(std::string(1, symbol) + " was expected before \"" + Peek().text + "\"");
  }
  void ExpectEnd() {
    AcceptSymbol(';');
    if (Peek().kind != Token::End) RaiseSyntax("\"" + Peek().text + "\" follows the end of the statement");
  }

  // A sheet table: [Name$] or Name$; gives the sheet's name.
  std::string SheetName() {
    const Token token = Next();
    if ((token.kind != Token::Name && token.kind != Token::Word) || !token.text.ends_with('$')) {
      RaiseSyntax("\"" + token.text + "\" is not a sheet ([Name$])");
    }
    return token.text.substr(0, token.text.size() - 1);
  }
  std::string ColumnName() {
    const Token token = Next();
    if (token.kind != Token::Name && token.kind != Token::Word) RaiseSyntax("\"" + token.text + "\" is not a heading");
    return token.text;
  }

  Literal Value() {
    if (AcceptWord("NULL")) return Literal{};
    const Token token = Next();
    if (token.kind == Token::DateText) return Literal{Literal::DateValue, token.text, ParseJetDate(token.text)};
    if (token.kind == Token::Text) return Literal{Literal::Text, token.text, Date()};
    bool negative = false;
    Token number = token;
    if (token.kind == Token::Symbol && (token.text == "-" || token.text == "+")) {
      negative = token.text == "-";
      number = Next();
    }
    if (number.kind != Token::Number) RaiseSyntax("\"" + number.text + "\" is not a value");
    std::string decimal = number.text;
    if (AcceptSymbol('/')) {
      const Token divisor = Next();
      if (divisor.kind != Token::Number) RaiseSyntax("\"" + divisor.text + "\" is not a divisor");
      // A power of ten divides exactly, as the decimal point moves.
      const bool power_of_ten = divisor.text.size() >= 1 && divisor.text[0] == '1' &&
                                divisor.text.find_first_not_of('0', 1) == std::string::npos;
      if (power_of_ten) {
        decimal = ShiftDecimal(decimal, divisor.text.size() - 1);
      } else {
        const double denominator = DecimalValue(divisor.text);
        if (denominator == 0.0) RaiseDbError(adErrUnspecified, kWorkbookSource, "Division by zero");
        char buffer[32];
        decimal = std::string(buffer, std::to_chars(buffer, buffer + sizeof buffer, DecimalValue(decimal) / denominator).ptr);
      }
    } else {
      decimal = ShiftDecimal(decimal, 0);
    }
    if (negative && decimal != "0") decimal.insert(decimal.begin(), '-');
    return Literal{Literal::Number, decimal, Date()};
  }

 private:
  std::vector<Token> tokens_;
  size_t position_ = 0;
};

// Whether a cell's value is the literal of a WHERE condition.
bool CellEquals(const Variant& cell, const Literal& literal) {
  if (cell.IsEmpty() || cell.IsNull()) return false;
  switch (literal.kind) {
    case Literal::Number:
      return IsNumeric(cell) && CDbl(cell) == DecimalValue(literal.text);
    case Literal::DateValue: return cell.Type() == VariantType::Date && CDate(cell) == literal.date;
    case Literal::Text: return cell.Type() == VariantType::String && EqualsIgnoreCase(CStr(cell), literal.text);
    case Literal::Null: return false;
  }
  return false;
}

class WorkbookDriver final : public Driver {
 public:
  explicit WorkbookDriver(const std::string& path) : file_(std::make_unique<workbook::WorkbookFile>(path)) {}

  Dialect SqlDialect() const override { return Dialect::SqlServer; }

  QueryResult RunTyped(const std::string& text, std::span<const Variant> parameters,
                       const dialect::ResultTypes*) override {
    if (!parameters.empty()) RaiseSyntax("parameters are not taken");
    Parser parser(text);
    if (parser.AcceptWord("UPDATE")) return RunUpdate(parser);
    if (parser.AcceptWord("SELECT")) {
      parser.ExpectSymbol('*');
      parser.ExpectWord("FROM");
    }
    const std::string sheet = parser.SheetName();
    parser.ExpectEnd();
    return ReadSheet(sheet);
  }

  std::optional<int64_t> Insert(const RowWrite&) override { RefuseRecordsetWrite(); }
  int64_t Update(const RowWrite&) override { RefuseRecordsetWrite(); }
  void CallProcedure(const std::string& name, Parameters&) override {
    RaiseDbError(adErrSyntax, kWorkbookSource, "A workbook has no procedure " + name + ".");
  }
  void Close() noexcept override { file_.reset(); }

 private:
  [[noreturn]] static void RefuseRecordsetWrite() {
    RaiseDbError(adErrFeatureNotAvailable, kWorkbookSource,
                 "The workbook provider writes cells through UPDATE statements only.");
  }

  // The headings of row 1, by column.
  struct Heading {
    std::string name;
    int32_t column;
  };
  static std::vector<Heading> Headings(const workbook::Sheet& sheet) {
    std::vector<Heading> headings;
    constexpr int32_t kLastColumn = 16383;
    int32_t blank_run = 0;
    // Headings end at the first run of 256 blank cells.
    for (int32_t column = 0; column <= kLastColumn && blank_run < 256; ++column) {
      const Variant value = sheet.Value(1, column);
      if (value.IsEmpty() || value.IsNull() || CStr(value).empty()) {
        ++blank_run;
        continue;
      }
      blank_run = 0;
      headings.push_back({CStr(value), column});
    }
    return headings;
  }

  int32_t HeadingColumn(const workbook::Sheet& sheet, const std::vector<Heading>& headings,
                        const std::string& name) const {
    for (const Heading& heading : headings) {
      if (EqualsIgnoreCase(heading.name, name)) return heading.column;
    }
    RaiseDbError(kWorkbookNoSuchHeading, kWorkbookSource,
                 "The sheet " + sheet.Name() + " of the workbook " + file_->Path().string() + " has no heading " + name +
                     " in its row 1.");
  }

  QueryResult ReadSheet(const std::string& name) {
    const workbook::Sheet& sheet = file_->Worksheet(name);
    const std::vector<Heading> headings = Headings(sheet);
    QueryResult result;
    result.returns_rows = true;
    std::vector<ColumnInfo> columns;
    for (const Heading& heading : headings) {
      ColumnInfo column;
      column.name = heading.name;
      column.type = adVarWChar;
      column.base_table = sheet.Name() + "$";
      column.base_column = heading.name;
      columns.push_back(std::move(column));
    }
    std::vector<bool> typed(columns.size(), false);
    for (int32_t row = 2; row <= sheet.LastRow(); ++row) {
      Row values;
      bool any = false;
      for (size_t i = 0; i < headings.size(); ++i) {
        Variant value = sheet.Value(row, headings[i].column);
        if (value.IsEmpty()) value = Variant::Null();
        if (!value.IsNull()) {
          any = true;
          // A column takes the type of its first value, as Jet guesses it.
          if (!typed[i]) {
            typed[i] = true;
            switch (value.Type()) {
              case VariantType::Double: columns[i].type = adDouble; break;
              case VariantType::Date: columns[i].type = adDate; break;
              case VariantType::Boolean: columns[i].type = adBoolean; break;
              default: break;
            }
          }
        }
        values.push_back(std::move(value));
      }
      if (any) result.rows.push_back(std::move(values));
    }
    result.columns = std::make_shared<ColumnSet>(std::move(columns));
    return result;
  }

  QueryResult RunUpdate(Parser& parser) {
    workbook::Sheet& sheet = file_->Worksheet(parser.SheetName());
    const std::vector<Heading> headings = Headings(sheet);
    parser.ExpectWord("SET");
    std::vector<std::pair<int32_t, Literal>> assignments;
    do {
      const std::string column = parser.ColumnName();
      parser.ExpectSymbol('=');
      assignments.emplace_back(HeadingColumn(sheet, headings, column), parser.Value());
    } while (parser.AcceptSymbol(','));
    parser.ExpectWord("WHERE");
    const int32_t key_column = HeadingColumn(sheet, headings, parser.ColumnName());
    parser.ExpectSymbol('=');
    const Literal key = parser.Value();
    parser.ExpectEnd();

    QueryResult result;
    result.records_affected = 0;
    for (int32_t row = 2; row <= sheet.LastRow(); ++row) {
      if (!CellEquals(sheet.Value(row, key_column), key)) continue;
      for (const auto& [column, value] : assignments) {
        switch (value.kind) {
          case Literal::Number: sheet.SetNumber(row, column, value.text); break;
          case Literal::DateValue: sheet.SetDate(row, column, value.date); break;
          case Literal::Text: sheet.SetValue(row, column, Variant(value.text)); break;
          case Literal::Null: sheet.SetValue(row, column, Variant::Null()); break;
        }
      }
      ++result.records_affected;
    }
    // The statement is in the file when it returns, as every statement of
    // the library commits as it runs.
    if (result.records_affected > 0) file_->Save();
    return result;
  }

  std::unique_ptr<workbook::WorkbookFile> file_;
};

}  // namespace

std::unique_ptr<Driver> OpenWorkbookDriver(const std::string& path) {
  return std::make_unique<WorkbookDriver>(path);
}

}  // namespace vek
