#include "vek/schema/Ddl.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <string>
#include <vector>

#include "db/dialect/SqliteTestDb.h"
#include "vek/db/dialect/SqliteTranslator.h"
#include "vek/db/dialect/Statements.h"
#include "vek/schema/Catalogue.h"

namespace vek::schema {
namespace {

using vek::dialect::testing::SqliteTestDb;
using vek::testing::Lines;

void CreateSchema(SqliteTestDb& db, std::string_view prefix = "MDESTACIONAMENTO") {
  for (const std::string& statement : SqliteDdl(prefix)) db.Exec(statement);
}

// A database with the access-control database attached and the whole schema.
struct SchemaDb : SqliteTestDb {
  SchemaDb() {
    Exec("ATTACH DATABASE ':memory:' AS MDESTACIONAMENTO");
    CreateSchema(*this);
  }
};

using Values = std::vector<std::string>;

TEST(SchemaDdl, CreatesEverythingAndRunsTwiceWithoutChange) {
  SchemaDb db;
  std::string count_main =
      "SELECT count(*) FROM sqlite_master WHERE type = 'table' AND name NOT LIKE 'sqlite\\_%' ESCAPE '\\'";
  std::string count_access =
      "SELECT count(*) FROM MDESTACIONAMENTO.sqlite_master WHERE type = 'table'";
  EXPECT_EQ(db.Scalar(count_main), "57");
  EXPECT_EQ(db.Scalar(count_access), "7");
  std::string objects = "SELECT count(*) FROM sqlite_master";
  std::string before = db.Scalar(objects);
  db.Exec("INSERT INTO TbTipoReceita (Nm_TipoReceita) VALUES ('PUBLICIDADE')");

  CreateSchema(db);
  EXPECT_EQ(db.Scalar(objects), before);
  EXPECT_EQ(db.Scalar(count_access), "7");
  // Fixed rows are not doubled and a terminal's own rows stay.
  EXPECT_EQ(db.Scalar("SELECT count(*) FROM TbTipoReceita"), "5");
  EXPECT_EQ(db.Scalar("SELECT count(*) FROM MDESTACIONAMENTO.EVENTO"), "2");
  EXPECT_EQ(db.Scalar("SELECT Nm_TipoReceita FROM TbTipoReceita WHERE Cd_TipoReceita = 5"), "PUBLICIDADE");
  // The boarding statements select the fixed type 1 by its name, in any case.
  EXPECT_EQ(db.Scalar("SELECT Cd_TipoReceita FROM TbTipoReceita WHERE Nm_TipoReceita = 'embarque'"), "1");
  // Every index of the catalogue exists.
  size_t indexes = 0;
  for (const TableDef& table : Tables()) indexes += table.indexes.size();
  EXPECT_EQ(std::stoul(db.Scalar("SELECT count(*) FROM sqlite_master WHERE type = 'index' AND "
                                 "(name LIKE 'IX%' OR name LIKE 'UX%')")) +
                std::stoul(db.Scalar("SELECT count(*) FROM MDESTACIONAMENTO.sqlite_master "
                                     "WHERE type = 'index' AND name LIKE 'IX%'")),
            indexes);
}

TEST(SchemaDdl, ANewDatabaseKnowsHowBigItsTablesGrow) {
  SchemaDb db;
  // Every statistic names an index there is (a table without rowid is its
  // key's index); every table of the terminal has some.
  EXPECT_EQ(db.Scalar("SELECT count(*) FROM sqlite_stat1 WHERE idx IS NOT NULL AND idx <> tbl AND "
                      "idx NOT IN (SELECT name FROM sqlite_master WHERE type = 'index')"),
            "0");
  EXPECT_EQ(db.Scalar("SELECT count(*) FROM sqlite_master WHERE type = 'table' AND name NOT LIKE 'sqlite\\_%' "
                      "ESCAPE '\\' AND name NOT IN (SELECT tbl FROM sqlite_stat1)"),
            "0");
  // The tenant selects every trip; a timetable's trips are few; timetables
  // are few, and a line's or a city's share of those that refer to it.
  EXPECT_EQ(db.Scalar("SELECT stat FROM sqlite_stat1 WHERE idx = "
                      "'IX_TbViagemOnibus_Cd_EmpresaUsuariaSistema_Cd_HorarioLinha_Hr_Previsto'"),
            "1000000 1000000 10 5");
  EXPECT_EQ(db.Scalar("SELECT stat FROM sqlite_stat1 WHERE idx = 'sqlite_autoindex_TbHorariosLinha_1'"),
            "1000 1000 1 1");
  EXPECT_EQ(db.Scalar("SELECT stat FROM sqlite_stat1 WHERE idx = 'IX_TbLinha_Cd_CidadeOrigem'"), "1000 1");

  // The yard finds a loose card's ticket through the index on the code's first 13 characters.
  std::string plan;
  for (const auto& step : db.Query("EXPLAIN QUERY PLAN " +
                                   dialect::TranslateToSqlite(
                                       "SELECT C.CODIGOCARTAO FROM MDESTACIONAMENTO.dbo.CARTOESAVULSOS C LEFT JOIN "
                                       "TbTicketEstacionamento T ON Substring(T.Ds_Ticket,1,13) = C.CODIGOCARTAO "
                                       "WHERE T.Ds_Ticket IS NULL"))) {
    plan += step.back() + " / ";
  }
  EXPECT_NE(plan.find("IX_TbTicketEstacionamento_Ds_Ticket_13"), std::string::npos) << plan;

  // Statistics measured by ANALYZE stay when the schema is completed again.
  db.Exec("INSERT INTO TbUF (Sg_UF, Nm_UF) VALUES ('GO', 'Goiás'), ('SP', 'São Paulo')");
  db.Exec("DELETE FROM sqlite_stat1 WHERE tbl = 'TbUF'");
  db.Exec("ANALYZE TbUF");
  const std::string measured = db.Scalar("SELECT group_concat(stat, ';') FROM sqlite_stat1 WHERE tbl = 'TbUF'");
  CreateSchema(db);
  EXPECT_EQ(db.Scalar("SELECT group_concat(stat, ';') FROM sqlite_stat1 WHERE tbl = 'TbUF'"), measured);
}

TEST(SchemaDdl, EachElementIsOneStatement) {
  // The connection runs one statement per call; a trigger's body is part of it.
  size_t triggers = 0;
  for (const std::string& statement : SqliteDdl()) {
    EXPECT_EQ(vek::dialect::CountStatements(statement), 1u) << statement;
    if (statement.rfind("CREATE TRIGGER", 0) == 0) ++triggers;
  }
  size_t tables_with_bits = 0;
  for (const TableDef& table : Tables()) {
    for (const ColumnDef& column : table.columns) {
      if (column.type == ColumnType::Bit) {
        ++tables_with_bits;
        break;
      }
    }
  }
  EXPECT_EQ(triggers, 2 * tables_with_bits);
}

TEST(SchemaDdl, DeclaredTypesKeysAndIdentitiesMatchTheCatalogue) {
  SchemaDb db;
  for (const TableDef& table : Tables()) {
    std::string schema = table.database.empty() ? "main" : std::string(table.database);
    sqlite3_stmt* info = nullptr;
    std::string sql = "PRAGMA " + schema + ".table_info(" + std::string(table.name) + ")";
    ASSERT_EQ(sqlite3_prepare_v2(db.Handle(), sql.c_str(), -1, &info, nullptr), SQLITE_OK);
    size_t row = 0;
    while (sqlite3_step(info) == SQLITE_ROW) {
      ASSERT_LT(row, table.columns.size()) << table.name;
      const ColumnDef& column = table.columns[row++];
      std::string name = reinterpret_cast<const char*>(sqlite3_column_text(info, 1));
      std::string type = reinterpret_cast<const char*>(sqlite3_column_text(info, 2));
      EXPECT_EQ(name, column.name) << table.name;
      EXPECT_EQ(type, SqliteTypeName(column)) << table.name << "." << name;
      EXPECT_EQ(sqlite3_column_int(info, 3) != 0, !column.nullable) << table.name << "." << name;
      int pk = sqlite3_column_int(info, 5);
      if (pk > 0) {
        EXPECT_EQ(table.primary_key.at(static_cast<size_t>(pk - 1)), column.name) << table.name;
      }

      int autoinc = 0;
      const char* declared = nullptr;
      ASSERT_EQ(sqlite3_table_column_metadata(db.Handle(), schema.c_str(),
                                              std::string(table.name).c_str(), name.c_str(),
                                              &declared, nullptr, nullptr, nullptr, &autoinc),
                SQLITE_OK);
      bool identity = table.HasIdentity() && column.name == table.primary_key.front();
      EXPECT_EQ(autoinc != 0, identity) << table.name << "." << name;
    }
    sqlite3_finalize(info);
    EXPECT_EQ(row, table.columns.size()) << table.name;
  }
}

TEST(SchemaDdl, IdentitiesNumberOnceAndGivenKeysRefuseNull) {
  SchemaDb db;
  db.Exec("INSERT INTO TbCidade (Nm_Cidade) VALUES ('Campinas')");
  db.Exec("INSERT INTO TbBairro (Nm_Bairro, Cd_Cidade) VALUES ('Centro', 1)");
  db.Exec("INSERT INTO TbBairro (Nm_Bairro, Cd_Cidade) VALUES ('Cambuí', 1)");
  EXPECT_EQ(db.Scalar("SELECT max(Cd_Bairro) FROM TbBairro"), "2");
  // As an identity does, a number once given is not given again.
  db.Exec("DELETE FROM TbBairro WHERE Cd_Bairro = 2");
  db.Exec("INSERT INTO TbBairro (Nm_Bairro, Cd_Cidade) VALUES ('Taquaral', 1)");
  EXPECT_EQ(db.Scalar("SELECT Cd_Bairro FROM TbBairro WHERE Nm_Bairro = 'Taquaral'"), "3");

  // A code written as Null (code 0) where the caller must give the key fails.
  EXPECT_EQ(db.Code("INSERT INTO TbEmpresaOnibus (Cd_EmpresaOnibus, Nm_EmpresaOnibus) VALUES (NULL, 'Viação')"),
            SQLITE_CONSTRAINT);
  EXPECT_EQ(db.Code("INSERT INTO TbPessoaFisica (Cd_Pessoa) VALUES (NULL)"), SQLITE_CONSTRAINT);
  EXPECT_EQ(db.Code("INSERT INTO TbHorariosLinha (Cd_EmpresaUsuariaSistema, Cd_Linha) VALUES (1, 1)"),
            SQLITE_CONSTRAINT);
  EXPECT_EQ(db.Code("INSERT INTO TbVeiculo (Cd_Placa) VALUES (NULL)"), SQLITE_CONSTRAINT);
  db.Exec("INSERT INTO TbEmpresaOnibus (Cd_EmpresaOnibus, Nm_EmpresaOnibus) VALUES (77, 'Viação')");
  EXPECT_EQ(db.Scalar("SELECT Cd_EmpresaOnibus FROM TbEmpresaOnibus"), "77");
}

TEST(SchemaDdl, DeletingARowThatOthersReferToFails) {
  SchemaDb db;
  db.Exec("PRAGMA foreign_keys = ON");
  for (const TableDef& table : Tables()) {
    std::string schema = table.database.empty() ? "main" : std::string(table.database);
    // Fails with "foreign key mismatch" when a parent's columns are no key.
    EXPECT_EQ(db.QueryError("PRAGMA " + schema + ".foreign_key_check(" + std::string(table.name) + ")"), "");
  }

  db.Exec("INSERT INTO TbTarifa (Cd_EmpresaUsuariaSistema, Ds_Tarifa, Vl_Tarifa, Cd_TipoReceita) "
         "VALUES (1, 'EMBARQUE INTERESTADUAL', 1.25, 1)");
  EXPECT_EQ(db.Code("DELETE FROM TbTipoReceita WHERE Cd_TipoReceita = 1"), SQLITE_CONSTRAINT);
  EXPECT_EQ(db.Code("DELETE FROM TbTipoReceita WHERE Cd_TipoReceita = 3"), SQLITE_OK);
  EXPECT_EQ(db.Scalar("SELECT count(*) FROM TbTipoReceita"), "3");
  // A code 0 reaches the database as Null and refers to nothing.
  EXPECT_EQ(db.Code("INSERT INTO TbTarifa (Ds_Tarifa, Cd_TipoReceita) VALUES ('AVULSA', NULL)"),
            SQLITE_OK);
  EXPECT_EQ(db.Code("INSERT INTO TbTarifa (Ds_Tarifa, Cd_TipoReceita) VALUES ('ERRADA', 99)"),
            SQLITE_CONSTRAINT);

  // A line with timetables stays; the timetable goes after its stops.
  db.Exec("INSERT INTO TbCidade (Nm_Cidade) VALUES ('Campinas')");
  db.Exec("INSERT INTO TbCidade (Nm_Cidade) VALUES ('Santos')");
  db.Exec("INSERT INTO TbLinha (Cd_CidadeOrigem, Cd_CidadeDestino) VALUES (1, 2)");
  db.Exec("INSERT INTO TbHorariosLinha (Cd_EmpresaUsuariaSistema, Cd_Linha, Cd_HorarioLinha) VALUES (1, 1, 10)");
  db.Exec("INSERT INTO TbEscalasHorarioLinha VALUES (1, 1, 10, 2)");
  // A stop must belong to a timetable of the same tenant.
  EXPECT_EQ(db.Code("INSERT INTO TbEscalasHorarioLinha VALUES (2, 1, 10, 2)"), SQLITE_CONSTRAINT);
  EXPECT_EQ(db.Code("DELETE FROM TbLinha WHERE Cd_Linha = 1"), SQLITE_CONSTRAINT);
  EXPECT_EQ(db.Code("DELETE FROM TbCidade WHERE Cd_Cidade = 2"), SQLITE_CONSTRAINT);
  EXPECT_EQ(db.Code("DELETE FROM TbHorariosLinha WHERE Cd_HorarioLinha = 10"), SQLITE_CONSTRAINT);
  EXPECT_EQ(db.Code("DELETE FROM TbEscalasHorarioLinha WHERE Cd_HorarioLinha = 10"), SQLITE_OK);
  EXPECT_EQ(db.Code("DELETE FROM TbHorariosLinha WHERE Cd_HorarioLinha = 10"), SQLITE_OK);
  EXPECT_EQ(db.Code("DELETE FROM TbLinha WHERE Cd_Linha = 1"), SQLITE_OK);
}

TEST(SchemaDdl, BitsWrittenAsMinusOneAreStoredAsOne) {
  SchemaDb db;
  db.Exec("INSERT INTO TbHorariosLinha (Cd_EmpresaUsuariaSistema, Cd_Linha, Cd_HorarioLinha, "
         "Ic_TemEmbarques, Ic_TemDesembarque, Ic_ViagemNoDomingo, Ic_ViagemNaSegunda, "
         "Ic_ViagemNaTerca) VALUES (1, 1, 1, -1, 0, NULL, 1, 2)");
  EXPECT_EQ(db.Scalar("SELECT count(*) FROM TbHorariosLinha WHERE Ic_TemEmbarques = 1"), "1");
  EXPECT_EQ(db.Scalar("SELECT Ic_TemEmbarques || ',' || Ic_TemDesembarque || ',' || "
                      "ifnull(Ic_ViagemNoDomingo, 'NULL') || ',' || Ic_ViagemNaSegunda || ',' || "
                      "Ic_ViagemNaTerca FROM TbHorariosLinha"),
            "1,0,NULL,1,1");

  db.Exec("UPDATE TbHorariosLinha SET Ic_TemDesembarque = -1, Ic_ViagemNoDomingo = 0");
  EXPECT_EQ(db.Scalar("SELECT Ic_TemDesembarque || ',' || Ic_ViagemNoDomingo FROM TbHorariosLinha"),
            "1,0");
  db.Exec("UPDATE TbHorariosLinha SET Ic_TemEmbarques = 0");
  EXPECT_EQ(db.Scalar("SELECT count(*) FROM TbHorariosLinha WHERE Ic_TemEmbarques = 1"), "0");

  // A table without a key: each of two equal rows is set by itself.
  db.Exec("INSERT INTO TempCidade VALUES (5, 'Santos', 'STS', 'SP', 35, 80, -1)");
  db.Exec("INSERT INTO TempCidade VALUES (5, 'Santos', 'STS', 'SP', 35, 80, -1)");
  db.Exec("INSERT INTO TempCidade VALUES (6, 'Campinas', 'CPS', 'SP', 35, 90, 0)");
  EXPECT_EQ(db.Column("SELECT Ic_ExisteArquivoSom FROM TempCidade ORDER BY rowid"),
            (Values{"1", "1", "0"}));

  // The flags of the access-control database follow the same rule.
  db.Exec("INSERT INTO MDESTACIONAMENTO.LOGPERMANENCIAMENSALISTA (IDLOGPERMANENCIA, IDEMPRESA, "
         "REALTIME) VALUES (1, 1, -1)");
  EXPECT_EQ(db.Scalar("SELECT count(*) FROM MDESTACIONAMENTO.LOGPERMANENCIAMENSALISTA WHERE REALTIME = 1"),
            "1");
}

TEST(SchemaDdl, TextComparesWithoutCaseButWithAccents) {
  SchemaDb db;
  db.Exec("INSERT INTO TbVeiculo (Cd_Placa) VALUES ('ABC1D23')");
  EXPECT_EQ(db.Scalar("SELECT count(*) FROM TbVeiculo WHERE Cd_Placa = 'abc1d23'"), "1");
  EXPECT_EQ(db.Scalar("SELECT count(*) FROM TbVeiculo WHERE Cd_Placa = 'ABC1D23 '"), "1");
  // The key is unique in any case, as on SQL Server.
  EXPECT_EQ(db.Code("INSERT INTO TbVeiculo (Cd_Placa) VALUES ('abc1d23')"), SQLITE_CONSTRAINT);

  db.Exec("INSERT INTO TbCidade (Nm_Cidade, Sg_UF) VALUES ('São Paulo', 'SP')");
  db.Exec("INSERT INTO TbCidade (Nm_Cidade, Sg_UF) VALUES ('campinas', 'sp')");
  db.Exec("INSERT INTO TbCidade (Nm_Cidade, Sg_UF) VALUES ('Barueri', 'SP')");
  EXPECT_EQ(db.Scalar("SELECT count(*) FROM TbCidade WHERE Nm_Cidade = 'SÃO PAULO'"), "1");
  EXPECT_EQ(db.Scalar("SELECT count(*) FROM TbCidade WHERE Nm_Cidade = 'Sao Paulo'"), "0");
  EXPECT_EQ(db.Scalar("SELECT count(*) FROM TbCidade WHERE Sg_UF = 'sp'"), "3");
  EXPECT_EQ(db.Column("SELECT Nm_Cidade FROM TbCidade ORDER BY Nm_Cidade"),
            (Values{"Barueri", "campinas", "São Paulo"}));

  // A state's abbreviation is unique whatever its case.
  db.Exec("INSERT INTO TbUF (Nm_UF, Sg_UF) VALUES ('São Paulo', 'SP')");
  EXPECT_EQ(db.Code("INSERT INTO TbUF (Nm_UF, Sg_UF) VALUES ('Sergipe', 'sp')"), SQLITE_CONSTRAINT);
}

// The statements the registry tests run are left to them.
TEST(SchemaDdl, TheSystemsStatementsPrepare) {
  SchemaDb db;
  const std::vector<std::string> statements = {
      // timetable combo box
      Lines({"SELECT Cd_HorarioLinha,", "Hr_Saida,", "Hr_Chegada,", "Ds_TipoOnibus,",
             "Ic_TemEmbarques,", "Ic_TemDesembarque", "From   TbHorariosLinha",
             "INNER JOIN TbTipoOnibus On TbHorariosLinha.cd_tipoonibus = TbTipoOnibus.cd_tipoonibus",
             "WHERE  Cd_EmpresaUsuariaSistema = 1 And Cd_Linha = 3", "ORDER BY Hr_Saida"}),
      // the sanitary half of what a till took per tariff
      Lines({"SELECT   'SANITARIO' AS Ds_Tipo,", "         A.Cd_Tarifa,", "         B.Ds_Tarifa,",
             "         Sum(A.Qt_Unidade) As Qt_Unidade,", "         A.Vl_Tarifa",
             "FROM     TbTicketSanitario A",
             "         INNER JOIN TbTarifa B On A.Cd_EmpresaUsuariaSistema = B.Cd_EmpresaUsuariaSistema",
             "                    And A.Cd_Tarifa = B.Cd_Tarifa",
             "WHERE    A.Cd_EmpresaUsuariaSistema = 1", "         And A.Cd_Caixa = 7",
             "GROUP BY A.Cd_Tarifa,", "         B.Ds_Tarifa,", "         A.Vl_Tarifa"}),
      // free vacancies of an agreement
      Lines({"SELECT TbConvenioEstacionamento.Qt_Vagas -", "       (SELECT Count(1)",
             "        FROM   TbTicketEstacionamento",
             "        WHERE  TbTicketEstacionamento.Cd_EmpresaUsuariaSistema = "
             "TbConvenioEstacionamento.Cd_EmpresaUsuariaSistema",
             "               And TbTicketEstacionamento.Cd_ClienteConvenio = "
             "TbConvenioEstacionamento.Cd_ClienteConvenio",
             "               And TbTicketEstacionamento.Cd_TicketEstacionamento <> 0",
             "               And (TbTicketEstacionamento.Dt_Saida > '2024-03-05 10:00:00'",
             "                    Or TbTicketEstacionamento.Dt_Saida  IS NULL)) As Qt_VagasDisponiveis",
             "FROM   TbConvenioEstacionamento",
             "WHERE  TbConvenioEstacionamento.Cd_EmpresaUsuariaSistema = 1",
             "       And TbConvenioEstacionamento.Cd_ClienteConvenio = 9"}),
      // receivables for the accounting export
      Lines({"SELECT B.Ds_Filial,", "       B.Ds_Prefixo,", "       A.No_ContaReceber,",
             "       A.No_Parcela,", "       B.Ds_Tipo,", "       B.Ds_Natureza,",
             "       B.Ds_CCusto,", "       B.Ds_Portador,", "       B.Ds_Agencia,",
             "       C.Cd_ClienteIntegracao,", "       C.Cd_LojaIntegracao,",
             "       A.Dt_Emissao,", "       A.Dt_Vencimento,",
             "       A.Dt_Vencimento + A.Qt_DiasProrrogacao as Dt_VencProrrogado,",
             "       A.Vl_ContaReceber,", "       A.Ds_Historico,", "       B.Ds_Conta,",
             "       B.No_Moeda,", "       B.Ds_Status,", "       B.Ds_Origem,",
             "       B.Ds_Fluxo,", "       B.Ds_FiloRig,", "       B.Ds_MultNat,",
             "       B.Ds_MsFil,", "       B.Ds_MsEmp,", "       B.Ds_RatNCC",
             "FROM   TbContaReceber A",
             "       Left Join TbParametrosMicrosiga B On A.Cd_EmpresaUsuariaSistema = B.Cd_EmpresaUsuariaSistema",
             "       Left Join TbEmpresaOnibus C On A.Cd_Pessoa = C.Cd_EmpresaOnibus",
             "WHERE  A.Dt_Emissao between '2024-03-01' and '2024-03-31'"}),
      // vehicles of bus companies
      Lines({"SELECT   A.Cd_Placa,", "         A.No_Frota,", "         A.Cd_EmpresaOnibus,",
             "         C.Nm_Pessoa", "FROM     TbVeiculo A",
             "         Join TbEmpresaOnibus B On A.Cd_EmpresaOnibus = B.Cd_Pessoa",
             "         Join TbPessoa C On B.Cd_Pessoa = C.Cd_Pessoa", "ORDER BY C.Nm_Pessoa,",
             "         A.Cd_Placa", ";"}),
      // the operating company with its access-control parameter
      Lines({"SELECT A.*,", "       B.Qt_MinutosMaximoSaidaAposPagamento",
             "FROM   TbEmpresaUsuariaSistema A",
             "       LEFT JOIN TbParametrosMadis B ON B.Cd_EmpresaUsuariaSistema = A.Cd_EmpresaUsuariaSistema",
             "WHERE  A.Cd_EmpresaUsuariaSistema = 1"}),
      // cities served, into the work table by position
      Lines({"INSERT INTO TempCidade", "SELECT   B.Cd_Cidade,", "B.Nm_Cidade,", "B.Sg_Cidade,",
             "B.Sg_UF,", "B.Cd_UF,", "B.Qt_DistanciaEmKm,", "0", "FROM     TbEscalasHorarioLinha A",
             "INNER JOIN TbCidade B On B.Cd_Cidade = A.Cd_Cidade"}),
      // Translated by hand: the exits of a period (IsNull).
      Lines({"SELECT   ifnull(TbTicketEstacionamento.Cd_Placa,'') As Cd_Placa,",
             "         TbTicketEstacionamento.Cd_TicketEstacionamento,",
             "         TbTicketEstacionamento.No_Situacao,", "         TbTicketEstacionamento.Vl_Tarifa,",
             "         TbTicketEstacionamento.Qt_TempoPermanenciaMinutos,",
             "         TbTicketEstacionamento.Dt_Saida,", "         TbTicketEstacionamento.Dt_Entrada,",
             "         TbTicketEstacionamento.Cd_EmpresaUsuariaSistema,",
             "         TbTicketEstacionamento.Cd_ClienteEstacionamento,",
             "         TbTicketEstacionamento.Cd_Caixa,", "         TbTicketEstacionamento.Ic_Mensalista,",
             "         TbTicketEstacionamento.Cd_ClienteConvenio,",
             "         TbTicketEstacionamento.Qt_MinutosDisponivelParaMensalista,",
             "         TbTicketEstacionamento.Qt_MinutosPermanenciaoOutrosTickets,",
             "         TbTicketEstacionamento.Ds_Ticket,", "         TbMarcaModelo.Ds_MarcaModelo,",
             "         TbCor.Nm_Cor", "FROM     TbTicketEstacionamento",
             "         Left Join TbVeiculo On TbTicketEstacionamento.Cd_Placa = TbVeiculo.cd_placa",
             "         Left Join TbCor On TbVeiculo.Cd_Cor = TbCor.Cd_Cor",
             "         Left Join TbMarcaModelo On TbVeiculo.Cd_MarcaModelo = TbMarcaModelo.Cd_MarcaModelo",
             "WHERE    TbTicketEstacionamento.Cd_EmpresaUsuariaSistema = 1",
             "         And TbTicketEstacionamento.No_Situacao = 2",
             "         And TbTicketEstacionamento.Dt_Saida Between '2024-03-01 00:00:00' And '2024-03-31 23:59:59'",
             "ORDER BY TbTicketEstacionamento.Dt_Saida"}),
      // Translated by hand: the latest arrivals (TOP, "+", getDate).
      Lines({"SELECT   A.Cd_ViagemOnibus,", "D.Nm_Cidade || '/' || F.Sg_Uf As Nm_CidadeOrigem,",
             "E.Nm_Cidade || '/' || G.Sg_Uf As Nm_CidadeDestino,", "H.Cd_EmpresaOnibus,",
             "H.Nm_EmpresaOnibus,", "A.No_Andamento,", "B.Hr_Saida,", "B.Hr_Chegada,",
             "A.Hr_Previsto,", "B.Ic_TemDesembarque,", "B.Ic_TemEmbarques,", "B.No_Plataforma,",
             "A.Qt_EmbarquesComPassagem,", "A.Qt_EmbarquesSemPassagem,", "A.Hr_SaidaRodoviaria",
             "FROM     TbViagemOnibus A",
             "INNER JOIN TbHorariosLinha B On A.Cd_EmpresaUsuariaSistema = B.Cd_EmpresaUsuariaSistema",
             "And A.Cd_HorarioLinha = B.Cd_HorarioLinha",
             "INNER JOIN TbLinha C On B.Cd_Linha = C.Cd_Linha",
             "INNER JOIN TbCidade D On C.Cd_CidadeOrigem = D.Cd_Cidade",
             "INNER JOIN TbCidade E On C.Cd_CidadeDestino = E.Cd_Cidade",
             "INNER JOIN TbUf F On D.Cd_Uf = F.Cd_Uf", "INNER JOIN TbUf G On E.Cd_Uf = G.Cd_Uf",
             "INNER JOIN TbEmpresaOnibus H On B.Cd_EmpresaOnibus = H.Cd_EmpresaOnibus",
             "Where    A.Cd_EmpresaUsuariaSistema = 1", "And A.Hr_Previsto <= '2024-03-05 10:30'",
             "And B.Ic_TemDesembarque <> 0",
             "And ((datetime('now') >= B.Dt_Inicial And datetime('now') <= B.Dt_Final) ",
             "Or B.Dt_Inicial Is Null ", "Or B.Dt_Inicial <= '1900-01-01' ",
             "Or B.Dt_Final Is Null ", "Or B.Dt_Final <= '1900-01-01') ",
             "ORDER BY A.Hr_Previsto Desc,", "B.No_Plataforma", "LIMIT 10"}),
      // Translated by hand: a card's last passages (three-part names, TOP).
      Lines({"SELECT   MDESTACIONAMENTO.EVENTO.DESCRICAO,",
             "         MDESTACIONAMENTO.LOGPERMANENCIAMENSALISTA.DATAHORAPASSAGEM,",
             "         MDESTACIONAMENTO.LOGPERMANENCIAMENSALISTA.IDCARTAO,",
             "         MDESTACIONAMENTO.CLIENTECARTAO.NOMEPROPRIETARIO,",
             "         MDESTACIONAMENTO.LOGPERMANENCIAMENSALISTA.REALTIME,",
             "         MDESTACIONAMENTO.LOGPERMANENCIAMENSALISTA.IDCARTAO",
             "FROM     MDESTACIONAMENTO.CLIENTECARTAO",
             "         INNER JOIN MDESTACIONAMENTO.LOGPERMANENCIAMENSALISTA ON "
             "MDESTACIONAMENTO.LOGPERMANENCIAMENSALISTA.IDEMPRESACARTAO = "
             "MDESTACIONAMENTO.CLIENTECARTAO.IDEMPRESACARTAO",
             "                    And MDESTACIONAMENTO.LOGPERMANENCIAMENSALISTA.IDCARTAO = "
             "MDESTACIONAMENTO.CLIENTECARTAO.IDCARTAO",
             "         INNER JOIN MDESTACIONAMENTO.EVENTO ON MDESTACIONAMENTO.EVENTO.IDEVENTO = "
             "MDESTACIONAMENTO.LOGPERMANENCIAMENSALISTA.EVENTO",
             "WHERE    MDESTACIONAMENTO.CLIENTECARTAO.IDCLIENTE = 4",
             "         And MDESTACIONAMENTO.LOGPERMANENCIAMENSALISTA.IDCARTAO = 12",
             "ORDER BY MDESTACIONAMENTO.LOGPERMANENCIAMENSALISTA.DATAHORAPASSAGEM DESC",
             "LIMIT 30"}),
      // Translated by hand: the till report's parking block (CONVERT, "+").
      Lines({"INSERT INTO TempApuracaoReceita7", "SELECT   'ESTACIONAMENTO' AS Ds_Tipo,",
             "         A.Cd_Tarifa,", "         B.Ds_Tarifa,",
             "         'QTDE:' || CAST(Sum(A.Qt_Unidade) AS VARCHAR(30)) As Ds_Observacao,",
             "         A.Vl_Tarifa,", "         Sum(Round(A.Qt_Unidade * A.Vl_Tarifa,2)) As Vl_Total",
             "FROM     TbTicketEstacionamento_TbTarifa A",
             "         INNER JOIN TbTarifa B On A.Cd_EmpresaUsuariaSistema = B.Cd_EmpresaUsuariaSistema",
             "                    And A.Cd_Tarifa = b.Cd_Tarifa",
             "         INNER JOIN TbTicketEstacionamento C On A.cd_empresausuariasistema = C.cd_empresausuariasistema",
             "                    And A.Cd_TicketEstacionamento = C.Cd_TicketEstacionamento",
             "WHERE    A.Cd_EmpresaUsuariaSistema = 1", "         And C.Cd_Caixa = 7",
             "GROUP BY A.Cd_Tarifa,", "         B.Ds_Tarifa,", "         A.Vl_Tarifa"}),
  };
  for (const std::string& sql : statements) {
    EXPECT_EQ(db.QueryError(sql), "") << sql;
  }
  // The check is real: a column the schema lacks does not prepare.
  EXPECT_NE(db.QueryError("SELECT Nm_CartaoEstacionamento FROM TbCartaoEstacionamento"), "");
  EXPECT_NE(db.QueryError("INSERT INTO TempCidade SELECT Cd_Cidade FROM TbCidade"), "");
}

TEST(SchemaDdl, AccessControlTablesGoWhereTheyAreAsked) {
  const TableDef* events = FindTable("EVENTO");
  const TableDef* states = FindTable("TbUF");
  ASSERT_NE(events, nullptr);
  ASSERT_NE(states, nullptr);
  EXPECT_EQ(SqliteTableDdl(*events).rfind("CREATE TABLE IF NOT EXISTS MDESTACIONAMENTO.EVENTO (", 0),
            0u);
  EXPECT_EQ(SqliteTableDdl(*states).rfind("CREATE TABLE IF NOT EXISTS TbUF (", 0), 0u);

  // Without a prefix, one database holds everything.
  SqliteTestDb single;
  CreateSchema(single, "");
  EXPECT_EQ(single.Scalar("SELECT count(*) FROM sqlite_master WHERE type = 'table' AND name NOT LIKE 'sqlite\\_%' "
                          "ESCAPE '\\'"),
            "64");
  EXPECT_EQ(single.Scalar("SELECT DESCRICAO FROM EVENTO WHERE IDEVENTO = 1"), "ENTRADA");

  // Under another name, for a file attached as something else.
  SqliteTestDb other;
  other.Exec("ATTACH DATABASE ':memory:' AS madis");
  CreateSchema(other, "madis");
  EXPECT_EQ(other.Scalar("SELECT count(*) FROM madis.sqlite_master WHERE type = 'table'"), "7");

  // The report file's tables on a connection of their own.
  SqliteTestDb report;
  for (const TableDef& table : Tables()) {
    if (!table.report_file) continue;
    for (const std::string& statement : SqliteTableStatements(table, "")) report.Exec(statement);
  }
  EXPECT_EQ(report.Scalar("SELECT count(*) FROM sqlite_master WHERE type = 'table'"), "3");
}

}  // namespace
}  // namespace vek::schema
