#pragma once
// What a translation knows of types: the declared kinds of the database's
// columns, which it reads, and the types of the columns its SELECT gives,
// which it hands to the driver.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "vek/db/Enums.h"
#include "vek/platform/Text.h"

namespace vek::dialect {

// How T-SQL's type rules see a value.
enum class ColumnKind { Unknown, Integer, Money, Decimal, Float, Text, Date };

// The declared kind of each column name of a database. A name that two
// tables declare with different kinds is Unknown: the naming rule of the
// schema decides it then.
class ColumnKinds {
 public:
  void Add(std::string_view column, ColumnKind kind);
  ColumnKind Of(std::string_view column) const;
  bool empty() const { return kinds_.empty(); }

 private:
  CaseInsensitiveMap<ColumnKind> kinds_;
};

// A column's kind from its declared type in SQL ("MONEY", "numeric(19,4)",
// "character varying", "timestamp without time zone", ...).
ColumnKind KindOfDeclaredType(std::string_view declared, int precision = 0, int scale = 0);

// The types of the columns of a SELECT, as SQL Server's provider reports
// them; adEmpty where the type is only known when the rows come. A "*" in
// the list stands for columns the database describes itself.
struct ResultTypes {
  std::vector<DataTypeEnum> before_star;  // every item when there is no "*"
  std::vector<DataTypeEnum> after_star;   // the items after the last "*"
  bool has_star = false;

  // The type of column i of a result of `count` columns.
  DataTypeEnum Of(size_t i, size_t count) const;
  bool empty() const { return before_star.empty() && after_star.empty(); }
  bool operator==(const ResultTypes&) const = default;
  // Whether `types` (nullptr: none) are these; texts that translate alike may
  // type their columns differently ("? / ?" of 7 / 2 and of 7 / 2.0).
  bool Same(const ResultTypes* types) const { return types ? *this == *types : empty() && !has_star; }
};

DataTypeEnum DataTypeOf(ColumnKind kind);

// A translated text with the types of its result's columns.
struct Translation {
  std::string text;
  ResultTypes types;
};

}  // namespace vek::dialect
