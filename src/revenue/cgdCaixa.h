#pragma once
// Tills (TbCaixa, key company and Cd_Caixa, numbered): one operator's cash
// register session, opened by a user (Cd_Usuario) on a date (Dt_Abertura),
// the No_Sequencial-th of that user's tills of the opening. Parking exits,
// restroom sales and cash assessments carry the till's Cd_Caixa.

#include <memory>
#include <string>

#include "vek/foundation/RecordManager.h"
#include "vek/foundation/cgpVek.h"

namespace vek {

class cgdCaixa : public cgdRecord<cgpCaixa> {
 public:
  cgdCaixa() : cgdRecord("TbCaixa") {}

  // Finds the till by company and Cd_Caixa ("... And A.Cd_Caixa = n;"), or,
  // when Ic_ConsultarPorAbertura is true, by company, Cd_Usuario, the opening
  // date in the session's Ds_FormatoData ('yyyy-mm-dd', so a till opened at
  // midnight of that day) and No_Sequencial. A company of 0, or a till of 0
  // in the first form, raises 0x80040201.
  std::shared_ptr<cgpCaixa> Consultar(bool Ic_RestaurarDefaulSeNaoEcontrarRegistro = true) override;

  // Rebuilds the work table TempApuracaoReceita7 for the till of Ob_cgp, the
  // till-closing report's feed: it is emptied, then one row per tariff and
  // unit value of the till's parking charge lines ("ESTACIONAMENTO") and
  // restroom sales ("SANITARIO"), with "QTDE:" and the units as observation
  // and the lines' totals each rounded to cents before summing; then one row
  // per monthly-client payment ("MENSALISTA") and per totalling ("RECIBO
  // CAIXA") of the till, with the period start as dd/mm/yyyy. Five
  // statements, no transaction: a failure after the first leaves the table
  // partly filled. A company or till of 0 raises 0x80040201 before any SQL.
  void PreparaDadosParaRelatorioApuracaoReceita7();

 protected:
  bool LookupKeyMissing() override;
  bool UpdateKeyMissing() override { return KeyMissing(); }
  std::string SelectStatement() override;
  std::string ConsultarStatement() override;
  std::string EmptySelectStatement() override;
};

}  // namespace vek
