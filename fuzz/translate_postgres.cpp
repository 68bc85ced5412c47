#include "FuzzInput.h"
#include "vek/db/dialect/PostgresTranslator.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  return vek::fuzz::Refusable([&] { (void)vek::dialect::TranslateToPostgres(vek::fuzz::Text(data, size)); });
}
