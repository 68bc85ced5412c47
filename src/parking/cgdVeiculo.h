#pragma once
// Vehicles (TbVeiculo, key the plate Cd_Placa, shared by every company;
// nothing is numbered). The plate is written between quotes, so one holding
// an apostrophe is refused before any SQL.

#include "vek/foundation/RecordManager.h"
#include "vek/foundation/cgpVek.h"

namespace vek {

class cgdVeiculo : public cgdRecord<cgpVeiculo> {
 public:
  cgdVeiculo() : cgdRecord("TbVeiculo") {}

  // True when the plate of Ob_cgp is there; an empty plate is 0x80040201.
  // Ob_cgp is left as it is.
  bool Existe();
};

}  // namespace vek
