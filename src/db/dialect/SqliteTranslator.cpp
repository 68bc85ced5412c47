#include "vek/db/dialect/SqliteTranslator.h"

#include "vek/db/dialect/TranslatorBase.h"

namespace vek::dialect {
namespace {

using namespace detail;

constexpr DialectForms kSqliteForms = {
    .name = "SQLite",
    // SQLite refuses LIMIT before UNION: the branch becomes a sub-select.
    .top_branch_open = "SELECT * FROM (",
    .top_keeps_first_table_outermost = true,
};

// sys.databases as SQLite can answer it.
constexpr std::string_view kSysDatabases =
    "(SELECT vek_database_name(name, file) COLLATE SQLSERVER_CI_AS AS name, seq + 1 AS "
    "database_id, "
    "NULL AS create_date FROM pragma_database_list WHERE name <> 'temp')";

class SqliteTranslator final : public TranslatorBase {
 public:
  SqliteTranslator(std::string_view sql, const ColumnKinds* kinds) : TranslatorBase(sql, kSqliteForms, kinds) {}

 private:
  std::span<const RenamedFunction> RenamedFunctions() const override {
    static constexpr RenamedFunction kRenamed[] = {
        {"isnull", "ifnull", 2, 2},          {"substring", "vek_substring", 3, 3},
        {"len", "vek_len", 1, 1},            {"charindex", "vek_charindex", 2, 3},
        {"upper", "vek_upper", 1, 1},        {"lower", "vek_lower", 1, 1},
        {"left", "vek_left", 2, 2},          {"right", "vek_right", 2, 2},
        {"replace", "vek_replace", 3, 3},    {"round", "vek_round", 2, 3},
    };
    return kRenamed;
  }

  bool EmitDialectCall(std::string_view function, size_t name,
                       const std::vector<std::pair<size_t, size_t>>& args) override {
    // From a position of 1 or more over a length of 0 or more, SQLite's own
    // substr means what SUBSTRING does on a text; being built in, it is what
    // an index on the expression (the yard's ticket codes) is made of. The
    // cast gives it a text's affinity, as SQL Server types it, which is also
    // what lets a join on another table's text column use that index.
    if (EqualsAsciiNoCase(function, "substring") && args.size() == 3 && WholeNumberAt(args[1]).value_or(0) >= 1 &&
        WholeNumberAt(args[2]).value_or(-1) >= 0 && TypeOfRange(args[0].first, args[0].second) == ValueType::Text) {
      EmitTrivia(name);
      out_.append("CAST(substr(");
      EmitArg(args[0]);
      out_.push_back(',');
      EmitArg(args[1]);
      out_.push_back(',');
      EmitArg(args[2]);
      out_.append(") AS TEXT)");
      return true;
    }
    if (EqualsAsciiNoCase(function, "scope_identity")) {
      RequireArgs(function, args.size(), 0, 0);
      EmitTrivia(name);
      out_.append("last_insert_rowid()");
      return true;
    }
    if (IsOneOf(function, {"day", "month", "year"})) {
      RequireArgs(function, args.size(), 1, 1);
      EmitTrivia(name);
      out_.append("vek_datepart('");
      for (char c : function) out_.push_back(static_cast<char>(c | 0x20));
      out_.append("',");
      EmitArg(args[0]);
      out_.push_back(')');
      return true;
    }
    return false;
  }

  void EmitConversion(size_t name, const TargetType& type, std::pair<size_t, size_t> value,
                      std::optional<int64_t> style) override {
    if (value.first >= value.second) RaiseDialectError("Conversion without a value");
    EmitTrivia(name);
    switch (type.kind) {
      case TargetType::Kind::Text: {
        const ValueType source = TypeOfRange(value.first, value.second);
        if (source == ValueType::Money) {
          if (style && *style != 0 && *style != 1 && *style != 2) {
            RaiseDialectError("CONVERT style " + std::to_string(*style) + " for money is not supported on " +
                              Dialect());
          }
          out_.append("vek_text(vek_money_text(");
          EmitArg(value);
          out_.append(", " + std::to_string(style.value_or(0)) + "), " + std::to_string(type.length) +
                      ", -1, 0, " + (type.pad ? "1" : "0") + ")");
          return;
        }
        if (style && !IsSupportedDateStyle(*style) && *style != 2) {
          RaiseDialectError("CONVERT style " + std::to_string(*style) +
                            " is not supported on " + Dialect());
        }
        const bool is_date = source == ValueType::Date;
        out_.append("vek_text(");
        EmitArg(value);
        out_.append(", " + std::to_string(type.length) + ", " + std::to_string(style.value_or(-1)) +
                    ", " + (is_date ? "1" : "0") + ", " + (type.pad ? "1" : "0") + ")");
        return;
      }
      case TargetType::Kind::Date:
      case TargetType::Kind::DateTime:
        // Dates are read day first or in ISO form; month-first styles would
        // be read wrongly.
        if (style && (*style == 1 || *style == 101)) {
          RaiseDialectError("CONVERT style " + std::to_string(*style) +
                            " (month first) is not supported on " + Dialect());
        }
        out_.append(type.kind == TargetType::Kind::Date ? "vek_date(" : "vek_datetime(");
        EmitArg(value);
        out_.push_back(')');
        return;
      case TargetType::Kind::Integer:
        if (TypeOfRange(value.first, value.second) == ValueType::Text) {
          out_.append("vek_number(");
          EmitArg(value);
          out_.append(", 'int')");
          return;
        }
        out_.append("CAST(");
        EmitArg(value);
        out_.append(" AS INTEGER)");
        return;
      case TargetType::Kind::Money:
        out_.append("vek_money(");
        EmitArg(value);
        out_.push_back(')');
        return;
      case TargetType::Kind::Decimal:
        out_.append("vek_round(CAST(");
        EmitArg(value);
        out_.append(" AS REAL), " + std::to_string(type.scale) + ")");
        return;
      case TargetType::Kind::Real:
        out_.append("CAST(");
        EmitArg(value);
        out_.append(" AS REAL)");
        return;
    }
  }

