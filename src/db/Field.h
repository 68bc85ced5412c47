#pragma once
// The fields of a record set's current row, as the classic Fields collection
// and Field object: look-up by index or by name in any case (an unknown name
// is error 3265), and reading or writing where there is no current row is
// error 3021.

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "vek/db/Driver.h"
#include "vek/db/Enums.h"
#include "vek/platform/Variant.h"

namespace vek {

class Recordset;

// A provider property of a field ("ISAUTOINCREMENT", "BASETABLENAME", ...).
class Property {
 public:
  Property(std::string name, Variant value) : name_(std::move(name)), value_(std::move(value)) {}
  const std::string& Name() const { return name_; }
  const Variant& Value() const { return value_; }

 private:
  std::string name_;
  Variant value_;
};

class Field {
 public:
  Field(Recordset& owner, size_t index) : owner_(&owner), index_(index) {}

  const std::string& Name() const;
  // The value in the current row; 3021 without a current row.
  const Variant& Value() const;
  // Sets the value in the current row, converted to the field's type (Null
  // and Empty store Null); raises 3251 on a read-only record set.
  void Value(const Variant& value);
  // The value as it was read from the database.
  const Variant& OriginalValue() const;
  DataTypeEnum Type() const;
  int32_t DefinedSize() const;
  // "ISAUTOINCREMENT", "KEYCOLUMN", "BASETABLENAME", "BASECOLUMNNAME",
  // "BASECATALOGNAME"; another name is error 3265.
  Property Properties(std::string_view name) const;

 private:
  const ColumnInfo& Info() const;
  Recordset* owner_;
  size_t index_;
};

class Fields {
 public:
  int32_t Count() const { return static_cast<int32_t>(fields_.size()); }
  Field& Item(int32_t index);
  Field& Item(std::string_view name);
  Field& operator[](int32_t index) { return Item(index); }
  Field& operator[](std::string_view name) { return Item(name); }
  // The index of a name, or -1.
  int32_t IndexOf(std::string_view name) const;

  auto begin() { return fields_.begin(); }
  auto end() { return fields_.end(); }

 private:
  friend class Recordset;
  void Reset(Recordset& owner, const ColumnSet* columns);

  std::vector<Field> fields_;
  const ColumnSet* columns_ = nullptr;
};

}  // namespace vek
