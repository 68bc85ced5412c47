#pragma once
// What every list loader shares: filling a pick list or a search grid from
// the statement a collection built, the postcode-filter test and the filter
// clause. A collection class (cgdBairros, cgdUFs, ...) derives from
// ListCollection, builds its statement into ds_sql_ and hands it over with
// its caption and columns; its members run in the error trap as usual.

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
// The clause that makes a filter a postcode filter when the filter starts
// with it (compared upper-cased).
inline constexpr std::string_view kPostcodeFilterStart = "TbCEP_TbLogradouro.Cd_EP =";

class ListCollection : public DataManager {
 protected:
  // Clears `combo`, shows the session's progress window under `caption`,
  // opens ds_sql_ the session's way and adds one entry per row: the text of
  // `text_column` with the number of `code_column` as its item data, after a
  // first "--ESCOLHA-->" entry (item data 0) when there is more than one row.
  // The window advances per row and is closed at the end, on failure too.
  // Raises the database's error as it came (the caller's trap adds its link).
  void FillComboBox(ComboBox& combo, std::string_view caption, std::string_view text_column,
                    std::string_view code_column);

  // Opens ds_sql_ the session's way and adds one grid line per row: every
  // column of the select list in order, each after a tab, so the grid's
  // fixed first cell stays empty. The grid is neither cleared nor laid out;
  // `count` gets the number of rows as RecordCountText shows it.
  void FillSearchGrid(FlexGrid& grid, TextControl& count);

  // True when the first 26 characters of the filter, upper-cased, are
  // "TBCEP_TBLOGRADOURO.CD_EP =": a shorter filter, or the clause anywhere
  // but at the start, is not a postcode filter.
  static bool IsPostcodeFilter(std::string_view Ds_Condicao);

  // Adds "WHERE " + the filter as it stands, when there is one.
  static void AddFilter(SqlLines& sql, std::string_view Ds_Condicao);
};

// A value as a grid cell shows it: the runtime's CStr (numbers and money in
// the locale's decimal separator, without grouping; dates as CStr of a date),
// and an empty cell for Null.
std::string CellText(const Variant& value);

// A row count as the search grids show it: "###,###,##0" with the locale's
// grouping separator.
std::string RecordCountText(int32_t count);

}  // namespace vek
