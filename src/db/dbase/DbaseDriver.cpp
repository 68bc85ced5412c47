#include "vek/db/dbase/DbaseDriver.h"

#include <cctype>
#include <filesystem>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "vek/db/DbError.h"
#include "vek/db/dbase/DbfTable.h"
#include "vek/platform/Date.h"
#include "vek/platform/Text.h"

namespace vek {
namespace {

namespace fs = std::filesystem;
using dbase::CellValue;
using dbase::ExactNumber;
using dbase::RaiseDbaseError;

struct Token {
  enum class Kind { Word, Number, Text, Logical, Symbol, End };
  Kind kind = Kind::End;
  std::string text;  // a word or symbol as written; a text's content; a number's digits
};

std::vector<Token> Tokenize(std::string_view sql) {
  std::vector<Token> tokens;
  size_t i = 0;
  const auto at = [&](size_t k) { return k < sql.size() ? sql[k] : '\0'; };
  while (i < sql.size()) {
    const char c = sql[i];
    if (std::isspace(static_cast<unsigned char>(c))) {
      ++i;
    } else if (std::isalpha(static_cast<unsigned char>(c)) || c == '_') {
      const size_t start = i;
      while (std::isalnum(static_cast<unsigned char>(at(i))) || at(i) == '_' ||
             (at(i) == '.' && std::isalpha(static_cast<unsigned char>(at(i + 1))))) {
        ++i;
      }
      tokens.push_back({Token::Kind::Word, std::string(sql.substr(start, i - start))});
    } else if (std::isdigit(static_cast<unsigned char>(c)) ||
               (c == '.' && std::isdigit(static_cast<unsigned char>(at(i + 1))))) {
      const size_t start = i;
      while (std::isdigit(static_cast<unsigned char>(at(i)))) ++i;
      if (at(i) == '.') {
        ++i;
        while (std::isdigit(static_cast<unsigned char>(at(i)))) ++i;
      }
      tokens.push_back({Token::Kind::Number, std::string(sql.substr(start, i - start))});
    } else if (c == '.' && (std::toupper(static_cast<unsigned char>(at(i + 1))) == 'T' ||
                            std::toupper(static_cast<unsigned char>(at(i + 1))) == 'F') &&
               at(i + 2) == '.') {
      tokens.push_back({Token::Kind::Logical, std::string(1, static_cast<char>(std::toupper(at(i + 1))))});
      i += 3;
    } else if (c == '\'' || c == '"') {
      std::string text;
      ++i;
      while (true) {
        if (i >= sql.size()) RaiseDbaseError("Missing closing quote in the statement.");
        if (sql[i] == c) {
          if (at(i + 1) != c) break;
          ++i;  // a doubled quote stands for one
        }
        text.push_back(sql[i++]);
      }
      ++i;
      tokens.push_back({Token::Kind::Text, std::move(text)});
    } else if (std::string_view("(),+-*/;=<>").find(c) != std::string_view::npos) {
      tokens.push_back({Token::Kind::Symbol, std::string(1, c)});
      ++i;
    } else {
      RaiseDbaseError(std::string("Syntax error at '") + c + "'.");
    }
  }
  tokens.push_back({});
  return tokens;
}

__int128 Gcd(__int128 a, __int128 b) {
  if (a < 0) a = -a;
  while (b != 0) a = std::exchange(b, a % b);
  return a < 0 ? -a : a;
}

ExactNumber Reduced(__int128 numerator, __int128 denominator) {
  if (denominator == 0) RaiseDbaseError("Division by zero in the statement.");
  if (denominator < 0) {
    numerator = -numerator;
    denominator = -denominator;
  }
  const __int128 divisor = Gcd(numerator, denominator);
  return divisor > 1 ? ExactNumber{numerator / divisor, denominator / divisor} : ExactNumber{numerator, denominator};
}

// The arithmetic of the exact numbers, refusing what would overflow.
__int128 Add(__int128 a, __int128 b) {
  __int128 result = 0;
  if (__builtin_add_overflow(a, b, &result)) RaiseDbaseError("Numeric overflow in the statement's arithmetic.");
  return result;
}
__int128 Multiply(__int128 a, __int128 b) {
  __int128 result = 0;
  if (__builtin_mul_overflow(a, b, &result)) RaiseDbaseError("Numeric overflow in the statement's arithmetic.");
  return result;
}

ExactNumber Combine(const ExactNumber& a, char op, const ExactNumber& b) {
  switch (op) {
    case '+':
      return Reduced(Add(Multiply(a.numerator, b.denominator), Multiply(b.numerator, a.denominator)),
                     Multiply(a.denominator, b.denominator));
    case '-':
      return Reduced(Add(Multiply(a.numerator, b.denominator), -Multiply(b.numerator, a.denominator)),
                     Multiply(a.denominator, b.denominator));
    case '*':
      return Reduced(Multiply(a.numerator, b.numerator), Multiply(a.denominator, b.denominator));
    default:  // '/'
      return Reduced(Multiply(a.numerator, b.denominator), Multiply(a.denominator, b.numerator));
  }
}

ExactNumber ParseNumber(const std::string& digits) {
  __int128 numerator = 0;
  __int128 denominator = 1;
  bool decimals = false;
  for (char c : digits) {
    if (c == '.') {
      decimals = true;
      continue;
    }
    numerator = Add(Multiply(numerator, 10), c - '0');
    if (decimals) denominator = Multiply(denominator, 10);
  }
  return Reduced(numerator, denominator);
}

// Reads one statement's tokens front to back.
class Parser {
 public:
  explicit Parser(std::string_view sql) : tokens_(Tokenize(sql)) {}

