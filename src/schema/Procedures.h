#pragma once
// The stored procedures of the terminal's database: they push monthly
// clients, their cards and ticket releases into the access-control database.
// Each takes the company and one key as inputs and reports in three outputs:
// No_Retorno (0 when done), Ds_Erro (why not) and Ds_Aviso (a warning the
// caller shows). On PostgreSQL they are functions of the database; SQLite has
// no procedures, so the same procedures are written in C++ and registered on
// each connection. Both versions behave alike.
//
//   TicketEstacionamento_LiberarTicketMadis (company, ticket): unblocks the
//     ticket's code (the first 13 characters of Ds_Ticket) at the gates;
//     warns when the gates never saw it enter. 1: no such ticket; 2: the
//     ticket has no code longer than 13 characters.
//   ClienteEstacionamento_AtualizarClienteMadis (company, client): writes the
//     client and its name into CLIENTE, keeping its vacancies in use.
//     1: no such client.
//   ClienteEstacionamento_ExcluirClienteMadis (company, client): removes the
//     client and its cards; warns when the gates did not know it.
//   CartaoEstacionamento_AtualizarClienteCartaoMadis (company, card): writes
//     the card into CLIENTECARTAO, or removes an inactive one (with a
//     warning). 1: no such card; 2: its client is not known to the gates;
//     3: its identification is not a number of at most 9 digits.
//   CartaoEstacionamento_ExcluirClienteCartaoMadis (company, card): removes
//     the card; warns when the gates did not know it.

#include <string>
#include <string_view>
#include <vector>

#include "vek/db/Connection.h"

namespace vek::schema {

struct ProcedureDef {
  std::string_view name;
  Connection::Procedure embedded;  // the version for engines without procedures
  std::string postgres;            // CREATE FUNCTION ...
};

const std::vector<ProcedureDef>& Procedures();

// Registers the C++ versions on a SQLite connection; other engines have the
// procedures in the database, and nothing is registered.
void InstallProcedures(Connection& connection);

}  // namespace vek::schema
