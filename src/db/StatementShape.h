#pragma once
// The shape of a statement: its text with the literal values taken out. The
// data managers write every key as a literal, so most texts are new while
// their shapes repeat; a connection translates and prepares each shape once
// and binds the literals as parameters.
//
// Only SELECT, INSERT, UPDATE and DELETE are shaped; literals whose value
// changes what a statement means stay in the shape (TOP n, ORDER BY and
// GROUP BY positions, CONVERT's, CAST's and SUBSTRING's arguments, LIKE
// patterns and their escape), and a string that is a date is a literal of
// another kind than one that is not. For PostgreSQL, decimals stay too: bound, they would be double
// precision where the literal is NUMERIC.

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "vek/db/Enums.h"
#include "vek/platform/Variant.h"

namespace vek {

struct StatementShape {
  std::string key;                // the text with each literal replaced by its kind
  std::vector<Variant> literals;  // the values, as translated text would carry them
};

// The fixed text around a shape's literals, by which later texts of the same
// shape are recognised without tokenizing them again. Only shapes whose
// literals are all integers, texts or date texts have one.
struct ShapeTemplate {
  std::vector<std::string> pieces;  // one more than kinds: before, between and after the literals
  std::string kinds;                // per literal: 'i' integer, 's' text, 'd' date text
  bool Usable() const { return !pieces.empty(); }
};

// The shape of a statement, or nothing when it can't be shaped (another
// kind of statement, parameters of its own, no literals, a text the
// tokenizer refuses). `shape_template`, when given, receives the shape's
// template (left empty when the shape has none).
std::optional<StatementShape> ShapeOf(std::string_view text, Dialect dialect = Dialect::SQLite,
                                      ShapeTemplate* shape_template = nullptr);

// The literals of `text` when it is the template's text with other literals
// of the same kinds in their places, as ShapeOf would give them; nothing
// when it is not (ShapeOf then decides).
std::optional<std::vector<Variant>> MatchShape(std::string_view text, const ShapeTemplate& shape_template);

// A shape's translation with "?" for each literal, and for each "?" in order
// the index of the literal it takes.
struct ShapedTranslation {
  std::string text;
  std::vector<size_t> order;
};

// Translates the shape of `text` once, through its probe text (a unique
// value in place of each literal), and finds each probe value exactly once
// in the translation; nothing when the translation moved, repeated or
// dropped one, or refused the probe text.
std::optional<ShapedTranslation> TranslateShape(
    std::string_view text, Dialect dialect, const std::function<std::string(std::string_view)>& translate);

}  // namespace vek
