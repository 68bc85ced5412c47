// A program that knows vek only as installed: it includes <vek/vek.h> alone
// and uses one class of every folder of the library, so a header missing
// from the umbrella fails this build.
#include <vek/vek.h>

#include <iostream>
#include <memory>

namespace {

int Fail(const char* what) {
  std::cerr << "consumer: " << what << "\n";
  return 1;
}

}  // namespace

int main() {
  try {
    // foundation/ and db/: a session on an in-memory database; schema/: its tables.
    auto session = std::make_shared<vek::cgpSistema>();
    session->Let("Ds_CaminhoDB", vek::Variant(":memory:"));
    auto connection = session->AbrirConexao();
    vek::schema::CreateDatabase(*connection);

    // registry/: a state, listed by its collection.
    vek::cgdUF uf;
    uf.Ob_cgpSistema(session);
    uf.Ob_cgp()->Let("Sg_UF", vek::Variant("GO"));
    uf.Ob_cgp()->Let("Nm_UF", vek::Variant("Goiás"));
    uf.Salvar();
    vek::cgdUFs ufs;
    ufs.Ob_cgpSistema(session);
    vek::ListComboBox states;  // platform/
    ufs.CarregarComboBoxSomenteSigla(states);
    if (states.ListCount() != 1 || states.List(0) != "GO") return Fail("the states' list");

    // revenue/: a tariff in the grid of tariffs.
    vek::cgdTarifa tarifa;
    tarifa.Ob_cgpSistema(session);
    tarifa.Ob_cgp()->Let("Ds_Tarifa", vek::Variant("Embarque"));
    tarifa.Ob_cgp()->Let("Cd_TipoReceita", vek::Variant(1));
    tarifa.Salvar();
    vek::cgdTarifas tarifas;
    tarifas.Ob_cgpSistema(session);
    vek::ListGrid grid;
    vek::TextBox count;
    tarifas.CarregarMSFlexGridDeBusca(grid, count);
    if (count.Text() != "1") return Fail("the tariffs' grid");

    // parking/: a vehicle's plate.
    vek::cgdVeiculo veiculo;
    veiculo.Ob_cgpSistema(session);
    veiculo.Ob_cgp()->Let("Cd_Placa", vek::Variant("ABC1D23"));
    if (veiculo.Existe()) return Fail("a plate that is not there");

    // bus/: a bus type, found again by its code.
    vek::cgdTipoOnibus tipo;
    tipo.Ob_cgpSistema(session);
    tipo.Ob_cgp()->Let("Ds_TipoOnibus", vek::Variant("Leito"));
    tipo.Salvar();
    if (vek::CStr(tipo.Consultar(false)->Get("Ds_TipoOnibus")) != "Leito") return Fail("a bus type");

    std::cout << "vek " << vek::kVersion << ": " << vek::MensagemErro(vek::vbObjectError + 512 + 2) << "\n";
    return 0;
  } catch (const vek::VekError& error) {
    std::cerr << "consumer: " << error.Description() << " (" << error.Source() << ")\n";
    return 1;
  }
}
