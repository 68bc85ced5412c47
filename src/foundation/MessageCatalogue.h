#pragma once
// The library's own error numbers and their texts. An own error is numbered
// vbObjectError + 512 + the message number; business failures that carry a
// text of their own use vbObjectError + 1112.

#include <cstdint>
#include <string>

#include "vek/platform/VekError.h"

namespace vek {

// The error number of message n of the catalogue (n = 1 gives 0x80040201).
constexpr int32_t OwnErrorNumber(int32_t message_number) { return vbObjectError + 512 + message_number; }

inline constexpr int32_t kErrorNoKey = OwnErrorNumber(1);   // 0x80040201
inline constexpr int32_t kErrorRecordNotFound = OwnErrorNumber(2);  // 0x80040202
inline constexpr int32_t kBusinessError = vbObjectError + 1112;        // 0x80040458

// The catalogue text of an error number; "Erro nao definido" for any number
// that has no entry.
std::string MensagemErro(int32_t number);

}  // namespace vek
