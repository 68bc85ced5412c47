#pragma once
// The session: the installation's settings (every key of Vek.ini under its
// own name), the connection string composed from them, the open connection
// that every data manager uses, the clock that is "now" for the library and
// the database, and the operating company's record.

#include <memory>
#include <string>

#include "vek/foundation/Enums.h"
#include "vek/foundation/cgp.h"

namespace vek {

class Clock;
class Connection;
class MessageBox;
class ProgressWindow;

class cgpSistema : public cgp {
 public:
  cgpSistema();

  // Ds_StringConexaoDB is composed on every read from Cd_DB (0 reads as
  // BancoDadosSQLite3), Nm_ServidorDB, Ds_CaminhoDB and Ds_SenhaDB; it can't
  // be set.
  Variant Get(std::string_view name) const override;
  void Let(std::string_view name, const Variant& value) override;
  bool HasProperty(std::string_view name) const override;
  std::string Ds_StringConexaoDB() const;

  // Opens Ds_StringConexaoDB on a new connection that reads this session's
  // clock, and keeps it as Ob_Conexao. Raises the driver's error.
  std::shared_ptr<Connection> AbrirConexao();
  // The open connection; error 91 when none was opened or given.
  std::shared_ptr<Connection> Ob_Conexao() const;
  void Ob_Conexao(std::shared_ptr<Connection> connection);

  void SetClock(std::shared_ptr<Clock> clock);
  std::shared_ptr<Clock> GetClock() const { return clock_; }
  Date Now() const;

  // The window that long work reports to; a silent one unless the program
  // gives its own. Giving none goes back to the silent one.
  ProgressWindow& Progress() const;
  void SetProgress(std::shared_ptr<ProgressWindow> progress);

  // Where messages for the person at the screen go; a silent box (which
  // answers the safe choice) unless the program gives its own.
  MessageBox& Messages() const;
  void SetMessages(std::shared_ptr<MessageBox> messages);

  // The operating company's property object (its Cd_Pessoa is written for
  // Cd_PessoaUsuaria codes left at 0).
  std::shared_ptr<cgp> Ob_cgpEmpresaUsuaria() const { return empresa_usuaria_; }
  void Ob_cgpEmpresaUsuaria(std::shared_ptr<cgp> company) { empresa_usuaria_ = std::move(company); }

  void RestaurarDefault() override;

 private:
  std::shared_ptr<Connection> connection_;
  std::shared_ptr<Clock> clock_;
  std::shared_ptr<cgp> empresa_usuaria_;
  std::shared_ptr<ProgressWindow> progress_;
  std::shared_ptr<MessageBox> messages_;
};

}  // namespace vek
