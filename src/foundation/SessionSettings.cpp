#include "vek/foundation/SessionSettings.h"

namespace vek {

const std::vector<SettingDef>& SessionSettings() {
  using enum PropertyType;
  // The turnstile key is written under "Sanitario" but read under
  // "VisualizadorViagens"; installations depend on that, so it stays.
  static const std::vector<SettingDef> settings = {
      {"Persistencia", "Persistencia", "Cursor", "Cursor", Long},
      {"Persistencia", "Persistencia", "LockType", "LockType", Long},
      {"Persistencia", "Persistencia", "Cd_Provedor", "Cd_Provedor", Long},
      {"Persistencia", "Persistencia", "Cd_DB", "Cd_DB", Long},
      {"Persistencia", "Persistencia", "Ds_CaminhoDB", "Ds_CaminhoDB", String},
      {"Persistencia", "Persistencia", "Nm_ServidorDB", "Nm_ServidorDB", String},
      {"Persistencia", "Persistencia", "Ds_SenhaDB", "Ds_SenhaDB", String},
      {"Persistencia", "Persistencia", "Ds_FormatoData", "Ds_FormatoData", String},
      {"Persistencia", "Persistencia", "Ds_CaminhoAplicacao", "Ds_CaminhoAplicacao", String},
      {"ImpressoraRelatório", "ImpressoraRelatório", "Nm_ImpressoraRelatório", "Nm_ImpressoraRelatorio", String},
      {"ImpressoraRelatório", "ImpressoraRelatório", "Nm_DriverImpressoraRelatório", "Nm_DriverImpressoraRelatorio", String},
      {"ImpressoraRelatório", "ImpressoraRelatório", "Nm_PortaImpressoraRelatório", "Nm_PortaImpressoraRelatorio", String},
      {"MineImpressora", "MineImpressora", "No_ModeloImpressora", "No_ModeloImpressora", Long},
      {"MineImpressora", "MineImpressora", "No_LPT", "No_LPT", Byte},
      {"MineImpressora", "MineImpressora", "Nm_FonteImpressoraE", "Nm_FonteImpressoraE", String},
      {"MineImpressora", "MineImpressora", "Qt_TamanhoFonteImpressoraE", "Qt_TamanhoFonteImpressoraE", Long},
      {"Aparencia", "Aparencia", "No_CorFrameSuperior", "No_CorFrameSuperior", Long},
      {"Aparencia", "Aparencia", "Nm_ArquivoFrameSuperior", "Nm_ArquivoFrameSuperior", String},
      {"Aparencia", "Aparencia", "No_CorRealceFoco", "No_CorRealceFoco", Long},
      {"Aparencia", "Aparencia", "Nm_ArquivoFrameLateral", "Nm_ArquivoFrameLateral", String},
      {"Aparencia", "Aparencia", "No_CorFundo", "No_CorFundo", Long},
      {"Aparencia", "Aparencia", "Nm_ArquivoFundoTelaPrincipal", "Nm_ArquivoFundoTelaPrincipal", String},
      {"Aparencia", "Aparencia", "Nm_ArquivoFundoTelasFilhas", "Nm_ArquivoFundoTelasFilhas", String},
      {"EmpresaUsuaria", "EmpresaUsuaria", "Cd_EmpresaUsuariaSistema", "Cd_EmpresaUsuariaSistema", Long},
      {"MicroTerminal", "MicroTerminal", "Ds_PathMicroterminal", "Ds_PathMicroterminal", String},
      {"ArquivosSom", "ArquivosSom", "Ds_PathArquivosSom", "Ds_PathArquivosSom", String},
      {"Backup", "Backup", "Ds_PathBkpLocal", "Ds_PathBkpLocal", String},
      {"Backup", "Backup", "Ds_PathBkpEspelho", "Ds_PathBkpEspelho", String},
      {"ApuracaoReceita", "ApuracaoReceita", "No_TipoValidacaoApuracaoReceitaEmbarque", "No_TipoValidacaoApuracaoReceitaEmbarque", Long},
      {"VisualizadorViagens", "VisualizadorViagens", "Qt_TempoAntecedenciaMostrarViagensVisualizador", "Qt_TempoAntecedenciaMostrarViagensVisualizador", Long},
      {"Sanitario", "VisualizadorViagens", "Qt_TempoMilesegundosAcionarCatraca", "Qt_TempoMilesegundosAcionarCatraca", Long},
      {"Sanitario", "Sanitario", "Ic_ImprimirTicketSanitario", "Ic_ImprimirTicketSanitario", Boolean},
      {"Estacionamento", "Estacionamento", "Ic_MostrarEntradaSanitarioNoEstacionamento", "Ic_MostrarEntradaSanitarioNoEstacionamento", Boolean},
      {"Estacionamento", "Estacionamento", "Ic_EntradaAutomatizadaNoEstacionamento", "Ic_EntradaAutomatizadaNoEstacionamento", Boolean},
      {kUserStoreSection, kUserStoreSection, "Ic_ControleRelogioEstacionamento", "Ic_ControleRelogioEstacionamento", Boolean, true},
  };
  return settings;
}

}  // namespace vek
