#pragma once
// Property objects: one per record, holding its values under the names of its
// table's columns, read and written by name as the data managers do. Every
// record's property class is derived from the schema catalogue plus the extra
// properties the system names; the session object is one too.

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "vek/platform/Text.h"
#include "vek/platform/Variant.h"

namespace vek {

// The type of a property, which decides how Let converts what it is given.
enum class PropertyType { Boolean, Byte, Integer, Long, Double, Currency, Date, String, Variant };

struct PropertyDef {
  std::string name;
  PropertyType type = PropertyType::Variant;
};

// The properties of one class, shared by all its objects.
class PropertyList {
 public:
  explicit PropertyList(std::vector<PropertyDef> properties);

  // The columns of a catalogue table as properties, then the extra ones.
  // Raises error 5 when the catalogue has no such table.
  static std::shared_ptr<const PropertyList> ForTable(std::string_view table,
                                                      std::vector<PropertyDef> extra = {});

  int32_t Count() const { return static_cast<int32_t>(properties_.size()); }
  const PropertyDef& At(int32_t index) const { return properties_[static_cast<size_t>(index)]; }
  // The index of a name in any case, or -1.
  int32_t IndexOf(std::string_view name) const;

 private:
  std::vector<PropertyDef> properties_;
  CaseInsensitiveMap<int32_t> by_name_;
};

class cgp {
 public:
  virtual ~cgp() = default;

  // The value of a property by name in any case; an unknown name is error 438.
  virtual Variant Get(std::string_view name) const;
  // Sets a property by name in any case, converted to its type; an unknown
  // name is error 438 and a value the type refuses is 13 (Null included) or 6.
  virtual void Let(std::string_view name, const Variant& value);
  virtual bool HasProperty(std::string_view name) const { return properties_->IndexOf(name) >= 0; }

  // Every property back to its default: numbers 0, texts empty, False, and
  // the date 0 (30/12/1899).
  virtual void RestaurarDefault();

  const PropertyList& Properties() const { return *properties_; }

 protected:
  explicit cgp(std::shared_ptr<const PropertyList> properties);

 private:
  std::shared_ptr<const PropertyList> properties_;
  std::vector<Variant> values_;
};

// The property list of a catalogue table with the given extras, built once
// per table.
std::shared_ptr<const PropertyList> TableProperties(std::string_view table,
                                                    std::vector<PropertyDef> extra = {});

// The default value of a property type.
Variant DefaultValue(PropertyType type);
// A value converted to a property type with the classic conversions.
Variant ConvertToProperty(const Variant& value, PropertyType type);

}  // namespace vek
