// The web screens' endpoints, on both engines: a server over a terminal
// database whose snapshots the test rebuilds itself (no worker), asked over
// loopback by an HTTP client.

#include "cli/serve/Server.h"

#include <gtest/gtest.h>
#include <httplib.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <thread>

#include "bus/BusTerminal.h"
#include "cli/Commands.h"
#include "cli/ToolRun.h"
#include "support/TestSupport.h"

namespace vek::cli::serve {
namespace {

using testing::Lines;

class ServeEndpointsTest : public ::testing::Test {
 protected:
  ServeEndpointsTest() {
    db.session->Let("Qt_TempoAntecedenciaMostrarViagensVisualizador", Variant(30));
    db.Trip(1, 1, 1, "2026-11-21 08:00:00", 3, 2);   // Goiânia -> São Paulo, left
    db.Trip(2, 3, 4, "2026-11-21 11:00:00", 7, 0);   // Anápolis -> Goiânia, arrives at the look-ahead's end
    db.Trip(3, 4, 6, "2026-11-21 10:15:00", 2, 1);   // passing: on both panels
    db.Trip(4, 4, 6, "2026-11-21 11:01:00", 2, 0);   // beyond the look-ahead
    db.Trip(5, 1, 5, "2026-11-21 09:00:00", 1, 0, 2);  // another operating company's
  }
  ~ServeEndpointsTest() override { StopServer(); }

  void StartServer(int32_t rows = 10) {
    ServeOptions options;
    options.host = "127.0.0.1";
    options.port = 0;
    options.rows = rows;
    options.refresh = std::chrono::milliseconds(0);
    options.threads = 4;
    server_ = std::make_unique<TerminalServer>(db.session, 1, options, log_);
    const int port = server_->Bind();
    serving_ = std::thread([this] { server_->Run(); });
    client_ = std::make_unique<httplib::Client>("127.0.0.1", port);
  }
  void StopServer() {
    if (!server_) return;
    server_->Stop();
    serving_.join();
    server_.reset();
  }

  httplib::Result Get(const std::string& path) { return client_->Get(path); }
  int Status(const std::string& path) {
    auto result = client_->Get(path);
    return result ? result->status : -1;
  }
  int Mark(const std::string& code) {
    auto result = client_->Post("/api/avisos/" + code + "/feito");
    return result ? result->status : -1;
  }