  const Token& Peek() const { return tokens_[pos_]; }
  bool IsWord(std::string_view word) const {
    return Peek().kind == Token::Kind::Word && EqualsIgnoreCase(Peek().text, word);
  }
  bool IsSymbol(char symbol) const {
    return Peek().kind == Token::Kind::Symbol && Peek().text[0] == symbol;
  }
  bool TakeWord(std::string_view word) {
    if (!IsWord(word)) return false;
    ++pos_;
    return true;
  }
  bool TakeSymbol(char symbol) {
    if (!IsSymbol(symbol)) return false;
    ++pos_;
    return true;
  }
  void ExpectWord(std::string_view word) {
    if (!TakeWord(word)) Fail("expected " + std::string(word));
  }
  void ExpectSymbol(char symbol) {
    if (!TakeSymbol(symbol)) Fail(std::string("expected '") + symbol + "'");
  }
  std::string Name() {
    if (Peek().kind != Token::Kind::Word) Fail("expected a name");
    return tokens_[pos_++].text;
  }
  int32_t WholeNumber() {
    if (Peek().kind != Token::Kind::Number || Peek().text.find('.') != std::string::npos ||
        Peek().text.size() > 3) {
      Fail("expected a whole number");
    }
    return std::stoi(tokens_[pos_++].text);
  }
  void ExpectEnd() {
    TakeSymbol(';');
    if (Peek().kind != Token::Kind::End) Fail("unexpected text after the statement");
  }

  CellValue Value() {
    if (TakeWord("Null")) return {};
    CellValue value;
    if (Peek().kind == Token::Kind::Text) {
      value.kind = CellValue::Kind::Text;
      value.text = tokens_[pos_++].text;
    } else if (Peek().kind == Token::Kind::Logical) {
      value.kind = CellValue::Kind::Logical;
      value.logical = tokens_[pos_++].text == "T";
    } else {
      value.kind = CellValue::Kind::Number;
      value.number = Sum();
    }
    return value;
  }

  [[noreturn]] void Fail(const std::string& what) const {
    RaiseDbaseError("Syntax error: " + what + (Peek().kind == Token::Kind::End ? " at the end" : " at '" + Peek().text + "'") +
                    ".");
  }

 private:
  ExactNumber Sum() {
    ExactNumber value = Product();
    while (IsSymbol('+') || IsSymbol('-')) {
      const char op = tokens_[pos_++].text[0];
      value = Combine(value, op, Product());
    }
    return value;
  }
  ExactNumber Product() {
    ExactNumber value = Factor();
    while (IsSymbol('*') || IsSymbol('/')) {
      const char op = tokens_[pos_++].text[0];
      value = Combine(value, op, Factor());
    }
    return value;
  }
  ExactNumber Factor() {
    if (TakeSymbol('-')) return Combine(ExactNumber{}, '-', Factor());
    if (TakeSymbol('+')) return Factor();
    if (TakeSymbol('(')) {
      ExactNumber value = Sum();
      ExpectSymbol(')');
      return value;
    }
    if (Peek().kind != Token::Kind::Number) Fail("expected a value");
    return ParseNumber(tokens_[pos_++].text);
  }

  std::vector<Token> tokens_;
  size_t pos_ = 0;
};

class DbaseDriver final : public Driver {
 public:
  DbaseDriver(fs::path folder, std::function<Date()> now) : folder_(std::move(folder)), now_(std::move(now)) {}

  // The provider reads the statements as the system builds them.
  Dialect SqlDialect() const override { return Dialect::SqlServer; }

  QueryResult RunTyped(const std::string& text, std::span<const Variant> parameters,
                       const dialect::ResultTypes*) override {
    if (!parameters.empty()) RaiseDbaseError("The dBase provider takes no parameters.");
    Parser parser(text);
    QueryResult result;
    if (parser.TakeWord("CREATE")) {
      CreateTable(parser);
      result.records_affected = 0;
    } else if (parser.TakeWord("DELETE")) {
      parser.ExpectWord("FROM");
      const std::string name = parser.Name();
      if (parser.IsWord("WHERE")) parser.Fail("DELETE with a condition is not supported; it deletes every record");
      parser.ExpectEnd();
      dbase::DbfTable table(TableFile(name), name);
      result.records_affected = table.MarkAllDeleted();
      Touch(table);
    } else if (parser.TakeWord("INSERT")) {
      result.records_affected = Insert(parser);
    } else {
      parser.Fail("the dBase provider runs CREATE TABLE, DELETE FROM and INSERT INTO only");
    }
    return result;
  }

