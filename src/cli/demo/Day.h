#pragma once
// vek demo's day at the terminal: a list of steps that run in order on one
// session, each printing a short section. Every subsystem adds its part of
// the day as a function returning its steps (RegistryDay, ...); DaySteps
// strings the parts together in the order the day goes, and a step finds
// what earlier steps registered in the day's facts.

#include <cstdint>
#include <map>
#include <memory>
#include <ostream>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "vek/vek.h"

namespace vek::cli::demo {

// What the day has registered so far, by the names the steps gave it.
struct DayFacts {
  int32_t company = 0;         // Cd_EmpresaUsuariaSistema of the operating company
  int32_t company_person = 0;  // its Cd_Pessoa
  std::map<std::string, int32_t> states;        // Sg_UF -> Cd_UF
  std::map<std::string, int32_t> cities;        // Nm_Cidade -> Cd_Cidade
  std::map<std::string, int32_t> neighbourhoods;  // Nm_Bairro -> Cd_Bairro
  std::map<std::string, int32_t> users;         // Nm_Usuario -> Cd_Usuario
  std::map<std::string, int32_t> tariffs;       // Ds_Tarifa -> Cd_Tarifa
  std::map<std::string, int32_t> colours;       // Nm_Cor -> Cd_Cor
  std::map<std::string, int32_t> models;        // Ds_MarcaModelo -> Cd_MarcaModelo
  std::vector<std::string> plates;              // the car park's vehicles
  int32_t till = 0;                             // Cd_Caixa of the cashier's till of the day
};

// What every step works with: the session opened from the folder's Vek.ini
// (its connection open, its clock set), where to print, and the day's facts.
struct DayContext {
  std::shared_ptr<cgpSistema> session;
  std::ostream& out;
  DayFacts facts;
  // Null when the day runs on the system clock (--now).
  std::shared_ptr<FixedClock> clock;
  // Anything a step draws by chance comes from here, seeded the same every run.
  std::mt19937 random;

  // Moves the fixed clock on (a step that takes time); nothing on the system clock.
  void Advance(double minutes) const {
    if (clock) clock->Advance(minutes * 60.0);
  }
  // A data manager or collection that works in this session.
  template <class Manager>
  Manager Use() const {
    Manager manager;
    manager.Ob_cgpSistema(session);
    return manager;
  }
};

struct DayStep {
  std::string title;
  void (*run)(DayContext&);
};

// The parts of the day, each from its own file.
std::vector<DayStep> RegistryDay();
std::vector<DayStep> BusDay();
std::vector<DayStep> ParkingDay();
std::vector<DayStep> TillOpeningDay();
std::vector<DayStep> TillReportsDay();
std::vector<DayStep> AssessmentDay();
std::vector<DayStep> MapsDay();
std::vector<DayStep> BillingDay();
std::vector<DayStep> WorkbookDay();
std::vector<DayStep> BackupDay();
std::vector<DayStep> AssessmentReportDay();

// Every step of the day, in order.
std::vector<DayStep> DaySteps();

// ---- how the steps print -------------------------------------------------

// A small table whose columns line up by characters, not bytes.
class TextTable {
 public:
  enum class Align { Left, Right };
  struct Column {
    std::string title;
    Align align = Align::Left;
  };
  explicit TextTable(std::vector<Column> columns) : columns_(std::move(columns)) {}

  // Cells past the columns are dropped, missing ones are empty.
  void AddRow(std::vector<std::string> cells);
  int32_t RowCount() const { return static_cast<int32_t>(rows_.size()); }
  // Each line indented by `indent` blanks, with no blanks at its end.
  void Print(std::ostream& out, int32_t indent = 2) const;

 private:
  std::vector<Column> columns_;
  std::vector<std::vector<std::string>> rows_;
};

// The cells of a search grid's lines, without the grid's empty first cell.
std::vector<std::vector<std::string>> GridRows(const ListGrid& grid);
// A pick list as a table of its entries: item data and text.
void PrintComboBox(std::ostream& out, const ComboBox& combo, std::string_view text_title);
// A grid's lines under the given column titles, then its count control.
void PrintGrid(std::ostream& out, const ListGrid& grid, std::vector<TextTable::Column> columns,
               const TextControl& count);
// "  label  value" lines, the labels padded to one width.
void PrintFacts(std::ostream& out, const std::vector<std::pair<std::string, std::string>>& facts);

// Money as the terminal shows it: "R$ 4,50" with the session's separators.
std::string Money(Currency value);

}  // namespace vek::cli::demo
