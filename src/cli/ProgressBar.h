#pragma once
// The progress bar of the tool's long commands (vek demo, vek export): the
// session's progress window drawn on stderr when stdout is a terminal.

#include <algorithm>
#include <cstdio>
#include <iostream>
#include <streambuf>
#include <string>

#include "vek/vek.h"

namespace vek::cli {

// A one-line bar on stderr, redrawn in place. It is wiped before the
// command's text goes on (BarAwareOutput), so that text never lands on the
// bar's line.
class TerminalProgressBar final : public ProgressWindow {
 public:
  void Caption(const std::string& caption) override {
    caption_ = caption;
    Draw();
  }
  std::string Caption() const override { return caption_; }
  void Label(const std::string& label) override { label_ = label; }
  std::string Label() const override { return label_; }
  void Percentage(double percentage) override {
    percentage_ = std::clamp(percentage, 0.0, 100.0);
    Draw();
  }
  double Percentage() const override { return percentage_; }
  void Show() override {
    visible_ = true;
    Draw();
  }
  void Close() override {
    Erase();
    visible_ = false;
  }
  bool Visible() const override { return visible_; }

  void Erase() {
    if (drawn_) std::fputs("\r\033[K", stderr);
    drawn_ = false;
  }

 private:
  void Draw() {
    if (!visible_) return;
    std::cout.flush();  // what the day printed so far goes out above the bar
    std::fflush(stdout);
    constexpr int32_t kWidth = 30;
    const int32_t done = static_cast<int32_t>(percentage_ * kWidth / 100.0);
    const std::string line = "\r\033[K[" + String(done, "#") + Space(kWidth - done) + "] " +
                             std::to_string(static_cast<int32_t>(percentage_)) + "%  " + caption_;
    std::fputs(line.c_str(), stderr);
    std::fflush(stderr);
    drawn_ = true;
  }

  std::string caption_;
  std::string label_;
  double percentage_ = 0.0;
  bool visible_ = false;
  bool drawn_ = false;
};

// Passes the command's text on to another stream, wiping the bar first.
class BarAwareOutput final : public std::streambuf {
 public:
  BarAwareOutput(std::streambuf* target, TerminalProgressBar& bar) : target_(target), bar_(bar) {}

 protected:
  int_type overflow(int_type c) override {
    if (traits_type::eq_int_type(c, traits_type::eof())) return traits_type::not_eof(c);
    bar_.Erase();
    return target_->sputc(traits_type::to_char_type(c));
  }
  std::streamsize xsputn(const char* text, std::streamsize count) override {
    bar_.Erase();
    return target_->sputn(text, count);
  }
  int sync() override { return target_->pubsync(); }

 private:
  std::streambuf* target_;
  TerminalProgressBar& bar_;
};

}  // namespace vek::cli
