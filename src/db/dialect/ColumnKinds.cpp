#include "vek/db/dialect/ColumnKinds.h"

namespace vek::dialect {

void ColumnKinds::Add(std::string_view column, ColumnKind kind) {
  const auto [at, added] = kinds_.emplace(std::string(column), kind);
  if (!added && at->second != kind) at->second = ColumnKind::Unknown;
}

ColumnKind ColumnKinds::Of(std::string_view column) const {
  const auto hit = kinds_.find(std::string(column));
  return hit == kinds_.end() ? ColumnKind::Unknown : hit->second;
}

ColumnKind KindOfDeclaredType(std::string_view declared, int precision, int scale) {
  const std::string type = UCase(std::string(declared));
  const auto has = [&](std::string_view word) { return type.find(word) != std::string::npos; };
  if (has("DATE") || has("TIME")) return ColumnKind::Date;
  if (has("MONEY")) return ColumnKind::Money;
  if (has("INT") || has("BIT")) return ColumnKind::Integer;
  if (has("CHAR") || has("TEXT") || has("CLOB")) return ColumnKind::Text;
  if (has("REAL") || has("FLOA") || has("DOUB")) return ColumnKind::Float;
  if (has("NUMERIC") || has("DECIMAL")) {
    // The servers hold money as NUMERIC(19,4).
    const bool money = has("(19,4)") || has("(19, 4)") || (precision == 19 && scale == 4);
    return money ? ColumnKind::Money : ColumnKind::Decimal;
  }
  return ColumnKind::Unknown;
}

DataTypeEnum ResultTypes::Of(size_t i, size_t count) const {
  if (!has_star) return i < before_star.size() && count == before_star.size() ? before_star[i] : adEmpty;
  if (i < before_star.size()) return before_star[i];
  const size_t from_end = count - i;
  if (from_end <= after_star.size()) return after_star[after_star.size() - from_end];
  return adEmpty;
}

DataTypeEnum DataTypeOf(ColumnKind kind) {
  switch (kind) {
    case ColumnKind::Integer: return adInteger;
    case ColumnKind::Money: return adCurrency;
    case ColumnKind::Decimal: return adNumeric;
    case ColumnKind::Float: return adDouble;
    case ColumnKind::Text: return adVarChar;
    case ColumnKind::Date: return adDBTimeStamp;
    case ColumnKind::Unknown: break;
  }
  return adEmpty;
}

}  // namespace vek::dialect
