#include "vek/foundation/ListLoader.h"

#include <charconv>
#include <memory>

#include "vek/db/Enums.h"
#include "vek/db/Field.h"
#include "vek/db/Recordset.h"
#include "vek/foundation/cgpSistema.h"
#include "vek/platform/Controls.h"
#include "vek/platform/Format.h"
#include "vek/platform/Text.h"

namespace vek {
namespace {

constexpr std::string_view kCountPattern = "###,###,##0";

// CellText appended to a line: texts and whole numbers, nearly every cell of
// a search grid, go in without a string of their own.
void AppendCellText(std::string& line, const Variant& value) {
  char digits[16];
  int32_t number = 0;
  switch (value.Type()) {
    case VariantType::Null: return;
    case VariantType::String: line += *value.Get<std::string>(); return;
    case VariantType::Long: number = *value.Get<int32_t>(); break;
    case VariantType::Integer: number = *value.Get<int16_t>(); break;
    case VariantType::Byte: number = *value.Get<uint8_t>(); break;
    default: line += CellText(value); return;
  }
  line.append(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
}

// Closes what a loader opened, whether it finished or failed: a window left
// on screen after an error would hide the form that shows the error.
class LoaderResources {
 public:
  explicit LoaderResources(ProgressWindow* progress) : progress_(progress) {}
  LoaderResources(const LoaderResources&) = delete;
  LoaderResources& operator=(const LoaderResources&) = delete;
  ~LoaderResources() {
    try {
      if (rows && rows->State() == adStateOpen) rows->Close();
      if (progress_) progress_->Close();
    } catch (...) {
      // Closing must not hide the error that is on its way out.
    }
  }

  std::shared_ptr<Recordset> rows;

 private:
  ProgressWindow* progress_;
};

}  // namespace

void DataManager::FillComboBox(ComboBox& combo, const ComboList& list) {
  combo.Clear();
  cgpSistema& session = *Ob_cgpSistema();
  ProgressWindow* progress = list.progress ? &session.Progress() : nullptr;
  if (progress) {
    progress->Caption(std::string(list.caption));
    progress->Label(std::string());
    progress->Percentage(0.0);
    progress->Show();
  }
  LoaderResources resources(progress);

  resources.rows = OpenStatement();
  Recordset& rows = *resources.rows;
  const int32_t count = rows.RecordCount();
  if (count > 1 && list.choose_entry) {
    combo.AddItem(std::string(kChooseEntry));
    combo.ItemData(combo.NewIndex(), 0);
  }
  Field& text = rows.Fields().Item(list.text_column);
  Field& code = rows.Fields().Item(list.code_column);
  int32_t done = 0;
  while (!rows.Eof()) {
    combo.AddItem(CellText(text.Value()));
    combo.ItemData(combo.NewIndex(), CLng(code.Value()));
    ++done;
    if (progress) progress->Percentage(100.0 * done / count);
    rows.MoveNext();
  }
  if (count == 0 && !list.empty_message.empty()) {
    combo.AddItem(std::string(kNothingEntry));
    combo.ItemData(combo.NewIndex(), 0);
    session.Messages().Show(std::string(list.empty_message), vbInformation, std::string());
  }
}

void DataManager::FillSearchGrid(FlexGrid& grid, TextControl* count, const std::vector<GridColumn>& columns,
                                 bool leading_tab) {
  LoaderResources resources(nullptr);
  resources.rows = OpenStatement();
  Recordset& rows = *resources.rows;
  Fields& fields = rows.Fields();
  // The cells' fields and patterns are looked up once, not per row.
  std::vector<std::pair<Field*, std::string_view>> cells;
  if (columns.empty()) {
    for (int32_t i = 0; i < fields.Count(); ++i) cells.emplace_back(&fields.Item(i), std::string_view());
  } else {
    for (const GridColumn& column : columns) cells.emplace_back(&fields.Item(column.name), column.format);
  }
  std::string line;
  while (!rows.Eof()) {
    line.clear();
    for (size_t i = 0; i < cells.size(); ++i) {
      if (leading_tab || i > 0) line.push_back('\t');
      const auto& [field, format] = cells[i];
      if (format.empty()) {
        AppendCellText(line, field->Value());
      } else {
        line += Format(field->Value(), format);
      }
    }
    grid.AddItem(line);
    rows.MoveNext();
  }
  if (count) count->Text(RecordCountText(rows.RecordCount()));
}

void ListCollection::FillTableComboBox(ComboBox& combo, std::string_view table, std::string_view text_column,
                                       std::string_view code_column, std::string_view caption,
                                       std::string_view Ds_Condicao) {
  SqlLines sql;
  sql << "SELECT A.*"
      << "FROM   " + std::string(table) + " A";
  AddFilter(sql, Ds_Condicao);
  sql << "ORDER BY A." + std::string(text_column) << ";";
  ds_sql_ = sql;
  FillComboBox(combo, {.caption = caption, .text_column = text_column, .code_column = code_column});
}

bool DataManager::IsPostcodeFilter(std::string_view Ds_Condicao) {
  return UCase(Left(Ds_Condicao, Len(kPostcodeFilterStart))) == UCase(kPostcodeFilterStart);
}

void DataManager::AddFilter(SqlLines& sql, std::string_view Ds_Condicao, std::string_view keyword) {
  if (!Ds_Condicao.empty()) sql << std::string(keyword) + std::string(Ds_Condicao);
}

std::string CellText(const Variant& value) { return Format(value); }

std::string RecordCountText(int32_t count) { return Format(Variant(count), kCountPattern); }

}  // namespace vek
