#include "vek/db/dialect/PostgresTranslator.h"

#include "vek/db/dialect/TranslatorBase.h"
#include "vek/platform/VekError.h"

namespace vek::dialect {
namespace {

using namespace detail;

constexpr DialectForms kPostgresForms = {
    .name = "PostgreSQL",
    .top_branch_open = "(",
    .fold_quoted_names = true,
    .nulls_first_ascending = true,
    .unqualified_compound_order = true,
};

// The schemas stand for SQL Server's databases on the same server; the
// database itself is listed too.
constexpr std::string_view kSysDatabases =
    "(SELECT CAST(current_database() AS varchar(128)) COLLATE vek_ci AS name, "
    "CAST(1 AS bigint) AS database_id, CAST(NULL AS timestamp(0)) AS create_date "
    "UNION ALL SELECT CAST(nspname AS varchar(128)) COLLATE vek_ci, CAST(oid AS bigint), "
    "CAST(NULL AS timestamp(0)) FROM pg_catalog.pg_namespace "
    "WHERE nspname !~ '^pg_' AND nspname NOT IN ('information_schema', 'public'))";

// The collation under which LIKE compares: PostgreSQL refuses LIKE under the
// nondeterministic collation of the text columns.
constexpr std::string_view kLikeCollation = " COLLATE vek_fold";

// Whether a LIKE pattern has a [set], which ILIKE cannot express; a "["
// without a later "]" is a plain character, as SQL Server reads it.
bool HasCharacterSet(std::string_view pattern) {
  const size_t open = pattern.find('[');
  return open != std::string_view::npos && pattern.find(']', open + 1) != std::string_view::npos;
}

std::string Quoted(std::string_view value) {
  std::string text = "'";
  for (char c : value) {
    if (c == '\'') text.push_back('\'');
    text.push_back(c);
  }
  text.push_back('\'');
  return text;
}

class PostgresTranslator final : public TranslatorBase {
 public:
  PostgresTranslator(std::string_view sql, const ColumnKinds* kinds) : TranslatorBase(sql, kPostgresForms, kinds) {}

 private:
  std::span<const RenamedFunction> RenamedFunctions() const override {
    // PostgreSQL counts substring positions before the first character as
    // SQL Server does.
    static constexpr RenamedFunction kRenamed[] = {
        {"isnull", "COALESCE", 2, 2},
        {"substring", "substring", 3, 3},
        {"charindex", "vek_charindex", 2, 3},
        {"replace", "vek_replace", 3, 3},
    };
    return kRenamed;
  }

  bool EmitDialectCall(std::string_view function, size_t name,
                       const std::vector<std::pair<size_t, size_t>>& args) override {
    if (EqualsAsciiNoCase(function, "len")) {
      RequireArgs(function, args.size(), 1, 1);
      EmitTrivia(name);
      out_.append("length(rtrim(CAST(");
      EmitArg(args[0]);
      out_.append(" AS text)))");
    } else if (EqualsAsciiNoCase(function, "round")) {
      RequireArgs(function, args.size(), 2, 3);
      EmitTrivia(name);
      out_.append("vek_round(CAST(");
      EmitArg(args[0]);
      out_.append(" AS numeric),");
      for (size_t i = 1; i < args.size(); ++i) {
        EmitArg(args[i]);
        if (i + 1 < args.size()) out_.push_back(',');
      }
      out_.push_back(')');
    } else if (EqualsAsciiNoCase(function, "scope_identity")) {
      RequireArgs(function, args.size(), 0, 0);
      EmitTrivia(name);
      out_.append("lastval()");
    } else if (IsOneOf(function, {"day", "month", "year"})) {
      RequireArgs(function, args.size(), 1, 1);
      EmitTrivia(name);
      out_.append("CAST(EXTRACT(");
      for (char c : function) out_.push_back(AsciiUpper(c));
      out_.append(" FROM CAST(");
      EmitArg(args[0]);
      out_.append(" AS timestamp)) AS integer)");
    } else {
      return false;
    }
    return true;
  }

