#pragma once
// Parking price bands (TbPrecoEstacionamento, key company and
// Cd_PrecoEstacionamento, numbered): from which minute to which minute of a
// stay (both inclusive) a tariff is charged. Bands are meant not to overlap;
// nothing enforces it.

#include <cstdint>
#include <memory>
#include <string>

#include "vek/foundation/RecordManager.h"
#include "vek/foundation/cgpVek.h"

namespace vek {

class Recordset;

class cgdPrecoEstacionamento : public cgdRecord<cgpPrecoEstacionamento> {
 public:
  cgdPrecoEstacionamento() : cgdRecord("TbPrecoEstacionamento") {}

  // Consultar reads the band of its number; with band number 0 it loads the
  // company's band with the smallest Qt_TempoFinal not below the Qt_TempoFinal
  // of Ob_cgp (the minutes asked about). A company of 0 is 0x80040201.

  // Every band of the company with its tariff's value, shortest first; a
  // band whose tariff is gone is not listed. Open, for the caller to read.
  std::shared_ptr<Recordset> rsPrecosEstacionamento();
  // The band that prices a stay of Qt_Minutos: the band holding it, else
  // the band with the greatest end when the stay is longer than all, else
  // (shorter than the first band) no row. Its Vl_Tarifa and Cd_Tarifa are
  // read from the record set. Its failures name rsPrecosEstacionamento, as
  // they always have.
  std::shared_ptr<Recordset> rsObterTarifaAplicavelAoTempo(int32_t Qt_Minutos);

 protected:
  bool LookupKeyMissing() override;
  bool UpdateKeyMissing() override { return KeyMissing(); }
  std::string SelectStatement() override { return SelectByKey(true); }
  std::string ConsultarStatement() override;
  std::string EmptySelectStatement() override { return SelectByKey(true, true); }
};

}  // namespace vek
