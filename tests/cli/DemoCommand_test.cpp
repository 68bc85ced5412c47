#include "cli/Commands.h"
#include "cli/demo/Day.h"
#include "vek/vek.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "cli/ToolRun.h"
#include "support/DemoDay.h"
#include "support/TestSupport.h"

namespace vek {
namespace {

namespace fs = std::filesystem;
using testing::ErrorOf;
using testing::RunTool;
using testing::ToolRun;
using testing::FirstValue;

// The lines of a text that hold `needle`.
std::vector<std::string> LinesWith(const std::string& text, std::string_view needle) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) {
    if (line.find(needle) != std::string::npos) lines.push_back(line);
  }
  return lines;
}

// The character (not byte) column at which `needle` starts in `line`.
int32_t CharColumn(const std::string& line, std::string_view needle) {
  const size_t at = line.find(needle);
  return at == std::string::npos ? -1 : Len(line.substr(0, at));
}


class DemoCommandTest : public ::testing::Test {
 protected:
  std::string Demo(const fs::path& folder, cli::DemoOptions options = {}) {
    std::ostringstream out;
    cli::RunDemo(folder, options, out);
    return out.str();
  }
  std::shared_ptr<Connection> OpenDatabase(const fs::path& folder) {
    auto connection = std::make_shared<Connection>();
    connection->Open("Driver=SQLite3;Database=" + (folder / "Vek.db").string());
    return connection;
  }

  testing::ScratchApp app_;
  const fs::path folder_ = app_.Path() / "Rodoviária demo";
};

