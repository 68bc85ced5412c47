#include "vek/foundation/ListLoader.h"

#include <memory>

#include "vek/db/Enums.h"
#include "vek/db/Recordset.h"
#include "vek/platform/Controls.h"
#include "vek/platform/Format.h"
#include "vek/platform/Text.h"

namespace vek {
namespace {

constexpr std::string_view kCountPattern = "###,###,##0";

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

void ListCollection::FillComboBox(ComboBox& combo, std::string_view caption,
                                  std::string_view text_column, std::string_view code_column) {
  combo.Clear();
  ProgressWindow& progress = Ob_cgpSistema()->Progress();
  progress.Caption(std::string(caption));
  progress.Label(std::string());
  progress.Percentage(0.0);
  progress.Show();
  LoaderResources resources(&progress);

  resources.rows = OpenStatement();
  Recordset& rows = *resources.rows;
  const int32_t count = rows.RecordCount();
  if (count > 1) {
    combo.AddItem(std::string(kChooseEntry));
    combo.ItemData(combo.NewIndex(), 0);
  }
  int32_t done = 0;
  while (!rows.Eof()) {
    combo.AddItem(CellText(rows.Fields().Item(text_column).Value()));
    combo.ItemData(combo.NewIndex(), CLng(rows.Fields().Item(code_column).Value()));
    ++done;
    progress.Percentage(100.0 * done / count);
    rows.MoveNext();
  }
}

void ListCollection::FillSearchGrid(FlexGrid& grid, TextControl& count) {
  LoaderResources resources(nullptr);
  resources.rows = OpenStatement();
  Recordset& rows = *resources.rows;
  Fields& fields = rows.Fields();
  while (!rows.Eof()) {
    std::string line;
    for (int32_t i = 0; i < fields.Count(); ++i) {
      line.push_back('\t');
      line += CellText(fields.Item(i).Value());
    }
    grid.AddItem(line);
    rows.MoveNext();
  }
  count.Text(RecordCountText(rows.RecordCount()));
}

bool ListCollection::IsPostcodeFilter(std::string_view Ds_Condicao) {
  return UCase(Left(Ds_Condicao, Len(kPostcodeFilterStart))) == UCase(kPostcodeFilterStart);
}

void ListCollection::AddFilter(SqlLines& sql, std::string_view Ds_Condicao) {
  if (!Ds_Condicao.empty()) sql << "WHERE " + std::string(Ds_Condicao);
}

std::string CellText(const Variant& value) { return Format(value); }

std::string RecordCountText(int32_t count) { return Format(Variant(count), kCountPattern); }

}  // namespace vek
