#include "vek/foundation/ErrorTrap.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <vector>

#include "support/TestSupport.h"
#include "vek/platform/Variant.h"

namespace vek {

// Lives in the library's namespace so that its run-time name is looked up as
// the library's own classes are.
class cgdExemplo {
 public:
  int32_t Consultar(int32_t key) {
    return Trap(RuntimeTypeName(*this), "Consultar", [&] {
      if (key == 0) RaiseError(kErrorNoKey, RuntimeTypeName(*this), "Consultar");
      return CLng(Variant(key));
    });
  }
  int32_t CarregarComboBox(int32_t key) {
    return Trap("cgdExemplos", "CarregarComboBox", [&] { return Consultar(key); });
  }
};

namespace {

using testing::ErrorOf;

// An own error leaves its procedure with the link twice.
TEST(ErrorTrap, LinksAccumulateInnermostFirstAcrossThreeProcedures) {
  cgdExemplo exemplo;
  const VekError error = ErrorOf([&] { Trap("cgdAplicacao", "Iniciar", [&] { exemplo.CarregarComboBox(0); }); });
  EXPECT_EQ(error.Number(), static_cast<int32_t>(0x80040201u));
  EXPECT_EQ(error.Description(), "Nao informado identificador do registro (chave, código ou PK ...)");
  EXPECT_EQ(error.Source(),
            " -> cgdExemplo.Consultar,  -> cgdExemplo.Consultar,  -> cgdExemplos.CarregarComboBox, "
            " -> cgdAplicacao.Iniciar, ");
}

TEST(ErrorTrap, RuntimeErrorKeepsNumberAndDescriptionAndGainsOneLink) {
  const VekError error = ErrorOf([] { Trap("cgdSistema", "Consultar", [] { return CLng(Variant("")); }); });
  EXPECT_EQ(error.Number(), 13);
  EXPECT_EQ(error.Description(), "Type mismatch");
  EXPECT_EQ(error.Source(), " -> cgdSistema.Consultar, ");
}

TEST(ErrorTrap, ForeignExceptionsBecomeVekErrorsAtTheFirstTrap) {
  const VekError plain = ErrorOf([] {
    Trap("cgdBairros", "CarregarComboBox", [] {
      Trap("cgdBairro", "Consultar", []() -> int { throw std::runtime_error("disco cheio"); });
    });
  });
  EXPECT_EQ(plain.Number(), kUnspecifiedError);
  EXPECT_EQ(plain.Description(), "disco cheio");
  EXPECT_EQ(plain.Source(), " -> cgdBairro.Consultar,  -> cgdBairros.CarregarComboBox, ");

  const VekError memory = ErrorOf([] { Trap("cgdBairro", "Salvar", [] { throw std::bad_alloc(); }); });
  EXPECT_EQ(memory.Number(), 7);
  EXPECT_EQ(memory.Description(), "Out of memory");

  const VekError odd = ErrorOf([] { Trap("cgdBairro", "Excluir", [] { throw 42; }); });
  EXPECT_EQ(odd.Number(), kUnspecifiedError);
  EXPECT_EQ(odd.Source(), " -> cgdBairro.Excluir, ");
}

TEST(ErrorTrap, BusinessErrorCarriesItsOwnText) {
  const VekError error = ErrorOf([] {
    Trap("cgdManutencaoBD", "Backup", [] {
      RaiseError(kBusinessError, "cgdManutencaoBD", "Backup", "Não foi configurado o diretório de backup");
    });
  });
  EXPECT_EQ(error.Number(), static_cast<int32_t>(0x80040458u));
  EXPECT_EQ(error.Description(), "Não foi configurado o diretório de backup");
  EXPECT_EQ(error.Source(), " -> cgdManutencaoBD.Backup,  -> cgdManutencaoBD.Backup, ");
}

TEST(ErrorTrap, ValuesPassThroughAndModuleLinksKeepTheirOddOwners) {
  EXPECT_EQ(Trap("m", "f", [] { return std::vector<int>{1, 2, 3}; }).size(), 3u);
  int counter = 0;
  Trap("m", "g", [&] { ++counter; });
  EXPECT_EQ(counter, 1);
  // The SQL literal routines name their owner ", sa3".
  EXPECT_EQ(SourceLink(", sa3", "IntToSql"), " -> , sa3.IntToSql, ");
  EXPECT_EQ(RuntimeTypeName(typeid(std::runtime_error)), "runtime_error");  // no namespace
}

}  // namespace
}  // namespace vek