TEST_F(DemoCommandTest, TheDatabaseHoldsWhatTheDayRegistered) {
  Demo(folder_);
  auto db = OpenDatabase(folder_);

  // The operating company with its legal person, address, telephones and
  // e-mail, and Vek.ini names it for the installation's programs.
  const std::string company = FirstValue(*db, "SELECT Cd_EmpresaUsuariaSistema FROM TbEmpresaUsuariaSistema");
  EXPECT_EQ(FirstValue(*db, "SELECT COUNT(*) FROM TbEmpresaUsuariaSistema"), "1");
  EXPECT_EQ(FirstValue(*db, "SELECT P.Nm_Pessoa || ' / ' || J.No_CNPJ FROM TbEmpresaUsuariaSistema E "
                            "JOIN TbPessoa P ON P.Cd_Pessoa = E.Cd_Pessoa "
                            "JOIN TbPessoaJuridica J ON J.Cd_Pessoa = E.Cd_Pessoa"),
            "Rodoviária de Goiânia Administração Ltda. / 07.318.542/0001-06");
  EXPECT_EQ(FirstValue(*db, "SELECT L.Nm_Logradouro || ', ' || A.No_Imovel || ' - ' || B.Nm_Bairro || ' - ' || "
                            "C.Nm_Cidade || '/' || C.Sg_UF || ' ' || A.Cd_EP FROM TbEmpresaUsuariaSistema E "
                            "JOIN TbEndereco A ON A.Cd_Pessoa = E.Cd_Pessoa "
                            "JOIN TbLogradouro L ON L.Cd_Logradouro = A.Cd_Logradouro "
                            "JOIN TbBairro B ON B.Cd_Bairro = A.Cd_Bairro "
                            "JOIN TbCidade C ON C.Cd_Cidade = L.Cd_Cidade"),
            "44, 399 - Setor Norte Ferroviário - Goiânia/GO 74063-010");
  EXPECT_EQ(FirstValue(*db, "SELECT COUNT(*) FROM TbTelefone T JOIN TbEmpresaUsuariaSistema E "
                            "ON E.Cd_Pessoa = T.Cd_Pessoa"),
            "2");
  EXPECT_EQ(FirstValue(*db, "SELECT Ds_EMail FROM TbEMail M JOIN TbEmpresaUsuariaSistema E ON E.Cd_Pessoa = M.Cd_Pessoa"),
            "administracao@rodoviariagoiania.com.br");
  EXPECT_EQ(GetPrivateProfileString("EmpresaUsuaria", "Cd_EmpresaUsuariaSistema", "", folder_ / "Vek.ini"), company);
  EXPECT_EQ(FirstValue(*db, "SELECT Qt_DistanciaEmKm FROM TbCidade WHERE Nm_Cidade = 'Uberlândia' AND Sg_UF = 'MG'"),
            "345");

  // Two users of the company, each with a person; passwords kept only in
  // their scrambled form.
  EXPECT_EQ(FirstValue(*db, "SELECT COUNT(*) FROM TbUsuario U JOIN TbPessoaFisica F ON F.Cd_Pessoa = U.Cd_Pessoa "
                            "WHERE U.Cd_EmpresaUsuariaSistema = " + company),
            "2");
  for (const auto& [login, password] : {std::pair{"maria.souza", "pamonha2026"}, std::pair{"joao.ferreira", "Pequi#Goiás"}}) {
    const std::string stored =
        FirstValue(*db, std::string("SELECT Ds_CriptoSenha FROM TbUsuario WHERE Nm_Usuario = '") + login + "'");
    EXPECT_NE(stored, password) << login;
    EXPECT_EQ(stored.find(password), std::string::npos) << login;
    EXPECT_EQ(stored, Cripto(password)) << login;
    EXPECT_EQ(DesCripto(stored), password) << login;
  }

  // One tariff of each of the four revenue types, prices as set (and the
  // car park's bands and monthly fee add four parking tariffs).
  EXPECT_EQ(FirstValue(*db, "SELECT COUNT(*) FROM TbTarifa WHERE Cd_EmpresaUsuariaSistema = " + company +
                                " AND Cd_TipoReceita <> 2"),
            "3");
  EXPECT_EQ(FirstValue(*db, "SELECT COUNT(DISTINCT Cd_TipoReceita) FROM TbTarifa"), "4");
  EXPECT_EQ(FirstValue(*db, "SELECT CAST(T.Vl_Tarifa * 100 AS INTEGER) FROM TbTarifa T JOIN TbTipoReceita R ON R.Cd_TipoReceita = "
                            "T.Cd_TipoReceita WHERE R.Nm_TipoReceita = 'EMBARQUE'"),
            "450");
  EXPECT_EQ(FirstValue(*db, "SELECT COUNT(*) FROM TbTipoReceita"), "4");

  // Vehicles with colour and make, each in the company's car park.
  EXPECT_EQ(FirstValue(*db, "SELECT COUNT(*) FROM TbVeiculo"), "3");
  EXPECT_EQ(FirstValue(*db, "SELECT COUNT(*) FROM TbVeiculoEstacionamento E JOIN TbVeiculo V ON V.Cd_Placa = "
                            "E.Cd_Placa WHERE E.Cd_EmpresaUsuariaSistema = " + company),
            "3");
  EXPECT_EQ(FirstValue(*db, "SELECT C.Nm_Cor || ' ' || M.Ds_MarcaModelo FROM TbVeiculo V "
                            "JOIN TbCor C ON C.Cd_Cor = V.Cd_Cor JOIN TbMarcaModelo M ON M.Cd_MarcaModelo = "
                            "V.Cd_MarcaModelo WHERE V.Cd_Placa = 'OGX4C56'"),
            "Branco Fiat Strada");
  EXPECT_EQ(FirstValue(*db, "SELECT COUNT(*) FROM TbVeiculo WHERE Cd_EmpresaOnibus IS NOT NULL"), "0");
}

