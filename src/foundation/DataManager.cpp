#include "vek/foundation/DataManager.h"

#include "vek/db/Connection.h"
#include "vek/db/Recordset.h"
#include "vek/foundation/MessageCatalogue.h"
#include "vek/platform/Text.h"

namespace vek {

std::shared_ptr<cgpSistema> DataManager::Ob_cgpSistema() const {
  if (!session_) RaiseRuntimeError(kObjectVariableNotSet);
  return session_;
}

std::shared_ptr<Connection> DataManager::SessionConnection() const {
  return Ob_cgpSistema()->Ob_Conexao();
}

std::shared_ptr<Connection> DataManager::OpenSideConnection(const std::string& connection_string) const {
  const std::shared_ptr<Connection> session_connection = SessionConnection();
  auto connection = std::make_shared<Connection>();
  connection->SetClock(session_connection->GetClock());
  connection->OnStatement(session_connection->OnStatement());
  connection->Open(connection_string);
  return connection;
}

std::shared_ptr<Recordset> DataManager::OpenStatement() {
  auto recordset = std::make_shared<Recordset>();
  OpenStatement(*recordset);
  return recordset;
}

void DataManager::OpenStatement(Recordset& recordset) {
  const cgpSistema& session = *Ob_cgpSistema();
  recordset.Open(ds_sql_, SessionConnection(), static_cast<CursorTypeEnum>(CLng(session.Get("Cursor"))),
                 static_cast<LockTypeEnum>(CLng(session.Get("LockType"))));
}

int32_t DataManager::ExecuteStatement() {
  int32_t affected = 0;
  SessionConnection()->Execute(ds_sql_, affected, adOptionUnspecified);
  return affected;
}

std::shared_ptr<Recordset> DataManager::OpenReport() {
  auto recordset = std::make_shared<Recordset>();
  recordset->CursorLocation(adUseClient);
  recordset->Open(ds_sql_, SessionConnection(), adOpenStatic, adLockReadOnly);
  recordset->ActiveConnection(nullptr);
  return recordset;
}

void DataManager::RequireNoApostrophe(std::string_view field, std::string_view value) const {
  const auto refuse = [&](std::string_view what) {
    throw VekError(kBusinessError, std::string(),
                   "O campo " + std::string(field) + " " + std::string(what) +
                       ": o valor foi recusado antes de ir ao banco de dados");
  };
  if (value.find('\'') != std::string_view::npos) refuse("não pode conter apóstrofo (')");
  // A NUL would end the statement's text where it stands.
  if (value.find('\0') != std::string_view::npos) refuse("não pode conter o caractere nulo");
  // Bytes that are not UTF-8 would reach a server as other characters than
  // they read here, so the row could never be found by them again.
  for (const char byte : value) {
    if (static_cast<unsigned char>(byte) < 0x80) continue;
    if (EncodeUtf8(DecodeUtf8(value)) != value) refuse("não é texto UTF-8 válido");
    break;
  }
}

}  // namespace vek
