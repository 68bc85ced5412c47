#include "vek/foundation/ReportDatabase.h"

#include <filesystem>
#include <system_error>

#include "vek/db/sqlite/SqliteDriver.h"
#include "vek/foundation/cgpSistema.h"
#include "vek/platform/AppPath.h"
#include "vek/platform/Variant.h"
#include "vek/platform/VekError.h"

namespace vek {

namespace fs = std::filesystem;

std::string ApplicationFolder(const cgpSistema& session) {
  const Variant folder = session.Get("Ds_CaminhoAplicacao");
  const std::string text = folder.IsNull() || folder.IsEmpty() ? std::string() : CStr(folder);
  return text.empty() ? AppPath().string() : text;
}

std::string PrepareReportDatabase(const cgpSistema& session) {
  const std::string folder = ApplicationFolder(session);
  const fs::path file = ReportDatabaseFile(folder + "\\bdTemp.mdb");
  std::error_code error;
  if (!fs::exists(file, error)) {
    const fs::path model = ReportDatabaseFile(folder + "\\Modelos\\bdTemp.mdb");
    if (!fs::is_regular_file(model, error)) {
      throw VekError(kFileNotFound, "vek", RuntimeErrorText(kFileNotFound) + ": " + model.string());
    }
    if (!fs::copy_file(model, file, error)) {
      throw VekError(kPathFileAccessError, "vek",
                     RuntimeErrorText(kPathFileAccessError) + ": " + file.string() + " (" + error.message() + ")");
    }
  }
  return "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + folder + "\\bdTemp.mdb";
}

}  // namespace vek
