// The tokenizer, and the shape key with its literals matched back against
// the shape's template, which must give the literals the shape took out.
#include <cstdlib>

#include "FuzzInput.h"
#include "vek/db/StatementShape.h"
#include "vek/db/dialect/Tokenizer.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text = vek::fuzz::Text(data, size);
  vek::fuzz::Refusable([&] { (void)vek::dialect::Tokenize(text); });
  return vek::fuzz::Refusable([&] {
    for (const vek::Dialect dialect : {vek::Dialect::SQLite, vek::Dialect::PostgreSQL}) {
      vek::ShapeTemplate shape_template;
      const auto shape = vek::ShapeOf(text, dialect, &shape_template);
      if (!shape) continue;
      const auto matched = vek::MatchShape(text, shape_template);
      if (matched && matched->size() != shape->literals.size()) std::abort();
    }
  });
}
