#include "vek/db/Field.h"

#include "vek/db/DbError.h"
#include "vek/db/Recordset.h"
#include "vek/platform/Text.h"

namespace vek {

const ColumnInfo& Field::Info() const { return owner_->columns_[index_]; }

const std::string& Field::Name() const { return Info().name; }

const Variant& Field::Value() const { return owner_->CurrentRow()[index_]; }

void Field::Value(const Variant& value) { owner_->SetValue(index_, value); }

const Variant& Field::OriginalValue() const {
  if (owner_->edit_mode_ == Recordset::EditMode::Editing) return owner_->original_[index_];
  return Value();
}

DataTypeEnum Field::Type() const { return Info().type; }

int32_t Field::DefinedSize() const { return Info().defined_size; }

Property Field::Properties(std::string_view name) const {
  const ColumnInfo& info = Info();
  if (EqualsIgnoreCase(name, "ISAUTOINCREMENT")) return Property("ISAUTOINCREMENT", info.is_autoincrement);
  if (EqualsIgnoreCase(name, "KEYCOLUMN")) return Property("KEYCOLUMN", info.is_key);
  if (EqualsIgnoreCase(name, "BASETABLENAME")) return Property("BASETABLENAME", info.base_table);
  if (EqualsIgnoreCase(name, "BASECOLUMNNAME")) return Property("BASECOLUMNNAME", info.base_column);
  if (EqualsIgnoreCase(name, "BASECATALOGNAME")) return Property("BASECATALOGNAME", info.base_database);
  RaiseAdoError(adErrItemNotFound, "ADODB.Properties");
}

void Fields::Reset(Recordset& owner, const std::vector<ColumnInfo>& columns) {
  fields_.clear();
  by_name_.clear();
  fields_.reserve(columns.size());
  for (size_t i = 0; i < columns.size(); ++i) {
    fields_.emplace_back(owner, i);
    // The first of two equal names wins, as a look-up by name always did.
    by_name_.emplace(FoldCase(columns[i].name), static_cast<int32_t>(i));
  }
}

int32_t Fields::IndexOf(std::string_view name) const {
  const auto hit = by_name_.find(FoldCase(name));
  return hit == by_name_.end() ? -1 : hit->second;
}

Field& Fields::Item(int32_t index) {
  if (index < 0 || index >= Count()) RaiseAdoError(adErrItemNotFound, "ADODB.Fields");
  return fields_[static_cast<size_t>(index)];
}

Field& Fields::Item(std::string_view name) {
  const int32_t index = IndexOf(name);
  if (index < 0) RaiseAdoError(adErrItemNotFound, "ADODB.Fields");
  return fields_[static_cast<size_t>(index)];
}

}  // namespace vek
