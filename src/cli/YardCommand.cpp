// vek yard: the vehicles in a terminal's car park now, oldest entry first,
// read as the yard screen reads them (cgdEmpresaUsuariaSistema.rsVeiculoNoPatio)
// for the operating company that the folder's Vek.ini names.

#include <filesystem>
#include <iostream>
#include <string>

#include "cli/BusScreens.h"
#include "cli/Commands.h"
#include "vek/vek.h"

namespace vek::cli {
namespace fs = std::filesystem;

void PrintYard(const fs::path& folder, std::ostream& out) {
  if (!fs::is_regular_file(folder / "Vek.ini")) {
    throw VekError(kBusinessError, "vek yard",
                   "A pasta " + folder.string() + " não é de um terminal: não tem Vek.ini (use vek init)");
  }
  // As a desktop program of the terminal starts: the settings from the
  // folder's Vek.ini, then the connection they name.
  const fs::path terminal = fs::canonical(folder);
  SetAppPath(terminal);
  struct AppPathRestorer {
    ~AppPathRestorer() { SetAppPath({}); }
  } restore_app_path;
  std::shared_ptr<cgpSistema> session = OpenTerminal(terminal);

  cgdEmpresaUsuariaSistema empresa;
  empresa.Ob_cgpSistema(session);
  const int32_t company = CLng(session->Get("Cd_EmpresaUsuariaSistema"));
  if (company == 0) {
    throw VekError(kBusinessError, "vek yard",
                   "O Vek.ini de " + terminal.string() +
                       " não informa a empresa usuária ([EmpresaUsuaria] Cd_EmpresaUsuariaSistema)");
  }
  empresa.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", Variant(company));
  auto rows = empresa.rsVeiculoNoPatio();

  out << "Vehicles in the yard of company " << company << ", " << Format(Variant(session->Now()), "dd/mm/yyyy hh:Nn")
      << "\n";
  int32_t count = 0;
  for (; !rows->Eof(); rows->MoveNext()) {
    const Variant entry = rows->Fields().Item(1).Value();
    // A ticket written without the flag has it Null: not a monthly stay.
    const Variant flag = rows->Fields().Item(2).Value();
    const bool monthly = !flag.IsNull() && CBool(flag);
    out << "  " << (entry.IsNull() ? std::string(16, ' ') : Format(entry, "dd/mm/yyyy hh:Nn")) << "  "
        << (monthly ? "mensalista" : "avulso    ") << "  " << CStr(rows->Fields().Item(0).Value()) << "\n";
    ++count;
  }
  rows->Close();
  session->Ob_Conexao()->Close();
  out << count << (count == 1 ? " vehicle" : " vehicles") << " in the yard\n";
}

void AddYardCommand(CLI::App& app) {
  auto folder = std::make_shared<std::string>(".");
  CLI::App* command = app.add_subcommand("yard", "Print the vehicles in a terminal's car park now, oldest entry first");
  command->add_option("folder", *folder, "The terminal folder (where Vek.ini is)")->capture_default_str();
  command->callback([folder] { PrintYard(*folder, std::cout); });
}

}  // namespace vek::cli
