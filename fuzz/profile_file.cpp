// The private-profile reader and writer on any file content.
#include "FuzzInput.h"
#include "vek/platform/ProfileFile.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const auto file = vek::fuzz::ScratchFile(data, size, ".ini");
  return vek::fuzz::Refusable([&] {
    std::string buffer;
    (void)vek::GetPrivateProfileString("Persistencia", "Cd_DB", "31", buffer, 8, file);
    (void)vek::GetPrivateProfileString("Persistencia", "Ds_CaminhoDB", "", file);
    (void)vek::FindProfileValue("Backup", "Ds_PastaBackup", file);
    vek::WritePrivateProfileString("Backup", std::string_view("Dt_UltimoBackup"), std::string_view("24/11/2026"), file);
    (void)vek::FindProfileValue("Backup", "Dt_UltimoBackup", file);
  });
}
