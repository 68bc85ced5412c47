#pragma once
// The screen controls that list loaders fill, as small interfaces, with
// in-memory versions for programs without a screen and for tests. Members
// keep the names of the old controls (ComboBox, MSFlexGrid, TextBox and the
// progress window), so a loader drives any of them the same way.

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace vek {

// A pick list: text entries, each with a number (its item data).
class ComboBox {
 public:
  virtual ~ComboBox() = default;
  virtual void Clear() = 0;
  virtual void AddItem(const std::string& item) = 0;
  // Index of the entry added last; -1 when none was added since Clear.
  virtual int32_t NewIndex() const = 0;
  virtual int32_t ItemData(int32_t index) const = 0;
  virtual void ItemData(int32_t index, int32_t data) = 0;
  virtual int32_t ListCount() const = 0;
  virtual std::string List(int32_t index) const = 0;
};

// A grid whose first row is the fixed header row.
class FlexGrid {
 public:
  virtual ~FlexGrid() = default;
  virtual void Clear() = 0;
  // Rows counts the header row too.
  virtual int32_t Rows() const = 0;
  virtual void Rows(int32_t rows) = 0;
  // Column headers separated by '|', as the old grid took them.
  virtual void FormatString(const std::string& format) = 0;
  virtual std::string FormatString() const = 0;
  // col -1 means every column.
  virtual void ColWidth(int32_t col, int32_t width) = 0;
  virtual int32_t ColWidth(int32_t col) const = 0;
  // Adds one row at the end; its cells are separated by tab characters.
  virtual void AddItem(const std::string& tab_separated_line) = 0;
};

// Any control with a Text property.
class TextControl {
 public:
  virtual ~TextControl() = default;
  virtual std::string Text() const = 0;
  virtual void Text(const std::string& text) = 0;
};

// The window that shows how far long work has gone.
class ProgressWindow {
 public:
  virtual ~ProgressWindow() = default;
  virtual void Caption(const std::string& caption) = 0;
  virtual std::string Caption() const = 0;
  virtual void Label(const std::string& label) = 0;
  virtual std::string Label() const = 0;
  // 0 to 100.
  virtual void Percentage(double percentage) = 0;
  virtual double Percentage() const = 0;
  virtual void Show() = 0;
  virtual void Close() = 0;
  virtual bool Visible() const = 0;
};

// The buttons and icon of a message, and the answers (the old MsgBox's).
enum VbMsgBoxStyle : int32_t {
  vbOKOnly = 0,
  vbOKCancel = 1,
  vbAbortRetryIgnore = 2,
  vbYesNoCancel = 3,
  vbYesNo = 4,
  vbRetryCancel = 5,
  vbCritical = 16,
  vbQuestion = 32,
  vbExclamation = 48,
  vbInformation = 64,
  vbDefaultButton2 = 256,
  vbDefaultButton3 = 512,
};
enum VbMsgBoxResult : int32_t { vbOK = 1, vbCancel = 2, vbAbort = 3, vbRetry = 4, vbIgnore = 5, vbYes = 6, vbNo = 7 };

// A message shown to the person at the screen, who answers with a button.
class MessageBox {
 public:
  virtual ~MessageBox() = default;
  // `buttons` is a VbMsgBoxStyle sum; returns a VbMsgBoxResult.
  virtual int32_t Show(const std::string& prompt, int32_t buttons, const std::string& title) = 0;
};

// ItemData and List of an index outside 0 .. ListCount() - 1 raise error 381.
class ListComboBox final : public ComboBox {
 public:
  void Clear() override;
  void AddItem(const std::string& item) override;
  int32_t NewIndex() const override { return new_index_; }
  int32_t ItemData(int32_t index) const override;
  void ItemData(int32_t index, int32_t data) override;
  int32_t ListCount() const override { return static_cast<int32_t>(items_.size()); }
  std::string List(int32_t index) const override;

 private:
  struct Item {
    std::string text;
    int32_t data = 0;
  };
  // The index as a position, or error 381.
  size_t Checked(int32_t index) const;

  std::vector<Item> items_;
  int32_t new_index_ = -1;
};

// Keeps the data rows as the lines given to AddItem, so that Rows() is always
// 1 + Lines().size(). Clear empties the data rows (Rows() back to 1) and
// keeps the format string and widths. Rows(n) below 1 raises error 380;
// growing adds empty lines, shrinking drops the last ones. ColWidth of a
// column below -1 raises error 381; an unset width reads as the width set
// for every column, or -1 (the grid's default) when none was set.
class ListGrid final : public FlexGrid {
 public:
  void Clear() override;
  int32_t Rows() const override { return static_cast<int32_t>(lines_.size()) + 1; }
  void Rows(int32_t rows) override;
  void FormatString(const std::string& format) override { format_ = format; }
  std::string FormatString() const override { return format_; }
  void ColWidth(int32_t col, int32_t width) override;
  int32_t ColWidth(int32_t col) const override;
  void AddItem(const std::string& tab_separated_line) override;

  const std::vector<std::string>& Lines() const { return lines_; }
  // Widths set one column at a time, by column.
  const std::map<int32_t, int32_t>& ColWidths() const { return widths_; }

 private:
  std::vector<std::string> lines_;
  std::string format_;
  std::map<int32_t, int32_t> widths_;
  int32_t all_columns_width_ = -1;
};

class TextBox final : public TextControl {
 public:
  TextBox() = default;
  explicit TextBox(std::string text) : text_(std::move(text)) {}
  std::string Text() const override { return text_; }
  void Text(const std::string& text) override { text_ = text; }

 private:
  std::string text_;
};

// Remembers what it was told and draws nothing.
class SilentProgress final : public ProgressWindow {
 public:
  void Caption(const std::string& caption) override { caption_ = caption; }
  std::string Caption() const override { return caption_; }
  void Label(const std::string& label) override { label_ = label; }
  std::string Label() const override { return label_; }
  void Percentage(double percentage) override { percentage_ = percentage; }
  double Percentage() const override { return percentage_; }
  void Show() override { visible_ = true; }
  void Close() override { visible_ = false; }
  bool Visible() const override { return visible_; }

 private:
  std::string caption_;
  std::string label_;
  double percentage_ = 0.0;
  bool visible_ = false;
};

// For programs without a screen: remembers every message and answers the
// safe choice among the buttons offered (Cancel, else No, else Abort, else OK).
class SilentMessageBox final : public MessageBox {
 public:
  struct Message {
    std::string prompt;
    int32_t buttons = vbOKOnly;
    std::string title;
  };
  int32_t Show(const std::string& prompt, int32_t buttons, const std::string& title) override;
  const std::vector<Message>& Messages() const { return messages_; }

 private:
  std::vector<Message> messages_;
};

}  // namespace vek
