#pragma once
// What every data manager and collection shares: the session it works in,
// the statement being built, record sets opened the session's way, the guard
// on values put between quotes, and the error trap of its members.

#include <memory>
#include <string>
#include <string_view>

#include "vek/foundation/ErrorTrap.h"
#include "vek/foundation/cgpSistema.h"

namespace vek {

class Connection;
class Recordset;

class DataManager {
 public:
  virtual ~DataManager() = default;

  // The session; reading it when none was given is error 91.
  std::shared_ptr<cgpSistema> Ob_cgpSistema() const;
  void Ob_cgpSistema(std::shared_ptr<cgpSistema> session) { session_ = std::move(session); }

  // The last statement built.
  const std::string& Ds_Sql() const { return ds_sql_; }

 protected:
  // The session's open connection.
  std::shared_ptr<Connection> SessionConnection() const;
  // Opens `ds_sql_` with the session's cursor and lock types.
  std::shared_ptr<Recordset> OpenStatement();
  // Runs `ds_sql_` for its effect; returns the rows affected.
  int32_t ExecuteStatement();

  // Runs a member's body in the trap that adds " -> Class.Member, ".
  template <class Body>
  decltype(auto) Run(std::string_view member, Body&& body) {
    return Trap([this] { return RuntimeTypeName(*this); }, member, std::forward<Body>(body));
  }

  // Refuses, before any SQL is sent, a value that would be put between
  // quotes while holding an apostrophe (error 0x80040458 naming the field).
  void RequireNoApostrophe(std::string_view field, std::string_view value) const;

  std::string ds_sql_;

 private:
  std::shared_ptr<cgpSistema> session_;
};

// Builds a statement clause by clause: each clause is followed by a single
// carriage return, as every statement of the system is.
class SqlLines {
 public:
  SqlLines& operator<<(std::string_view clause) {
    text_.append(clause).push_back('\r');
    return *this;
  }
  const std::string& Text() const { return text_; }
  operator const std::string&() const { return text_; }

 private:
  std::string text_;
};

}  // namespace vek
