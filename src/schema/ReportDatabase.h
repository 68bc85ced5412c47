#pragma once
// The report database's work tables (bdTemp), which the reports fill and the
// report writer reads: one set of tables for every report, emptied by each.

#include <filesystem>

namespace vek::schema {

// Writes the template report database at `file` (a new SQLite file; an
// existing one is replaced): the catalogue's report tables
// (cgrApuracaoReceita3, cgrMapaControleEmbarque1, cgrMapaControleDesembarque1)
// without rows.
void WriteReportDatabaseTemplate(const std::filesystem::path& file);

}  // namespace vek::schema
