#pragma once
// Compression of the backup copy that goes to the mirror folder.

#include <string>

namespace vek {

// Compresses the file `Ds_Origem` into the zip file `Ds_ArquivoZip`: one
// entry under the source's file name, deflated at level 6. The zip is
// written beside its target and read back (its CRC compared with the
// source's) before it replaces the target, mode 0600. Raises 0x80040458
// "Erro na compactação do arquivo" (Source "... -> ZqModulo.Compacta, ")
// when anything fails; the target is then left as it was.
void Compacta(const std::string& Ds_Origem, const std::string& Ds_ArquivoZip);

}  // namespace vek
