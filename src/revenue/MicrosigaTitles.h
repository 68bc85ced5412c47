#pragma once
// The ERP's table of receivable titles (Microsiga's SE1), into which
// cgdContasReceber::ExportarDBF writes: vek init leaves an empty one in
// Modelos/SE1.dbf for the export's folder. Its thirty E1_ fields, as dBase
// types:
//   E1_FILIAL C(2)    E1_PREFIXO C(3)   E1_NUM C(10)      E1_PARCELA C(3)
//   E1_TIPO C(3)      E1_NATUREZ C(10)  E1_CCUSTO C(9)    E1_PORTADO C(3)
//   E1_AGEDEP C(5)    E1_CLIENTE C(10)  E1_LOJA C(4)      E1_EMISSAO D
//   E1_VENCTO D       E1_VENCREA D      E1_VALOR N(17,2)  E1_EMIS1 D
//   E1_HIST C(40)     E1_SITUACA C(1)   E1_SALDO N(17,2)  E1_VENCORI D
//   E1_CONTA C(10)    E1_MOEDA N(2,0)   E1_STATUS C(1)    E1_ORIGEM C(8)
//   E1_FLUXO C(1)     E1_FILORIG C(2)   E1_MULTNAT C(1)   E1_MSFIL C(2)
//   E1_MSEMP C(2)     E1_RATNCC C(1)
// The ERP's own widths, except where the terminal's values would be cut:
// the receivable's number holds any whole number, the customer and store
// codes their whole TbEmpresaOnibus columns. Amounts keep the cents;
// a history longer than 40 characters is cut, as the ERP's field cuts it.

#include <filesystem>
#include <string>

namespace vek {

// "CREATE TABLE " + Nm_Tabela + " FREE (E1_FILIAL C(2), ...)", the
// statement that makes the empty table through the Visual FoxPro connection.
std::string MicrosigaTitleTableStatement(const std::string& Nm_Tabela = "SE1");

// Makes the empty table Nm_Tabela + ".dbf" (Windows-1252, with its .cpg)
// in the folder through the Visual FoxPro connection string. Raises the
// provider's error when the folder is missing or the file is already there.
void CreateMicrosigaTitleTable(const std::filesystem::path& folder, const std::string& Nm_Tabela = "SE1");

}  // namespace vek
