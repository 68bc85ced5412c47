#include "vek/db/Field.h"

#include "vek/db/DbError.h"
#include "vek/db/Recordset.h"
#include "vek/platform/Text.h"

namespace vek {

const ColumnInfo& Field::Info() const { return owner_->Columns()[index_]; }

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

void Fields::Reset(Recordset& owner, const ColumnSet* columns) {
  columns_ = columns;
  fields_.clear();
  if (!columns) return;
  fields_.reserve(columns->Columns().size());
  for (size_t i = 0; i < columns->Columns().size(); ++i) fields_.emplace_back(owner, i);
}

int32_t Fields::IndexOf(std::string_view name) const { return columns_ ? columns_->IndexOf(name) : -1; }

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
