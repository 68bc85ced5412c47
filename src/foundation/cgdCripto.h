#pragma once
// The reversible text form in which Vek.ini keeps the database password, and
// the copy of the connection settings into the data object of the list
// loaders. Errors leave with " -> cgdCripto.<Routine>, " on their Source.

#include <string>
#include <string_view>

#include "vek/foundation/cgp.h"

namespace vek {

// Each character code as three upper-case hexadecimal digits ("Ab" gives
// "041062"). A second text that is not empty gives "" (nothing is encoded).
// A character above U+0FFF does not fit three digits and raises 5.
std::string Cripto(std::string_view text, std::string_view second = "");
// The inverse of Cripto: each group of three digits read as "&H" + group, a
// shorter last group as it is. A group that is not hexadecimal raises 13.
// A second text that is not empty gives "".
std::string DesCripto(std::string_view text, std::string_view second = "");

// Loads the session settings (cgdSistema::Consultar) and sets on `target`,
// in this order, "Ds_StringConexaoDB", "Cursor" = 1 (keyset), "LockType" = 3
// (optimistic) and "Ds_CaminhoBD" = the session's Ds_CaminhoDB: the list
// loaders always read keyset/optimistic, whatever Vek.ini says. Raises what
// Consultar raises, and 438 when the target lacks one of the properties.
void ConfigurarVariaveisConexao(cgp& target);

// The data object of the list loaders: the four connection properties that
// ConfigurarVariaveisConexao sets.
class DataControlSettings : public cgp {
 public:
  DataControlSettings();
};

}  // namespace vek