TEST_F(DemoCommandTest, TheOutputNamesEveryStepLinesUpByCharactersAndIsTheSameEveryRun) {
  const std::string first = Demo(folder_);
  const std::vector<cli::demo::DayStep> steps = cli::demo::DaySteps();
  for (size_t i = 0; i < steps.size(); ++i) {
    const std::string heading = std::to_string(i + 1) + "/" + std::to_string(steps.size()) + "  " + steps[i].title;
    EXPECT_NE(first.find("\n" + heading + "\n" + std::string(heading.size(), '=') + "\n"), std::string::npos)
        << heading;
  }
  EXPECT_NE(first.find("A day at the terminal, 02/03/2026 06:00"), std::string::npos) << first;
  // The monthly workbook is left in the demo folder, its path printed.
  const fs::path workbook = fs::canonical(folder_) / "MovimentoMensal-2026-03.xlsx";
  EXPECT_NE(first.find("  written to " + workbook.string() + "\n"), std::string::npos) << first;
  EXPECT_TRUE(fs::is_regular_file(workbook));
  // First access before the users, not after.
  const size_t before = first.find("EPrimeiroAcesso = True");
  const size_t after = first.find("EPrimeiroAcesso = False");
  ASSERT_NE(before, std::string::npos);
  ASSERT_NE(after, std::string::npos);
  EXPECT_LT(before, after);
  // The login: right password found, wrong one code 0.
  ASSERT_EQ(LinesWith(first, "pequi#goias").size(), 1u);
  EXPECT_NE(LinesWith(first, "pequi#goias")[0].find(" 0  refused"), std::string::npos) << first;
  ASSERT_EQ(LinesWith(first, "welcome, João Batista Ferreira").size(), 1u);
  EXPECT_EQ(LinesWith(first, "welcome, João Batista Ferreira")[0].find(" 0  "), std::string::npos);
  // Accented names take as many columns as plain ones.
  const auto goiania = LinesWith(first, "Goiânia  ");
  const auto sao_paulo = LinesWith(first, "São Paulo  ");
  const auto caldas = LinesWith(first, "Caldas Novas  ");
  ASSERT_FALSE(goiania.empty());
  ASSERT_FALSE(sao_paulo.empty());
  ASSERT_FALSE(caldas.empty());
  EXPECT_EQ(CharColumn(goiania[0], "GO"), CharColumn(sao_paulo[0], "SP")) << goiania[0] << "\n" << sao_paulo[0];
  EXPECT_EQ(CharColumn(caldas[0], "GO"), CharColumn(sao_paulo[0], "SP"));
  EXPECT_NE(first.find("R$ 4,50"), std::string::npos);

  // The folder an earlier demo made is made anew, and the day reads the same.
  EXPECT_EQ(Demo(folder_), first);
}

TEST_F(DemoCommandTest, AFolderHoldingAnotherTerminalIsLeftAlone) {
  std::ostringstream ignored;
  cli::InitTerminalFolder(folder_, false, ignored);
  OpenDatabase(folder_)->Execute("INSERT INTO TbCor (Nm_Cor) VALUES ('Amarelo')");

  const VekError refused = ErrorOf([&] { Demo(folder_); });
  EXPECT_EQ(refused.Number(), kBusinessError);
  EXPECT_NE(refused.Description().find("did not make"), std::string::npos) << refused.Description();
  EXPECT_EQ(FirstValue(*OpenDatabase(folder_), "SELECT Nm_Cor FROM TbCor"), "Amarelo");
}

TEST_F(DemoCommandTest, TheCommandLineExitsZeroOneOrTwo) {
  const ToolRun done = RunTool({"demo", folder_.string()});
  EXPECT_EQ(done.code, 0) << done.err;
  EXPECT_NE(done.out.find("The day is over"), std::string::npos);

  const ToolRun help = RunTool({"demo", "--help"});
  EXPECT_EQ(help.code, 0);
  EXPECT_NE(help.out.find("--now"), std::string::npos) << help.out;

  EXPECT_EQ(RunTool({"demo", "--tomorrow"}).code, 2);
  EXPECT_EQ(RunTool({"demo", "one", "two"}).code, 2);

  const fs::path other = app_.Path() / "other terminal";
  std::ostringstream ignored;
  cli::InitTerminalFolder(other, false, ignored);
  const ToolRun refused = RunTool({"demo", other.string()});
  EXPECT_EQ(refused.code, 1);
  EXPECT_EQ(refused.err.rfind("vek: ", 0), 0u) << refused.err;
  EXPECT_NE(refused.err.find("0x80040458"), std::string::npos) << refused.err;
}

