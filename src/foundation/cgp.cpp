#include "vek/foundation/cgp.h"

#include <mutex>

#include "vek/platform/VekError.h"
#include "vek/platform/Text.h"
#include "vek/schema/Catalogue.h"

namespace vek {
namespace {

PropertyType TypeOfColumn(schema::ColumnType type) {
  switch (type) {
    case schema::ColumnType::Int: return PropertyType::Long;
    case schema::ColumnType::SmallInt: return PropertyType::Integer;
    case schema::ColumnType::TinyInt: return PropertyType::Byte;
    case schema::ColumnType::Bit: return PropertyType::Boolean;
    case schema::ColumnType::Money: return PropertyType::Currency;
    case schema::ColumnType::DateTime: return PropertyType::Date;
    case schema::ColumnType::VarChar:
    case schema::ColumnType::Char: return PropertyType::String;
    case schema::ColumnType::Float: return PropertyType::Double;
  }
  return PropertyType::Variant;
}

}  // namespace

PropertyList::PropertyList(std::vector<PropertyDef> properties) : properties_(std::move(properties)) {
  for (size_t i = 0; i < properties_.size(); ++i) {
    by_name_.emplace(properties_[i].name, static_cast<int32_t>(i));
  }
}

std::shared_ptr<const PropertyList> PropertyList::ForTable(std::string_view table,
                                                           std::vector<PropertyDef> extra) {
  const schema::TableDef* definition = schema::FindTable(table);
  if (!definition) RaiseRuntimeError(kInvalidProcedureCall);
  std::vector<PropertyDef> properties;
  properties.reserve(definition->columns.size() + extra.size());
  for (const schema::ColumnDef& column : definition->columns) {
    properties.push_back({std::string(column.name), TypeOfColumn(column.type)});
  }
  for (PropertyDef& property : extra) properties.push_back(std::move(property));
  return std::make_shared<const PropertyList>(std::move(properties));
}

int32_t PropertyList::IndexOf(std::string_view name) const {
  // Names nearly always come spelled as the property is (field names are the
  // column names): look for the exact spelling before folding case.
  for (size_t i = 0; i < properties_.size(); ++i) {
    if (properties_[i].name == name) return static_cast<int32_t>(i);
  }
  const auto hit = by_name_.find(name);
  return hit == by_name_.end() ? -1 : hit->second;
}

std::shared_ptr<const PropertyList> TableProperties(std::string_view table,
                                                    std::vector<PropertyDef> extra) {
  static std::mutex mutex;
  static std::unordered_map<std::string, std::shared_ptr<const PropertyList>> lists;
  std::lock_guard lock(mutex);
  auto& list = lists[FoldCase(table)];
  if (!list) list = PropertyList::ForTable(table, std::move(extra));
  return list;
}

Variant DefaultValue(PropertyType type) {
  switch (type) {
    case PropertyType::Boolean: return false;
    case PropertyType::Byte: return uint8_t{0};
    case PropertyType::Integer: return int16_t{0};
    case PropertyType::Long: return int32_t{0};
    case PropertyType::Double: return 0.0;
    case PropertyType::Currency: return Currency();
    case PropertyType::Date: return Date();
    case PropertyType::String: return std::string();
    case PropertyType::Variant: return Variant();
  }
  return Variant();
}

namespace {

// The variant type that a property type holds.
VariantType HeldType(PropertyType type) {
  switch (type) {
    case PropertyType::Boolean: return VariantType::Boolean;
    case PropertyType::Byte: return VariantType::Byte;
    case PropertyType::Integer: return VariantType::Integer;
    case PropertyType::Long: return VariantType::Long;
    case PropertyType::Double: return VariantType::Double;
    case PropertyType::Currency: return VariantType::Currency;
    case PropertyType::Date: return VariantType::Date;
    case PropertyType::String: return VariantType::String;
    case PropertyType::Variant: break;
  }
  return VariantType::Empty;
}

}  // namespace

Variant ConvertToProperty(const Variant& value, PropertyType type) {
  // A typed property refuses Null as a late-bound assignment did: type mismatch.
  if (value.IsNull() && type != PropertyType::Variant) RaiseRuntimeError(kTypeMismatch);
  // A value of the property's own type converts to itself (the copy of a
  // row into its record, nearly always).
  if (type == PropertyType::Variant || value.Type() == HeldType(type)) return value;
  switch (type) {
    case PropertyType::Boolean: return CBool(value);
    case PropertyType::Byte: return CByte(value);
    case PropertyType::Integer: return CInt(value);
    case PropertyType::Long: return CLng(value);
    case PropertyType::Double: return CDbl(value);
    case PropertyType::Currency: return CCur(value);
    case PropertyType::Date: return CDate(value);
    case PropertyType::String: return CStr(value);
    case PropertyType::Variant: return value;
  }
  return value;
}

cgp::cgp(std::shared_ptr<const PropertyList> properties) : properties_(std::move(properties)) {
  values_.resize(static_cast<size_t>(properties_->Count()));
  cgp::RestaurarDefault();
}

Variant cgp::Get(std::string_view name) const {
  const int32_t index = properties_->IndexOf(name);
  if (index < 0) RaiseRuntimeError(kObjectDoesNotSupportProperty);
  return values_[static_cast<size_t>(index)];
}

void cgp::Let(std::string_view name, const Variant& value) {
  const int32_t index = properties_->IndexOf(name);
  if (index < 0) RaiseRuntimeError(kObjectDoesNotSupportProperty);
  const PropertyType type = properties_->At(index).type;
  Variant& slot = values_[static_cast<size_t>(index)];
  // A value of the property's own type is copied into place (a text into the
  // text it replaces) rather than converted to itself first.
  if (type == PropertyType::Variant || value.Type() == HeldType(type)) {
    slot = value;
    return;
  }
  slot = ConvertToProperty(value, type);
}

void cgp::RestaurarDefault() {
  for (int32_t i = 0; i < properties_->Count(); ++i) {
    values_[static_cast<size_t>(i)] = DefaultValue(properties_->At(i).type);
  }
}

}  // namespace vek
