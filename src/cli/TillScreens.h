#pragma once
// What a till took, as text, shared by vek report till and the demo's day:
// the six till reports of the operating company and the till-closing feed.

#include <cstdint>
#include <memory>
#include <ostream>

#include "vek/vek.h"

namespace vek::cli {

// Prints till `till` of company `company`: its opening, the exits through
// it, the exits of its period (opening day to closing day, else today) at
// any till, its takings per tariff, the monthly-client payments, its
// totalling, its restroom sales, and the till-closing feed that
// PreparaDadosParaRelatorioApuracaoReceita7 leaves in TempApuracaoReceita7
// with its total. Raises 0x80040458 when the company has no such till.
void PrintTill(const std::shared_ptr<cgpSistema>& session, int32_t company, int32_t till, std::ostream& out);

}  // namespace vek::cli
