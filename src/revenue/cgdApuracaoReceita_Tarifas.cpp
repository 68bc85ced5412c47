#include "vek/revenue/cgdApuracaoReceita_Tarifas.h"

#include <array>
#include <utility>

#include "vek/db/Connection.h"
#include "vek/db/DbError.h"
#include "vek/db/Recordset.h"
#include "vek/db/workbook/Worksheet.h"
#include "vek/platform/Controls.h"
#include "vek/platform/Format.h"
#include "vek/revenue/MonthlyWorkbookTemplate.h"

namespace vek {
namespace {

// The revenue types of the workbook's totals, in the order it writes them:
// boarding, restroom, parking, the fourth ("Malex").
constexpr std::array<int32_t, 4> kTotalledTypes = {1, 3, 2, 4};
constexpr int32_t kBoarding = 1;
constexpr int32_t kTariffSlots = 6;

// The errors that the person at the screen can mend and then retry: the
// workbook missing, read-only or in use, the database busy, and the
// runtime's own file errors.
bool OffersRetry(const VekError& error) {
  switch (error.Number()) {
    case adErrUnspecified:
    case kFileNotFound:
    case 70:  // permission denied
    case kPathFileAccessError:
    case kPathNotFound: return true;
    default: return false;
  }
}

// Runs one step of an export. An error that OffersRetry is shown in the
// session's message box, and Retry runs the step again; Cancel, and any
// other error, goes on to the caller.
template <class Step>
void RunStep(const cgpSistema& session, Step&& step) {
  while (true) {
    try {
      step();
      return;
    } catch (const VekError& error) {
      if (!OffersRetry(error)) throw;
      const int32_t answer =
          session.Messages().Show("Ocorreu o seguinte erro:" + std::to_string(error.Number()) + "-" +
                                      error.Description() + " Escolha uma opção",
                                  vbRetryCancel + vbExclamation + vbDefaultButton2, "Erro");
      if (answer != vbRetry) throw;
    }
  }
}

// Money as the workbook's statement writes it: whole cents, rounded half to
// even as the classic CLng did.
int64_t Cents(Currency value) {
  const int64_t raw = value.Raw();
  int64_t cents = raw / 100;
  const int64_t rest = raw % 100;
  if (rest > 50 || (rest == 50 && cents % 2 != 0)) ++cents;
  if (rest < -50 || (rest == -50 && cents % 2 != 0)) --cents;
  return cents;
}

int64_t WholeNumber(const Variant& value) {
  return value.IsNull() || value.IsEmpty() ? 0 : static_cast<int64_t>(CDbl(value));
}

Currency Money(const Variant& value) { return value.IsNull() || value.IsEmpty() ? Currency() : CCur(value); }

// Closes what an export opened, also when it stops on an error.
struct OpenedObjects {
  std::shared_ptr<Connection> connection;
  std::shared_ptr<Recordset> sheet;
  ~OpenedObjects() {
    try {
      if (sheet && sheet->State() == adStateOpen) sheet->Close();
    } catch (...) {
      // Closing must not hide the error on its way out.
    }
    if (connection) connection->Close();
  }
};

// A revenue type's totals per day over a period, per tariff too when asked:
// the two period queries differ only in that column and their grouping.
std::string PeriodTotalsStatement(bool by_tariff, const std::string& first_day, const std::string& last_day,
                                  int32_t Cd_TipoReceita) {
  SqlLines sql;
  if (by_tariff) {
    sql << "SELECT   A.Cd_Tarifa," << "         B.Dt_Movimento,";
  } else {
    sql << "SELECT   B.Dt_Movimento,";
  }
  sql << "         Sum(A.Qt_Tarifa) As Qt_TotalTarifa,"
      << "         Sum(A.Qt_Tarifa * A.Vl_Tarifa) As Vl_TotalTarifa"
      << "FROM     TbApuracaoReceita_TbTarifa A"
      << "         Join TbApuracaoReceita B ON A.Cd_EmpresaUsuariaSistema = B.Cd_EmpresaUsuariaSistema"
      << "                                  AND A.No_ApuracaoReceita = B.No_ApuracaoReceita"
      << "         Join TbTarifa C On A.Cd_Tarifa = C.Cd_Tarifa"
      << "         Join TbTipoReceita D On C.Cd_TipoReceita = D.Cd_TipoReceita"
      << "WHERE    Dt_Movimento Between '" + first_day + "' and '" + last_day + "'"
      << "         And D.Cd_TipoReceita = " + std::to_string(Cd_TipoReceita);
  if (by_tariff) {
    sql << "GROUP BY A.Cd_Tarifa," << "         B.Dt_Movimento" << "ORDER BY A.Cd_Tarifa," << "         B.Dt_Movimento;";
  } else {
    sql << "GROUP BY B.Dt_Movimento" << "ORDER BY B.Dt_Movimento;";
  }
  return sql;
}

}  // namespace

// The 22 values of one day of the workbook, in the order of its columns B to W.
struct cgdApuracaoReceita_Tarifas::DayValues {
  Date day;
  std::array<int64_t, 4> quantity{};
  std::array<Currency, 4> amount{};
  Currency deposit;
  std::array<int64_t, kTariffSlots> slot_quantity{};
  std::array<Currency, kTariffSlots> slot_amount{};
};

std::string cgdApuracaoReceita_Tarifas::DayText(Date day) const {
  return Format(Variant(day), CStr(Ob_cgpSistema()->Get("Ds_FormatoData")));
}

void cgdApuracaoReceita_Tarifas::CarregarMSFlexGrid(FlexGrid& Ob_MSFlexGrid, TextControl& Ob_TextTotal,
                                                    const std::string& Ds_Condicao) {
  Run("CarregarMSFlexGrid", [&] {
    Ob_MSFlexGrid.Clear();
    Ob_MSFlexGrid.FormatString("<|<Codigo|<Descrição|>Quant.|>Unitário|>Total");
    Ob_MSFlexGrid.ColWidth(1, 800);
    Ob_MSFlexGrid.ColWidth(2, 3000);
    Ob_MSFlexGrid.ColWidth(3, 900);
    Ob_MSFlexGrid.ColWidth(4, 1100);
    Ob_MSFlexGrid.ColWidth(5, 1200);
    SqlLines sql;
    sql << "SELECT   A.Cd_Tarifa,"
        << "         B.Ds_Tarifa,"
        << "         A.Qt_Tarifa,"
        << "         A.Vl_Tarifa,"
        << "         A.Qt_Tarifa * A.Vl_Tarifa as Vl_Total"
        << "FROM     TbApuracaoReceita_TbTarifa A"
        << "         Inner Join tbtarifa B On A.Cd_Tarifa = B.Cd_Tarifa";
    AddFilter(sql, Ds_Condicao);
    sql << "ORDER BY A.Cd_Tarifa;";
    ds_sql_ = sql;
    Recordset lines;
    OpenStatement(lines);
    Field& code = lines.Fields().Item("Cd_Tarifa");
    Field& description = lines.Fields().Item("Ds_Tarifa");
    Field& quantity = lines.Fields().Item("Qt_Tarifa");
    Field& price = lines.Fields().Item("Vl_Tarifa");
    Field& total = lines.Fields().Item("Vl_Total");
    Currency sum;
    while (!lines.Eof()) {
      Ob_MSFlexGrid.AddItem("\t" + CellText(code.Value()) + "\t" + CellText(description.Value()) + "\t" +
                            Format(quantity.Value(), "###,###") + "\t" + Format(price.Value(), "###,###.00") + "\t" +
                            Format(total.Value(), "###,###.00"));
      sum += Money(total.Value());
      // The total is written after each line only: no line, no total.
      Ob_TextTotal.Text(Format(Variant(sum), "###,###,##0.00"));
      lines.MoveNext();
    }
    lines.Close();
  });
}

std::shared_ptr<Recordset> cgdApuracaoReceita_Tarifas::ConsultaTarifas(const std::string& Ds_Condicao) {
  return Run("ConsultaTarifas", [&] {
    SqlLines sql;
    sql << "SELECT   A.Cd_Tarifa,"
        << "         B.Ds_Tarifa,"
        << "         A.Qt_Tarifa,"
        << "         A.Vl_Tarifa,"
        << "         A.Qt_Tarifa * A.Vl_Tarifa as Vl_Total"
        << "FROM     TbApuracaoReceita_TbTarifa A"
        << "         Inner Join tbtarifa B On A.Cd_Tarifa = B.Cd_Tarifa";
    AddFilter(sql, Ds_Condicao);
    sql << "ORDER BY A.Cd_Tarifa;";
    ds_sql_ = sql;
    return OpenReport();
  });
}

std::shared_ptr<Recordset> cgdApuracaoReceita_Tarifas::ConsultarMovimentoDiaPorEmpresa(Date Dt_Movimento) {
  return Run("ConsultarMovimentoDiaPorEmpresa", [&] {
    ds_sql_ = SqlLines() << "SELECT   A.Cd_Pessoa,"
                         << "         Sum(B.Qt_Tarifa) as Qt_TotalTarifa"
                         << "FROM     TbApuracaoReceita A"
                         << "         JOIN TbApuracaoReceita_TbTarifa B On A.No_ApuracaoReceita = B.No_ApuracaoReceita"
                         << "         JOIN TbPessoa C on A.Cd_Pessoa = C.Cd_Pessoa"
                         << "         JOIN TbTarifa D on B.Cd_Tarifa = D.Cd_Tarifa"
                         << "         JOIN tbtiporeceita E on D.cd_tiporeceita = E.cd_tiporeceita"
                         << "WHERE    A.Dt_Movimento = '" + DayText(Dt_Movimento) + "'"
                         << "         And E.Nm_TipoReceita = 'EMBARQUE'"
                         << "GROUP BY A.Cd_Pessoa;";
    return OpenReport();
  });
}

std::shared_ptr<Recordset> cgdApuracaoReceita_Tarifas::ConsultarPorPeriodoAgrupadaDiaTarifa(Date Dt_Inicio, Date Dt_Fim,
                                                                                           int32_t Cd_TipoReceita) {
  return Run("ConsultarPorPeriodoAgrupadaDiaTarifa", [&] {
    ds_sql_ = PeriodTotalsStatement(true, DayText(Dt_Inicio), DayText(Dt_Fim), Cd_TipoReceita);
    return OpenReport();
  });
}

std::shared_ptr<Recordset> cgdApuracaoReceita_Tarifas::ConsultarPorPeriodoAgrupadaDia(Date Dt_Inicio, Date Dt_Fim,
                                                                                      int32_t Cd_TipoReceita) {
  return Run("ConsultarPorPeriodoAgrupadaDia", [&] {
    ds_sql_ = PeriodTotalsStatement(false, DayText(Dt_Inicio), DayText(Dt_Fim), Cd_TipoReceita);
    return OpenReport();
  });
}

cgdApuracaoReceita_Tarifas::DayValues cgdApuracaoReceita_Tarifas::ReadDay(Date day) {
  DayValues values;
  values.day = day;
  for (size_t i = 0; i < kTotalledTypes.size(); ++i) {
    auto totals = ConsultarPorPeriodoAgrupadaDia(day, day, kTotalledTypes[i]);
    if (!totals->Eof()) {
      values.quantity[i] = WholeNumber(totals->Fields().Item("Qt_TotalTarifa").Value());
      values.amount[i] = Money(totals->Fields().Item("Vl_TotalTarifa").Value());
    }
    totals->Close();
  }

  ds_sql_ = SqlLines() << "SELECT *"
                       << "FROM   TbFechamentoDiario"
                       << "WHERE  Dt_FechamentoDiario = '" + DayText(day) + "'";
  Recordset closing;
  OpenStatement(closing);
  if (!closing.Eof()) values.deposit = Money(closing.Fields().Item("Vl_Deposito").Value());
  closing.Close();

  // Tariffs 1 to 6 fill the six slots; other boarding tariffs count in the
  // totals above only.
  auto tariffs = ConsultarPorPeriodoAgrupadaDiaTarifa(day, day, kBoarding);
  for (; !tariffs->Eof(); tariffs->MoveNext()) {
    const int64_t tariff = WholeNumber(tariffs->Fields().Item("Cd_Tarifa").Value());
    if (tariff < 1 || tariff > kTariffSlots) continue;
    values.slot_quantity[tariff - 1] = WholeNumber(tariffs->Fields().Item("Qt_TotalTarifa").Value());
    values.slot_amount[tariff - 1] = Money(tariffs->Fields().Item("Vl_TotalTarifa").Value());
  }
  tariffs->Close();
  return values;
}

void cgdApuracaoReceita_Tarifas::ExportarExcelXP(Date Dt_Inicio, Date Dt_Fim, const std::string& Ds_CaminhoEArquivo) {
  Run("ExportarExcel", [&] {
    const cgpSistema& session = *Ob_cgpSistema();
    std::shared_ptr<workbook::WorkbookFile> file;
    std::unique_ptr<workbook::Worksheet> sheet;
    RunStep(session, [&] {
      file = std::make_shared<workbook::WorkbookFile>(Ds_CaminhoEArquivo);
      sheet = std::make_unique<workbook::Worksheet>(file, "DADOS");
    });
    // The days written so far stay when the export stops.
    struct SaveWhatWasWritten {
      std::shared_ptr<workbook::WorkbookFile>& file;
      bool done = false;
      ~SaveWhatWasWritten() {
        if (done || !file || !file->Changed()) return;
        try {
          file->Save();
        } catch (...) {
          // The error that stopped the export is the one to report.
        }
      }
    } keep{file};
    sheet->Activate();
    for (Date day = Dt_Inicio; day <= Dt_Fim; day = day + 1.0) {
      DayValues values;
      RunStep(session, [&] { values = ReadDay(day); });
      std::array<Variant, 22> cells;
      cells[0] = Variant(day);
      for (size_t i = 0; i < 4; ++i) {
        cells[1 + 2 * i] = Variant(static_cast<double>(values.quantity[i]));
        cells[2 + 2 * i] = Variant(Currency::FromRaw(Cents(values.amount[i]) * 100));
      }
      cells[9] = Variant(Currency::FromRaw(Cents(values.deposit) * 100));
      for (size_t i = 0; i < kTariffSlots; ++i) {
        cells[10 + 2 * i] = Variant(static_cast<double>(values.slot_quantity[i]));
        cells[11 + 2 * i] = Variant(Currency::FromRaw(Cents(values.slot_amount[i]) * 100));
      }
      const std::string row = std::to_string(Day(day) + 1);
      for (size_t i = 0; i < cells.size(); ++i) {
        sheet->Range(workbook::Sheet::ColumnLetters(static_cast<int32_t>(i + 1)) + row).Value(cells[i]);
      }
    }
    sheet->Activate();
    RunStep(session, [&] { file->Save(); });
    keep.done = true;
  });
}

void cgdApuracaoReceita_Tarifas::ExportarExcel2000(Date Dt_Inicio, Date Dt_Fim, const std::string& Ds_CaminhoEArquivo) {
  Run("ExportarRsExcel", [&] {
    const cgpSistema& session = *Ob_cgpSistema();
    OpenedObjects opened;
    opened.connection = std::make_shared<Connection>();
    // A connection the export opens reports its statements where the
    // session's connection does.
    opened.connection->OnStatement(SessionConnection()->OnStatement());
    RunStep(session, [&] {
      opened.connection->Open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + Ds_CaminhoEArquivo +
                              ";Extended Properties=Excel 8.0;");
    });
    opened.sheet = std::make_shared<Recordset>();
    RunStep(session, [&] { opened.sheet->Open("[DADOS$]", opened.connection, adOpenKeyset, adLockOptimistic); });
    for (Date day = Dt_Inicio; day <= Dt_Fim; day = day + 1.0) {
      DayValues values;
      RunStep(session, [&] { values = ReadDay(day); });
      auto money = [](std::string_view column, Currency value, bool last = false) {
        return "       " + std::string(column) + " = " + std::to_string(Cents(value)) + (last ? "/100 " : "/100 ,");
      };
      auto quantity = [](std::string_view column, int64_t value) {
        return "       " + std::string(column) + " = " + std::to_string(value) + ",";
      };
      SqlLines sql;
      sql << "UPDATE [DADOS$] "
          << "SET    Dt_Movimento = #" + Format(Variant(day), "mm/dd/yyyy") + "# , ";
      for (size_t i = 0; i < 4; ++i) {
        sql << quantity(kMonthlyWorkbookHeadings[2 + 2 * i], values.quantity[i])
            << money(kMonthlyWorkbookHeadings[3 + 2 * i], values.amount[i]);
      }
      sql << money("Vl_DepositoDia", values.deposit);
      for (size_t i = 0; i < kTariffSlots; ++i) {
        sql << quantity(kMonthlyWorkbookHeadings[11 + 2 * i], values.slot_quantity[i])
            << money(kMonthlyWorkbookHeadings[12 + 2 * i], values.slot_amount[i], i + 1 == kTariffSlots);
      }
      sql << "WHERE  No_DiaMovimento = " + std::to_string(Day(day));
      ds_sql_ = sql;
      RunStep(session, [&] {
        int32_t affected = 0;
        opened.connection->Execute(ds_sql_, affected, adExecuteNoRecords);
      });
    }
  });
}

}  // namespace vek
