// CDate, CCur and CDbl of a text, and Format with a pattern: the input's
// first line is the pattern, the rest the value.
#include "FuzzInput.h"
#include "vek/platform/Format.h"
#include "vek/platform/Variant.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view input = vek::fuzz::Text(data, size);
  const size_t line = input.find('\n');
  const std::string_view pattern = input.substr(0, line);
  const std::string value(line == std::string_view::npos ? std::string_view() : input.substr(line + 1));
  const vek::Variant text{value};
  vek::fuzz::Refusable([&] { (void)vek::Format(vek::Variant(vek::CDate(text)), pattern); });
  vek::fuzz::Refusable([&] { (void)vek::Format(vek::Variant(vek::CCur(text)), pattern); });
  vek::fuzz::Refusable([&] { (void)vek::Format(vek::Variant(vek::CDbl(text)), pattern); });
  return vek::fuzz::Refusable([&] { (void)vek::Format(text, pattern); });
}