  void EmitConversion(size_t name, const TargetType& type, std::pair<size_t, size_t> value,
                      std::optional<int64_t> style) override {
    if (value.first >= value.second) RaiseDialectError("Conversion without a value");
    EmitTrivia(name);
    switch (type.kind) {
      case TargetType::Kind::Text:
        if (TypeOfRange(value.first, value.second) == ValueType::Money) {
          if (style && *style != 0 && *style != 1 && *style != 2) {
            RaiseDialectError("CONVERT style " + std::to_string(*style) + " for money is not supported on PostgreSQL");
          }
          const std::string money = Capture([&] { EmitArg(value); });
          const int64_t money_style = style.value_or(0);
          out_.append("vek_text(");
          if (money_style == 2) {
            out_.append("CAST(CAST(" + money + " AS numeric(19,4)) AS text)");
          } else if (money_style == 1) {
            out_.append("to_char(round(CAST(" + money + " AS numeric), 2), 'FM999,999,999,999,990.00')");
          } else {
            out_.append("CAST(round(CAST(" + money + " AS numeric), 2) AS text)");
          }
          out_.append(", " + std::to_string(type.length) + ", -1, " + (type.pad ? "true" : "false") + ")");
          return;
        }
        if (style && !IsSupportedDateStyle(*style) && *style != 2) {
          RaiseDialectError("CONVERT style " + std::to_string(*style) +
                            " is not supported on PostgreSQL");
        }
        out_.append("vek_text(");
        EmitArg(value);
        out_.append(", " + std::to_string(type.length) + ", " + std::to_string(style.value_or(-1)) +
                    ", " + (type.pad ? "true" : "false") + ")");
        return;
      case TargetType::Kind::Date:
      case TargetType::Kind::DateTime:
        // Text is read day first or in ISO form; month-first styles would be
        // read wrongly.
        if (style && (*style == 1 || *style == 101)) {
          RaiseDialectError("CONVERT style " + std::to_string(*style) +
                            " (month first) is not supported on PostgreSQL");
        }
        out_.append(type.kind == TargetType::Kind::Date ? "CAST(vek_datetime(" : "vek_datetime(");
        EmitArg(value);
        out_.append(type.kind == TargetType::Kind::Date ? ") AS date)" : ")");
        return;
      case TargetType::Kind::Integer:
        // SQL Server truncates where PostgreSQL's cast rounds.
        out_.append("CAST(trunc(CAST(");
        EmitArg(value);
        out_.append(" AS numeric)) AS integer)");
        return;
      case TargetType::Kind::Money:
        out_.append("CAST(");
        EmitArg(value);
        out_.append(" AS numeric(19,4))");
        return;
      case TargetType::Kind::Decimal:
        out_.append("CAST(");
        EmitArg(value);
        out_.append(" AS numeric(" + std::to_string(type.precision) + "," +
                    std::to_string(type.scale) + "))");
        return;
      case TargetType::Kind::Real:
        out_.append("CAST(");
        EmitArg(value);
        out_.append(" AS double precision)");
        return;
    }
  }

  std::string DatePlusDays(const std::string& date, const std::string& days) override {
    return "(" + date + " + (" + days + ") * interval '1 day')";
  }

  std::string MoneyOf(const std::string& value) override { return "CAST(" + value + " AS numeric(19,4))"; }

  std::string NumberFromText(const std::string& text, ValueType kind) override {
    const char* type = kind == ValueType::Integer ? "integer"
                       : kind == ValueType::Money ? "numeric(19,4)"
                       : kind == ValueType::Float ? "double precision"
                                                  : "numeric";
    return "CAST(" + text + " AS " + type + ")";
  }

  std::string MoneySum(const std::string& args) override { return "CAST(SUM(" + args + ") AS numeric(19,4))"; }

  std::string IntegerAverage(const std::string& args) override {
    return "CAST(trunc(AVG(" + args + ")) AS integer)";
  }

  // vek_ci compares without case but counts trailing blanks, which SQL
  // Server sets aside.
  std::string ComparedText(const std::string& literal, bool with_column) override {
    return with_column ? "rtrim(" + literal + ")" : "rtrim(" + literal + ") COLLATE vek_ci";
  }

  void EmitAliasedDelete(const DeleteForm& form, size_t e) override {
    const std::string table = NameTextOf(form.target_begin, form.target_end);
    EmitTrivia(form.b);
    out_.append("DELETE FROM " + table + " AS ");
    EmitText(form.alias);
    EmitSequence(form.rest, e);
  }

