#pragma once
// Counting the statements in a text, so that the one choke point of the
// data-access layer can refuse text that holds more than one.

#include <cstddef>
#include <string_view>

namespace vek::dialect {

// The number of statements: top-level stretches separated by ";" that hold
// anything other than blanks and comments. Semicolons inside strings, quoted
// or bracketed names and comments do not separate; neither do those inside
// the BEGIN ... END body of a CREATE TRIGGER. Raises what Tokenizer raises.
size_t CountStatements(std::string_view sql);

// CountStatements(sql) > 1, stopping at the second statement.
bool HoldsMoreThanOneStatement(std::string_view sql);

}  // namespace vek::dialect
