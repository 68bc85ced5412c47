#include "vek/foundation/cgp.h"

#include <gtest/gtest.h>

#include "support/TestSupport.h"
#include "vek/foundation/cgpSistema.h"

namespace vek {
namespace {

class cgpTeste : public cgp {
 public:
  cgpTeste()
      : cgp(std::make_shared<const PropertyList>(std::vector<PropertyDef>{
            {"Cd_Bairro", PropertyType::Long},
            {"Nm_Bairro", PropertyType::String},
            {"Qt_Vagas", PropertyType::Integer},
            {"Vl_Tarifa", PropertyType::Currency},
            {"Dt_Cadastro", PropertyType::Date},
            {"Ic_Ativo", PropertyType::Boolean},
            {"Ob_Qualquer", PropertyType::Variant}})) {}
};

using testing::ErrorOf;

TEST(cgp, PropertiesAreReadAndWrittenByNameInAnyCaseAndTakeTheirType) {
  cgpTeste record;
  record.Let("cd_bairro", Variant("42"));
  EXPECT_EQ(record.Get("CD_BAIRRO"), Variant(42));
  record.Let("Qt_Vagas", Variant(2.5));
  EXPECT_EQ(record.Get("Qt_Vagas"), Variant(int16_t{2}));  // half to even
  record.Let("Vl_Tarifa", Variant(3.75));
  EXPECT_EQ(record.Get("Vl_Tarifa"), Variant(Currency::FromRaw(37500)));
  record.Let("Dt_Cadastro", Variant("21/11/2026 10:30"));
  EXPECT_EQ(record.Get("Dt_Cadastro"), Variant(DateSerial(2026, 11, 21) + TimeSerial(10, 30, 0)));
  record.Let("Ic_Ativo", Variant(-1));
  EXPECT_EQ(record.Get("Ic_Ativo"), Variant(true));
  record.Let("Nm_Bairro", Variant(7));
  EXPECT_EQ(record.Get("Nm_Bairro"), Variant("7"));
  record.Let("Ob_Qualquer", Variant::Null());
  EXPECT_TRUE(record.Get("Ob_Qualquer").IsNull());
}

TEST(cgp, UnknownNamesAndRefusedValuesRaiseTheClassicErrors) {
  cgpTeste record;
  record.Let("Cd_Bairro", Variant(5));
  EXPECT_EQ(ErrorOf([&] { record.Get("Cd_Cidade"); }).Number(), 438);
  EXPECT_EQ(ErrorOf([&] { record.Let("Cd_Cidade", Variant(1)); }).Number(), 438);
  EXPECT_EQ(ErrorOf([&] { record.Let("Cd_Bairro", Variant("abc")); }).Number(), 13);
  EXPECT_EQ(ErrorOf([&] { record.Let("Nm_Bairro", Variant::Null()); }).Number(), 13);
  EXPECT_EQ(ErrorOf([&] { record.Let("Qt_Vagas", Variant(40000)); }).Number(), 6);
  // A refused value leaves the property as it was.
  EXPECT_EQ(record.Get("Cd_Bairro"), Variant(5));
  EXPECT_FALSE(record.HasProperty("Cd_Cidade"));
  EXPECT_TRUE(record.HasProperty("nm_BAIRRO"));
}

TEST(cgp, RestaurarDefaultResetsEveryPropertyToItsTypesDefault) {
  cgpTeste record;
  record.Let("Cd_Bairro", Variant(5));
  record.Let("Nm_Bairro", Variant("Centro"));
  record.Let("Dt_Cadastro", Variant(DateSerial(2026, 1, 1)));
  record.Let("Ic_Ativo", Variant(true));
  record.RestaurarDefault();
  EXPECT_EQ(record.Get("Cd_Bairro"), Variant(0));
  EXPECT_EQ(record.Get("Nm_Bairro"), Variant(""));
  EXPECT_EQ(record.Get("Qt_Vagas"), Variant(int16_t{0}));
  EXPECT_EQ(record.Get("Vl_Tarifa"), Variant(Currency()));
  EXPECT_EQ(record.Get("Dt_Cadastro"), Variant(Date()));
  EXPECT_EQ(record.Get("Ic_Ativo"), Variant(false));
  EXPECT_TRUE(record.Get("Ob_Qualquer").IsEmpty());
}

TEST(cgp, ListsForCatalogueTablesCarryTheColumnsAndTheExtras) {
  const auto list = PropertyList::ForTable("tbbairro", {{"Qt_Extra", PropertyType::Long}});
  EXPECT_GE(list->IndexOf("Cd_Bairro"), 0);
  EXPECT_EQ(list->At(list->IndexOf("Cd_Bairro")).type, PropertyType::Long);
  EXPECT_EQ(list->At(list->IndexOf("Nm_Bairro")).type, PropertyType::String);
  EXPECT_EQ(list->IndexOf("Qt_Extra"), list->Count() - 1);
  EXPECT_EQ(ErrorOf([] { PropertyList::ForTable("TbNada"); }).Number(), 5);
}

}  // namespace
}  // namespace vek

namespace vek {
namespace {

TEST(cgpSistema, ComposesTheConnectionStringOfEachKind) {
  cgpSistema session;
  session.Let("Ds_CaminhoDB", Variant("/srv/terminal/Vek.db"));
  EXPECT_EQ(CStr(session.Get("Ds_StringConexaoDB")), "Driver=SQLite3;Database=/srv/terminal/Vek.db");

  session.Let("Cd_DB", Variant(static_cast<int32_t>(BancoDadosPostgreSQL)));
  session.Let("Ds_CaminhoDB", Variant("vek"));
  session.Let("Nm_ServidorDB", Variant("terminal@10.0.0.5:5433"));
  session.Let("Ds_SenhaDB", Variant("s3nha"));
  EXPECT_EQ(session.Ds_StringConexaoDB(),
            "Driver={PostgreSQL Unicode};Server=10.0.0.5;Port=5433;Database=vek;Uid=terminal;Pwd=s3nha");
  session.Let("Nm_ServidorDB", Variant("servidor"));
  EXPECT_EQ(session.Ds_StringConexaoDB(),
            "Driver={PostgreSQL Unicode};Server=servidor;Port=5432;Database=vek;Uid=postgres;Pwd=s3nha");

  session.Let("Cd_DB", Variant(static_cast<int32_t>(BancoDadosSqlServer2000)));
  session.Let("Nm_ServidorDB", Variant("sqlsrv:1435"));
  EXPECT_EQ(session.Ds_StringConexaoDB(),
            "Driver={FreeTDS};Server=sqlsrv;Port=1435;Database=vek;Uid=sa;Pwd=s3nha;TDS_Version=7.4;"
            "ClientCharset=UTF-8");
  // Composed, never set.
  EXPECT_EQ(testing::ErrorOf([&] { session.Let("Ds_StringConexaoDB", Variant("x")); }).Number(), 438);
}

}  // namespace
}  // namespace vek