  std::optional<int64_t> Insert(const RowWrite&) override { NotUpdatable(); }
  int64_t Update(const RowWrite&) override { NotUpdatable(); }
  void CallProcedure(const std::string& name, Parameters&) override {
    RaiseDbaseError("The dBase provider has no procedure " + name + ".");
  }
  void Close() noexcept override {}

 private:
  [[noreturn]] static void NotUpdatable() {
    RaiseDbaseError("Record sets of the dBase provider can't be updated; use INSERT INTO.");
  }

  static void RequirePlainName(const std::string& name) {
    if (name.find_first_of("/\\") != std::string::npos) RaiseDbaseError("'" + name + "' is not a table name.");
  }

  // The table's file in the folder, its name in any case, as on the
  // system the ERP runs on.
  fs::path TableFile(const std::string& name) const {
    std::optional<fs::path> file = FindTableFile(name);
    if (!file) RaiseDbaseError("File '" + LCase(FileName(name)) + "' does not exist in " + folder_.string() + ".");
    return *file;
  }
  std::optional<fs::path> FindTableFile(const std::string& name) const {
    RequirePlainName(name);
    const std::string file_name = FileName(name);
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(folder_, error)) {
      if (EqualsIgnoreCase(entry.path().filename().string(), file_name)) return entry.path();
    }
    return std::nullopt;
  }
  static std::string FileName(const std::string& name) { return EndsWithDbf(name) ? name : name + ".dbf"; }

  static bool EndsWithDbf(const std::string& name) {
    return name.size() > 4 && EqualsIgnoreCase(std::string_view(name).substr(name.size() - 4), ".dbf");
  }

  void Touch(dbase::DbfTable& table) const {
    const Date today = now_();
    table.Touch(Year(today), Month(today), Day(today));
  }

  void CreateTable(Parser& parser) {
    parser.ExpectWord("TABLE");
    const std::string name = parser.Name();
    RequirePlainName(name);
    parser.TakeWord("FREE");
    parser.ExpectSymbol('(');
    std::vector<dbase::FieldDef> fields;
    do {
      dbase::FieldDef field;
      field.name = parser.Name();
      const std::string type = parser.Name();
      if (type.size() != 1) parser.Fail("expected a field type C, N, D or L");
      field.type = static_cast<char>(std::toupper(static_cast<unsigned char>(type[0])));
      if (parser.TakeSymbol('(')) {
        field.width = parser.WholeNumber();
        if (parser.TakeSymbol(',')) field.decimals = parser.WholeNumber();
        parser.ExpectSymbol(')');
      } else if (field.type == 'D') {
        field.width = 8;
      } else if (field.type == 'L') {
        field.width = 1;
      }
      fields.push_back(std::move(field));
    } while (parser.TakeSymbol(','));
    parser.ExpectSymbol(')');
    parser.ExpectEnd();
    if (std::optional<fs::path> existing = FindTableFile(name)) {
      RaiseDbaseError("File " + existing->string() + " already exists.");
    }
    dbase::DbfTable::Create(folder_ / FileName(name), name, fields);
  }

  int64_t Insert(Parser& parser) {
    parser.ExpectWord("INTO");
    const std::string name = parser.Name();
    std::vector<std::string> columns;
    if (parser.TakeSymbol('(')) {
      do columns.push_back(parser.Name());
      while (parser.TakeSymbol(','));
      parser.ExpectSymbol(')');
    }
    parser.ExpectWord("VALUES");
    parser.ExpectSymbol('(');
    std::vector<CellValue> given;
    do given.push_back(parser.Value());
    while (parser.TakeSymbol(','));
    parser.ExpectSymbol(')');
    parser.ExpectEnd();

    dbase::DbfTable table(TableFile(name), name);
    std::vector<CellValue> values(table.Fields().size());
    if (columns.empty()) {
      if (given.size() != values.size()) {
        RaiseDbaseError("Table " + name + " has " + std::to_string(values.size()) + " fields; the statement gives " +
                        std::to_string(given.size()) + " values.");
      }
      values = std::move(given);
    } else {
      if (given.size() != columns.size()) {
        RaiseDbaseError("The statement names " + std::to_string(columns.size()) + " fields of " + name +
                        " and gives " + std::to_string(given.size()) + " values.");
      }
      for (size_t i = 0; i < columns.size(); ++i) {
        const int32_t index = table.FieldIndex(columns[i]);
        if (index < 0) RaiseDbaseError("Field '" + columns[i] + "' is not found in table " + name + ".");
        values[static_cast<size_t>(index)] = std::move(given[i]);
      }
    }
    table.Append(values);
    Touch(table);
    return 1;
  }

  fs::path folder_;
  std::function<Date()> now_;
};

}  // namespace

std::unique_ptr<Driver> OpenDbaseDriver(const std::string& source_db, std::function<Date()> now) {
  std::error_code error;
  if (source_db.empty() || !fs::is_directory(source_db, error)) {
    RaiseDbaseError("Invalid path: the folder '" + source_db + "' (SourceDB) does not exist.");
  }
  return std::make_unique<DbaseDriver>(fs::path(source_db), std::move(now));
}

}  // namespace vek
