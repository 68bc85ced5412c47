#include "vek/schema/Ddl.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <memory>
#include <string>
#include <vector>

#include "vek/db/dialect/SqliteFunctions.h"
#include "vek/db/dialect/Statements.h"
#include "vek/platform/Date.h"
#include "vek/schema/Catalogue.h"

namespace vek::schema {
namespace {

struct CloseDatabase {
  void operator()(sqlite3* db) const noexcept { sqlite3_close_v2(db); }
};

class Database {
 public:
  explicit Database(bool attach_access_control = true) {
    sqlite3* raw = nullptr;
    sqlite3_open(":memory:", &raw);
    db_.reset(raw);
    // The collation that the text columns declare, as the driver registers it.
    vek::dialect::RegisterSqlServerFunctions(raw, [] { return DateSerial(2024, 3, 5); });
    if (attach_access_control) Run("ATTACH DATABASE ':memory:' AS MDESTACIONAMENTO");
  }

  sqlite3* Handle() const { return db_.get(); }

  // SQLite's result code; the message of a failure is kept in Error().
  int Exec(const std::string& sql) {
    char* message = nullptr;
    int rc = sqlite3_exec(db_.get(), sql.c_str(), nullptr, nullptr, &message);
    error_ = message != nullptr ? message : "";
    sqlite3_free(message);
    return rc;
  }
  void Run(const std::string& sql) { ASSERT_EQ(Exec(sql), SQLITE_OK) << error_ << "\n" << sql; }
  const std::string& Error() const { return error_; }

  // First column of every row, as text ("NULL" for Null).
  std::vector<std::string> Column(const std::string& sql) {
    std::vector<std::string> values;
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(db_.get(), sql.c_str(), -1, &statement, nullptr) != SQLITE_OK) {
      ADD_FAILURE() << sqlite3_errmsg(db_.get()) << "\n" << sql;
      return values;
    }
    while (sqlite3_step(statement) == SQLITE_ROW) {
      const unsigned char* text = sqlite3_column_text(statement, 0);
      values.push_back(text != nullptr ? reinterpret_cast<const char*>(text) : "NULL");
    }
    sqlite3_finalize(statement);
    return values;
  }
  std::string Scalar(const std::string& sql) {
    std::vector<std::string> values = Column(sql);
    return values.empty() ? "<no row>" : values.front();
  }

  // The error message of preparing `sql`, empty when it prepares.
  std::string PrepareError(const std::string& sql) {
    sqlite3_stmt* statement = nullptr;
    int rc = sqlite3_prepare_v2(db_.get(), sql.c_str(), -1, &statement, nullptr);
    sqlite3_finalize(statement);
    return rc == SQLITE_OK ? "" : sqlite3_errmsg(db_.get());
  }

  void CreateSchema(std::string_view prefix = "MDESTACIONAMENTO") {
    for (const std::string& statement : SqliteDdl(prefix)) {
      Run(statement);
      if (::testing::Test::HasFatalFailure()) return;
    }
  }

