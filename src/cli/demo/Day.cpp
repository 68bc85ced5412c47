#include "cli/demo/Day.h"

#include <algorithm>

namespace vek::cli::demo {

std::vector<DayStep> DaySteps() {
  // One line per part of the day, in the order the day goes.
  const std::vector<std::vector<DayStep> (*)()> parts = {
      RegistryDay,
      BusDay,
      TillOpeningDay,
      ParkingDay,
      AssessmentDay,
      TillReportsDay,
      BillingDay,
      WorkbookDay,
      AssessmentReportDay,
      MapsDay,
      BackupDay,
  };
  std::vector<DayStep> steps;
  for (auto part : parts) {
    for (DayStep& step : part()) steps.push_back(std::move(step));
  }
  return steps;
}

void TextTable::AddRow(std::vector<std::string> cells) {
  cells.resize(columns_.size());
  rows_.push_back(std::move(cells));
}

void TextTable::Print(std::ostream& out, int32_t indent) const {
  std::vector<int32_t> widths;
  for (const Column& column : columns_) widths.push_back(Len(column.title));
  for (const auto& row : rows_) {
    for (size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], Len(row[i]));
  }
  auto print_line = [&](const std::vector<std::string>& cells) {
    std::string line = Space(indent);
    for (size_t i = 0; i < cells.size(); ++i) {
      const std::string padding = Space(widths[i] - Len(cells[i]));
      if (i > 0) line += "  ";
      line += columns_[i].align == Align::Right ? padding + cells[i] : cells[i] + padding;
    }
    out << RTrim(line) << "\n";
  };
  std::vector<std::string> titles;
  std::vector<std::string> rules;
  for (size_t i = 0; i < columns_.size(); ++i) {
    titles.push_back(columns_[i].title);
    rules.push_back(String(widths[i], "-"));
  }
  print_line(titles);
  print_line(rules);
  for (const auto& row : rows_) print_line(row);
}

std::vector<std::vector<std::string>> GridRows(const ListGrid& grid) {
  std::vector<std::vector<std::string>> rows;
  for (const std::string& line : grid.Lines()) {
    std::vector<std::string> cells;
    size_t start = 0;
    while (true) {
      const size_t tab = line.find('\t', start);
      cells.push_back(line.substr(start, tab == std::string::npos ? std::string::npos : tab - start));
      if (tab == std::string::npos) break;
      start = tab + 1;
    }
    if (!cells.empty() && cells.front().empty()) cells.erase(cells.begin());
    rows.push_back(std::move(cells));
  }
  return rows;
}

void PrintComboBox(std::ostream& out, const ComboBox& combo, std::string_view text_title) {
  TextTable table({{"ItemData", TextTable::Align::Right}, {std::string(text_title)}});
  for (int32_t i = 0; i < combo.ListCount(); ++i) {
    table.AddRow({std::to_string(combo.ItemData(i)), combo.List(i)});
  }
  table.Print(out);
  out << "  (" << combo.ListCount() << (combo.ListCount() == 1 ? " entry)\n" : " entries)\n");
}

void PrintGrid(std::ostream& out, const ListGrid& grid, std::vector<TextTable::Column> columns,
               const TextControl& count) {
  TextTable table(std::move(columns));
  for (auto& row : GridRows(grid)) table.AddRow(std::move(row));
  table.Print(out);
  out << "  (" << count.Text() << (count.Text() == "1" ? " row)\n" : " rows)\n");
}

void PrintFacts(std::ostream& out, const std::vector<std::pair<std::string, std::string>>& facts) {
  int32_t width = 0;
  for (const auto& [label, value] : facts) width = std::max(width, Len(label));
  for (const auto& [label, value] : facts) {
    out << RTrim("  " + label + Space(width - Len(label)) + "  " + value) << "\n";
  }
}

std::string Money(Currency value) { return "R$ " + Format(Variant(value), "###,###,##0.00"); }

}  // namespace vek::cli::demo
