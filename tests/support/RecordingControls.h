#pragma once
// Controls that remember how a loader drove them, for the list loaders' tests.

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "vek/platform/Controls.h"

namespace vek::testing {

// Remembers every call in order, so a test sees the window shown under its
// caption, advanced, and closed.
class RecordingProgress final : public ProgressWindow {
 public:
  void Caption(const std::string& caption) override { caption_ = caption; }
  std::string Caption() const override { return caption_; }
  void Label(const std::string& label) override { label_ = label; }
  std::string Label() const override { return label_; }
  void Percentage(double percentage) override {
    percentage_ = percentage;
    steps.push_back(percentage);
  }
  double Percentage() const override { return percentage_; }
  void Show() override {
    visible_ = true;
    calls.push_back("Show " + caption_);
  }
  void Close() override {
    visible_ = false;
    calls.push_back("Close");
  }
  bool Visible() const override { return visible_; }

  std::vector<std::string> calls;
  std::vector<double> steps;

 private:
  std::string caption_, label_;
  double percentage_ = 0.0;
  bool visible_ = false;
};

// A pick list's entries: text and item data, in list order.
using Entries = std::vector<std::pair<std::string, int32_t>>;

inline Entries EntriesOf(const ComboBox& combo) {
  Entries entries;
  for (int32_t i = 0; i < combo.ListCount(); ++i) entries.emplace_back(combo.List(i), combo.ItemData(i));
  return entries;
}

}  // namespace vek::testing
