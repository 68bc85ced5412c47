#include "vek/platform/Controls.h"

#include "vek/platform/VekError.h"

namespace vek {

void ListComboBox::Clear() {
  items_.clear();
  new_index_ = -1;
}

void ListComboBox::AddItem(const std::string& item) {
  items_.push_back(Item{item, 0});
  new_index_ = static_cast<int32_t>(items_.size()) - 1;
}

size_t ListComboBox::Checked(int32_t index) const {
  if (index < 0 || index >= ListCount()) RaiseRuntimeError(kInvalidPropertyArrayIndex);
  return static_cast<size_t>(index);
}

int32_t ListComboBox::ItemData(int32_t index) const { return items_[Checked(index)].data; }

void ListComboBox::ItemData(int32_t index, int32_t data) { items_[Checked(index)].data = data; }

std::string ListComboBox::List(int32_t index) const { return items_[Checked(index)].text; }

void ListGrid::Clear() { lines_.clear(); }

void ListGrid::Rows(int32_t rows) {
  if (rows < 1) RaiseRuntimeError(kInvalidPropertyValue);
  lines_.resize(static_cast<size_t>(rows) - 1);
}

void ListGrid::ColWidth(int32_t col, int32_t width) {
  if (col < -1) RaiseRuntimeError(kInvalidPropertyArrayIndex);
  if (col == -1) {
    // Every column takes the width, as with the old grid.
    widths_.clear();
    all_columns_width_ = width;
    return;
  }
  widths_[col] = width;
}

int32_t ListGrid::ColWidth(int32_t col) const {
  if (col < -1) RaiseRuntimeError(kInvalidPropertyArrayIndex);
  const auto found = widths_.find(col);
  return found == widths_.end() ? all_columns_width_ : found->second;
}

void ListGrid::AddItem(const std::string& tab_separated_line) {
  lines_.push_back(tab_separated_line);
}

int32_t SilentMessageBox::Show(const std::string& prompt, int32_t buttons, const std::string& title) {
  messages_.push_back(Message{prompt, buttons, title});
  switch (buttons & 7) {
    case vbOKCancel:
    case vbYesNoCancel:
    case vbRetryCancel: return vbCancel;
    case vbYesNo: return vbNo;
    case vbAbortRetryIgnore: return vbAbort;
    default: return vbOK;
  }
}

}  // namespace vek