  testing::BusTerminal db;
  std::ostringstream log_;
  std::unique_ptr<TerminalServer> server_;
  std::thread serving_;
  std::unique_ptr<httplib::Client> client_;
};

TEST_F(ServeEndpointsTest, TheBoardIsWhatTheViewersMembersReturn) {
  StartServer(2);
  // One refresh reads the two panels and the announcements, then the yard.
  ASSERT_GE(db.statements.size(), 4u);
  EXPECT_TRUE(db.statements[0].starts_with(Lines({"SELECT   TOP 2", "A.Cd_ViagemOnibus,"}))) << db.statements[0];
  EXPECT_NE(db.statements[0].find("And B.Ic_TemDesembarque <> 0"), std::string::npos);
  EXPECT_NE(db.statements[1].find("And B.Ic_TemEmbarques <> 0"), std::string::npos);
  EXPECT_TRUE(db.statements[2].starts_with("SELECT   *\rFROM     TbAgendaSom\r")) << db.statements[2];

  auto board = Get("/api/board");
  ASSERT_TRUE(board);
  EXPECT_EQ(board->status, 200);
  EXPECT_EQ(board->get_header_value("Content-Type"), "application/json; charset=utf-8");
  EXPECT_EQ(board->body,
            R"({"atualizado":"21/11/2026 10:30:00","linhas":2,)"
            R"("chegadas":[{"viagem":2,"origem":"Anápolis/GO","destino":"Goiânia/GO","empresa":"São Luiz",)"
            R"("previsto":"11:00","plataforma":"7","andamento":0,"situacao":"Previsto"},)"
            R"({"viagem":3,"origem":"Olhos-d'Água/MG","destino":"Goiânia/GO","empresa":"Araguarina",)"
            R"("previsto":"10:15","plataforma":"2","andamento":1,"situacao":"Embarque"}],)"
            R"("partidas":[{"viagem":3,"origem":"Olhos-d'Água/MG","destino":"Goiânia/GO","empresa":"Araguarina",)"
            R"("previsto":"10:15","plataforma":"2","andamento":1,"situacao":"Embarque"},)"
            R"({"viagem":1,"origem":"Goiânia/GO","destino":"São Paulo/SP","empresa":"Araguarina",)"
            R"("previsto":"08:00","plataforma":"3","andamento":2,"situacao":"Partiu"}],"avisos":[]})");

  auto page = Get("/");
  ASSERT_TRUE(page);
  EXPECT_EQ(page->status, 200);
  EXPECT_EQ(page->get_header_value("Content-Type"), "text/html; charset=utf-8");
  EXPECT_NE(page->body.find("<h2>Chegadas</h2>"), std::string::npos);
  EXPECT_LT(page->body.find("<h2>Chegadas</h2>"), page->body.find("<h2>Partidas</h2>"));
  EXPECT_NE(page->body.find("<tr data-viagem=\"1\"><td class=\"hora\">08:00</td><td>Goiânia/GO</td>"
                            "<td>São Paulo/SP</td><td>Araguarina</td><td class=\"plat\">3</td>"
                            "<td class=\"sit s2\">Partiu</td></tr>"),
            std::string::npos)
      << page->body;
  EXPECT_NE(page->body.find("<span id=\"atualizado\">21/11/2026 10:30:00</span>"), std::string::npos);
  EXPECT_EQ(page->body.find("data-viagem=\"4\""), std::string::npos);  // beyond the look-ahead
  EXPECT_EQ(page->body.find("data-viagem=\"5\""), std::string::npos);  // another company's

  auto script = Get("/static/painel.js");
  ASSERT_TRUE(script);
  EXPECT_EQ(script->status, 200);
  EXPECT_NE(script->body.find("/api/board"), std::string::npos);
  EXPECT_EQ(Status("/static/estilo.css"), 200);
  EXPECT_EQ(Status("/healthz"), 200);
}

TEST_F(ServeEndpointsTest, TheScreensFollowTheDatabaseOnlyWhenTheSnapshotIsRebuilt) {
  StartServer();
  const std::string before = Get("/api/board")->body;
  EXPECT_NE(before.find(R"("viagem":2,"origem":"Anápolis/GO")"), std::string::npos);
  db.Query("UPDATE TbViagemOnibus SET No_Andamento = 3, Hr_Previsto = '2026-11-21 10:40:00' WHERE Cd_ViagemOnibus = 2");
  // Every client reads the same snapshot until the worker rebuilds it.
  EXPECT_EQ(Get("/api/board")->body, before);
  server_->Refresh();
  const std::string after = Get("/api/board")->body;
  EXPECT_NE(after.find(R"("previsto":"10:40","plataforma":"7","andamento":3,"situacao":"Chegou")"),
            std::string::npos)
      << after;
  EXPECT_NE(Get("/")->body.find("<td class=\"sit s3\">Chegou</td>"), std::string::npos);
}

TEST_F(ServeEndpointsTest, DatabaseTextsAreShownAsTextOnThePagesAndInTheJson) {
  db.Query("UPDATE TbCidade SET Nm_Cidade = '<script>alert(1)</script>' WHERE Cd_Cidade = 2");
  db.Query("UPDATE TbEmpresaOnibus SET Nm_EmpresaOnibus = 'A & \"B\" <i>' WHERE Cd_EmpresaOnibus = 11");
  db.Query("INSERT INTO TbTicketEstacionamento (Cd_EmpresaUsuariaSistema, Cd_TicketEstacionamento, Cd_Placa, "
           "No_Situacao, Dt_Entrada, Ds_Ticket) VALUES (1, 1, 'ABC1D23', 1, '2026-11-21 09:00:00', "
           "'<img src=x onerror=alert(2)>')");
  StartServer();
  const std::string page = Get("/")->body;
  EXPECT_EQ(page.find("<script>alert"), std::string::npos);
  EXPECT_NE(page.find("<td>&lt;script&gt;alert(1)&lt;/script&gt;/GO</td>"), std::string::npos) << page;
  EXPECT_NE(page.find("<td>A &amp; &quot;B&quot; &lt;i&gt;</td>"), std::string::npos);
  const std::string json = Get("/api/board")->body;
  EXPECT_NE(json.find(R"("origem":"\u003cscript\u003ealert(1)\u003c/script\u003e/GO")"), std::string::npos) << json;
  EXPECT_NE(json.find(R"("empresa":"A \u0026 \"B\" \u003ci\u003e")"), std::string::npos);

  const std::string yard = Get("/patio")->body;
  EXPECT_EQ(yard.find("<img"), std::string::npos);
  EXPECT_NE(yard.find("<td>TICKET:&lt;img src=x onerror=alert(2)&gt;</td>"), std::string::npos) << yard;
  EXPECT_NE(Get("/api/patio")->body.find(R"("ticket":"TICKET:\u003cimg src=x onerror=alert(2)\u003e")"),
            std::string::npos);
}

TEST_F(ServeEndpointsTest, TheYardListsTheVehiclesInsideOldestFirstWithTheirCount) {
  db.Query("INSERT INTO TbMarcaModelo (Cd_MarcaModelo, Ds_MarcaModelo) VALUES (6, 'Fiat Strada')");
  db.Query("INSERT INTO TbVeiculo (Cd_Placa, Cd_MarcaModelo) VALUES ('OGX4C56', 6)");
  db.Query("INSERT INTO TbTicketEstacionamento (Cd_EmpresaUsuariaSistema, Cd_TicketEstacionamento, Cd_Placa, "
           "No_Situacao, Dt_Entrada, Ic_Mensalista) VALUES (1, 1, 'OGX4C56', 1, '2026-11-21 09:15:00', 1), "
           "(1, 2, 'PQA1B23', 1, '2026-11-21 07:40:00', 0), (1, 3, 'QTR7E89', 2, '2026-11-21 06:00:00', 0), "
           "(2, 4, 'RST0A11', 1, '2026-11-21 06:30:00', 0)");
  StartServer();
  EXPECT_EQ(Get("/api/patio")->body,
            R"({"atualizado":"21/11/2026 10:30:00","quantidade":2,"veiculos":[)"
            R"({"ticket":"PLACA.:PQA1B23,","entrada":"21/11/2026 07:40","mensalista":false},)"
            R"({"ticket":"PLACA.:OGX4C56,Fiat Strada","entrada":"21/11/2026 09:15","mensalista":true}]})");
  const std::string page = Get("/patio")->body;
  EXPECT_NE(page.find("<span id=\"quantidade\">2</span> veículos no pátio"), std::string::npos) << page;
  EXPECT_LT(page.find("PQA1B23"), page.find("OGX4C56"));
  EXPECT_NE(page.find("<td>Mensalista</td><td>PLACA.:OGX4C56,Fiat Strada</td>"), std::string::npos);
}

TEST_F(ServeEndpointsTest, AnAnnouncementDueIsShownAndMarkedPlayedOnce) {
  db.Query("INSERT INTO TbAgendaSom (Cd_EmpresaUsuariaSistema, Cd_AgendaSom, Cd_ViagemOnibus, Dt_Agendamento, "
           "Ic_Feito) VALUES (1, 7, 3, '2026-11-21 10:25:00', 0), (1, 8, 1, '2026-11-21 10:19:00', 0)");
  StartServer();
  // 10:19 is eleven minutes ago: no longer due.
  const std::string board = Get("/api/board")->body;
  EXPECT_NE(board.find(R"("avisos":[{"agenda":7,"viagem":3,"horario":"10:25","texto":"Atenção, senhores )"
                       R"(passageiros: ônibus da empresa Araguarina para Goiânia/GO, saída às 10:15, embarque na )"
                       R"(plataforma 2."}]})"),
            std::string::npos)
      << board;
  EXPECT_NE(Get("/")->body.find("<body class=\"avisando\">"), std::string::npos);

  db.statements.clear();
  EXPECT_EQ(Mark("7"), 200);
  // Through cgdAgendaSom: its look-up, then its update.
  ASSERT_GE(db.statements.size(), 2u);
  EXPECT_EQ(db.statements[0], Lines({"SELECT A.*", "FROM   TbAgendaSom A", "WHERE  A.Cd_EmpresaUsuariaSistema = 1",
                                     "And A.Cd_AgendaSom = 7", ";"}) +
                                   "\r");
  EXPECT_TRUE(CBool(db.Query("SELECT Ic_Feito FROM TbAgendaSom WHERE Cd_AgendaSom = 7")->Fields().Item(0).Value()));
  EXPECT_FALSE(CBool(db.Query("SELECT Ic_Feito FROM TbAgendaSom WHERE Cd_AgendaSom = 8")->Fields().Item(0).Value()));
  // A second screen finds it played and does not say it again.
  EXPECT_EQ(Mark("7"), 409);
  EXPECT_EQ(Mark("99"), 404);
  server_->Refresh();
  EXPECT_NE(Get("/api/board")->body.find(R"("avisos":[]})"), std::string::npos);
  EXPECT_EQ(Get("/")->body.find("<body class=\"avisando\">"), std::string::npos);
}

