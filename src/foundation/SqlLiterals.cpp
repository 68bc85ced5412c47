#include "vek/foundation/SqlLiterals.h"

#include <array>
#include <limits>

#include "vek/foundation/ErrorTrap.h"
#include "vek/foundation/cgpSistema.h"
#include "vek/platform/Format.h"
#include "vek/platform/Locale.h"
#include "vek/platform/Text.h"
#include "vek/platform/Variant.h"

namespace vek {
namespace {

// The literal routines have always named themselves this way in the chain:
// SourceLink turns it into " -> , sa3.<Routine>, ".
constexpr std::string_view kLiteralsOwner = ", sa3";
constexpr std::string_view kSeparatorOwner = "cdpModulo";
constexpr std::string_view kWordsOwner = "cgdModulo";
constexpr std::string_view kNull = "Null";

std::string IntegerToSql(int64_t value, bool zero_as_null) {
  if (value == 0 && zero_as_null) return std::string(kNull);
  return std::to_string(value);
}

std::string SessionDateFormat(const cgpSistema& session) {
  return CStr(session.Get("Ds_FormatoData"));
}

}  // namespace

std::string TinyIntToSql(int16_t value, bool zero_as_null) {
  return Trap(kLiteralsOwner, "TinyIntToSql", [&] { return IntegerToSql(value, zero_as_null); });
}

std::string SmallIntToSql(int16_t value, bool zero_as_null) {
  return Trap(kLiteralsOwner, "SmallIntToSql", [&] { return IntegerToSql(value, zero_as_null); });
}

std::string IntToSql(int32_t value, bool zero_as_null) {
  return Trap(kLiteralsOwner, "IntToSql", [&] { return IntegerToSql(value, zero_as_null); });
}

std::string MoneyToSql(Currency value, uint8_t decimals) {
  return Trap(kLiteralsOwner, "MoneyToSql", [&] {
    std::string text = Format(Variant(value), "###########0." + String(decimals, "0"));
    // The pattern groups nothing, so the locale's decimal separator is the only
    // one in the text. It becomes the comma that SubstituirVirgulaPorPonto
    // turns into a point; a machine with a decimal point would otherwise lose
    // its point there and write a hundred times the value.
    const std::string decimal = CurrentLocale().decimal;
    if (!decimal.empty() && decimal != ",") {
      const size_t at = text.rfind(decimal);
      if (at != std::string::npos) text.replace(at, decimal.size(), ",");
    }
    return SubstituirVirgulaPorPonto(text);
  });
}

std::string VarCharToSql(std::string_view text, int16_t maximum_length, bool empty_as_null) {
  return Trap(kLiteralsOwner, "VarCharToSql", [&] {
    if (text.empty() && empty_as_null) return std::string(kNull);
    return "'" + Left(text, maximum_length) + "'";
  });
}

std::string DateSemHoraToSql(Date value, const cgpSistema& session) {
  return Trap(kLiteralsOwner, "DateSemHoraToSql", [&] {
    return "'" + Format(Variant(value), SessionDateFormat(session)) + "'";
  });
}

std::string DateComHoraToSql(Date value, const cgpSistema& session) {
  return Trap(kLiteralsOwner, "DateComHoraToSql", [&] {
    return "'" + Format(Variant(value), SessionDateFormat(session) + " hh:Nn:Ss") + "'";
  });
}

std::string BitToSql(bool value) {
  return Trap(kLiteralsOwner, "BitToSql", [&] { return std::string(value ? "-1" : "0"); });
}

std::string SubstituirVirgulaPorPonto(std::string_view text) {
  return Trap(kSeparatorOwner, "SubstituirVirgulaPorPonto", [&] {
    // The count was a 16-bit integer.
    const int32_t trimmed_length = Len(Trim(text));
    if (trimmed_length > std::numeric_limits<int16_t>::max()) RaiseRuntimeError(kOverflow);
    // The walk counts the trimmed length over the text as given, so leading
    // blanks push characters off the end; callers have relied on it as it is.
    const std::u32string characters = DecodeUtf8(text);
    std::string result;
    for (int32_t i = 0; i < trimmed_length; ++i) {
      const char32_t c = characters[static_cast<size_t>(i)];
      if (c == U'.') continue;
      AppendUtf8(result, c == U',' ? U'.' : c);
    }
    return result;
  });
}

std::string DiaDaSemanaPorExtenso(int16_t value) {
  static const std::array<std::string_view, 8> kWeekdays = {
      "", "DOMINGO", "SEGUNDA", "TERÇA", "QUARTA", "QUINTA", "SEXTA", "SÁBADO"};
  return Trap(kWordsOwner, "DiaDaSemanaPorExtenso", [&] {
    // The value's text holds no blanks, so trimming it and comparing texts
    // picks the same row as its number does.
    if (value < 0 || static_cast<size_t>(value) >= kWeekdays.size()) return std::string();
    return std::string(kWeekdays[static_cast<size_t>(value)]);
  });
}

std::string NumeroPorExtenso(int16_t value) {
  static const std::array<std::string_view, 32> kNumbers = {
      "",              "UM",           "DOIS",         "TRÊS",         "QUATRO",
      "CINCO",         "SEIS",         "SETE",         "OITO",         "NOVE",
      "DEZ",           "ONZE",         "DOZE",         "TREZE",        "QUATORZE",
      "QUINZE",        "DEZESSEIS",    "DEZESSETE",    "DEZOITO",      "DEZENOVE",
      "VINTE",         "VINTE E UM",   "VINTE E DOIS", "VINTE E TRÊS", "VINTE E QUATRO",
      "VINTE E CINCO", "VINTE E SEIS", "VINTE E SETE", "VINTE E OITO", "VINTE E NOVE",
      "TRINTA",        "TRINTA E UM"};
  return Trap(kWordsOwner, "NumeroPorExtenso", [&] {
    if (value < 0 || static_cast<size_t>(value) >= kNumbers.size()) return std::string();
    return std::string(kNumbers[static_cast<size_t>(value)]);
  });
}

}  // namespace vek
