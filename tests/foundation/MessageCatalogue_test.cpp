#include "vek/foundation/MessageCatalogue.h"

#include <gtest/gtest.h>

namespace vek {
namespace {

TEST(MessageCatalogue, ProtocolMessagesKeepTheirUnaccentedTexts) {
  EXPECT_EQ(OwnErrorNumber(1), static_cast<int32_t>(0x80040201u));
  EXPECT_EQ(MensagemErro(static_cast<int32_t>(0x80040201u)),
            "Nao informado identificador do registro (chave, código ou PK ...)");
  EXPECT_EQ(MensagemErro(static_cast<int32_t>(0x80040202u)), "Registro nao encontrado");
  EXPECT_EQ(MensagemErro(vbObjectError + 512 + 101), "Exclusão cancelada");
  EXPECT_EQ(MensagemErro(vbObjectError + 512 + 102),
            "Você não está autorizado a utilizar esse formulário");
}

TEST(MessageCatalogue, FieldMessagesAtTheEdgesOfTheirRange) {
  EXPECT_EQ(MensagemErro(static_cast<int32_t>(0x8004032Cu)),
            "Código do bairro não foi informado ou é inválido");
  EXPECT_EQ(MensagemErro(static_cast<int32_t>(0x80040334u)), "Cor não foi informada ou é inválida");
  // The message after 308 is numbered 310: 309 was never used.
  EXPECT_EQ(MensagemErro(static_cast<int32_t>(0x80040335u)), "Erro nao definido");
  EXPECT_EQ(MensagemErro(static_cast<int32_t>(0x80040336u)),
            "Código da empresa usuária do sistema não foi informado ou é inválido");
  EXPECT_EQ(MensagemErro(static_cast<int32_t>(0x800403A7u)),
            "Convenio do estacionamento não informado ou inválido");
  EXPECT_EQ(MensagemErro(OwnErrorNumber(424)), "Erro nao definido");
}

TEST(MessageCatalogue, RepeatedCutAndMisspelledTextsStayAsTheyAre) {
  EXPECT_EQ(MensagemErro(OwnErrorNumber(346)), MensagemErro(OwnErrorNumber(349)));
  EXPECT_EQ(MensagemErro(OwnErrorNumber(349)), "Data de abertura não informada ou inválida");
  EXPECT_EQ(MensagemErro(OwnErrorNumber(379)), "Número do faturamento");
  EXPECT_EQ(MensagemErro(OwnErrorNumber(353)), "Data de sáida não foi informada ou é inválida");
  EXPECT_EQ(MensagemErro(OwnErrorNumber(357)),
            "Horário de chegada na Rodoviário não foi informado ou é inválido");
  EXPECT_EQ(MensagemErro(OwnErrorNumber(334)), "Descrição da agencia não informada ou inválida");
  EXPECT_EQ(MensagemErro(OwnErrorNumber(355)),
            "Horário de abertura não foi informado ou é inválida");
}

TEST(MessageCatalogue, NumbersOutsideTheCatalogueAreUndefinedAndEveryOneInsideIsDefined) {
  for (int32_t number : {0, 1, 2, 13, 300, -1, OwnErrorNumber(0), OwnErrorNumber(3),
                         OwnErrorNumber(100), OwnErrorNumber(299), kBusinessError,
                         static_cast<int32_t>(0x80004005u), INT32_MIN, INT32_MAX}) {
    EXPECT_EQ(MensagemErro(number), "Erro nao definido") << number;
  }
  int defined = 0;
  for (int32_t n = 0; n <= 500; ++n) {
    if (MensagemErro(OwnErrorNumber(n)) != "Erro nao definido") ++defined;
  }
  // 1, 2, 101, 102 and 300..423 without 309.
  EXPECT_EQ(defined, 4 + 124 - 1);
}

}  // namespace
}  // namespace vek
