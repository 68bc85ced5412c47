#pragma once
// The report database (bdTemp) of a session: the work file that the reports
// fill and the report writer reads, in the application folder.

#include <string>

namespace vek {

class cgpSistema;

// The folder of the session's application: Ds_CaminhoAplicacao, else AppPath().
std::string ApplicationFolder(const cgpSistema& session);

// Makes sure the report database is there, copying it from the folder
// Modelos of the application folder when it is missing (error 53 "File not
// found" when the template is missing too), and returns the Jet connection
// string that opens it: "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" +
// folder + "\bdTemp.mdb". On this platform that names the SQLite file
// bdTemp.db of the folder (Connection opens it in the Jet dialect).
std::string PrepareReportDatabase(const cgpSistema& session);

}  // namespace vek
