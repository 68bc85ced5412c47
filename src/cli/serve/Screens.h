#pragma once
// What the terminal's web screens show, read through the operating company's
// public members only (rsUltimasChegadas, rsUltimasPartidas, rsAgendaSom,
// rsVeiculoNoPatio), so a web screen shows what the desktop viewer shows;
// and the same data as JSON for other screens.

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "vek/vek.h"

namespace vek::cli::serve {

struct BoardRow {
  int32_t trip = 0;
  std::string origin;       // "CITY/UF"
  std::string destination;  // "CITY/UF"
  std::string company;
  std::string expected;     // "hh:mm", empty when the trip has no time
  std::string platform;
  int32_t progress = 0;     // No_Andamento
  std::string state;        // its caption
};

// An announcement due now (rsAgendaSom), with the words a screen says.
struct Announcement {
  int32_t code = 0;  // Cd_AgendaSom
  int32_t trip = 0;
  std::string due;   // "hh:mm"
  std::string text;
};

struct Board {
  std::string updated;  // "dd/mm/yyyy hh:mm:ss" on the session's clock
  int32_t rows = 0;     // how many trips each panel may hold
  std::vector<BoardRow> arrivals;
  std::vector<BoardRow> departures;
  std::vector<Announcement> announcements;
};

struct YardVehicle {
  std::string ticket;  // Ds_Ticket as the yard screen shows it
  std::string entry;   // "dd/mm/yyyy hh:mm", empty when unknown
  bool monthly = false;
};

struct Yard {
  std::string updated;
  std::vector<YardVehicle> vehicles;  // oldest entry first
};

// The board of `company` (its Cd_EmpresaUsuariaSistema in Ob_cgp): at most
// `rows` arrivals and departures and the announcements due. Raises what the
// members raise.
Board ReadBoard(cgdEmpresaUsuariaSistema& company, int32_t rows);
Yard ReadYard(cgdEmpresaUsuariaSistema& company);

std::string BoardJson(const Board& board);
std::string YardJson(const Yard& yard);

// Marks announcement `code` of `company` played through cgdAgendaSom.
enum class MarkResult { Marked, AlreadyPlayed, NotFound };
MarkResult MarkAnnouncementPlayed(const std::shared_ptr<cgpSistema>& session, int32_t company, int32_t code);

}  // namespace vek::cli::serve