TEST_F(ServeEndpointsTest, BadPathsAre404AndBadParameters400) {
  StartServer();
  EXPECT_EQ(Status("/nada"), 404);
  EXPECT_EQ(Status("/api/board/1"), 404);
  EXPECT_EQ(Status("/static/nada.js"), 404);
  EXPECT_EQ(Status("/static/../Vek.ini"), 404);
  EXPECT_EQ(Status("/?som=1"), 200);
  EXPECT_EQ(Status("/?som=0"), 200);
  EXPECT_EQ(Status("/?som=2"), 400);
  EXPECT_EQ(Status("/?linhas=5"), 400);
  EXPECT_EQ(Status("/api/board?som=1"), 400);
  EXPECT_EQ(Status("/patio?x"), 400);
  EXPECT_EQ(Mark("abc"), 404);
  EXPECT_EQ(Mark("0"), 400);
  EXPECT_EQ(Mark("4294967296"), 400);
  auto result = client_->Post("/api/avisos/7/feito?x=1");
  ASSERT_TRUE(result);
  EXPECT_EQ(result->status, 400);
  EXPECT_EQ(result->body, R"({"erro":"Parâmetro inválido"})");
  // Reading never writes: a GET to the mark is not a path.
  EXPECT_EQ(Status("/api/avisos/7/feito"), 404);
}

