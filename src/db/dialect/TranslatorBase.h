#pragma once
// What the SQLite and PostgreSQL translations of SQL Server text share: the
// token list, the scopes and the SQL Server 2000 qualifier rule, the parse of
// operands and the typing of "+", TOP, the select list and the statement
// forms. A dialect derives from TranslatorBase and writes, through its
// hooks, what differs: functions, conversions, date arithmetic, names and
// the forms of DELETE.

#include <algorithm>
#include <array>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "vek/db/dialect/ColumnKinds.h"
#include "vek/db/dialect/DateText.h"
#include "vek/db/dialect/Tokenizer.h"

namespace vek::dialect::detail {

inline constexpr size_t kNone = static_cast<size_t>(-1);

// The words the translator looks for, classified once per token.
enum class Kw : uint8_t {
  None,
  All,
  As,
  Asc,
  Begin,
  By,
  Case,
  Commit,
  Create,
  Delete,
  Desc,
  Distinct,
  Else,
  Escape,
  End,
  Except,
  Exec,
  Execute,
  For,
  From,
  Group,
  Having,
  Identity,
  Insert,
  Intersect,
  Into,
  Join,
  Left,
  Like,
  Max,
  Not,
  Null,
  Option,
  Order,
  Percent,
  Right,
  Rollback,
  Select,
  Set,
  Table,
  Then,
  Ties,
  Top,
  Tran,
  Transaction,
  Truncate,
  Union,
  Update,
  When,
  Where,
  With,
};

struct WordClass {
  Kw keyword = Kw::None;
  bool reserved = false;  // structures statements, so never starts an operand
};
// The keyword a word is, in any case.
WordClass ClassifyWord(std::string_view word);

// Statements that no dialect translates (EXEC, DECLARE, SET, BACKUP ...).
bool IsProceduralStatement(std::string_view word);

// Number is a number of a kind not known before the rows come; the other
// numeric kinds are T-SQL's, widest last: Integer < Money < Decimal < Float.
enum class ValueType { Unknown, Null, Number, Text, Date, Integer, Money, Decimal, Float };

inline bool IsNumeric(ValueType type) {
  return type == ValueType::Number || type == ValueType::Integer || type == ValueType::Money ||
         type == ValueType::Decimal || type == ValueType::Float;
}
// The type of arithmetic between two numbers: the operand of the higher
// precedence wins, as in T-SQL; a number of unknown kind leaves it unknown.
ValueType Wider(ValueType a, ValueType b);
ValueType ValueTypeOf(ColumnKind kind);
DataTypeEnum DataTypeOf(ValueType type);

inline char AsciiUpper(char c) {
  return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c;
}
bool StartsWithNoCase(std::string_view text, std::string_view prefix);
// The type a column has by the naming convention of the schema (prefixes).
ValueType TypeOfColumnName(std::string_view name);
bool IsOneOf(std::string_view word, std::initializer_list<std::string_view> names);

// Whether a String or NationalString token is a whole date ('dd/mm/yyyy[
// hh:mm[:ss]]' day first, or 'yyyy-mm-dd[ hh:mm[:ss]]').
bool IsDateLiteral(const Token& token);
// What a String or NationalString token stands for in translated text: a
// whole date as 'yyyy-mm-dd hh:mm:ss' (with '.fff' for milliseconds), any
// other text as its value; empty for any other token.
std::string StringLiteralValue(const Token& token);

// The target of CONVERT or CAST.
struct TargetType {
  enum class Kind { Text, Date, DateTime, Integer, Money, Decimal, Real } kind = Kind::Text;
  int64_t length = 30;  // Text: characters kept; -1 for no limit
  int64_t precision = 18;  // Decimal: digits in all
  int64_t scale = 0;    // Decimal: digits after the point
  bool pad = false;     // Text: char/nchar fill with blanks
};

struct Term {
  size_t begin = 0;
  size_t end = 0;
  size_t op = kNone;  // the "+" or "-" before it; kNone for the first term
};

enum class ChainMode { Plain, Numeric, Concat, DateAdd, Runtime, Error };

struct ChainDecision {
  ChainMode mode = ChainMode::Plain;
  ValueType type = ValueType::Unknown;
  size_t date_term = kNone;
  std::string error;
};

// A significant token (not blank, not comment) and what is known of it.
struct Sig {
  size_t token = 0;      // index in the token list
  size_t match = kNone;  // the partner of "(" / ")" and CASE / END
  Kw keyword = Kw::None;
  bool reserved = false;
  bool table_name = false;         // names a table of FROM or a statement's target
  size_t qualifier_alias = kNone;  // a qualifier that is written as this alias
};

// The parts of a dotted name (at most four, as in SQL Server, plus ".*");
// kNone stands for a part left out, as the schema in db..table.
class NameSplit {
 public:
  void Add(size_t part) {
    if (count_ == parts_.size()) RaiseDialectError("A name with more than four parts");
    parts_[count_++] = part;
  }
  size_t size() const { return count_; }
  bool empty() const { return count_ == 0; }
  size_t operator[](size_t i) const { return parts_[i]; }
  size_t back() const { return parts_[count_ - 1]; }
  const size_t* begin() const { return parts_.data(); }
  const size_t* end() const { return parts_.data() + count_; }
  void DropFront(size_t n) {
    std::copy(parts_.begin() + n, parts_.begin() + count_, parts_.begin());
    count_ -= n;
  }

 private:
  std::array<size_t, 6> parts_{};
  size_t count_ = 0;
};

struct FromRef {
  size_t name_begin = 0;
  size_t name_end = 0;
  size_t alias = kNone;  // index of the alias token
};

// A name that a qualifier can give a table of a scope: the table alone, or
// database and table (empty database for the first form). Compared without
// ASCII case, as SQL Server compares names.
struct QualifierKey {
  std::string_view database;
  std::string_view table;
};

struct QualifierKeyHash {
  size_t operator()(const QualifierKey& key) const {
    uint64_t hash = 14695981039346656037ull;  // FNV-1a
    const auto add = [&hash](unsigned char byte) {
      hash ^= byte;
      hash *= 1099511628211ull;
    };
    for (char c : key.database) add(static_cast<unsigned char>(AsciiUpper(c)));
    add(0);
    for (char c : key.table) add(static_cast<unsigned char>(AsciiUpper(c)));
    return static_cast<size_t>(hash);
  }
};

struct QualifierKeyEqual {
  bool operator()(const QualifierKey& a, const QualifierKey& b) const {
    return a.table.size() == b.table.size() && a.database.size() == b.database.size() &&
           EqualsAsciiNoCase(a.table, b.table) && EqualsAsciiNoCase(a.database, b.database);
  }
};

// What a name means as a qualifier in one scope.
enum class BindingKind : uint8_t {
  Direct,     // an alias, or a table without an alias: written as it stands
  Aliased,    // the real name of a table that has an alias: written as the alias
  Ambiguous,  // the real name of several aliased tables: left for the database to refuse
};

struct Binding {
  QualifierKey key;
  BindingKind kind = BindingKind::Direct;
  size_t alias = kNone;     // Aliased: the alias token
  size_t shadowed = kNone;  // indexed: the binding of the same name further out
};
// A DELETE as SQL Server reads it; indices of significant tokens.
struct DeleteForm {
  size_t b = 0;  // DELETE
  size_t target_begin = 0;
  size_t target_end = 0;
  size_t alias = kNone;  // DELETE [FROM] table alias
  size_t rest = 0;       // what follows the target and its alias
  size_t from = kNone;   // the FROM of DELETE target FROM sources
  FromRef source;        // the source that the target names
};

// What a dialect writes differently without a hook of its own.
struct DialectForms {
  std::string_view name;             // in error messages: "... is not supported on <name>"
  std::string_view top_branch_open;  // before a compound's branch with TOP; ")" closes it
  bool fold_quoted_names = false;    // [Name] and "Name" in lower case
  bool nulls_first_ascending = false;  // ORDER BY items say where NULLs go, as in SQL Server
  bool unqualified_compound_order = false;  // a UNION's ORDER BY names columns without qualifier
  // No row goal in the planner: a TOP ordered first by the first table's
  // column keeps that table outermost (see DrivingJoin).
  bool top_keeps_first_table_outermost = false;
};

// Translates one text; each Run() is one text. Not thread-safe; cheap to
// make. Raises VekError kDialectErrorNumber for what has no form.
class TranslatorBase {
 public:
  TranslatorBase(std::string_view sql, const DialectForms& forms, const ColumnKinds* kinds = nullptr)
      : sql_(sql), forms_(forms), kinds_(kinds) {}
  virtual ~TranslatorBase() = default;
  TranslatorBase(const TranslatorBase&) = delete;
  TranslatorBase& operator=(const TranslatorBase&) = delete;

  // The types of the columns the statement's SELECT gives (after Run()).
  const ResultTypes& Types() const { return result_types_; }

  std::string Run() {
    tokens_ = Tokenize(sql_);
    sig_.reserve(tokens_.size());
    for (size_t i = 0; i < tokens_.size(); ++i) {
      const Token& token = tokens_[i];
      if (token.kind == TokenKind::Whitespace || token.kind == TokenKind::Comment) continue;
      Sig sig;
      sig.token = i;
      if (token.kind == TokenKind::Word) {
        const WordClass word = ClassifyWord(token.text);
        sig.keyword = word.keyword;
        sig.reserved = word.reserved;
      }
      sig_.push_back(sig);
    }
    n_ = sig_.size();
    MatchGroups();
    // Only a statement that is a SELECT gives rows whose columns it types.
    result_typed_ = !Is(0, Kw::Select);
    out_.reserve(sql_.size() + sql_.size() / 4 + 32);
    size_t k = 0;
    while (k < n_) {
      const size_t end = NextStatementEnd(k);
      if (end > k) {
        ResolveTableQualifiers(k, end);
        EmitStatement(k, end);
      }
      if (end < n_) EmitToken(end);
      k = end + 1;
    }
    EmitTrivia(n_);
    return std::move(out_);
  }

 protected:
  // ---- what each dialect writes -------------------------------------------

