#pragma once
// The bus side's screens as text, shared by vek board, vek timetable and the
// demo's day: the viewer's board and the passengers' timetable search.

#include <filesystem>
#include <memory>
#include <ostream>
#include <string>

#include "vek/vek.h"

namespace vek::cli {

// The session of the terminal in `folder`, as its programs start: Vek.ini
// read (the folder becomes the application folder) and the connection open.
// Raises 0x80040458 when the folder holds no Vek.ini, or names an embedded
// database file that is not there or is no SQLite database (none is made,
// none is changed).
std::shared_ptr<cgpSistema> OpenTerminal(const std::filesystem::path& folder);

// True for a file that starts as every SQLite database does; an empty file,
// which SQLite would take for a new database and write into, is none.
bool IsSqliteFile(const std::filesystem::path& file);
// Progress states of a trip (No_Andamento), as this terminal's programs set them.
enum TripState : int32_t { kTripExpected = 0, kTripAtPlatform = 1, kTripDeparted = 2, kTripArrived = 3 };
// The caption of a progress state on the terminal's screens ("Previsto" for
// any state it does not know).
std::string TripStateName(int32_t state);

// One board (rsUltimasChegadas or rsUltimasPartidas): expected time, origin,
// destination, company, platform and progress state, a line per trip.
// `state_name` turns No_Andamento into its caption (the number when null).
void PrintBoard(std::ostream& out, Recordset& rows, std::string (*state_name)(int32_t) = nullptr);

// The rows of adoRsHorariosLinha: terminal time, origin and destination with
// their states, company, bus type, platform, whether passengers board here,
// and the weekdays ("DSTQQSS", Sunday first, "-" where it does not run).
void PrintTimetables(std::ostream& out, Recordset& rows);

}  // namespace vek::cli
