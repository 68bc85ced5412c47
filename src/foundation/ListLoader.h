#pragma once
// The list loaders' vocabulary: the pick list's first entry, the postcode
// filter clause, and how cells and counts are written. The loader mechanics
// live on DataManager (FillComboBox, FillSearchGrid): a collection class
// (cgdBairros, cgdUFs, ...) derives from ListCollection, builds its
// statement into ds_sql_ and hands it over with its caption and columns.

#include <cstdint>
#include <string>
#include <string_view>

#include "vek/foundation/DataManager.h"
#include "vek/platform/Variant.h"

namespace vek {

class ComboBox;
class FlexGrid;
class TextControl;

// The entry a pick list starts with when it offers more than one row.
inline constexpr std::string_view kChooseEntry = "--ESCOLHA-->";
// The only entry of a pick list that offers nothing, where the list says so.
inline constexpr std::string_view kNothingEntry = "NENHUM";
// The clause that makes a filter a postcode filter when the filter starts
// with it (compared upper-cased).
inline constexpr std::string_view kPostcodeFilterStart = "TbCEP_TbLogradouro.Cd_EP =";

// A collection class: a data manager that only fills lists. The loader
// mechanics themselves are DataManager's, since some records' own data
// managers fill lists too.
class ListCollection : public DataManager {
 protected:
  // The plain pick list of a table, in the manner of the states' list:
  // "SELECT A.*" / "FROM   <table> A" / ["WHERE " + filter] /
  // "ORDER BY A.<text_column>" / ";", filled as FillComboBox does.
  void FillTableComboBox(ComboBox& combo, std::string_view table, std::string_view text_column,
                         std::string_view code_column, std::string_view caption, std::string_view Ds_Condicao);
};

// A value as a grid cell shows it: the runtime's CStr (numbers and money in
// the locale's decimal separator, without grouping; dates as CStr of a date),
// and an empty cell for Null.
std::string CellText(const Variant& value);

// A row count as the search grids show it: "###,###,##0" with the locale's
// grouping separator.
std::string RecordCountText(int32_t count);

}  // namespace vek
