#pragma once
// Small pieces of DDL text that every dialect's schema statements share.

#include <string>
#include <string_view>
#include <vector>

#include "vek/schema/Catalogue.h"

namespace vek::schema {

inline bool IsText(ColumnType type) { return type == ColumnType::VarChar || type == ColumnType::Char; }

// "schema.name", or the name alone when there is no schema.
inline std::string Qualified(std::string_view schema, std::string_view name) {
  std::string text;
  if (!schema.empty()) {
    text += schema;
    text += '.';
  }
  text += name;
  return text;
}

inline std::string JoinNames(const std::vector<std::string_view>& names, std::string_view separator) {
  std::string text;
  for (size_t i = 0; i < names.size(); ++i) {
    if (i > 0) text += separator;
    text += names[i];
  }
  return text;
}

}  // namespace vek::schema
