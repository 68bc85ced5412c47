#pragma once
// The monthly movement workbook's template: sheet DADOS with the headings
// on row 1 (No_DiaMovimento, then the 22 columns the monthly exports write,
// in their order: columns A to W) and one row per day of the month (rows 2
// to 32, No_DiaMovimento 1 to 31); sheet Resumo totals DADOS with formulas.

#include <array>
#include <filesystem>
#include <string_view>

namespace vek {

inline constexpr std::array<std::string_view, 23> kMonthlyWorkbookHeadings = {
    "No_DiaMovimento",        "Dt_Movimento",       "Qt_TotalEmbarque",   "Vl_TotalEmbarque",
    "Qt_TotalSanitario",      "Vl_TotalSanitario",  "Qt_TotalEstacionamento", "Vl_TotalEstacionamento",
    "Qt_TotalMalex",          "Vl_TotalMalex",      "Vl_DepositoDia",     "Qt_EmbarqueTarifa1",
    "Vl_EmbarqueTarifa1",     "Qt_EmbarqueTarifa2", "Vl_EmbarqueTarifa2", "Qt_EmbarqueTarifa3",
    "Vl_EmbarqueTarifa3",     "Qt_EmbarqueTarifa4", "Vl_EmbarqueTarifa4", "Qt_EmbarqueTarifa5",
    "Vl_EmbarqueTarifa5",     "Qt_EmbarqueTarifa6", "Vl_EmbarqueTarifa6"};

// Writes the template to `path` (a temporary file renamed over it). Raises
// 0x80004005 naming the file when it can't be written.
void WriteMonthlyWorkbookTemplate(const std::filesystem::path& path);

}  // namespace vek