TEST_F(ServeEndpointsTest, ADatabaseErrorIs503WithAShortMessageLoggedOnceAndTheServerGoesOn) {
  StartServer();
  db.connection->ExecuteNative("DROP TABLE TbAgendaSom");
  server_->Refresh();
  server_->Refresh();
  auto board = Get("/api/board");
  ASSERT_TRUE(board);
  EXPECT_EQ(board->status, 503);
  EXPECT_EQ(board->body, R"({"erro":"Banco de dados indisponível"})");
  auto page = Get("/");
  EXPECT_EQ(page->status, 503);
  EXPECT_NE(page->body.find("banco de dados indisponível"), std::string::npos);
  EXPECT_NE(page->body.find("/static/painel.js"), std::string::npos);  // the page keeps asking
  EXPECT_EQ(Status("/healthz"), 503);
  EXPECT_EQ(Status("/api/patio"), 200);  // the yard still reads
  EXPECT_EQ(Mark("1"), 503);
  // The error is logged with its number and source, once for the refreshes
  // and once for the mark.
  const std::string log = log_.str();
  EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 2) << log;
  EXPECT_NE(log.find("vek serve: "), std::string::npos);
  EXPECT_NE(log.find("(error 0x80040E14, source: " + testing::ProviderSource() +
                     " -> cgdEmpresaUsuariaSistema.rsAgendaSom, )\n"),
            std::string::npos)
      << log;
  EXPECT_NE(log.find("source: " + testing::ProviderSource() + " -> cgdAgendaSom.Consultar, )\n"), std::string::npos)
      << log;
}

TEST(ServeListenAddressTest, HostAndPortAreSplitAndBadAddressesRefused) {
  std::string host;
  int port = -1;
  EXPECT_TRUE(ParseListenAddress("127.0.0.1:8080", host, port));
  EXPECT_EQ(host, "127.0.0.1");
  EXPECT_EQ(port, 8080);
  EXPECT_TRUE(ParseListenAddress("[::1]:0", host, port));
  EXPECT_EQ(host, "::1");
  EXPECT_EQ(port, 0);
  EXPECT_TRUE(ParseListenAddress("0.0.0.0:65535", host, port));
  for (const char* bad : {"", "8080", ":8080", "127.0.0.1:", "127.0.0.1:65536", "127.0.0.1:-1", "127.0.0.1:80x",
                          "::1:8080", "[::1:8080", "[]:80"}) {
    EXPECT_FALSE(ParseListenAddress(bad, host, port)) << bad;
  }
}

}  // namespace
}  // namespace vek::cli::serve

namespace vek {
namespace {

TEST(ServeCommandTest, ABadAddressOrAFolderWithoutATerminalIsAFailureExplainedInOneLine) {
  testing::ScratchApp app;
  const std::filesystem::path folder = app.Path() / "terminal";
  std::filesystem::create_directories(folder);
  testing::ToolRun run = testing::RunTool({"serve", folder.string()});
  EXPECT_EQ(run.code, 1);
  EXPECT_NE(run.err.find("holds no terminal: there is no Vek.ini"), std::string::npos) << run.err;
  EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1);

  std::ostringstream ignored;
  cli::InitTerminalFolder(folder, false, ignored);
  run = testing::RunTool({"serve", folder.string(), "--listen", "localhost"});
  EXPECT_EQ(run.code, 1);
  EXPECT_NE(run.err.find("Endereço inválido: localhost"), std::string::npos) << run.err;
  WritePrivateProfileString("EmpresaUsuaria", "Cd_EmpresaUsuariaSistema", "0", folder / "Vek.ini");
  run = testing::RunTool({"serve", folder.string(), "--listen", "127.0.0.1:0"});
  EXPECT_EQ(run.code, 1);
  EXPECT_NE(run.err.find("não informa a empresa usuária"), std::string::npos) << run.err;
  EXPECT_EQ(run.out, "");  // nothing was served
  EXPECT_EQ(testing::RunTool({"serve", folder.string(), "--rows", "-1"}).code, 2);
}

}  // namespace
}  // namespace vek
