#pragma once
// The buses (TbVeiculoOnibus, keyed by the plate Cd_Placa; nothing is
// numbered). A bus is found by its plate, or, when the plate is empty, by
// its company and fleet number (Cd_EmpresaOnibus, No_Frota); with neither
// the look-up finds nothing. The plate goes between quotes, so one holding
// an apostrophe is refused before any SQL.
//
// Excluir deletes by plate only: when company and fleet number are both
// given, it sends the look-up by them instead, which deletes nothing, as the
// terminal's programs have always seen it. With neither a plate nor both,
// it raises 0x80040201.

#include "vek/foundation/RecordManager.h"
#include "vek/foundation/cgpVek.h"

namespace vek {

class cgdVeiculoOnibus : public cgdRecord<cgpVeiculoOnibus> {
 public:
  cgdVeiculoOnibus() : cgdRecord("TbVeiculoOnibus") {}

  // Does nothing: kept so that programs calling it still run.
  void ExportarVeiculoOnibus();

 protected:
  bool KeyMissing() override;
  bool LookupKeyMissing() override { return false; }
  std::string DeleteStatement() override;
  std::string SelectStatement() override;

 private:
  bool HasPlate();
  bool HasFleetNumber();
  std::string FleetLookup();
};

}  // namespace vek