  // The target's rows are the source's rows by their physical address,
  // which keeps the sources and their joins exactly as written.
  void EmitJoinedDelete(const DeleteForm& form, size_t e) override {
    const FromRef& source = form.source;
    const std::string table = NameTextOf(source.name_begin, source.name_end);
    const std::string row =
        source.alias != kNone ? Capture([&] { EmitText(source.alias); }) : table;
    size_t where = form.from + 1;
    while (where < e && !Is(where, Kw::Where) && !Is(where, Kw::Option)) where = Skip(where);
    EmitTrivia(form.b);
    out_.append("DELETE FROM " + table + " AS vek_deleted USING");
    EmitSequence(form.from + 1, where);
    out_.append(" WHERE vek_deleted.ctid = " + row + ".ctid");
    if (Is(where, Kw::Where)) {
      out_.append(" AND (");
      size_t end = where + 1;
      while (end < e && !Is(end, Kw::Option)) end = Skip(end);
      EmitSequence(where + 1, end);
      out_.push_back(')');
    }
  }

  void EmitTruncate(size_t b, size_t e) override {
    EmitToken(b);
    EmitToken(b + 1);
    EmitSequence(b + 2, e);
    out_.append(" RESTART IDENTITY");
  }

  std::string_view SysDatabases() const override { return kSysDatabases; }

  bool MarksRecursiveQueries() const override { return true; }

  std::string_view WordReplacement(std::string_view word) override {
    if (EqualsAsciiNoCase(word, "CURRENT_TIMESTAMP")) return "vek_getdate()";
    if (EqualsAsciiNoCase(word, "@@IDENTITY")) return "lastval()";
    if (EqualsAsciiNoCase(word, "@@ROWCOUNT"))
      RaiseDialectError("@@ROWCOUNT is not supported on PostgreSQL");
    return {};
  }

  size_t EmitLike(size_t k, size_t e) override {
    const bool negated = Is(k, Kw::Not);
    const size_t like = negated ? k + 1 : k;
    const size_t pattern = like + 1;
    if (PrimaryEnd(pattern, e) == pattern) return TranslatorBase::EmitLike(k, e);
    const size_t pattern_end = ParseChain(pattern, e).back().end;
    size_t escape = kNone;
    size_t end = pattern_end;
    if (Is(pattern_end, Kw::Escape) && PrimaryEnd(pattern_end + 1, e) > pattern_end + 1) {
      escape = pattern_end + 1;
      end = PrimaryEnd(escape, e);
    }
    const Token& token = At(pattern);
    const bool literal = pattern_end == pattern + 1 && (token.kind == TokenKind::String ||
                                                         token.kind == TokenKind::NationalString);
    EmitTrivia(k);
    if (literal && !HasCharacterSet(StringValue(token))) {
      const std::string value = StringValue(token);
      out_.append(negated ? "NOT ILIKE " : "ILIKE ");
      out_.append(Quoted(value));
      out_.append(kLikeCollation);
      if (escape != kNone) {
        out_.append(" ESCAPE");
        EmitSequence(escape, end);
      } else if (value.find('\\') != std::string::npos) {
        // SQL Server has no escape character unless told; PostgreSQL's is "\".
        out_.append(" ESCAPE ''");
      }
      return end;
    }
    out_.append(negated ? "!~* (vek_like_regex(" : "~* (vek_like_regex(");
    if (literal) {
      out_.append(Quoted(StringValue(token)));
    } else {
      EmitSequence(pattern, pattern_end);
    }
    if (escape != kNone) {
      out_.append(",");
      EmitSequence(escape, end);
    }
    out_.append(")");
    out_.append(kLikeCollation);
    out_.append(")");
    return end;
  }
};

}  // namespace

std::string TranslateToPostgres(std::string_view tsql) { return TranslateToPostgres(tsql, nullptr).text; }

Translation TranslateToPostgres(std::string_view tsql, const ColumnKinds* kinds) {
  try {
    PostgresTranslator translator(tsql, kinds);
    Translation translation;
    translation.text = translator.Run();
    translation.types = translator.Types();
    return translation;
  } catch (const VekError& error) {
    // The shared pieces name the SQLite translation as their source.
    throw VekError(error.Number(), "PostgresTranslator", error.Description());
  }
}

}  // namespace vek::dialect