  // A function the dialect writes under another name, its arguments as they
  // stand, with the number of arguments it takes.
  struct RenamedFunction {
    std::string_view function;
    std::string_view replacement;
    size_t least;
    size_t most;
  };
  virtual std::span<const RenamedFunction> RenamedFunctions() const = 0;
  // A call the dialect writes in a form of its own; false leaves it to the
  // common rules (DATEDIFF, DATEADD, DATEPART, then the call as it stands).
  virtual bool EmitDialectCall(std::string_view function, size_t name,
                               const std::vector<std::pair<size_t, size_t>>& args) = 0;
  // CONVERT and CAST, once their target is read.
  virtual void EmitConversion(size_t name, const TargetType& type, std::pair<size_t, size_t> value,
                              std::optional<int64_t> style) = 0;
  // date + days, both as translated text.
  virtual std::string DatePlusDays(const std::string& date, const std::string& days) = 0;
  // Money arithmetic's result, exact to four places as SQL Server's money.
  virtual std::string MoneyOf(const std::string& value) = 0;
  // A text read as a number of the given kind; a text that is none fails.
  virtual std::string NumberFromText(const std::string& text, ValueType kind) = 0;
  // SUM over money, exact however many rows it adds; `args` as written
  // between the parentheses, DISTINCT included.
  virtual std::string MoneySum(const std::string& args) = 0;
  // AVG over whole numbers, which SQL Server truncates to a whole number.
  virtual std::string IntegerAverage(const std::string& args) = 0;
  // A text literal compared with a text column, or with another text that
  // is no column (a literal, a call): compared as the columns compare.
  virtual std::string ComparedText(const std::string& literal, bool with_column) = 0;
  // DELETE [FROM] table alias WHERE ... that uses the alias; the WHERE
  // clause starts at form.rest.
  virtual void EmitAliasedDelete(const DeleteForm& form, size_t e) = 0;
  // DELETE target FROM sources ...: the rows of form.source (its alias, or
  // the table when it has none) that the sources and WHERE clause give.
  virtual void EmitJoinedDelete(const DeleteForm& form, size_t e) = 0;
  // TRUNCATE TABLE; b is TRUNCATE, b + 2 starts the table's name.
  virtual void EmitTruncate(size_t b, size_t e) = 0;
  // The text that stands for sys.databases.
  virtual std::string_view SysDatabases() const = 0;
  // Whether a WITH clause must say RECURSIVE for a query that refers to itself.
  virtual bool MarksRecursiveQueries() const { return false; }
  // The text of a one-word name such as CURRENT_TIMESTAMP or @@IDENTITY;
  // empty for a word that stands as it is.
  virtual std::string_view WordReplacement(std::string_view word) = 0;
  // LIKE (or NOT LIKE when k is NOT) up to where its pattern ends; returns
  // the index after what it wrote. By default the words stand as they are.
  virtual size_t EmitLike(size_t k, size_t /*e*/) {
    EmitToken(k);
    return k + 1;
  }

  std::string Dialect() const { return std::string(forms_.name); }

  // ---- tokens ------------------------------------------------------------

  const Token& At(size_t k) const { return k < n_ ? tokens_[sig_[k].token] : end_token_; }
  bool Is(size_t k, Kw keyword) const { return k < n_ && sig_[k].keyword == keyword; }
  size_t Match(size_t k) const { return sig_[k].match; }
  bool IsOp(size_t k, std::string_view op) const {
    if (k >= n_) return false;
    const Token& token = At(k);
    return token.kind == TokenKind::Operator && token.text.size() == op.size() &&
           token.text[0] == op[0] && (op.size() == 1 || token.text[1] == op[1]);
  }
  bool IsGroupOpen(size_t k) const { return IsOp(k, "(") || Is(k, Kw::Case); }
  bool IsNamePart(size_t k) const {
    if (k >= n_) return false;
    const TokenKind kind = At(k).kind;
    return kind == TokenKind::Word || kind == TokenKind::BracketedName ||
           kind == TokenKind::QuotedName;
  }
  bool IsReserved(size_t k) const { return k < n_ && sig_[k].reserved; }
  // A word that may be an alias after a table or an expression.
  bool IsAliasWord(size_t k) const {
    return k < n_ &&
           (At(k).kind == TokenKind::BracketedName || At(k).kind == TokenKind::QuotedName ||
            (At(k).kind == TokenKind::Word && !sig_[k].reserved && At(k).text[0] != '@'));
  }

  // The bare text of a name part: without brackets or quotes.
  std::string_view NameText(size_t k) const {
    const Token& token = At(k);
    if (token.kind == TokenKind::BracketedName || token.kind == TokenKind::QuotedName) {
      return token.text.substr(1, token.text.size() - 2);
    }
    return token.text;
  }

  // Pairs "(" with ")" and CASE with END; END without a CASE (a trigger's
  // BEGIN ... END) is left alone.
  void MatchGroups() {
    std::vector<size_t> open;
    for (size_t k = 0; k < n_; ++k) {
      if (IsOp(k, "(") || Is(k, Kw::Case)) {
        open.push_back(k);
      } else if (IsOp(k, ")")) {
        if (open.empty())
          RaiseDialectError("Unbalanced ')' at offset " + std::to_string(At(k).offset));
        if (Is(open.back(), Kw::Case)) {
          RaiseDialectError("CASE without END before offset " + std::to_string(At(k).offset));
        }
        sig_[open.back()].match = k;
        sig_[k].match = open.back();
        open.pop_back();
      } else if (Is(k, Kw::End) && !open.empty() && Is(open.back(), Kw::Case)) {
        sig_[open.back()].match = k;
        sig_[k].match = open.back();
        open.pop_back();
      }
    }
    if (!open.empty()) {
      RaiseDialectError(
          std::string(Is(open.back(), Kw::Case) ? "CASE without END" : "Unclosed '('") +
          " at offset " + std::to_string(At(open.back()).offset));
    }
  }

  size_t Skip(size_t k) const { return IsGroupOpen(k) ? Match(k) + 1 : k + 1; }

  size_t NextStatementEnd(size_t k) const {
    while (k < n_ && !IsOp(k, ";")) k = Skip(k);
    return k;
  }

  // ---- output ------------------------------------------------------------

  // The blanks and comments before significant token k; comments become a
  // blank, since a database may run a "--" comment on past a carriage return.
  void EmitTrivia(size_t k) {
    const size_t from = k == 0 ? 0 : sig_[k - 1].token + 1;
    const size_t to = k < n_ ? sig_[k].token : tokens_.size();
    for (size_t i = from; i < to; ++i) {
      if (tokens_[i].kind == TokenKind::Comment) {
        out_.push_back(' ');
      } else {
        out_.append(tokens_[i].text);
      }
    }
  }