 private:
  std::unique_ptr<sqlite3, CloseDatabase> db_;
  std::string error_;
};

// Lines of the system's statements end in a single carriage return.
std::string Lines(std::initializer_list<std::string_view> lines) {
  std::string sql;
  for (std::string_view line : lines) {
    if (!sql.empty()) sql += '\r';
    sql += line;
  }
  return sql;
}

TEST(SchemaDdl, CreatesEverythingAndRunsTwiceWithoutChange) {
  Database db;
  db.CreateSchema();
  ASSERT_FALSE(::testing::Test::HasFatalFailure());
  std::string count_main =
      "SELECT count(*) FROM sqlite_master WHERE type = 'table' AND name <> 'sqlite_sequence'";
  std::string count_access =
      "SELECT count(*) FROM MDESTACIONAMENTO.sqlite_master WHERE type = 'table'";
  EXPECT_EQ(db.Scalar(count_main), "57");
  EXPECT_EQ(db.Scalar(count_access), "7");
  std::string objects = "SELECT count(*) FROM sqlite_master";
  std::string before = db.Scalar(objects);
  db.Run("INSERT INTO TbTipoReceita (Nm_TipoReceita) VALUES ('PUBLICIDADE')");

  db.CreateSchema();
  ASSERT_FALSE(::testing::Test::HasFatalFailure());
  EXPECT_EQ(db.Scalar(objects), before);
  EXPECT_EQ(db.Scalar(count_access), "7");
  // Fixed rows are not doubled and a terminal's own rows stay.
  EXPECT_EQ(db.Scalar("SELECT count(*) FROM TbTipoReceita"), "5");
  EXPECT_EQ(db.Scalar("SELECT count(*) FROM MDESTACIONAMENTO.EVENTO"), "2");
  EXPECT_EQ(db.Scalar("SELECT Nm_TipoReceita FROM TbTipoReceita WHERE Cd_TipoReceita = 5"),
            "PUBLICIDADE");
  // Every index of the catalogue exists.
  size_t indexes = 0;
  for (const TableDef& table : Tables()) indexes += table.indexes.size();
  EXPECT_EQ(std::stoul(db.Scalar("SELECT count(*) FROM sqlite_master WHERE type = 'index' AND "
                                 "(name LIKE 'IX%' OR name LIKE 'UX%')")) +
                std::stoul(db.Scalar("SELECT count(*) FROM MDESTACIONAMENTO.sqlite_master "
                                     "WHERE type = 'index' AND name LIKE 'IX%'")),
            indexes);
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
  Database db;
  db.CreateSchema();
  ASSERT_FALSE(::testing::Test::HasFatalFailure());
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
  Database db;
  db.CreateSchema();
  ASSERT_FALSE(::testing::Test::HasFatalFailure());
  db.Run("INSERT INTO TbCidade (Nm_Cidade) VALUES ('Campinas')");
  db.Run("INSERT INTO TbBairro (Nm_Bairro, Cd_Cidade) VALUES ('Centro', 1)");
  db.Run("INSERT INTO TbBairro (Nm_Bairro, Cd_Cidade) VALUES ('Cambuí', 1)");
  EXPECT_EQ(db.Scalar("SELECT max(Cd_Bairro) FROM TbBairro"), "2");
  // As an identity does, a number once given is not given again.
  db.Run("DELETE FROM TbBairro WHERE Cd_Bairro = 2");
  db.Run("INSERT INTO TbBairro (Nm_Bairro, Cd_Cidade) VALUES ('Taquaral', 1)");
  EXPECT_EQ(db.Scalar("SELECT Cd_Bairro FROM TbBairro WHERE Nm_Bairro = 'Taquaral'"), "3");

  // A code written as Null (code 0) where the caller must give the key fails.
  EXPECT_EQ(db.Exec("INSERT INTO TbEmpresaOnibus (Cd_EmpresaOnibus, Nm_EmpresaOnibus) "
                    "VALUES (NULL, 'Viação')"),
            SQLITE_CONSTRAINT);
  EXPECT_EQ(db.Exec("INSERT INTO TbPessoaFisica (Cd_Pessoa) VALUES (NULL)"), SQLITE_CONSTRAINT);
  EXPECT_EQ(db.Exec("INSERT INTO TbHorariosLinha (Cd_EmpresaUsuariaSistema, Cd_Linha) "
                    "VALUES (1, 1)"),
            SQLITE_CONSTRAINT);
  EXPECT_EQ(db.Exec("INSERT INTO TbVeiculo (Cd_Placa) VALUES (NULL)"), SQLITE_CONSTRAINT);
  db.Run("INSERT INTO TbEmpresaOnibus (Cd_EmpresaOnibus, Nm_EmpresaOnibus) VALUES (77, 'Viação')");
  EXPECT_EQ(db.Scalar("SELECT Cd_EmpresaOnibus FROM TbEmpresaOnibus"), "77");
}

TEST(SchemaDdl, DeletingARowThatOthersReferToFails) {
  Database db;
  db.CreateSchema();
  ASSERT_FALSE(::testing::Test::HasFatalFailure());
  db.Run("PRAGMA foreign_keys = ON");
  for (const TableDef& table : Tables()) {
    std::string schema = table.database.empty() ? "main" : std::string(table.database);
    // Fails with "foreign key mismatch" when a parent's columns are no key.
    EXPECT_EQ(db.Exec("PRAGMA " + schema + ".foreign_key_check(" + std::string(table.name) + ")"),
              SQLITE_OK)
        << table.name << ": " << db.Error();
  }

  db.Run("INSERT INTO TbTarifa (Cd_EmpresaUsuariaSistema, Ds_Tarifa, Vl_Tarifa, Cd_TipoReceita) "
         "VALUES (1, 'EMBARQUE INTERESTADUAL', 1.25, 1)");
  EXPECT_EQ(db.Exec("DELETE FROM TbTipoReceita WHERE Cd_TipoReceita = 1"), SQLITE_CONSTRAINT);
  EXPECT_EQ(db.Exec("DELETE FROM TbTipoReceita WHERE Cd_TipoReceita = 3"), SQLITE_OK);
  EXPECT_EQ(db.Scalar("SELECT count(*) FROM TbTipoReceita"), "3");
  // A code 0 reaches the database as Null and refers to nothing.
  EXPECT_EQ(db.Exec("INSERT INTO TbTarifa (Ds_Tarifa, Cd_TipoReceita) VALUES ('AVULSA', NULL)"),
            SQLITE_OK);
  EXPECT_EQ(db.Exec("INSERT INTO TbTarifa (Ds_Tarifa, Cd_TipoReceita) VALUES ('ERRADA', 99)"),
            SQLITE_CONSTRAINT);

  // A line with timetables stays; the timetable goes after its stops.
  db.Run("INSERT INTO TbCidade (Nm_Cidade) VALUES ('Campinas')");
  db.Run("INSERT INTO TbCidade (Nm_Cidade) VALUES ('Santos')");
  db.Run("INSERT INTO TbLinha (Cd_CidadeOrigem, Cd_CidadeDestino) VALUES (1, 2)");
  db.Run("INSERT INTO TbHorariosLinha (Cd_EmpresaUsuariaSistema, Cd_Linha, Cd_HorarioLinha) "
         "VALUES (1, 1, 10)");
  db.Run("INSERT INTO TbEscalasHorarioLinha VALUES (1, 1, 10, 2)");
  // A stop must belong to a timetable of the same tenant.
  EXPECT_EQ(db.Exec("INSERT INTO TbEscalasHorarioLinha VALUES (2, 1, 10, 2)"), SQLITE_CONSTRAINT);
  EXPECT_EQ(db.Exec("DELETE FROM TbLinha WHERE Cd_Linha = 1"), SQLITE_CONSTRAINT);
  EXPECT_EQ(db.Exec("DELETE FROM TbCidade WHERE Cd_Cidade = 2"), SQLITE_CONSTRAINT);
  EXPECT_EQ(db.Exec("DELETE FROM TbHorariosLinha WHERE Cd_HorarioLinha = 10"), SQLITE_CONSTRAINT);
  EXPECT_EQ(db.Exec("DELETE FROM TbEscalasHorarioLinha WHERE Cd_HorarioLinha = 10"), SQLITE_OK);
  EXPECT_EQ(db.Exec("DELETE FROM TbHorariosLinha WHERE Cd_HorarioLinha = 10"), SQLITE_OK);
  EXPECT_EQ(db.Exec("DELETE FROM TbLinha WHERE Cd_Linha = 1"), SQLITE_OK);
}

TEST(SchemaDdl, BitsWrittenAsMinusOneAreStoredAsOne) {
  Database db;
  db.CreateSchema();
  ASSERT_FALSE(::testing::Test::HasFatalFailure());
  db.Run("INSERT INTO TbHorariosLinha (Cd_EmpresaUsuariaSistema, Cd_Linha, Cd_HorarioLinha, "
         "Ic_TemEmbarques, Ic_TemDesembarque, Ic_ViagemNoDomingo, Ic_ViagemNaSegunda, "
         "Ic_ViagemNaTerca) VALUES (1, 1, 1, -1, 0, NULL, 1, 2)");
  EXPECT_EQ(db.Scalar("SELECT count(*) FROM TbHorariosLinha WHERE Ic_TemEmbarques = 1"), "1");
  EXPECT_EQ(db.Scalar("SELECT Ic_TemEmbarques || ',' || Ic_TemDesembarque || ',' || "
                      "ifnull(Ic_ViagemNoDomingo, 'NULL') || ',' || Ic_ViagemNaSegunda || ',' || "
                      "Ic_ViagemNaTerca FROM TbHorariosLinha"),
            "1,0,NULL,1,1");

  db.Run("UPDATE TbHorariosLinha SET Ic_TemDesembarque = -1, Ic_ViagemNoDomingo = 0");
  EXPECT_EQ(db.Scalar("SELECT Ic_TemDesembarque || ',' || Ic_ViagemNoDomingo FROM TbHorariosLinha"),
            "1,0");
  db.Run("UPDATE TbHorariosLinha SET Ic_TemEmbarques = 0");
  EXPECT_EQ(db.Scalar("SELECT count(*) FROM TbHorariosLinha WHERE Ic_TemEmbarques = 1"), "0");

  // A table without a key: each of two equal rows is set by itself.
  db.Run("INSERT INTO TempCidade VALUES (5, 'Santos', 'STS', 'SP', 35, 80, -1)");
  db.Run("INSERT INTO TempCidade VALUES (5, 'Santos', 'STS', 'SP', 35, 80, -1)");
  db.Run("INSERT INTO TempCidade VALUES (6, 'Campinas', 'CPS', 'SP', 35, 90, 0)");
  EXPECT_EQ(db.Column("SELECT Ic_ExisteArquivoSom FROM TempCidade ORDER BY rowid"),
            (std::vector<std::string>{"1", "1", "0"}));

  // The flags of the access-control database follow the same rule.
  db.Run("INSERT INTO MDESTACIONAMENTO.LOGPERMANENCIAMENSALISTA (IDLOGPERMANENCIA, IDEMPRESA, "
         "REALTIME) VALUES (1, 1, -1)");
  EXPECT_EQ(db.Scalar("SELECT count(*) FROM MDESTACIONAMENTO.LOGPERMANENCIAMENSALISTA "
                      "WHERE REALTIME = 1"),
            "1");

  // A written -1 with the tenant's row key found through the system's own statement.
  db.Run("INSERT INTO TbApuracaoReceita (Cd_EmpresaUsuariaSistema, No_ApuracaoReceita, Cd_Caixa, "
         "Ic_TotalizacaoDeCaixa) VALUES (1, 8, 3, -1)");
  EXPECT_EQ(db.Scalar(Lines({"SELECT TbApuracaoReceita.No_ApuracaoReceita", "From   TbApuracaoReceita",
                             "WHERE  TbApuracaoReceita.Cd_EmpresaUsuariaSistema = 1",
                             "       And TbApuracaoReceita.Cd_Caixa = 3",
                             "       And Ic_TotalizacaoDeCaixa = 1"})),
            "8");
}

TEST(SchemaDdl, TextComparesWithoutCaseButWithAccents) {
  Database db;
  db.CreateSchema();
  ASSERT_FALSE(::testing::Test::HasFatalFailure());
  db.Run("INSERT INTO TbVeiculo (Cd_Placa) VALUES ('ABC1D23')");
  EXPECT_EQ(db.Scalar("SELECT count(*) FROM TbVeiculo WHERE Cd_Placa = 'abc1d23'"), "1");
  EXPECT_EQ(db.Scalar("SELECT count(*) FROM TbVeiculo WHERE Cd_Placa = 'ABC1D23 '"), "1");
  // The key is unique in any case, as on SQL Server.
  EXPECT_EQ(db.Exec("INSERT INTO TbVeiculo (Cd_Placa) VALUES ('abc1d23')"), SQLITE_CONSTRAINT);

  db.Run("INSERT INTO TbCidade (Nm_Cidade, Sg_UF) VALUES ('São Paulo', 'SP')");
  db.Run("INSERT INTO TbCidade (Nm_Cidade, Sg_UF) VALUES ('campinas', 'sp')");
  db.Run("INSERT INTO TbCidade (Nm_Cidade, Sg_UF) VALUES ('Barueri', 'SP')");
  EXPECT_EQ(db.Scalar("SELECT count(*) FROM TbCidade WHERE Nm_Cidade = 'SÃO PAULO'"), "1");
  EXPECT_EQ(db.Scalar("SELECT count(*) FROM TbCidade WHERE Nm_Cidade = 'Sao Paulo'"), "0");
  EXPECT_EQ(db.Scalar("SELECT count(*) FROM TbCidade WHERE Sg_UF = 'sp'"), "3");
  EXPECT_EQ(db.Column("SELECT Nm_Cidade FROM TbCidade ORDER BY Nm_Cidade"),
            (std::vector<std::string>{"Barueri", "campinas", "São Paulo"}));
  EXPECT_EQ(db.Scalar("SELECT count(DISTINCT Sg_UF) FROM TbCidade"), "1");

  // A state's abbreviation is unique whatever its case.
  db.Run("INSERT INTO TbUF (Nm_UF, Sg_UF) VALUES ('São Paulo', 'SP')");
  EXPECT_EQ(db.Exec("INSERT INTO TbUF (Nm_UF, Sg_UF) VALUES ('Sergipe', 'sp')"), SQLITE_CONSTRAINT);
}

TEST(SchemaDdl, TheSystemsStatementsPrepare) {
  Database db;
  db.CreateSchema();
  ASSERT_FALSE(::testing::Test::HasFatalFailure());
  const std::vector<std::string> statements = {
      // neighbourhood search grid
      Lines({"SELECT   A.Cd_Bairro,", "         A.Nm_Bairro,", "         B.Nm_Cidade,",
             "         B.Sg_UF", "FROM     TbBairro A",
             "                Join TbCidade B On A.Cd_Cidade = B.Cd_Cidade",
             "ORDER BY A.Nm_Bairro,", "         B.Nm_Cidade", ";"}),
      // neighbourhoods of a postcode
      Lines({"SELECT TbBairro.CD_BAIRRO,", "       TbBairro.NM_BAIRRO", "FROM   TBCEP_TbLogradouro",
             "       JOIN TbLogradouro ON TBCEP_TbLogradouro.CD_LOGRADOURO = "
             "TbLogradouro.CD_LOGRADOURO",
             "       JOIN TbCidade ON TbLogradouro.Cd_Cidade = TbCidade.CD_CIDADE",
             "       JOIN TbBairro ON TbCidade.CD_CIDADE = TbBairro.CD_CIDADE",
             "WHERE  TbCEP_TbLogradouro.Cd_EP = '13010000'", "ORDER BY TbBairro.Nm_Bairro"}),
      // timetable combo box
      Lines({"SELECT Cd_HorarioLinha,", "Hr_Saida,", "Hr_Chegada,", "Ds_TipoOnibus,",
             "Ic_TemEmbarques,", "Ic_TemDesembarque", "From   TbHorariosLinha",
             "INNER JOIN TbTipoOnibus On TbHorariosLinha.cd_tipoonibus = "
             "TbTipoOnibus.cd_tipoonibus",
             "WHERE  Cd_EmpresaUsuariaSistema = 1 And Cd_Linha = 3", "ORDER BY Hr_Saida"}),
      // what a till took per tariff
      Lines({"SELECT   'ESTACIONAMENTO' AS Ds_Tipo,", "         A.Cd_Tarifa,",
             "         B.Ds_Tarifa,", "         Sum(A.Qt_Unidade) As Qt_Unidade,",
             "         A.Vl_Tarifa", "FROM     TbTicketEstacionamento_TbTarifa A",
             "         INNER JOIN TbTarifa B On A.Cd_EmpresaUsuariaSistema = "
             "B.Cd_EmpresaUsuariaSistema",
             "                    And A.Cd_Tarifa = b.Cd_Tarifa",
             "         INNER JOIN TbTicketEstacionamento C On A.cd_empresausuariasistema = "
             "C.cd_empresausuariasistema",
             "                    And A.Cd_TicketEstacionamento = C.Cd_TicketEstacionamento",
             "WHERE    A.Cd_EmpresaUsuariaSistema = 1", "         And C.Cd_Caixa = 7",
             "GROUP BY A.Cd_Tarifa,", "         B.Ds_Tarifa,", "         A.Vl_Tarifa", "UNION",
             "SELECT   'SANITARIO' AS Ds_Tipo,", "         A.Cd_Tarifa,", "         B.Ds_Tarifa,",
             "         Sum(A.Qt_Unidade) As Qt_Unidade,", "         A.Vl_Tarifa",
             "FROM     TbTicketSanitario A",
             "         INNER JOIN TbTarifa B On A.Cd_EmpresaUsuariaSistema = "
             "B.Cd_EmpresaUsuariaSistema",
             "                    And A.Cd_Tarifa = B.Cd_Tarifa",
             "WHERE    A.Cd_EmpresaUsuariaSistema = 1", "         And A.Cd_Caixa = 7",
             "GROUP BY A.Cd_Tarifa,", "         B.Ds_Tarifa,", "         A.Vl_Tarifa",
             "ORDER BY A.Cd_Tarifa;"}),
      // free vacancies of an agreement
      Lines({"SELECT TbConvenioEstacionamento.Qt_Vagas -", "       (SELECT Count(1)",
             "        FROM   TbTicketEstacionamento",
             "        WHERE  TbTicketEstacionamento.Cd_EmpresaUsuariaSistema = "
             "TbConvenioEstacionamento.Cd_EmpresaUsuariaSistema",
             "               And TbTicketEstacionamento.Cd_ClienteConvenio = "
             "TbConvenioEstacionamento.Cd_ClienteConvenio",
             "               And TbTicketEstacionamento.Cd_TicketEstacionamento <> 0",
             "               And (TbTicketEstacionamento.Dt_Saida > '2024-03-05 10:00:00'",
             "                    Or TbTicketEstacionamento.Dt_Saida  IS NULL)) As "
             "Qt_VagasDisponiveis",
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
             "       Left Join TbParametrosMicrosiga B On A.Cd_EmpresaUsuariaSistema = "
             "B.Cd_EmpresaUsuariaSistema",
             "       Left Join TbEmpresaOnibus C On A.Cd_Pessoa = C.Cd_EmpresaOnibus",
             "WHERE  A.Dt_Emissao between '2024-03-01' and '2024-03-31'"}),
      // the cards' pick list, ordered by the column with the doubled "o"
      Lines({"SELECT   *", "FROM     TbCartaoEstacionamento",
             "WHERE    Cd_EmpresaUsuariaSistema = 1", "ORDER BY Nm_CartaoEstacionamentoo"}),
      // vehicles of bus companies
      Lines({"SELECT   A.Cd_Placa,", "         A.No_Frota,", "         A.Cd_EmpresaOnibus,",
             "         C.Nm_Pessoa", "FROM     TbVeiculo A",
             "         Join TbEmpresaOnibus B On A.Cd_EmpresaOnibus = B.Cd_Pessoa",
             "         Join TbPessoa C On B.Cd_Pessoa = C.Cd_Pessoa", "ORDER BY C.Nm_Pessoa,",
             "         A.Cd_Placa", ";"}),
      // the operating company with its access-control parameter
      Lines({"SELECT A.*,", "       B.Qt_MinutosMaximoSaidaAposPagamento",
             "FROM   TbEmpresaUsuariaSistema A",
             "       LEFT JOIN TbParametrosMadis B ON B.Cd_EmpresaUsuariaSistema = "
             "A.Cd_EmpresaUsuariaSistema",
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
             "         Left Join TbMarcaModelo On TbVeiculo.Cd_MarcaModelo = "
             "TbMarcaModelo.Cd_MarcaModelo",
             "WHERE    TbTicketEstacionamento.Cd_EmpresaUsuariaSistema = 1",
             "         And TbTicketEstacionamento.No_Situacao = 2",
             "         And TbTicketEstacionamento.Dt_Saida Between '2024-03-01 00:00:00' And "
             "'2024-03-31 23:59:59'",
             "ORDER BY TbTicketEstacionamento.Dt_Saida"}),
      // Translated by hand: the latest arrivals (TOP, "+", getDate).
      Lines({"SELECT   A.Cd_ViagemOnibus,", "D.Nm_Cidade || '/' || F.Sg_Uf As Nm_CidadeOrigem,",
             "E.Nm_Cidade || '/' || G.Sg_Uf As Nm_CidadeDestino,", "H.Cd_EmpresaOnibus,",
             "H.Nm_EmpresaOnibus,", "A.No_Andamento,", "B.Hr_Saida,", "B.Hr_Chegada,",
             "A.Hr_Previsto,", "B.Ic_TemDesembarque,", "B.Ic_TemEmbarques,", "B.No_Plataforma,",
             "A.Qt_EmbarquesComPassagem,", "A.Qt_EmbarquesSemPassagem,", "A.Hr_SaidaRodoviaria",
             "FROM     TbViagemOnibus A",
             "INNER JOIN TbHorariosLinha B On A.Cd_EmpresaUsuariaSistema = "
             "B.Cd_EmpresaUsuariaSistema",
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
             "         INNER JOIN TbTarifa B On A.Cd_EmpresaUsuariaSistema = "
             "B.Cd_EmpresaUsuariaSistema",
             "                    And A.Cd_Tarifa = b.Cd_Tarifa",
             "         INNER JOIN TbTicketEstacionamento C On A.cd_empresausuariasistema = "
             "C.cd_empresausuariasistema",
             "                    And A.Cd_TicketEstacionamento = C.Cd_TicketEstacionamento",
             "WHERE    A.Cd_EmpresaUsuariaSistema = 1", "         And C.Cd_Caixa = 7",
             "GROUP BY A.Cd_Tarifa,", "         B.Ds_Tarifa,", "         A.Vl_Tarifa"}),
  };
  for (const std::string& sql : statements) {
    EXPECT_EQ(db.PrepareError(sql), "") << sql;
  }
  // The check is real: a column the schema lacks does not prepare.
  EXPECT_NE(db.PrepareError("SELECT Nm_CartaoEstacionamento FROM TbCartaoEstacionamento"), "");
  EXPECT_NE(db.PrepareError("INSERT INTO TempCidade SELECT Cd_Cidade FROM TbCidade"), "");
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
  Database single(false);
  single.CreateSchema("");
  ASSERT_FALSE(::testing::Test::HasFatalFailure());
  EXPECT_EQ(single.Scalar("SELECT count(*) FROM sqlite_master WHERE type = 'table' AND "
                          "name <> 'sqlite_sequence'"),
            "64");
  EXPECT_EQ(single.Scalar("SELECT DESCRICAO FROM EVENTO WHERE IDEVENTO = 1"), "ENTRADA");

  // Under another name, for a file attached as something else.
  Database other(false);
  other.Run("ATTACH DATABASE ':memory:' AS madis");
  other.CreateSchema("madis");
  ASSERT_FALSE(::testing::Test::HasFatalFailure());
  EXPECT_EQ(other.Scalar("SELECT count(*) FROM madis.sqlite_master WHERE type = 'table'"), "7");

  // The report file's tables on a connection of their own.
  Database report(false);
  for (const TableDef& table : Tables()) {
    if (!table.report_file) continue;
    for (const std::string& statement : SqliteTableStatements(table, "")) report.Run(statement);
  }
  EXPECT_EQ(report.Scalar("SELECT count(*) FROM sqlite_master WHERE type = 'table'"), "3");
}

TEST(SchemaDdl, FixedRowsArePresent) {
  Database db;
  db.CreateSchema();
  ASSERT_FALSE(::testing::Test::HasFatalFailure());
  EXPECT_EQ(db.Scalar("SELECT Nm_TipoReceita FROM TbTipoReceita WHERE Cd_TipoReceita = 1"),
            "EMBARQUE");
  EXPECT_EQ(db.Column("SELECT Cd_TipoReceita FROM TbTipoReceita ORDER BY Cd_TipoReceita"),
            (std::vector<std::string>{"1", "2", "3", "4"}));
  // The boarding statements select the type by its name, in any case.
  EXPECT_EQ(db.Scalar("SELECT Cd_TipoReceita FROM TbTipoReceita WHERE Nm_TipoReceita = 'embarque'"),
            "1");
  EXPECT_EQ(db.Column("SELECT DESCRICAO FROM MDESTACIONAMENTO.EVENTO ORDER BY IDEVENTO"),
            (std::vector<std::string>{"ENTRADA", "SAIDA"}));
  // The next revenue type is numbered after the fixed ones.
  db.Run("INSERT INTO TbTipoReceita (Nm_TipoReceita) VALUES ('ALUGUEL')");
  EXPECT_EQ(db.Scalar("SELECT Cd_TipoReceita FROM TbTipoReceita WHERE Nm_TipoReceita = 'ALUGUEL'"),
            "5");
}

}  // namespace
}  // namespace vek::schema
