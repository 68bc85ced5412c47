#pragma once
// A plain named record of the car park, kept per company and numbered
// (categories of monthly client, access calendars): its row is read with
// "WHERE  Cd_EmpresaUsuariaSistema = " without the alias, its pick list
// takes every company's rows by name, and its search grid shows the company
// code, not the record's, in its first column. These are the statements as
// they have always been.

#include <string>
#include <string_view>

#include "vek/foundation/RecordManager.h"

namespace vek {

class ComboBox;
class FlexGrid;
class TextControl;

template <class Cgp>
class NamedParkingRecord : public cgdRecord<Cgp> {
 public:
  // The name as text and the code as item data, by name ("--ESCOLHA-->"
  // first when there is more than one); Ds_Condicao filters when given.
  void CarregarComboBox(ComboBox& Ob_ComboBox, const std::string& Ds_Condicao = "") {
    this->Run("CarregarComboBox", [&] {
      SqlLines sql;
      sql << "SELECT   *"
          << "FROM     " + table_;
      this->AddFilter(sql, Ds_Condicao);
      sql << "ORDER BY " + name_column_;
      this->ds_sql_ = sql;
      this->FillComboBox(Ob_ComboBox, {.caption = caption_, .text_column = name_column_, .code_column = code_column_});
    });
  }
  // One line per row after the grid's empty first cell: the company code as
  // "###,###,##0" and the name; the row count goes into ObQt_Registros.
  void CarregarMSFlexGridDeBusca(FlexGrid& Ob_MSFlexGrid, TextControl& ObQt_Registros,
                                 const std::string& Ds_Condicao = "") {
    this->Run("CarregarMSFlexGridDeBusca", [&] {
      SqlLines sql;
      sql << "SELECT   A.Cd_EmpresaUsuariaSistema,"
          << "         A." + name_column_ << "FROM     " + table_ + " A";
      this->AddFilter(sql, Ds_Condicao);
      sql << "ORDER BY A." + name_column_ << ";";
      this->ds_sql_ = sql;
      this->FillSearchGrid(Ob_MSFlexGrid, ObQt_Registros,
                           {{"Cd_EmpresaUsuariaSistema", "###,###,##0"}, {name_column_}});
    });
  }

 protected:
  NamedParkingRecord(std::string_view table, std::string_view code_column, std::string_view name_column,
                     std::string_view caption)
      : cgdRecord<Cgp>(table),
        table_(table),
        code_column_(code_column),
        name_column_(name_column),
        caption_(caption) {}

  std::string SelectStatement() override {
    return SqlLines() << "SELECT A.*"
                      << "FROM   " + table_ + " A"
                      << "WHERE  Cd_EmpresaUsuariaSistema = " + this->KeyLiteral("Cd_EmpresaUsuariaSistema")
                      << "       And A." + code_column_ + " = " + this->KeyLiteral(code_column_)
                      << ";";
  }

 private:
  std::string table_;
  std::string code_column_;
  std::string name_column_;
  std::string caption_;
};

}  // namespace vek