  // The value of an argument that is one whole-number literal.
  std::optional<int64_t> WholeNumberAt(std::pair<size_t, size_t> arg) const {
    if (arg.second != arg.first + 1 || At(arg.first).kind != TokenKind::Number) return std::nullopt;
    const std::string_view digits = At(arg.first).text;
    if (digits.empty() || digits.size() > 9 || digits.find_first_not_of("0123456789") != std::string_view::npos) {
      return std::nullopt;
    }
    return std::stoll(std::string(digits));
  }

  std::string DatePlusDays(const std::string& date, const std::string& days) override {
    return "vek_date_add(" + date + ", " + days + ")";
  }

  std::string MoneyOf(const std::string& value) override { return "vek_money(" + value + ")"; }

  std::string NumberFromText(const std::string& text, ValueType kind) override {
    const char* name = kind == ValueType::Integer ? "int"
                       : kind == ValueType::Money ? "money"
                       : kind == ValueType::Float ? "float"
                                                  : "decimal";
    return "vek_number(" + text + ", '" + name + "')";
  }

  std::string MoneySum(const std::string& args) override { return "vek_money_sum(" + args + ")"; }

  std::string IntegerAverage(const std::string& args) override {
    return "CAST(AVG(" + args + ") AS INTEGER)";
  }

  // A text column brings the collation, which sets trailing blanks aside.
  std::string ComparedText(const std::string& literal, bool with_column) override {
    return with_column ? literal : literal + " COLLATE SQLSERVER_CI_AS";
  }

  // SQLite takes no alias in DELETE: a statement that uses one deletes through rowid.
  void EmitAliasedDelete(const DeleteForm& form, size_t e) override {
    const std::string table = NameTextOf(form.target_begin, form.target_end);
    const std::string alias = Capture([&] { EmitText(form.alias); });
    EmitTrivia(form.b);
    out_.append("DELETE FROM " + table + " WHERE rowid IN (SELECT " + alias + ".rowid FROM " +
                table + " AS " + alias);
    EmitSequence(form.rest, e);
    out_.push_back(')');
  }

  void EmitJoinedDelete(const DeleteForm& form, size_t e) override {
    const FromRef& source = form.source;
    const std::string table = NameTextOf(source.name_begin, source.name_end);
    const std::string row =
        source.alias != kNone ? Capture([&] { EmitText(source.alias); }) : table;
    EmitTrivia(form.b);
    out_.append("DELETE FROM " + table + " WHERE rowid IN (SELECT " + row + ".rowid");
    EmitToken(form.from);
    EmitSequence(form.from + 1, e);
    out_.push_back(')');
  }

  void EmitTruncate(size_t b, size_t e) override {
    EmitTrivia(b);
    out_.append("DELETE FROM");
    EmitSequence(b + 2, e);
  }

  std::string_view SysDatabases() const override { return kSysDatabases; }

  std::string_view WordReplacement(std::string_view word) override {
    if (EqualsAsciiNoCase(word, "CURRENT_TIMESTAMP")) return "vek_getdate()";
    if (EqualsAsciiNoCase(word, "@@IDENTITY")) return "last_insert_rowid()";
    if (EqualsAsciiNoCase(word, "@@ROWCOUNT")) return "changes()";
    return {};
  }
};

}  // namespace

std::string TranslateToSqlite(std::string_view tsql) { return SqliteTranslator(tsql, nullptr).Run(); }

Translation TranslateToSqlite(std::string_view tsql, const ColumnKinds* kinds) {
  SqliteTranslator translator(tsql, kinds);
  Translation translation;
  translation.text = translator.Run();
  translation.types = translator.Types();
  return translation;
}

bool IsSqliteDateLiteral(const Token& token) { return IsDateLiteral(token); }

std::string SqliteStringLiteralValue(const Token& token) { return StringLiteralValue(token); }

}  // namespace vek::dialect