  void EmitText(size_t k) {
    const Token& token = At(k);
    switch (token.kind) {
      case TokenKind::String:
      case TokenKind::NationalString:
        EmitStringLiteral(token);
        return;
      case TokenKind::BracketedName:
      case TokenKind::QuotedName: {
        // "]]" in brackets and '""' in quotes stand for one character.
        const char close = token.text.back();
        out_.push_back('"');
        for (size_t i = 1; i + 1 < token.text.size(); ++i) {
          char c = token.text[i];
          if (c == close) ++i;
          if (c == '"') out_.push_back('"');
          if (forms_.fold_quoted_names && c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
          out_.push_back(c);
        }
        out_.push_back('"');
        return;
      }
      case TokenKind::Operator:
        if (token.text == "!<") {
          out_.append(">=");
        } else if (token.text == "!>") {
          out_.append("<=");
        } else {
          out_.append(token.text);
        }
        return;
      default:
        out_.append(token.text);
        return;
    }
  }

  void EmitToken(size_t k) {
    EmitTrivia(k);
    if (k == cross_join_at_) {
      out_.append(Is(k, Kw::Join) ? "CROSS JOIN" : "CROSS");
      return;
    }
    EmitText(k);
  }

  // Written again from its value, so that a date is read the same whatever
  // the database's date style.
  void EmitStringLiteral(const Token& token) {
    EmitQuoted(StringLiteralValue(token));
  }

  void EmitQuoted(const std::string& value) {
    out_.push_back('\'');
    for (char c : value) {
      if (c == '\'') out_.push_back('\'');
      out_.push_back(c);
    }
    out_.push_back('\'');
  }

  template <class Body>
  std::string Capture(Body&& body) {
    std::string saved;
    saved.swap(out_);
    body();
    saved.swap(out_);
    return saved;
  }

  // ---- statements ----------------------------------------------------------

  void EmitStatement(size_t b, size_t e) {
    const Token& first = At(b);
    if (first.kind == TokenKind::Word && IsProceduralStatement(first.text))
      RaiseDialectError(std::string(first.text) + " statements are not supported on " + Dialect());
    if (Is(b, Kw::With) && MarksRecursiveQueries() && !(At(b + 1).kind == TokenKind::Word &&
                                                         EqualsAsciiNoCase(At(b + 1).text, "RECURSIVE"))) {
      // SQL Server's common table expressions may refer to themselves
      // without saying so; some dialects need the word.
      EmitToken(b);
      out_.append(" RECURSIVE");
      return EmitSequence(b + 1, e);
    }
    if (Is(b, Kw::Delete)) return EmitDelete(b, e);
    if (Is(b, Kw::Update)) return EmitUpdate(b, e);
    if (Is(b, Kw::Insert)) return EmitInsert(b, e);
    if (Is(b, Kw::Truncate) && Is(b + 1, Kw::Table)) return EmitTruncate(b, e);
    if (Is(b, Kw::Begin) || Is(b, Kw::Commit) || Is(b, Kw::Rollback)) {
      if (Is(b + 1, Kw::Tran) || Is(b + 1, Kw::Transaction) || (b + 1 == e && !Is(b, Kw::Begin))) {
        // The transaction's name is a label only in SQL Server.
        EmitToken(b);
        out_.append(" TRANSACTION");
        return;
      }
    }
    if (Is(b, Kw::Create) && Is(b + 1, Kw::Table)) {
      for (size_t k = b; k < e; ++k) {
        if (Is(k, Kw::Identity)) {
          RaiseDialectError(
              "IDENTITY columns are not supported on " + Dialect() + " (the schema declares them)");
        }
      }
    }
    EmitSequence(b, e);
  }

  // The end of a name chain a.b.c (or a.*) starting at k, without a call's
  // parentheses; k itself when k starts no name.
  size_t NameEnd(size_t k, size_t e) const {
    if (k >= e || !IsNamePart(k)) return k;
    size_t j = k + 1;
    while (j < e && IsOp(j, ".")) {
      if (IsOp(j + 1, ".") && j + 1 < e) {
        ++j;  // db..table: the schema left out
      } else if (j + 1 < e && IsNamePart(j + 1)) {
        j += 2;
      } else if (j + 1 < e && IsOp(j + 1, "*")) {
        return j + 2;
      } else {
        break;
      }
    }
    return j;
  }

  // Indices of the name parts in [k, q); kNone for an empty part.
  NameSplit NameParts(size_t k, size_t q) const {
    NameSplit parts;
    bool expect_part = true;
    for (size_t j = k; j < q; ++j) {
      if (IsOp(j, ".")) {
        if (expect_part) parts.Add(kNone);
        expect_part = true;
      } else {
        parts.Add(j);
        expect_part = false;
      }
    }
    return parts;
  }

  // The name parts that are kept: "dbo" as database owner goes.
  NameSplit KeptNameParts(size_t k, size_t q) const {
    const NameSplit parts = NameParts(k, q);
    NameSplit kept;
    for (size_t i = 0; i < parts.size(); ++i) {
      if (parts[i] == kNone) continue;
      const bool owner_position = i + 1 < parts.size() && (i == 0 || i == 1);
      if (owner_position && EqualsAsciiNoCase(NameText(parts[i]), "dbo")) continue;
      kept.Add(parts[i]);
    }
    return kept;
  }

  std::string NameTextOf(size_t k, size_t q) {
    return Capture([&] { EmitNameText(k, q); });
  }

  void EmitName(size_t k, size_t q) {
    EmitTrivia(k);
    EmitNameText(k, q);
  }

  void EmitNameText(size_t k, size_t q) {
    if (sig_[k].qualifier_alias != kNone) {
      EmitText(sig_[k].qualifier_alias);
      out_.push_back('.');
      EmitText(q - 1);  // the column or "*"
      return;
    }
    const NameSplit parts = NameParts(k, q);
    const bool star = IsOp(q - 1, "*");
    NameSplit named;
    for (size_t part : parts) {
      if (part != kNone && !IsOp(part, "*")) named.Add(part);
    }
    if (named.size() >= 2) {
      const std::string_view schema = NameText(named[named.size() - 2]);
      if (EqualsAsciiNoCase(schema, "sys")) {
        if (!EqualsAsciiNoCase(NameText(named.back()), "databases")) {
          RaiseDialectError("The catalog view sys." + std::string(NameText(named.back())) +
                            " is not available on " + Dialect());
        }
        out_.append(SysDatabases());
        if (!Is(q, Kw::As) && !IsAliasWord(q)) out_.append(" AS databases");
        return;
      }
    }
    if (named.size() == 1 && !star) {
      const std::string_view word = NameText(named[0]);
      if (At(named[0]).kind == TokenKind::Word) {
        const std::string_view replacement = WordReplacement(word);
        if (!replacement.empty()) {
          out_.append(replacement);
          return;
        }
      }
    }
    NameSplit kept = KeptNameParts(k, star ? q - 2 : q);
    // SQLite takes table.* but not schema.table.*, and every dialect takes
    // the table's name alone as long as no other schema's table of that name
    // is joined.
    if (star && kept.size() > 1) kept.DropFront(kept.size() - 1);
    bool first = true;
    for (size_t part : kept) {
      if (!first) out_.push_back('.');
      EmitText(part);
      first = false;
    }
    if (star) out_.append(first ? "*" : ".*");
  }

  // ---- qualifiers that name an aliased table ----------------------------------

  // SQL Server 2000 let a qualifier name a table by its real name although
  // the FROM clause gives that table an alias ("SELECT TbBairro.* FROM
  // TbBairro A"); SQLite and PostgreSQL know such a table only by its alias,
  // so those qualifiers are written as the alias. Every SELECT, and an UPDATE or
  // DELETE, is a scope; a qualifier is looked up from its own scope outwards
  // and the innermost scope that knows the name decides.
  void ResolveTableQualifiers(size_t b, size_t e) {
    if (Is(b, Kw::Delete)) BindDeleteScope(b, e);
    if (Is(b, Kw::Update)) BindUpdateScope(b, e);
    ResolveRange(b, e);
    PopBindings(0);
  }

  // The tokens of [b, e), one level of parentheses; what is inside a
  // parenthesis is a range of its own, whose scopes close with it.
  void ResolveRange(size_t b, size_t e) {
    const size_t outer = binding_stack_.size();
    size_t k = b;
    while (k < e) {
      const Kw keyword = sig_[k].keyword;
      if (keyword == Kw::Select) {
        // A SELECT ends the scope of the branch before it in a compound.
        PopBindings(outer);
        BindSelectScope(k, e);
        ++k;
      } else if (keyword == Kw::Union || keyword == Kw::Except || keyword == Kw::Intersect) {
        PopBindings(outer);
        ++k;
      } else if (IsOp(k, "(")) {
        ResolveRange(k + 1, Match(k));
        k = Match(k) + 1;
      } else if (IsOp(k + 1, ".") && IsNamePart(k)) {
        const size_t q = NameEnd(k, e);
        if (q > k + 1) ResolveQualifier(k, q);
        k = std::max(q, k + 1);
      } else {
        ++k;
      }
    }
    PopBindings(outer);
  }

  void BindSelectScope(size_t select, size_t e) {
    size_t k = select + 1;
    while (k < e && !Is(k, Kw::From) && !IsCompoundOperator(k)) k = Skip(k);
    if (k >= e || !Is(k, Kw::From)) return;
    const size_t scope = binding_stack_.size();
    ForEachFromRef(k + 1, e, [&](const FromRef& ref) { BindRef(ref, scope); });
  }

  // The table sources as EmitDelete reads them.
  void BindDeleteScope(size_t b, size_t e) {
    size_t k = b + 1;
    if (Is(k, Kw::From)) ++k;
    FromRef target;
    target.name_begin = k;
    target.name_end = NameEnd(k, e);
    if (target.name_end == k) return;
    k = target.name_end;
    if (Is(k, Kw::As) && IsAliasWord(k + 1)) {
      target.alias = k + 1;
      k += 2;
    } else if (IsAliasWord(k)) {
      target.alias = k++;
    }
    const size_t scope = binding_stack_.size();
    if (!Is(k, Kw::From)) return BindRef(target, scope);
    // DELETE target FROM sources: the target names one of the sources.
    sig_[target.name_begin].table_name = true;
    ForEachFromRef(k + 1, e, [&](const FromRef& ref) { BindRef(ref, scope); });
  }

  void BindUpdateScope(size_t b, size_t e) {
    FromRef target;
    target.name_begin = b + 1;
    target.name_end = NameEnd(b + 1, e);
    if (target.name_end == target.name_begin) return;
    const size_t scope = binding_stack_.size();
    BindRef(target, scope);
    size_t k = target.name_end;
    while (k < e && !Is(k, Kw::From) && !Is(k, Kw::Where) && !Is(k, Kw::Option)) k = Skip(k);
    if (Is(k, Kw::From))
      ForEachFromRef(k + 1, e, [&](const FromRef& ref) { BindRef(ref, scope); });
  }

  // `scope` is where the scope's bindings begin in binding_stack_.
  void BindRef(const FromRef& ref, size_t scope) {
    if (ref.name_end != kNone && ref.name_end > ref.name_begin) {
      sig_[ref.name_begin].table_name = true;
      const NameSplit kept = KeptNameParts(ref.name_begin, ref.name_end);
      if (kept.size() == 1 || kept.size() == 2) {
        const BindingKind kind = ref.alias == kNone ? BindingKind::Direct : BindingKind::Aliased;
        Bind(QualifierKey{{}, NameText(kept.back())}, kind, ref.alias, scope);
        if (kept.size() == 2)
          Bind(QualifierKey{NameText(kept[0]), NameText(kept[1])}, kind, ref.alias, scope);
      }
    }
    if (ref.alias != kNone)
      Bind(QualifierKey{{}, NameText(ref.alias)}, BindingKind::Direct, kNone, scope);
  }

  void Bind(const QualifierKey& key, BindingKind kind, size_t alias, size_t scope) {
    const size_t known = FindBinding(key);
    if (known == kNone || known < scope) {
      PushBinding(Binding{key, kind, alias, kNone});
      return;
    }
    // An alias or an unaliased table of the scope is what the name means.
    Binding& binding = binding_stack_[known];
    if (kind == BindingKind::Direct || binding.kind == BindingKind::Direct) {
      binding.kind = BindingKind::Direct;
    } else if (!EqualsAsciiNoCase(NameText(binding.alias), NameText(alias))) {
      binding.kind = BindingKind::Ambiguous;
    }
  }

  // Scopes hold a few names each: they are searched in place, and only a
  // statement with very many open names gets an index, which keeps the pass
  // linear without costing the usual statement an allocation.
  static constexpr size_t kIndexedBindings = 16;

  // The innermost open binding of the name; kNone when no scope knows it.
  size_t FindBinding(const QualifierKey& key) const {
    if (indexed_) {
      const auto found = binding_index_.find(key);
      return found == binding_index_.end() ? kNone : found->second;
    }
    const QualifierKeyEqual equal;
    for (size_t i = binding_stack_.size(); i-- > 0;) {
      if (equal(binding_stack_[i].key, key)) return i;
    }
    return kNone;
  }

  void PushBinding(Binding binding) {
    if (!indexed_ && binding_stack_.size() == kIndexedBindings) {
      indexed_ = true;
      for (size_t i = 0; i < binding_stack_.size(); ++i) Index(i);
    }
    binding_stack_.push_back(binding);
    if (indexed_) Index(binding_stack_.size() - 1);
  }

  void Index(size_t i) {
    const auto [entry, added] = binding_index_.try_emplace(binding_stack_[i].key, i);
    if (!added) {
      binding_stack_[i].shadowed = entry->second;
      entry->second = i;
    }
  }

  void PopBindings(size_t size) {
    while (binding_stack_.size() > size) {
      const Binding& binding = binding_stack_.back();
      if (indexed_) {
        if (binding.shadowed == kNone) {
          binding_index_.erase(binding.key);
        } else {
          binding_index_[binding.key] = binding.shadowed;
        }
      }
      binding_stack_.pop_back();
    }
  }

  // The name chain [k, q): a column or "*" after a qualifier of one part, or
  // of two (database and table) once "dbo" is gone.
  void ResolveQualifier(size_t k, size_t q) {
    if (sig_[k].table_name || IsOp(q, "(")) return;
    QualifierKey key;
    if (q == k + 3 && IsNamePart(k + 2)) {
      // The usual "X.column"; "dbo.column" names no table once dbo is gone.
      key.table = NameText(k);
      if (EqualsAsciiNoCase(key.table, "dbo")) return;
    } else {
      const bool star = IsOp(q - 1, "*");
      const NameSplit kept = KeptNameParts(k, star ? q - 2 : q);
      const size_t qualifier_parts = star ? kept.size() : kept.size() - 1;
      if (qualifier_parts == 0 || qualifier_parts > 2) return;
      key = qualifier_parts == 1 ? QualifierKey{{}, NameText(kept[0])}
                                 : QualifierKey{NameText(kept[0]), NameText(kept[1])};
    }
    const size_t found = FindBinding(key);
    if (found != kNone && binding_stack_[found].kind == BindingKind::Aliased)
      sig_[k].qualifier_alias = binding_stack_[found].alias;
  }

  // ---- expressions -----------------------------------------------------------

  // The end of the operand starting at k (a literal, a name, a call, a
  // parenthesis, CASE ... END, or one of these after a sign); k when k
  // starts no operand.
  size_t PrimaryEnd(size_t k, size_t e) const {
    if (k >= e) return k;
    const Token& token = At(k);
    switch (token.kind) {
      case TokenKind::String:
      case TokenKind::NationalString:
      case TokenKind::Number:
        return k + 1;
      case TokenKind::BracketedName:
      case TokenKind::QuotedName:
      case TokenKind::Word: {
        if (token.kind == TokenKind::Word) {
          if (Is(k, Kw::Case)) return Match(k) + 1;
          if (Is(k, Kw::Null)) return k + 1;
          const bool call_keyword = (Is(k, Kw::Left) || Is(k, Kw::Right)) && IsOp(k + 1, "(");
          if (sig_[k].reserved && !call_keyword) return k;
        }
        const size_t q = NameEnd(k, e);
        if (q < e && IsOp(q, "(") && !IsOp(q - 1, "*")) return Match(q) + 1;
        return q;
      }
      case TokenKind::Operator:
        if (token.text == "(") return Match(k) + 1;
        if (token.text == "-" || token.text == "+" || token.text == "~") {
          const size_t q = PrimaryEnd(k + 1, e);
          return q > k + 1 ? q : k;
        }
        return k;
      default:
        return k;
    }
  }

  bool IsMultiplicative(size_t k) const { return IsOp(k, "*") || IsOp(k, "/") || IsOp(k, "%"); }
  bool IsAdditive(size_t k) const { return IsOp(k, "+") || IsOp(k, "-"); }

  // Operands joined by * / % from k.
  size_t TermEnd(size_t k, size_t e) const {
    size_t q = PrimaryEnd(k, e);
    while (q < e && IsMultiplicative(q)) {
      const size_t next = PrimaryEnd(q + 1, e);
      if (next == q + 1) break;
      q = next;
    }
    return q;
  }

  // Terms joined by + and - from k (which starts an operand).
  std::vector<Term> ParseChain(size_t k, size_t e) const {
    std::vector<Term> terms;
    terms.push_back(Term{k, TermEnd(k, e), kNone});
    while (terms.back().end < e && IsAdditive(terms.back().end)) {
      const size_t op = terms.back().end;
      const size_t next = TermEnd(op + 1, e);
      if (next == op + 1) break;
      terms.push_back(Term{op + 1, next, op});
    }
    return terms;
  }

  ValueType TypeOfRange(size_t b, size_t e) const {
    if (b >= e || PrimaryEnd(b, e) == b) return ValueType::Unknown;
    const std::vector<Term> terms = ParseChain(b, e);
    if (terms.back().end != e) return ValueType::Unknown;
    if (terms.size() == 1) return TypeOfTerm(terms[0]);
    return Decide(terms).type;
  }

  ValueType TypeOfTerm(const Term& term) const {
    size_t q = PrimaryEnd(term.begin, term.end);
    ValueType type = TypeOfPrimary(term.begin, q);
    if (q == term.end) return type;
    // * / %: text meeting a number becomes that number, as in T-SQL.
    ValueType numeric = IsNumeric(type) ? type : ValueType::Unknown;
    bool unknown = !IsNumeric(type) && type != ValueType::Text && type != ValueType::Null;
    while (q < term.end) {
      const size_t next = PrimaryEnd(q + 1, term.end);
      const ValueType operand = TypeOfPrimary(q + 1, next);
      if (IsNumeric(operand)) {
        numeric = numeric == ValueType::Unknown ? operand : Wider(numeric, operand);
      } else if (operand != ValueType::Text && operand != ValueType::Null) {
        unknown = true;
      }
      q = next;
    }
    if (unknown || numeric == ValueType::Unknown) return ValueType::Number;
    return numeric;
  }

  // The type of a query's first column, as a subquery in an expression gives it.
  ValueType TypeOfSubquery(size_t select, size_t e) const {
    size_t k = select + 1;
    if (Is(k, Kw::Distinct) || Is(k, Kw::All)) ++k;
    if (Is(k, Kw::Top)) k += IsOp(k + 1, "(") ? Match(k + 1) - k + 1 : 2;
    size_t end = k;
    while (end < e && !EndsSelectList(end) && !IsOp(end, ",")) end = Skip(end);
    return TypeOfItem(k, end);
  }

  // The type of a select-list item, its alias set aside.
  ValueType TypeOfItem(size_t b, size_t e) const {
    if (IsOp(b + 1, "=") && b + 2 < e && (IsAliasWord(b) || At(b).kind == TokenKind::String)) b += 2;
    if (b >= e || PrimaryEnd(b, e) == b) return ValueType::Unknown;
    const std::vector<Term> terms = ParseChain(b, e);
    const size_t rest = terms.back().end;
    // What may follow the expression: [AS] alias.
    if (rest < e && !(rest + 1 == e || (Is(rest, Kw::As) && rest + 2 == e))) return ValueType::Unknown;
    if (terms.size() == 1) return TypeOfTerm(terms[0]);
    return Decide(terms).type;
  }

  ValueType TypeOfPrimary(size_t p, size_t q) const {
    const Token& token = At(p);
    switch (token.kind) {
      case TokenKind::String:
      case TokenKind::NationalString:
        return ValueType::Text;
      case TokenKind::Number:
        return TypeOfNumber(token.text);
      case TokenKind::Operator:
        if (token.text == "(") {
          if (Is(p + 1, Kw::Select)) return TypeOfSubquery(p + 1, q - 1);
          return TypeOfRange(p + 1, q - 1);
        }
        // A sign keeps a number a number.
        if (const ValueType signed_type = TypeOfPrimary(p + 1, q); IsNumeric(signed_type)) return signed_type;
        return ValueType::Unknown;
      default:
        break;
    }
    if (Is(p, Kw::Null)) return ValueType::Null;
    if (Is(p, Kw::Case)) return TypeOfCase(p, q - 1);
    const size_t name_end = NameEnd(p, q);
    if (name_end < q) return TypeOfCall(p, name_end, q - 1);
    const NameSplit parts = NameParts(p, name_end);
    if (parts.empty() || parts.back() == kNone) return ValueType::Unknown;
    if (parts.size() == 1 && IsKeyword(At(parts[0]), "CURRENT_TIMESTAMP")) return ValueType::Date;
    return TypeOfColumn(NameText(parts.back()));
  }

  ValueType TypeOfColumn(std::string_view name) const {
    if (kinds_) {
      const ColumnKind kind = kinds_->Of(name);
      if (kind != ColumnKind::Unknown) return ValueTypeOf(kind);
    }
    return TypeOfColumnName(name);
  }

  // 12 is an int, 1.5 a decimal, 1e3 a float. (A whole number beyond int's
  // range stays an int here: statements of one shape share their typing,
  // whatever their numbers.)
  static ValueType TypeOfNumber(std::string_view text) {
    if (text.find_first_of("eE") != std::string_view::npos) return ValueType::Float;
    if (text.find('.') != std::string_view::npos) return ValueType::Decimal;
    return ValueType::Integer;
  }

  ValueType TypeOfCase(size_t open, size_t close) const {
    for (size_t k = open + 1; k < close; k = Skip(k)) {
      if (!Is(k, Kw::Then) && !Is(k, Kw::Else)) continue;
      size_t end = k + 1;
      while (end < close && !Is(end, Kw::When) && !Is(end, Kw::Else)) end = Skip(end);
      const ValueType type = TypeOfRange(k + 1, end);
      if (type != ValueType::Unknown && type != ValueType::Null) return type;
    }
    return ValueType::Unknown;
  }

  // Where an aggregate's argument starts, after DISTINCT or ALL.
  size_t ArgStart(const std::pair<size_t, size_t>& arg) const {
    return Is(arg.first, Kw::Distinct) || Is(arg.first, Kw::All) ? arg.first + 1 : arg.first;
  }

  std::vector<std::pair<size_t, size_t>> SplitArgs(size_t open, size_t close) const {
    std::vector<std::pair<size_t, size_t>> args;
    if (open + 1 == close) return args;
    size_t begin = open + 1;
    for (size_t k = begin; k < close; k = Skip(k)) {
      if (IsOp(k, ",")) {
        args.emplace_back(begin, k);
        begin = k + 1;
      }
    }
    args.emplace_back(begin, close);
    return args;
  }

  ValueType TypeOfCall(size_t name, size_t open, size_t close) const {
    const NameSplit parts = NameParts(name, open);
    if (parts.size() != 1) return ValueType::Unknown;
    const std::string_view function = NameText(parts[0]);
    const auto args = SplitArgs(open, close);
    if (IsOneOf(function, {"getdate", "dateadd"})) return ValueType::Date;
    if (IsOneOf(function, {"convert", "cast"})) {
      const auto type = EqualsAsciiNoCase(function, "cast")
                            ? CastTypeRange(open, close)
                            : (args.empty() ? std::pair<size_t, size_t>{0, 0} : args[0]);
      if (type.first >= type.second) return ValueType::Unknown;
      switch (ParseTargetType(type.first, type.second, "CONVERT").kind) {
        case TargetType::Kind::Text: return ValueType::Text;
        case TargetType::Kind::Date:
        case TargetType::Kind::DateTime: return ValueType::Date;
        case TargetType::Kind::Integer: return ValueType::Integer;
        case TargetType::Kind::Money: return ValueType::Money;
        case TargetType::Kind::Decimal: return ValueType::Decimal;
        case TargetType::Kind::Real: return ValueType::Float;
      }
    }
    if (IsOneOf(function, {"datediff", "datepart", "day", "month", "year", "len", "charindex",
                           "count", "count_big"})) {
      return ValueType::Integer;
    }
    // An aggregate or a rounding keeps its argument's kind (AVG of ints is an int).
    if (IsOneOf(function, {"sum", "avg", "abs", "round", "floor", "ceiling", "sign"})) {
      if (args.empty()) return ValueType::Number;
      const ValueType type = TypeOfRange(ArgStart(args[0]), args[0].second);
      return IsNumeric(type) ? type : ValueType::Number;
    }
    if (IsOneOf(function, {"substring", "upper", "lower", "ltrim", "rtrim", "left", "right",
                           "replace", "char", "nchar", "space", "replicate", "str", "reverse"})) {
      return ValueType::Text;
    }
    if (IsOneOf(function, {"isnull", "coalesce", "nullif", "max", "min"})) {
      const size_t considered = IsOneOf(function, {"isnull", "coalesce"})
                                    ? args.size()
                                    : std::min<size_t>(args.size(), 1);
      for (size_t i = 0; i < considered; ++i) {
        const ValueType type = TypeOfRange(args[i].first, args[i].second);
        if (type != ValueType::Unknown && type != ValueType::Null) return type;
      }
    }
    return ValueType::Unknown;
  }

  ChainDecision Decide(const std::vector<Term>& terms) const {
    ChainDecision decision;
    size_t texts = 0;
    size_t dates = 0;
    size_t unknowns = 0;
    bool minus = false;
    bool plus = false;
    // The kind of the numbers in the chain; Unknown while there is none.
    ValueType numeric = ValueType::Unknown;
    for (size_t i = 0; i < terms.size(); ++i) {
      if (terms[i].op != kNone) (IsOp(terms[i].op, "-") ? minus : plus) = true;
      const ValueType type = TypeOfTerm(terms[i]);
      switch (type) {
        case ValueType::Text:
          ++texts;
          break;
        case ValueType::Date:
          ++dates;
          decision.date_term = i;
          break;
        case ValueType::Unknown:
          ++unknowns;
          break;
        case ValueType::Null:
          break;
        default:
          numeric = numeric == ValueType::Unknown ? type : Wider(numeric, type);
          break;
      }
    }
    if (dates > 0 && texts > 0) {
      decision.mode = ChainMode::Error;
      decision.error = "Adding a text to a date with '+' is not supported on " + Dialect();
    } else if (dates > 1) {
      decision.mode = ChainMode::Error;
      decision.error =
          "Adding or subtracting two dates is not supported on " + Dialect() + " (use DATEDIFF)";
    } else if (dates == 1) {
      if (IsOp(terms[decision.date_term].op, "-")) {
        decision.mode = ChainMode::Error;
        decision.error = "Subtracting a date from a number is not supported on " + Dialect();
      } else {
        decision.mode = ChainMode::DateAdd;
        decision.type = ValueType::Date;
      }
    } else if (texts > 0 && numeric != ValueType::Unknown && numeric != ValueType::Number &&
               unknowns == 0) {
      // A text meeting a number is read as that number: '1' + 1 is 2.
      decision.mode = ChainMode::Numeric;
      decision.type = numeric;
    } else if (texts > 0) {
      if (minus) {
        decision.mode = ChainMode::Error;
        decision.error = "'-' between texts is not supported on " + Dialect();
      } else {
        decision.mode = ChainMode::Concat;
        decision.type = ValueType::Text;
      }
    } else if (unknowns > 0 && plus) {
      decision.mode = ChainMode::Runtime;
    } else {
      decision.mode = ChainMode::Plain;
      decision.type = unknowns > 0 || numeric == ValueType::Unknown ? ValueType::Number : numeric;
    }
    return decision;
  }

  void EmitTerm(const Term& term) {
    size_t k = term.begin;
    while (k < term.end) {
      const size_t q = PrimaryEnd(k, term.end);
      if (q > k) {
        EmitPrimary(k, q);
        k = q;
      } else {
        EmitToken(k);
        ++k;
      }
    }
  }

  // A product or quotient of money is money, rounded as SQL Server rounds it.
  void EmitMoneyTerm(const Term& term) {
    if (IsSinglePrimary(term) || TypeOfTerm(term) != ValueType::Money) return EmitTerm(term);
    EmitTrivia(term.begin);
    out_.append(MoneyOf(Capture([&] { EmitTerm(term); })));
  }

  bool IsSinglePrimary(const Term& term) const {
    return PrimaryEnd(term.begin, term.end) == term.end;
  }

  // Emits the chain of operands that starts at k; returns where it ends.
  size_t EmitChain(size_t k, size_t e) {
    // Most operands stand alone: no "+" or "-" follows them.
    const size_t first_end = TermEnd(k, e);
    if (first_end >= e || !IsAdditive(first_end) || TermEnd(first_end + 1, e) == first_end + 1) {
      EmitMoneyTerm(Term{k, first_end, kNone});
      return first_end;
    }
    const std::vector<Term> terms = ParseChain(k, e);
    const ChainDecision decision = Decide(terms);
    switch (decision.mode) {
      case ChainMode::Error:
        RaiseDialectError(decision.error);
      case ChainMode::Plain:
        if (decision.type == ValueType::Money) {
          EmitTrivia(k);
          out_.append(MoneyOf(Capture([&] {
            for (const Term& term : terms) {
              if (term.op != kNone) EmitToken(term.op);
              EmitMoneyTerm(term);
            }
          })));
          break;
        }
        for (const Term& term : terms) {
          if (term.op != kNone) EmitToken(term.op);
          EmitMoneyTerm(term);
        }
        break;
      case ChainMode::Numeric: {
        EmitTrivia(k);
        std::string sum;
        for (const Term& term : terms) {
          if (term.op != kNone) sum.append(IsOp(term.op, "-") ? " - " : " + ");
          std::string operand = Capture([&] { EmitMoneyTerm(term); });
          if (TypeOfTerm(term) == ValueType::Text) operand = NumberFromText(operand, decision.type);
          sum.append(operand);
        }
        out_.append(decision.type == ValueType::Money ? MoneyOf(sum) : sum);
        break;
      }
      case ChainMode::Concat:
        for (const Term& term : terms) {
          if (term.op != kNone) {
            EmitTrivia(term.op);
            out_.append("||");
          }
          if (IsSinglePrimary(term) && term.end == term.begin + 1 && At(term.begin).kind == TokenKind::String) {
            EmitTrivia(term.begin);
            EmitQuoted(StringValue(At(term.begin)));
          } else if (IsSinglePrimary(term)) {
            EmitTerm(term);
          } else {
            out_.push_back('(');
            EmitTerm(term);
            out_.push_back(')');
          }
        }
        break;
      case ChainMode::DateAdd: {
        EmitTrivia(k);
        const std::string date = Capture([&] { EmitTerm(terms[decision.date_term]); });
        const std::string days = Capture([&] {
          bool first = true;
          for (size_t i = 0; i < terms.size(); ++i) {
            if (i == decision.date_term) continue;
            const bool negative = IsOp(terms[i].op, "-");
            out_.append(first ? (negative ? "-(" : "(") : (negative ? " - (" : " + ("));
            EmitTerm(terms[i]);
            out_.push_back(')');
            first = false;
          }
        });
        out_.append(DatePlusDays(date, days));
        break;
      }
      case ChainMode::Runtime: {
        EmitTrivia(k);
        std::string sum = Capture([&] { EmitTerm(terms[0]); });
        for (size_t i = 1; i < terms.size(); ++i) {
          const std::string operand = Capture([&] { EmitTerm(terms[i]); });
          if (IsOp(terms[i].op, "+")) {
            sum = "vek_add(" + sum + ", " + operand + ")";
          } else {
            sum = "(" + sum + ") - (" + operand + ")";
          }
        }
        out_.append(sum);
        break;
      }
    }
    return terms.back().end;
  }

  void EmitPrimary(size_t p, size_t q) {
    const Token& token = At(p);
    if (token.kind == TokenKind::Operator) {
      EmitToken(p);
      if (token.text == "(") {
        EmitSequence(p + 1, q - 1);
        EmitToken(q - 1);
      } else {
        EmitPrimary(p + 1, q);  // a sign
      }
      return;
    }
    if (Is(p, Kw::Case)) {
      EmitToken(p);
      EmitSequence(p + 1, q - 1);
      EmitToken(q - 1);
      return;
    }
    if ((token.kind == TokenKind::String || token.kind == TokenKind::NationalString) && !IsDateLiteral(token)) {
      if (const TextPartner partner = ComparisonPartner(p); partner != TextPartner::None) {
        EmitTrivia(p);
        out_.append(ComparedText(Capture([&] { EmitText(p); }), partner == TextPartner::Column));
        return;
      }
    }
    if (token.kind == TokenKind::String || token.kind == TokenKind::NationalString ||
        token.kind == TokenKind::Number || Is(p, Kw::Null)) {
      EmitToken(p);
      return;
    }
    const size_t name_end = NameEnd(p, q);
    if (name_end < q) return EmitCall(p, name_end, q - 1);
    EmitName(p, q);
  }

  // ---- calls -------------------------------------------------------------------

  bool IsComparison(size_t k) const {
    return IsOp(k, "=") || IsOp(k, "<>") || IsOp(k, "!=") || IsOp(k, "<") || IsOp(k, ">") ||
           IsOp(k, "<=") || IsOp(k, ">=") || IsOp(k, "!<") || IsOp(k, "!>");
  }

  // What the text literal at k is compared with: a text column (which
  // brings its collation to the comparison), another text that is no column
  // (a literal, a call), or nothing the rules of texts apply to.
  enum class TextPartner { None, Column, Other };
  TextPartner ComparisonPartner(size_t k) const {
    const auto partner = [&](size_t b, size_t e) {
      const Token& other = At(b);
      if (other.kind == TokenKind::String || other.kind == TokenKind::NationalString)
        return IsDateLiteral(other) ? TextPartner::None : TextPartner::Other;
      if (TypeOfPrimary(b, e) != ValueType::Text) return TextPartner::None;
      return NameEnd(b, e) == e ? TextPartner::Column : TextPartner::Other;
    };
    if (IsComparison(k + 1)) {
      const size_t q = PrimaryEnd(k + 2, n_);
      return q == k + 2 ? TextPartner::None : partner(k + 2, q);
    }
    if (k >= 2 && IsComparison(k - 1)) {
      if (IsOp(k - 2, ")")) {
        const size_t open = Match(k - 2);
        if (open == 0 || NameEnd(open - 1, open) != open) return TextPartner::None;
        return partner(open - 1, k - 1);
      }
      // A name: the column, however qualified.
      size_t b = k - 2;
      while (b >= 2 && IsOp(b - 1, ".")) b -= 2;
      return partner(b, k - 1);
    }
    return TextPartner::None;
  }

  // A call other than CONVERT and CAST: name .. close are significant indices.
  void EmitCall(size_t name, size_t open, size_t close) {
    const std::string_view function = FunctionName(name, open);
    if (function.empty()) return EmitPlainCall(name, open, close);
    if (EmitConvertOrCast(function, name, open, close)) return;
    const auto args = SplitArgs(open, close);
    if (EqualsAsciiNoCase(function, "getdate")) {
      RequireArgs(function, args.size(), 0, 0);
      EmitTrivia(name);
      out_.append("vek_getdate()");
      return;
    }
    if (IsOneOf(function, {"sum", "avg"}) && args.size() == 1 && EmitTypedAggregate(function, name, open, close))
      return;
    // A dialect's own form of a call comes before its plain renaming.
    if (EmitDialectCall(function, name, args)) return;
    for (const RenamedFunction& renamed : RenamedFunctions()) {
      if (!EqualsAsciiNoCase(function, renamed.function)) continue;
      RequireArgs(function, args.size(), renamed.least, renamed.most);
      return EmitRenamed(name, open, close, renamed.replacement);
    }
    if (EmitDatePartCall(function, name, args)) return;
    EmitPlainCall(name, open, close);
  }

  // SUM of money is exact; AVG of money is money, AVG of whole numbers a
  // whole number. False for the sums and averages that stand as written.
  bool EmitTypedAggregate(std::string_view function, size_t name, size_t open, size_t close) {
    const ValueType type = TypeOfRange(ArgStart({open + 1, close}), close);
    const bool sum = EqualsAsciiNoCase(function, "sum");
    if (type != ValueType::Money && (sum || type != ValueType::Integer)) return false;
    EmitTrivia(name);
    const std::string args = Capture([&] { EmitSequence(open + 1, close); });
    if (type == ValueType::Integer) {
      out_.append(IntegerAverage(args));
    } else {
      out_.append(sum ? MoneySum(args) : MoneyOf("AVG(" + args + ")"));
    }
    return true;
  }

  void RequireArgs(std::string_view function, size_t count, size_t least, size_t most) const {
    if (count < least || count > most) {
      RaiseDialectError("Wrong number of arguments for " + std::string(function));
    }
  }

  // The function renamed, its arguments translated as they stand.
  void EmitRenamed(size_t name, size_t open, size_t close, std::string_view replacement) {
    EmitTrivia(name);
    out_.append(replacement);
    EmitToken(open);
    EmitSequence(open + 1, close);
    EmitToken(close);
  }

  void EmitArg(const std::pair<size_t, size_t>& arg) { EmitSequence(arg.first, arg.second); }

  // DATEDIFF, DATEADD and DATEPART become the vek_* functions that both
  // dialects define, with the part's full name; false for other functions.
  bool EmitDatePartCall(std::string_view function, size_t name,
                        const std::vector<std::pair<size_t, size_t>>& args) {
    const bool two_dates = IsOneOf(function, {"datediff", "dateadd"});
    if (!two_dates && !EqualsAsciiNoCase(function, "datepart")) return false;
    RequireArgs(function, args.size(), two_dates ? 3 : 2, two_dates ? 3 : 2);
    const DatePart part = DatePartArg(function, args[0]);
    EmitTrivia(name);
    out_.append("vek_");
    for (char c : function) out_.push_back(static_cast<char>(c | 0x20));
    out_.append("('");
    out_.append(DatePartName(part));
    out_.append("'");
    for (size_t i = 1; i < args.size(); ++i) {
      out_.push_back(',');
      EmitArg(args[i]);
    }
    out_.push_back(')');
    return true;
  }

  DatePart DatePartArg(std::string_view function, const std::pair<size_t, size_t>& arg) const {
    std::optional<DatePart> part;
    if (arg.second == arg.first + 1 && At(arg.first).kind == TokenKind::Word)
      part = ParseDatePart(At(arg.first).text);
    if (!part) {
      std::string text;
      if (arg.second > arg.first) {
        const size_t from = At(arg.first).offset;
        text = sql_.substr(from, At(arg.second - 1).offset + At(arg.second - 1).text.size() - from);
      }
      RaiseDialectError("The date part '" + text + "' of " + std::string(function) +
                        " is not supported on " + Dialect());
    }
    return *part;
  }

  // A call as it stands: its name and its arguments translated.
  void EmitPlainCall(size_t name, size_t open, size_t close) {
    EmitName(name, open);
    EmitToken(open);
    EmitSequence(open + 1, close);
    EmitToken(close);
  }

  // The function's name when the call names one function ("" for
  // schema.function and the like).
  std::string_view FunctionName(size_t name, size_t open) const {
    const NameSplit parts = NameParts(name, open);
    return parts.size() == 1 && parts[0] != kNone ? NameText(parts[0]) : std::string_view();
  }

  // CONVERT(type, value[, style]) and CAST(value AS type) handed to
  // EmitConversion; false for any other function.
  bool EmitConvertOrCast(std::string_view function, size_t name, size_t open, size_t close) {
    if (EqualsAsciiNoCase(function, "convert")) {
      const auto args = SplitArgs(open, close);
      RequireArgs(function, args.size(), 2, 3);
      std::optional<int64_t> style;
      if (args.size() == 3) {
        const auto& s = args[2];
        if (s.second != s.first + 1 || At(s.first).kind != TokenKind::Number ||
            At(s.first).text.find_first_not_of("0123456789") != std::string_view::npos ||
            At(s.first).text.size() > 9) {
          RaiseDialectError("CONVERT needs its style as a whole number on " + Dialect());
        }
        style = std::stoll(std::string(At(s.first).text));
      }
      EmitConversion(name, ParseTargetType(args[0].first, args[0].second, "CONVERT"), args[1],
                     style);
      return true;
    }
    if (EqualsAsciiNoCase(function, "cast")) {
      const auto type = CastTypeRange(open, close);
      if (type.first >= type.second) RaiseDialectError("CAST without AS and a type");
      EmitConversion(name, ParseTargetType(type.first, type.second, "CAST"),
                     {open + 1, type.first - 1}, std::nullopt);
      return true;
    }
    return false;
  }

  // The type of CAST(x AS type): the tokens after the last top-level AS.
  std::pair<size_t, size_t> CastTypeRange(size_t open, size_t close) const {
    size_t as = kNone;
    for (size_t k = open + 1; k < close; k = Skip(k)) {
      if (Is(k, Kw::As)) as = k;
    }
    if (as == kNone) return {0, 0};
    return {as + 1, close};
  }

  TargetType ParseTargetType(size_t b, size_t e, std::string_view function) const {
    if (b >= e || At(b).kind != TokenKind::Word)
      RaiseDialectError(std::string(function) + " without a target type");
    const std::string_view name = At(b).text;
    // The size in parentheses: (n), (n, s) or (max).
    std::optional<int64_t> size;
    std::optional<int64_t> scale;
    bool max = false;
    size_t k = b + 1;
    if (IsOp(k, "(")) {
      const size_t close = Match(k);
      for (size_t j = k + 1; j < close; ++j) {
        if (At(j).kind == TokenKind::Number) {
          const std::string_view digits = At(j).text;
          if (digits.size() > 9 || digits.find_first_not_of("0123456789") != std::string_view::npos)
            RaiseDialectError("The size " + std::string(digits) + " in " + std::string(function));
          const int64_t value = std::stoll(std::string(digits));
          (size ? scale : size) = value;
        } else if (Is(j, Kw::Max)) {
          max = true;
        }
      }
      k = close + 1;
    }
    if (k != e)
      RaiseDialectError("The target type of " + std::string(function) +
                        " is not supported on " + Dialect());
    TargetType type;
    if (IsOneOf(name, {"varchar", "nvarchar", "char", "nchar", "sysname"})) {
      type.kind = TargetType::Kind::Text;
      type.length = max ? -1 : size.value_or(EqualsAsciiNoCase(name, "sysname") ? 128 : 30);
      type.pad = IsOneOf(name, {"char", "nchar"}) && !max;
    } else if (IsOneOf(name, {"text", "ntext"})) {
      type.kind = TargetType::Kind::Text;
      type.length = -1;
    } else if (EqualsAsciiNoCase(name, "date")) {
      type.kind = TargetType::Kind::Date;
    } else if (IsOneOf(name, {"datetime", "smalldatetime", "datetime2"})) {
      type.kind = TargetType::Kind::DateTime;
    } else if (IsOneOf(name, {"int", "integer", "bigint", "smallint", "tinyint"})) {
      type.kind = TargetType::Kind::Integer;
    } else if (IsOneOf(name, {"numeric", "decimal", "dec"})) {
      type.kind = TargetType::Kind::Decimal;
      type.precision = size.value_or(18);
      type.scale = scale.value_or(0);
    } else if (IsOneOf(name, {"money", "smallmoney"})) {
      type.kind = TargetType::Kind::Money;
      type.precision = EqualsAsciiNoCase(name, "money") ? 19 : 10;
      type.scale = 4;
    } else if (IsOneOf(name, {"float", "real"})) {
      type.kind = TargetType::Kind::Real;
    } else {
      RaiseDialectError(std::string(function) + " to " + std::string(name) +
                        " is not supported on " + Dialect());
    }
    return type;
  }

  // ---- sequences and queries ---------------------------------------------------

  // Translates the tokens of [b, e) one by one, operands as chains.
  void EmitSequence(size_t b, size_t e) {
    size_t k = b;
    while (k < e) {
      if (Is(k, Kw::Select)) {
        EmitQuery(k, e);
        return;
      }
      if (Is(k, Kw::Like) || (Is(k, Kw::Not) && Is(k + 1, Kw::Like))) {
        k = EmitLike(k, e);
      } else if (Is(k, Kw::Order) && Is(k + 1, Kw::By) && RewritesOrderBy()) {
        k = EmitOrderBy(k, e, false);
      } else if (PrimaryEnd(k, e) > k) {
        k = EmitChain(k, e);
      } else {
        EmitToken(k);
        ++k;
      }
    }
  }

  bool IsCompoundOperator(size_t k) const {
    return Is(k, Kw::Union) || Is(k, Kw::Except) || Is(k, Kw::Intersect);
  }

  // A query from the SELECT at p to e: one SELECT or a compound of them.
  void EmitQuery(size_t p, size_t e) {
    size_t first_operator = p;
    while (first_operator < e && !IsCompoundOperator(first_operator))
      first_operator = Skip(first_operator);
    if (first_operator == e) return EmitSelect(p, e, false);
    std::vector<size_t> operators;
    for (size_t k = first_operator; k < e; k = Skip(k)) {
      if (IsCompoundOperator(k)) operators.push_back(k);
    }
    // The last branch's ORDER BY orders the whole compound.
    const size_t last_begin = operators.back() + (Is(operators.back() + 1, Kw::All) ? 2 : 1);
    size_t order = e;
    for (size_t k = last_begin; k < e; k = Skip(k)) {
      if (Is(k, Kw::Order)) {
        order = k;
        break;
      }
    }
    size_t begin = p;
    for (size_t i = 0; i <= operators.size(); ++i) {
      const size_t end = i < operators.size() ? operators[i] : order;
      if (Is(begin, Kw::Select)) {
        EmitSelect(begin, end, true);
      } else {
        EmitSequence(begin, end);
      }
      if (i < operators.size()) {
        EmitToken(operators[i]);
        begin = operators[i] + 1;
        if (Is(begin, Kw::All)) EmitToken(begin++);
      }
    }
    if (order < e && Is(order + 1, Kw::By) && RewritesOrderBy())
      order = EmitOrderBy(order, e, true);
    EmitSequence(order, e);
  }

  bool RewritesOrderBy() const {
    return forms_.nulls_first_ascending || forms_.unqualified_compound_order;
  }

  // ORDER BY at k and its items; returns where the list ends. Each item says
  // where NULLs go when the dialect puts them elsewhere than SQL Server
  // (first when ascending), and the items of a compound's ORDER BY lose
  // their qualifier where the dialect knows the compound's columns by name
  // only.
  size_t EmitOrderBy(size_t k, size_t e, bool compound) {
    EmitToken(k);
    EmitToken(k + 1);
    size_t end = k + 2;
    while (end < e && !Is(end, Kw::Option) && !Is(end, Kw::For)) end = Skip(end);
    size_t item = k + 2;
    while (item < end) {
      size_t item_end = item;
      while (item_end < end && !IsOp(item_end, ",")) item_end = Skip(item_end);
      const bool descending = Is(item_end - 1, Kw::Desc);
      const size_t expression_end =
          descending || Is(item_end - 1, Kw::Asc) ? item_end - 1 : item_end;
      const size_t name_end = NameEnd(item, expression_end);
      if (compound && forms_.unqualified_compound_order && name_end == expression_end &&
          name_end > item + 1 && !IsOp(name_end - 1, "*")) {
        EmitTrivia(item);
        EmitText(name_end - 1);
        for (size_t j = expression_end; j < item_end; ++j) EmitToken(j);
      } else {
        EmitSequence(item, item_end);
      }
      if (forms_.nulls_first_ascending && item_end > item)
        out_.append(descending ? " NULLS LAST" : " NULLS FIRST");
      if (item_end < end) EmitToken(item_end);
      item = item_end + 1;
    }
    return end;
  }

  // One SELECT from p to e. In a compound, a TOP wraps the branch.
  void EmitSelect(size_t p, size_t e, bool in_compound) {
    size_t k = p + 1;
    if (Is(k, Kw::Distinct) || Is(k, Kw::All)) ++k;
    std::string limit;
    size_t top = kNone;
    if (Is(k, Kw::Top)) {
      top = k;
      ++k;
      if (IsOp(k, "(") && Match(k) < e) {
        const size_t close = Match(k);
        limit = "(" + Capture([&] { EmitSequence(k + 1, close); }) + ")";
        k = close + 1;
      } else if (k < e && At(k).kind == TokenKind::Number &&
                 At(k).text.find_first_not_of("0123456789") == std::string_view::npos) {
        limit = std::string(At(k).text);
        ++k;
      } else {
        RaiseDialectError("TOP needs a whole number on " + Dialect());
      }
      if (Is(k, Kw::Percent)) RaiseDialectError("TOP ... PERCENT is not supported on " + Dialect());
      if (Is(k, Kw::With) && Is(k + 1, Kw::Ties))
        RaiseDialectError("TOP ... WITH TIES is not supported on " + Dialect());
    }
    if (top != kNone && in_compound) {
      EmitTrivia(p);
      out_.append(forms_.top_branch_open);
      EmitText(p);
    } else {
      EmitToken(p);
    }
    for (size_t j = p + 1; j < (top == kNone ? k : top); ++j) EmitToken(j);
    if (top != kNone) EmitTrivia(top);
    const size_t list_end = EmitSelectList(k, e);
    const size_t outer_cross_join = cross_join_at_;
    if (top != kNone && forms_.top_keeps_first_table_outermost) cross_join_at_ = DrivingJoin(list_end, e);
    EmitSequence(list_end, e);
    cross_join_at_ = outer_cross_join;
    if (top != kNone) {
      out_.append(" LIMIT ");
      out_.append(limit);
      if (in_compound) out_.push_back(')');
    }
  }

  // Where TOP n reads "FROM A [INNER] JOIN B ... ORDER BY A.x ...", the
  // INNER (or the bare JOIN) that becomes a CROSS JOIN: SQLite then reads A
  // in the order of an index on x and stops after n rows, where it would
  // otherwise join every row of A before sorting. The rows are the inner
  // join's all the same. kNone for any other SELECT.
  size_t DrivingJoin(size_t from, size_t e) const {
    if (!Is(from, Kw::From)) return kNone;
    std::optional<FromRef> first;
    ForEachFromRef(from + 1, e, [&first](const FromRef& ref) {
      if (!first) first = ref;
    });
    if (!first || first->name_end == kNone) return kNone;
    const size_t after = first->alias != kNone ? first->alias + 1 : first->name_end;
    if (after >= e) return kNone;
    const size_t join = IsKeyword(At(after), "INNER") ? after + 1 : after;
    if (!Is(join, Kw::Join)) return kNone;
    size_t order = after;
    while (order < e && !(Is(order, Kw::Order) && Is(order + 1, Kw::By))) order = Skip(order);
    const size_t key = order + 2;
    if (order >= e || key + 2 >= e || !IsOp(key + 1, ".")) return kNone;
    const std::string_view owner = NameText(key);
    const bool by_first = first->alias != kNone ? EqualsAsciiNoCase(owner, NameText(first->alias))
                                                : EqualsAsciiNoCase(owner, NameText(first->name_end - 1));
    const size_t key_end = key + 3;
    if (!by_first || !(key_end >= e || IsOp(key_end, ",") || Is(key_end, Kw::Desc) || Is(key_end, Kw::Asc)))
      return kNone;
    return after;
  }

  bool EndsSelectList(size_t k) const {
    return Is(k, Kw::From) || Is(k, Kw::Where) || Is(k, Kw::Group) || Is(k, Kw::Having) ||
           Is(k, Kw::Order) || IsCompoundOperator(k) || Is(k, Kw::Into) || Is(k, Kw::Option) ||
           Is(k, Kw::For);
  }

  // The select list from k: "alias = expression" becomes "expression AS
  // alias". Returns where the list ends.
  size_t EmitSelectList(size_t k, size_t e) {
    size_t end = k;
    while (end < e && !EndsSelectList(end)) end = Skip(end);
    if (Is(end, Kw::Into)) RaiseDialectError("SELECT ... INTO is not supported on " + Dialect());
    const bool outer = !result_typed_;
    result_typed_ = true;
    size_t item = k;
    while (item < end) {
      size_t item_end = item;
      while (item_end < end && !IsOp(item_end, ",")) item_end = Skip(item_end);
      if (outer) RecordResultType(item, item_end);
      if (EmitLiteralItem(item, item_end)) {
        if (item_end < end) EmitToken(item_end);
        item = item_end + 1;
        continue;
      }
      const bool named = IsOp(item + 1, "=") && item + 2 < item_end &&
                         (IsAliasWord(item) || At(item).kind == TokenKind::String);
      if (At(item).kind == TokenKind::Word && At(item).text[0] == '@' && IsOp(item + 1, "=")) {
        RaiseDialectError("Assigning variables in SELECT is not supported on " + Dialect());
      }
      if (named) {
        EmitSequence(item + 2, item_end);
        out_.append(" AS ");
        if (At(item).kind == TokenKind::String) {
          out_.push_back('"');
          out_.append(StringValue(At(item)));
          out_.push_back('"');
        } else {
          EmitText(item);
        }
      } else {
        EmitSequence(item, item_end);
      }
      if (item_end < end) EmitToken(item_end);
      item = item_end + 1;
    }
    return end;
  }

  void RecordResultType(size_t b, size_t e) {
    const bool star = IsOp(e - 1, "*") && (e - 1 == b || IsOp(e - 2, "."));
    if (star) {
      result_types_.has_star = true;
      result_types_.after_star.clear();
      return;
    }
    const DataTypeEnum type = DataTypeOf(TypeOfItem(b, e));
    (result_types_.has_star ? result_types_.after_star : result_types_.before_star).push_back(type);
  }

  // A text selected as it stands keeps its text, even one that reads as a
  // date: only where a literal meets a date is it one.
  bool EmitLiteralItem(size_t b, size_t e) {
    const Token& token = At(b);
    if (token.kind != TokenKind::String && token.kind != TokenKind::NationalString) return false;
    if (!(b + 1 == e || b + 2 == e || (Is(b + 1, Kw::As) && b + 3 == e))) return false;
    EmitTrivia(b);
    EmitQuoted(StringValue(token));
    for (size_t j = b + 1; j < e; ++j) EmitToken(j);
    return true;
  }

  // ---- DELETE, UPDATE, INSERT ------------------------------------------------------

  // The table sources of a FROM clause; a derived table has name_end kNone.
  std::vector<FromRef> ParseFromRefs(size_t b, size_t e) const {
    std::vector<FromRef> refs;
    ForEachFromRef(b, e, [&refs](const FromRef& ref) { refs.push_back(ref); });
    return refs;
  }

  template <class Visit>
  void ForEachFromRef(size_t b, size_t e, Visit&& visit) const {
    bool expect_table = true;
    size_t k = b;
    while (k < e) {
      if (Is(k, Kw::Where) || Is(k, Kw::Group) || Is(k, Kw::Order) || Is(k, Kw::Having) ||
          Is(k, Kw::Option) || IsCompoundOperator(k)) {
        break;
      }
      if (!expect_table) {
        if (IsOp(k, ",") || Is(k, Kw::Join)) expect_table = true;
        k = Skip(k);
        continue;
      }
      expect_table = false;
      FromRef ref;
      ref.name_begin = k;
      ref.name_end = IsOp(k, "(") ? kNone : NameEnd(k, e);
      k = Skip(k);
      if (ref.name_end != kNone) k = ref.name_end;
      if (Is(k, Kw::As) && IsAliasWord(k + 1)) {
        ref.alias = k + 1;
        k += 2;
      } else if (IsAliasWord(k)) {
        ref.alias = k++;
      }
      visit(ref);
    }
  }

  bool SameName(const NameSplit& a, const NameSplit& b) const {
    if (a.empty() || b.empty() || !EqualsAsciiNoCase(NameText(a.back()), NameText(b.back())))
      return false;
    if (a.size() >= 2 && b.size() >= 2)
      return EqualsAsciiNoCase(NameText(a[a.size() - 2]), NameText(b[b.size() - 2]));
    return true;
  }

  // Whether a qualifier in [b, e) is written as `alias`.
  bool QualifierUsed(std::string_view alias, size_t b, size_t e) const {
    for (size_t k = b; k + 1 < e; ++k) {
      if (!IsNamePart(k) || !IsOp(k + 1, ".")) continue;
      const size_t written = sig_[k].qualifier_alias != kNone ? sig_[k].qualifier_alias : k;
      if (EqualsAsciiNoCase(NameText(written), alias)) return true;
    }
    return false;
  }

  void EmitDelete(size_t b, size_t e) {
    DeleteForm form;
    form.b = b;
    size_t k = b + 1;
    if (Is(k, Kw::Top)) RaiseDialectError("DELETE TOP is not supported on " + Dialect());
    const size_t first_from = Is(k, Kw::From) ? k++ : kNone;
    form.target_begin = k;
    form.target_end = NameEnd(k, e);
    if (form.target_end == form.target_begin || IsReserved(form.target_begin))
      RaiseDialectError("DELETE without a table");
    k = form.target_end;
    if (Is(k, Kw::As) && IsAliasWord(k + 1)) {
      form.alias = k + 1;
      k += 2;
    } else if (IsAliasWord(k)) {
      form.alias = k++;
    }
    form.rest = k;

    if (!Is(k, Kw::From)) {
      // DELETE [FROM] table [alias] [WHERE ...]
      if (form.alias != kNone && QualifierUsed(NameText(form.alias), k, e))
        return EmitAliasedDelete(form, e);
      EmitToken(b);
      if (first_from != kNone) {
        EmitToken(first_from);
      } else {
        out_.append(" FROM");
      }
      EmitName(form.target_begin, form.target_end);
      EmitSequence(k, e);
      return;
    }

    // DELETE target FROM table_sources [WHERE ...]
    form.from = k;
    const std::vector<FromRef> refs = ParseFromRefs(form.from + 1, e);
    const NameSplit target = KeptNameParts(form.target_begin, form.target_end);
    const FromRef* chosen = nullptr;
    if (target.size() == 1) {
      for (const FromRef& ref : refs) {
        if (ref.name_end != kNone && ref.alias != kNone &&
            EqualsAsciiNoCase(NameText(ref.alias), NameText(target[0]))) {
          chosen = &ref;
        }
      }
    }
    if (chosen == nullptr) {
      size_t candidates = 0;
      for (const FromRef& ref : refs) {
        if (ref.name_end == kNone) continue;
        if (!SameName(KeptNameParts(ref.name_begin, ref.name_end), target)) continue;
        ++candidates;
        if (chosen == nullptr || (chosen->alias != kNone && ref.alias == kNone)) chosen = &ref;
      }
      if (candidates > 1 && chosen->alias != kNone) {
        RaiseDialectError("DELETE " + NameTextOf(form.target_begin, form.target_end) +
                          ": the table appears more than once in FROM");
      }
    }
    if (chosen == nullptr) {
      RaiseDialectError("DELETE " + NameTextOf(form.target_begin, form.target_end) +
                        ": the table is not in the FROM clause, which " + Dialect() +
                        " cannot express");
    }
    if (refs.size() == 1 && chosen->alias == kNone) {
      EmitToken(b);
      EmitToken(form.from);
      EmitName(chosen->name_begin, chosen->name_end);
      EmitSequence(chosen->name_end, e);
      return;
    }
    form.source = *chosen;
    EmitJoinedDelete(form, e);
  }

  void EmitUpdate(size_t b, size_t e) {
    size_t k = b + 1;
    if (Is(k, Kw::Top)) RaiseDialectError("UPDATE TOP is not supported on " + Dialect());
    const size_t target_begin = k;
    const size_t target_end = NameEnd(k, e);
    if (target_end == target_begin) RaiseDialectError("UPDATE without a table");
    size_t set = target_end;
    while (set < e && !Is(set, Kw::Set)) set = Skip(set);
    if (set == e) RaiseDialectError("UPDATE without SET");
    size_t set_end = set + 1;
    while (set_end < e && !Is(set_end, Kw::From) && !Is(set_end, Kw::Where) &&
           !Is(set_end, Kw::Option)) {
      set_end = Skip(set_end);
    }
    if (Is(set_end, Kw::From)) {
      const NameSplit target = KeptNameParts(target_begin, target_end);
      for (const FromRef& ref : ParseFromRefs(set_end + 1, e)) {
        if (ref.name_end == kNone) continue;
        const bool by_alias = ref.alias != kNone && target.size() == 1 &&
                              EqualsAsciiNoCase(NameText(ref.alias), NameText(target[0]));
        if (by_alias || SameName(KeptNameParts(ref.name_begin, ref.name_end), target)) {
          RaiseDialectError(
              "UPDATE ... FROM that names the updated table again is not supported on " +
              Dialect());
        }
      }
    }
    EmitToken(b);
    EmitName(target_begin, target_end);
    EmitSequence(target_end, set + 1);
    // SET t.column = ...: SQLite and PostgreSQL name the column alone.
    size_t item = set + 1;
    while (item < set_end) {
      size_t item_end = item;
      while (item_end < set_end && !IsOp(item_end, ",")) item_end = Skip(item_end);
      const size_t name_end = NameEnd(item, item_end);
      const NameSplit parts = NameParts(item, name_end);
      if (parts.size() > 1 && parts.back() != kNone && IsOp(name_end, "=")) {
        EmitTrivia(item);
        EmitText(parts.back());
        EmitSequence(name_end, item_end);
      } else {
        EmitSequence(item, item_end);
      }
      if (item_end < set_end) EmitToken(item_end);
      item = item_end + 1;
    }
    EmitSequence(set_end, e);
  }

  void EmitInsert(size_t b, size_t e) {
    size_t k = b + 1;
    if (Is(k, Kw::Top)) RaiseDialectError("INSERT TOP is not supported on " + Dialect());
    for (size_t j = k; j < e; j = Skip(j)) {
      if (Is(j, Kw::Exec) || Is(j, Kw::Execute))
        RaiseDialectError("INSERT ... EXEC is not supported on " + Dialect());
    }
    EmitToken(b);
    if (Is(k, Kw::Into)) {
      EmitToken(k++);
    } else {
      out_.append(" INTO");
    }
    const size_t target_end = NameEnd(k, e);
    if (target_end == k) RaiseDialectError("INSERT without a table");
    EmitName(k, target_end);
    EmitSequence(target_end, e);
  }

  std::string_view sql_;
  DialectForms forms_;
  const ColumnKinds* kinds_;
  size_t cross_join_at_ = kNone;  // the join token DrivingJoin chose for the SELECT being written
  // The types of the outer SELECT's columns, once its list is read.
  ResultTypes result_types_;
  bool result_typed_ = false;
  std::vector<Token> tokens_;
  std::vector<Sig> sig_;
  // The names that the open scopes know, innermost last, and once there are
  // many, the innermost binding of each name.
  std::vector<Binding> binding_stack_;
  std::unordered_map<QualifierKey, size_t, QualifierKeyHash, QualifierKeyEqual> binding_index_;
  bool indexed_ = false;
  size_t n_ = 0;
  Token end_token_{};
  std::string out_;
};

}  // namespace vek::dialect::detail
