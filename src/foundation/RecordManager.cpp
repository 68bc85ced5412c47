#include "vek/foundation/RecordManager.h"

#include <charconv>

#include "vek/db/Command.h"
#include "vek/db/Recordset.h"
#include "vek/foundation/SqlLiterals.h"
#include "vek/foundation/MessageCatalogue.h"
#include "vek/foundation/Sequences.h"
#include "vek/foundation/cgdModulo.h"
#include "vek/platform/Text.h"

namespace vek {
namespace {

bool IsTextColumn(const schema::ColumnDef& column) {
  return column.type == schema::ColumnType::VarChar || column.type == schema::ColumnType::Char;
}

bool IsDateColumn(const schema::ColumnDef* column) {
  return column && column->type == schema::ColumnType::DateTime;
}

}  // namespace

RecordManager::RecordManager(std::string_view table, std::vector<std::string_view> key_columns)
    : table_(schema::FindTable(table)) {
  if (!table_) RaiseRuntimeError(kInvalidProcedureCall);
  if (key_columns.empty()) key_columns = table_->primary_key;
  // The fixed parts of the standard statements are built once.
  const std::string table_name(table_->name);
  delete_start_ = SqlLines() << "DELETE " << "FROM   " + table_name;
  select_start_ = SqlLines() << "SELECT A.*" << "FROM   " + table_name + " A";
  for (std::string_view column : key_columns) {
    const schema::ColumnDef* definition = table_->FindColumn(column);
    const bool first = keys_.empty();
    if (definition && IsTextColumn(*definition)) quoted_columns_.emplace_back(column);
    keys_.push_back({std::string(column), definition && IsTextColumn(*definition), IsDateColumn(definition),
                     (first ? "WHERE  " : "       And ") + std::string(column) + " = ",
                     (first ? "WHERE  A." : "       and A.") + std::string(column) + " = "});
  }
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
  for (const KeyColumn& key : keys_) {
    const Variant value = RecordObject().Get(key.name);
    if (value.IsString() ? value.Get<std::string>()->empty() : CDbl(value) == 0) return true;
  }
  return false;
}

std::string RecordManager::KeyLiteral(std::string_view column) {
  const schema::ColumnDef* definition = table_->FindColumn(column);
  // A day in a key (a closing's, a map's) is written as a date literal in the session's format.
  if (IsDateColumn(definition)) return DateKeyLiteral(column);
  return KeyLiteral(column, definition && IsTextColumn(*definition));
}

std::string RecordManager::DateKeyLiteral(std::string_view column) {
  return DateSemHoraToSql(CDate(RecordObject().Get(column)), *Ob_cgpSistema());
}

std::string RecordManager::KeyLiteral(std::string_view column, bool text) {
  const Variant value = RecordObject().Get(column);
  if (text) {
    std::string literal = CStr(value);
    RequireNoApostrophe(column, literal);
    return "'" + literal + "'";
  }
  return std::to_string(CLng(value));
}

std::string RecordManager::KeyClauses(bool for_delete, bool zero_keys) {
  std::string clauses;
  AppendKeyClauses(clauses, for_delete, zero_keys);
  return clauses;
}

void RecordManager::AppendKeyClauses(std::string& text, bool for_delete, bool zero_keys) {
  for (const KeyColumn& key : keys_) {
    text += for_delete ? key.delete_head : key.select_head;
    if (key.date) {
      text += DateKeyLiteral(key, zero_keys);
    } else if (zero_keys) {
      text += key.text ? "''" : "0";
    } else if (key.text) {
      text += KeyLiteral(key.name, true);
    } else {
      // A numeric key goes in as digits without a string of its own.
      char digits[16];
      text.append(digits, std::to_chars(digits, digits + sizeof digits, CLng(RecordObject().Get(key.name))).ptr);
    }
    text += '\r';
  }
}

std::string RecordManager::DateKeyLiteral(const KeyColumn& key, bool zero_key) {
  return DateSemHoraToSql(zero_key ? Date() : CDate(RecordObject().Get(key.name)), *Ob_cgpSistema());
}

// The standard statements are built in one string each: Consultar runs one per call.
std::string RecordManager::DeleteStatement() {
  std::string text;
  text.reserve(delete_start_.size() + 32 * keys_.size());
  text += delete_start_;
  AppendKeyClauses(text, true, false);
  return text;
}

std::string RecordManager::SelectStatement() {
  std::string text;
  text.reserve(select_start_.size() + 32 * keys_.size() + 2);
  text += select_start_;
  AppendKeyClauses(text, false, false);
  text += ";\r";
  return text;
}

std::string RecordManager::EmptySelectStatement() {
  std::string text;
  text.reserve(select_start_.size() + 32 * keys_.size() + 2);
  text += select_start_;
  AppendKeyClauses(text, false, true);
  text += ";\r";
  return text;
}

void RecordManager::Excluir() {
  Run("Excluir", [&] {
    if (KeyMissing()) {
      RecordObject().RestaurarDefault();
      RaiseError(kErrorNoKey, RuntimeTypeName(*this), "Excluir");
    }
    if (std::string details = DetailDeleteStatement(); !details.empty()) {
      ds_sql_ = std::move(details);
      ExecuteStatement();
    }
    ds_sql_ = DeleteStatement();
    ExecuteStatement();
  });
}

void RecordManager::ConsultarRegistro(bool Ic_RestaurarDefaulSeNaoEcontrarRegistro) {
  if (LookupKeyMissing()) RaiseError(kErrorNoKey, RuntimeTypeName(*this), "Consultar");
  ds_sql_ = ConsultarStatement();
  LoadFirstRow(Ic_RestaurarDefaulSeNaoEcontrarRegistro, "Consultar");
}

bool RecordManager::LoadFirstRow(bool restore, std::string_view member) {
  // The row is read and dropped here: a record set of our own, not a shared one.
  Recordset recordset;
  OpenStatement(recordset);
  if (recordset.RecordCount() == 0) {
    recordset.Close();
    if (restore) {
      RecordObject().RestaurarDefault();
      return false;
    }
    RaiseError(kErrorRecordNotFound, RuntimeTypeName(*this), member);
  }
  CopyRowToProperties(recordset, RecordObject());
  recordset.Close();
  return true;
}

bool RecordManager::StatementHasRows() {
  Recordset recordset;
  OpenStatement(recordset);
  const bool found = !recordset.Eof();
  recordset.Close();
  return found;
}

Variant RecordManager::FirstValue() {
  Recordset recordset;
  OpenStatement(recordset);
  Variant value;
  if (!recordset.Eof()) value = recordset.Fields().Item(0).Value();
  recordset.Close();
  return value;
}

std::string RecordManager::SelectByKey(bool semicolon, bool zero_keys) {
  std::string text = select_start_;
  bool first = true;
  for (const KeyColumn& key : keys_) {
    const std::string value = key.date    ? DateKeyLiteral(key, zero_keys)
                              : zero_keys ? (key.text ? "''" : "0")
                                          : KeyLiteral(key.name, key.text);
    text += (first ? "WHERE  A." : "       And A.") + key.name + " = " + value + "\r";
    first = false;
  }
  if (semicolon) text += ";\r";
  return text;
}

std::string RecordManager::InsertLines(const std::vector<std::string>& columns,
                                       const std::vector<std::string>& values) const {
  SqlLines sql;
  sql << "INSERT INTO " + std::string(table_->name) + " (";
  for (size_t i = 0; i < columns.size(); ++i) sql << "   " + columns[i] + (i + 1 < columns.size() ? "," : "");
  sql << "   )"
      << "Values (";
  for (size_t i = 0; i < values.size(); ++i) sql << values[i] + (i + 1 < values.size() ? "," : ")");
  return sql;
}

std::string RecordManager::ValueLiteral(std::string_view column) {
  const schema::ColumnDef* definition = table_->FindColumn(column);
  if (!definition) RaiseRuntimeError(kInvalidProcedureCall);
  const Variant value = RecordObject().Get(column);
  switch (definition->type) {
    case schema::ColumnType::VarChar:
    case schema::ColumnType::Char: {
      const std::string text = CStr(value);
      RequireNoApostrophe(column, text);
      return VarCharToSql(text, static_cast<int16_t>(definition->size));
    }
    case schema::ColumnType::Money:
      return MoneyToSql(CCur(value), 2);
    case schema::ColumnType::DateTime:
      return DateComHoraToSql(CDate(value), *Ob_cgpSistema());
    case schema::ColumnType::Bit:
      return BitToSql(CBool(value));
    default:
      return IntToSql(CLng(value));
  }
}

void RecordManager::RunAccessControlProcedure(std::string_view procedure, std::string_view key_column,
                                              std::string& Ds_Aviso) {
  ds_sql_ = std::string(procedure);
  Command command;
  command.ActiveConnection(SessionConnection());
  command.CommandText(ds_sql_);
  command.CommandType(adCmdStoredProc);
  Parameters& parameters = command.Parameters();
  parameters.Append(command.CreateParameter("@Cd_EmpresaUsuariaSistema", adInteger, adParamInput, 0,
                                            Variant(CLng(RecordObject().Get("Cd_EmpresaUsuariaSistema")))));
  parameters.Append(command.CreateParameter("@" + std::string(key_column), adInteger, adParamInput, 0,
                                            Variant(CLng(RecordObject().Get(key_column)))));
  parameters.Append(command.CreateParameter("@No_Retorno", adInteger, adParamOutput));
  parameters.Append(command.CreateParameter("@Ds_Erro", adVarChar, adParamOutput, 300));
  parameters.Append(command.CreateParameter("@Ds_Aviso", adVarChar, adParamOutput, 5000));
  command.Execute();
  const Variant aviso = parameters.Item("@Ds_Aviso").Value();
  Ds_Aviso = aviso.IsNull() || aviso.IsEmpty() ? std::string() : CStr(aviso);
  const Variant retorno = parameters.Item("@No_Retorno").Value();
  if (!retorno.IsNull() && !retorno.IsEmpty() && CLng(retorno) != 0) {
    const Variant erro = parameters.Item("@Ds_Erro").Value();
    throw VekError(kBusinessError, std::string(), erro.IsNull() || erro.IsEmpty() ? std::string() : CStr(erro));
  }
}

void RecordManager::RequireQuotableValues() {
  for (const std::string& column : quoted_columns_) {
    if (RecordObject().HasProperty(column)) RequireNoApostrophe(column, CStr(RecordObject().Get(column)));
  }
}

void RecordManager::Alterar(bool /*Ic_Salvando*/) {
  Run("Alterar", [&] {
    if (UpdateKeyMissing()) RaiseError(kErrorNoKey, RuntimeTypeName(*this), "Alterar");
    RequireQuotableValues();
    if (std::string update = UpdateStatement(); !update.empty()) {
      ds_sql_ = std::move(update);
      if (ExecuteStatement() == 0) RaiseError(kErrorRecordNotFound, RuntimeTypeName(*this), "Alterar");
      return;
    }
    ds_sql_ = SelectStatement();
    auto recordset = OpenStatement();
    if (recordset->RecordCount() == 0) {
      recordset->Close();
      RaiseError(kErrorRecordNotFound, RuntimeTypeName(*this), "Alterar");
    }
    pegarValorCamposSequencial(*this, *recordset);
    TransferirDadosDeCgpParaBd(RecordObject(), *recordset, Ob_cgpSistema().get());
    AdjustUpdatedRow(*recordset);
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
    RequireQuotableValues();
    NumberNewRecord();
    if (std::string insert = InsertStatement(); !insert.empty()) {
      ds_sql_ = std::move(insert);
      ExecuteStatement();
      return;
    }
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
