#include "vek/foundation/RecordManager.h"

#include "vek/db/Recordset.h"
#include "vek/foundation/MessageCatalogue.h"
#include "vek/foundation/Sequences.h"
#include "vek/foundation/cgdModulo.h"
#include "vek/platform/Text.h"

namespace vek {
namespace {

bool IsTextColumn(const schema::ColumnDef& column) {
  return column.type == schema::ColumnType::VarChar || column.type == schema::ColumnType::Char;
}

}  // namespace

RecordManager::RecordManager(std::string_view table, std::vector<std::string_view> key_columns)
    : table_(schema::FindTable(table)) {
  if (!table_) RaiseRuntimeError(kInvalidProcedureCall);
  if (key_columns.empty()) key_columns = table_->primary_key;
  for (std::string_view column : key_columns) key_columns_.emplace_back(column);
}

bool RecordManager::temCampoSequencial() const { return !nomeCamposSequencial().empty(); }

std::vector<std::string> RecordManager::nomeCamposSequencial() const {
  std::vector<std::string> names;
  for (const schema::ColumnDef& column : table_->columns) {
    if (column.numbered) names.emplace_back(column.name);
  }
  return names;
}

bool RecordManager::KeyMissing() {
  for (const std::string& column : key_columns_) {
    const Variant value = RecordObject().Get(column);
    if (value.IsString() ? value.Get<std::string>()->empty() : CDbl(value) == 0) return true;
  }
  return false;
}

std::string RecordManager::KeyLiteral(std::string_view column) {
  const schema::ColumnDef* definition = table_->FindColumn(column);
  const Variant value = RecordObject().Get(column);
  if (definition && IsTextColumn(*definition)) {
    const std::string text = CStr(value);
    RequireNoApostrophe(column, text);
    return "'" + text + "'";
  }
  return CStr(Variant(CLng(value)));
}

void RecordManager::AddKeyClauses(SqlLines& sql, std::string_view prefix, std::string_view and_word,
                                  bool zero_keys) {
  for (size_t i = 0; i < key_columns_.size(); ++i) {
    const std::string& column = key_columns_[i];
    const schema::ColumnDef* definition = table_->FindColumn(column);
    const bool text = definition && IsTextColumn(*definition);
    const std::string value = zero_keys ? (text ? "''" : "0") : KeyLiteral(column);
    const std::string head = i == 0 ? "WHERE  " : "       " + std::string(and_word) + " ";
    sql << head + std::string(prefix) + column + " = " + value;
  }
}

std::string RecordManager::DeleteStatement() {
  SqlLines sql;
  sql << "DELETE " << "FROM   " + std::string(table_->name);
  AddKeyClauses(sql, "", "And", false);
  return sql;
}

std::string RecordManager::SelectStatement() {
  SqlLines sql;
  sql << "SELECT A.*" << "FROM   " + std::string(table_->name) + " A";
  AddKeyClauses(sql, "A.", "and", false);
  sql << ";";
  return sql;
}

std::string RecordManager::EmptySelectStatement() {
  SqlLines sql;
  sql << "SELECT A.*" << "FROM   " + std::string(table_->name) + " A";
  AddKeyClauses(sql, "A.", "and", true);
  sql << ";";
  return sql;
}

void RecordManager::Excluir() {
  Run("Excluir", [&] {
    if (KeyMissing()) {
      RecordObject().RestaurarDefault();
      RaiseError(kErrorNoKey, RuntimeTypeName(*this), "Excluir");
    }
    ds_sql_ = DeleteStatement();
    ExecuteStatement();
  });
}

void RecordManager::ConsultarRegistro(bool Ic_RestaurarDefaulSeNaoEcontrarRegistro) {
  if (KeyMissing()) RaiseError(kErrorNoKey, RuntimeTypeName(*this), "Consultar");
  ds_sql_ = SelectStatement();
  auto recordset = OpenStatement();
  if (recordset->RecordCount() == 0) {
    if (Ic_RestaurarDefaulSeNaoEcontrarRegistro) {
      RecordObject().RestaurarDefault();
      return;
    }
    recordset->Close();
    RaiseError(kErrorRecordNotFound, RuntimeTypeName(*this), "Consultar");
  }
  CopyRowToProperties(*recordset, RecordObject());
  recordset->Close();
}

void RecordManager::Alterar(bool /*Ic_Salvando*/) {
  Run("Alterar", [&] {
    if (KeyMissing()) RaiseError(kErrorNoKey, RuntimeTypeName(*this), "Alterar");
    ds_sql_ = SelectStatement();
    auto recordset = OpenStatement();
    if (recordset->RecordCount() == 0) {
      recordset->Close();
      RaiseError(kErrorRecordNotFound, RuntimeTypeName(*this), "Alterar");
    }
    pegarValorCamposSequencial(*this, *recordset);
    TransferirDadosDeCgpParaBd(RecordObject(), *recordset, Ob_cgpSistema().get());
    recordset->Update();
    recordset->Close();
  });
}

void RecordManager::NumberNewRecord() {
  // A one-column numbered key is the database's to number; numbered columns
  // of a composite key take the next value of the numbering table.
  if (table_->HasIdentity()) return;
  for (const std::string& column : nomeCamposSequencial()) {
    if (CDbl(RecordObject().Get(column)) == 0) {
      RecordObject().Let(column, Variant(NextSequenceValue(*Ob_cgpSistema(), column)));
    }
  }
}

void RecordManager::Incluir() {
  Run("Incluir", [&] {
    NumberNewRecord();
    ds_sql_ = EmptySelectStatement();
    auto recordset = OpenStatement();
    recordset->AddNew();
    TransferirDadosDeCgpParaBd(RecordObject(), *recordset, Ob_cgpSistema().get());
    recordset->Update();
    // The number the database gave comes back into the property object.
    Fields& fields = recordset->Fields();
    for (int32_t i = 0; i < fields.Count(); ++i) {
      Field& field = fields.Item(i);
      if (CBool(field.Properties("ISAUTOINCREMENT").Value()) && RecordObject().HasProperty(field.Name())) {
        RecordObject().Let(field.Name(), field.Value());
      }
    }
    recordset->Close();
  });
}

void RecordManager::Salvar() {
  Run("Salvar", [&] {
    Tp_EdicaoEnum edit_mode = Tp_EdicaoAlteracao;
    try {
      Alterar(true);
    } catch (const VekError& error) {
      if (error.Number() != kErrorRecordNotFound && error.Number() != kErrorNoKey) throw;
      edit_mode = Tp_EdicaoInclusao;
    }
    if (edit_mode != Tp_EdicaoAlteracao) Incluir();
  });
}

}  // namespace vek
