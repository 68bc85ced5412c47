#pragma once
// The routines that write one value as the text of one SQL literal, as the
// data managers put values into their statements. None of them escapes
// anything: a text holding an apostrophe yields invalid SQL, so the data
// managers refuse such values before they get here.

#include <cstdint>
#include <string>
#include <string_view>

#include "vek/platform/Currency.h"
#include "vek/platform/Date.h"

namespace vek {

class cgpSistema;

// "Null" for 0 when Ic_ZeroComoNull; otherwise plain decimal digits.
std::string TinyIntToSql(int16_t value, bool zero_as_null = false);
std::string SmallIntToSql(int16_t value, bool zero_as_null = false);
std::string IntToSql(int32_t value, bool zero_as_null = false);
// Formatted "###########0." plus `decimals` zeros with the process locale,
// then through SubstituirVirgulaPorPonto; never "Null".
std::string MoneyToSql(Currency value, uint8_t decimals);
// "Null" for an empty text when empty_as_null; otherwise the first
// `maximum_length` characters between single quotes.
std::string VarCharToSql(std::string_view text, int16_t maximum_length, bool empty_as_null = false);
// The date in the session's Ds_FormatoData between single quotes.
std::string DateSemHoraToSql(Date value, const cgpSistema& session);
// The same followed by " hh:Nn:Ss".
std::string DateComHoraToSql(Date value, const cgpSistema& session);
// "-1" for true, "0" for false.
std::string BitToSql(bool value);
// Drops every "." and turns every "," into "."; walks as many characters of
// the text as its trimmed length counts (so leading blanks cost characters at
// the end, as it always did).
std::string SubstituirVirgulaPorPonto(std::string_view text);

// Weekday names (1 Sunday ... 7 Saturday) and day-of-month numbers (1 to 31)
// in words; anything else is an empty text.
std::string DiaDaSemanaPorExtenso(int16_t value);
std::string NumeroPorExtenso(int16_t value);

}  // namespace vek