TEST_F(DemoCommandTest, WithNowTheDayRunsOnTheSystemClock) {
  const std::string day_before = Format(Variant(SystemClock().Now()), "dd/mm/yyyy");
  const std::string text = Demo(folder_, {.system_clock = true});
  const std::string day_after = Format(Variant(SystemClock().Now()), "dd/mm/yyyy");
  EXPECT_TRUE(text.find("A day at the terminal, " + day_before) != std::string::npos ||
              text.find("A day at the terminal, " + day_after) != std::string::npos)
      << text;
}

TEST_F(DemoCommandTest, TheCarParksDayLeavesEveryExitWithItsChargeLinesAndEveryPassageProcessed) {
  Demo(folder_);
  auto db = OpenDatabase(folder_);
  // Every closed ticket that was charged has charge lines adding up to its value.
  EXPECT_EQ(FirstValue(*db, "SELECT COUNT(*) FROM TbTicketEstacionamento T WHERE T.No_Situacao = 2 AND T.Vl_Tarifa > 0"),
            "3");
  EXPECT_EQ(FirstValue(*db, "SELECT COUNT(*) FROM TbTicketEstacionamento T WHERE T.No_Situacao = 2 AND T.Vl_Tarifa > 0 "
                            "AND T.Vl_Tarifa <> (SELECT SUM(L.Qt_Unidade * L.Vl_Tarifa) FROM "
                            "TbTicketEstacionamento_TbTarifa L WHERE L.Cd_TicketEstacionamento = "
                            "T.Cd_TicketEstacionamento)"),
            "0");
  EXPECT_EQ(FirstValue(*db, "SELECT COUNT(*) FROM TbTicketEstacionamento WHERE No_Situacao = 2 AND Cd_Caixa IS NULL "
                            "AND Ic_Mensalista = 0 AND Ic_TicketRevalidado = 0 AND Vl_Tarifa > 0"),
            "0");
  // The card entered twice without an exit: its first entry was closed at no charge.
  EXPECT_EQ(FirstValue(*db, "SELECT COUNT(*) FROM TbTicketEstacionamento WHERE Ic_Mensalista = 1 AND No_Situacao = 2 "
                            "AND Dt_Saida = Dt_Entrada"),
            "1");
  // Every passage of the gates' log points at a ticket; the old entries are gone.
  EXPECT_EQ(FirstValue(*db, "SELECT COUNT(*) FROM MDESTACIONAMENTO.dbo.LOGPERMANENCIAMENSALISTA WHERE Cd_TicketEstacionamento IS NULL"),
            "0");
  EXPECT_EQ(FirstValue(*db, "SELECT COUNT(*) FROM TbTicketEstacionamento WHERE Cd_Placa = 'OLD0A00'"), "0");
  EXPECT_EQ(FirstValue(*db, "SELECT COUNT(*) FROM MDESTACIONAMENTO.dbo.CARTOESAVULSOS WHERE CODIGOCARTAO = '2511220000001'"), "0");
  EXPECT_EQ(FirstValue(*db, "SELECT COUNT(*) FROM MDESTACIONAMENTO.dbo.CLIENTECARTAO"), "2");
  // The turnstile's sales carry the server's time of the day, not the record's.
  EXPECT_EQ(FirstValue(*db, "SELECT SUM(Qt_Unidade) FROM TbTicketSanitario"), "7");
  EXPECT_EQ(FirstValue(*db, "SELECT COUNT(*) FROM TbTicketSanitario WHERE Dt_Entrada LIKE '2026-03-02 %'"), "4");
}

}  // namespace
}  // namespace vek
