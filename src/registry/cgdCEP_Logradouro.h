#pragma once
// A street's postcode (TbCEP_TbLogradouro, key Cd_Logradouro then the text
// Cd_EP, written between quotes: a postcode holding an apostrophe is
// refused before any SQL; nothing is numbered).

#include "vek/foundation/RecordManager.h"
#include "vek/foundation/cgpVek.h"

namespace vek {

class cgdCEP_Logradouro : public cgdRecord<cgpCEP_Logradouro> {
 public:
  cgdCEP_Logradouro() : cgdRecord("TbCEP_TbLogradouro") {}
};

}  // namespace vek
