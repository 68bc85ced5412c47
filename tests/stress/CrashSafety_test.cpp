// A workstation killed at any moment of the terminal's day loses nothing it
// was told was written: the gates' entries and exits, the trips' boardings,
// the restroom's sales at the till and the sequence numbers it drew. After
// each kill the database passes its own check, and the next run goes on
// from there.
#include <gtest/gtest.h>

#include <signal.h>

#include <chrono>
#include <filesystem>
#include <iostream>
#include <map>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "parking/ParkingData.h"
#include "support/Workstation.h"
#include "vek/foundation/Sequences.h"

namespace vek {
namespace {

// What the workstations were told was written, over every run.
struct Acknowledged {
  std::set<int32_t> numbers;            // sequence draws
  std::set<int32_t> entries;            // tickets entered
  std::set<int32_t> exits;              // tickets closed
  std::map<int32_t, int32_t> trips;     // trip and its boardings
  std::set<int32_t> sales;              // restroom sales

  // Takes a run's lines in; a key acknowledged twice over the runs is a
  // number handed out again, which is a failure too.
  void Add(const std::vector<std::string>& lines, std::vector<std::string>& failures) {
    for (const std::string& line : lines) {
      std::istringstream in(line);
      std::string kind;
      int32_t key = 0;
      in >> kind >> key;
      bool fresh = true;
      if (kind == "seq") {
        fresh = numbers.insert(key).second;
      } else if (kind == "entry") {
        fresh = entries.insert(key).second;
      } else if (kind == "exit") {
        fresh = exits.insert(key).second;
      } else if (kind == "trip") {
        int32_t boardings = 0;
        in >> boardings;
        fresh = trips.emplace(key, boardings).second;
      } else if (kind == "sale") {
        fresh = sales.insert(key).second;
      } else {
        failures.push_back("unreadable line: " + line);
      }
      if (!fresh) failures.push_back("acknowledged twice: " + line);
    }
  }
};

// Every acknowledged write must be in the database as it was acknowledged.
std::vector<std::string> Missing(testing::TerminalDatabase& db, const Acknowledged& ack) {
  std::vector<std::string> missing;
  std::map<int32_t, int32_t> tickets;
  for (auto rows = db.Query("SELECT Cd_TicketEstacionamento, No_Situacao FROM TbTicketEstacionamento"); !rows->Eof();
       rows->MoveNext()) {
    tickets[CLng(rows->Fields().Item(0).Value())] = CLng(rows->Fields().Item(1).Value());
  }
  std::set<int32_t> charged;
  for (auto rows = db.Query("SELECT Cd_TicketEstacionamento FROM TbTicketEstacionamento_TbTarifa"); !rows->Eof();
       rows->MoveNext()) {
    charged.insert(CLng(rows->Fields().Item(0).Value()));
  }
  std::map<int32_t, int32_t> trips;
  for (auto rows = db.Query("SELECT Cd_ViagemOnibus, Qt_EmbarquesComPassagem FROM TbViagemOnibus"); !rows->Eof();
       rows->MoveNext()) {
    trips[CLng(rows->Fields().Item(0).Value())] = CLng(rows->Fields().Item(1).Value());
  }
  std::set<int32_t> sales;
  for (auto rows = db.Query("SELECT Cd_TicketSanitario FROM TbTicketSanitario"); !rows->Eof(); rows->MoveNext()) {
    sales.insert(CLng(rows->Fields().Item(0).Value()));
  }
  const auto counter = db.Query("SELECT No_Sequencial FROM TbSequenciadores WHERE Nm_Atributo = 'Cd_Carga'");
  const int32_t last_number = counter->Eof() ? 0 : CLng(counter->Fields().Item(0).Value());

  for (int32_t entry : ack.entries) {
    if (!tickets.contains(entry)) missing.push_back("entry " + std::to_string(entry));
  }
  for (int32_t exit : ack.exits) {
    if (tickets.contains(exit) ? tickets[exit] != 2 : true) missing.push_back("exit " + std::to_string(exit));
    if (!charged.contains(exit)) missing.push_back("charge line of " + std::to_string(exit));
  }
  // The exit writes the charge line before it closes the ticket: a closed
  // ticket without its line is half an exit.
  for (const auto& [ticket, state] : tickets) {
    if (state == 2 && !charged.contains(ticket)) {
      missing.push_back("closed without its line: " + std::to_string(ticket));
    }
  }
  for (const auto& [trip, boardings] : ack.trips) {
    if (!trips.contains(trip) || trips[trip] != boardings) missing.push_back("trip " + std::to_string(trip));
  }
  for (int32_t sale : ack.sales) {
    if (!sales.contains(sale)) missing.push_back("sale " + std::to_string(sale));
  }
  if (!ack.numbers.empty() && last_number < *ack.numbers.rbegin()) {
    missing.push_back("sequence at " + std::to_string(last_number) + " after " +
                      std::to_string(*ack.numbers.rbegin()) + " was drawn");
  }
  return missing;
}

// Waits until the workstation has acknowledged a write (or has ended).
void WaitForFirstWrite(const std::filesystem::path& output, pid_t workstation) {
  const auto give_up = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  std::error_code ignored;
  while (std::filesystem::file_size(output, ignored) == 0 && std::chrono::steady_clock::now() < give_up) {
    int status = 0;
    if (waitpid(workstation, &status, WNOHANG) == workstation) return;
    std::this_thread::sleep_for(std::chrono::microseconds(200));
  }
}

TEST(CrashSafety, AWorkstationKilledAtAnyMomentKeepsEveryAcknowledgedWrite) {
  testing::ScratchFolder folder;
  testing::TerminalDatabase db((folder.Path() / "Vek.db").string());
  testing::AddTariff(db, 21, "ESTACIONAMENTO", "2");
  const std::filesystem::path output = folder.Path() / "acknowledged.txt";

  std::random_device seed_source;
  const uint32_t seed = seed_source();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  std::uniform_int_distribution<int> moment(0, testing::CrashLatestKillMs() * 1000);

  Acknowledged ack;
  size_t acknowledged_writes = 0;
  for (int run = 0; run < testing::CrashKills(); ++run) {
    std::vector<std::string> args = {"work", std::to_string(run)};
    for (const std::string& argument : db.SessionArguments()) args.push_back(argument);
    const pid_t workstation = testing::StartWorkstation(args, output);
    ASSERT_GT(workstation, 0);
    WaitForFirstWrite(output, workstation);
    std::this_thread::sleep_for(std::chrono::microseconds(moment(random)));
    ::kill(workstation, SIGKILL);
    // A workstation that ended by itself failed: the workload never ends.
    ASSERT_EQ(testing::ExitCode(workstation), -1) << "run " << run << " ended before it was killed";

    std::vector<std::string> failures;
    const std::vector<std::string> lines = testing::OutputLines(output);
    acknowledged_writes += lines.size();
    ack.Add(lines, failures);
    const std::string check = testing::DatabaseCheck(db);
    if (check != "ok") failures.push_back("database check: " + check);
    for (const std::string& lost : Missing(db, ack)) failures.push_back("lost " + lost);
    ASSERT_TRUE(failures.empty()) << "after kill " << run << ": " << failures.front() << " (" << failures.size()
                                  << " in all)";
  }
  // Every kind of write was acknowledged (and so checked) at some point.
  EXPECT_FALSE(ack.numbers.empty());
  EXPECT_FALSE(ack.entries.empty());
  EXPECT_FALSE(ack.exits.empty());
  EXPECT_FALSE(ack.trips.empty());
  EXPECT_FALSE(ack.sales.empty());
  // The next number drawn comes after every one acknowledged.
  EXPECT_GT(NextSequenceValue(*db.session, "Cd_Carga"), *ack.numbers.rbegin());
  std::cout << "[ crash    ] " << testing::CrashKills() << " kills, " << acknowledged_writes
            << " acknowledged writes (" << ack.numbers.size() << " numbers, " << ack.entries.size() << " entries, "
            << ack.exits.size() << " exits, " << ack.trips.size() << " trips, " << ack.sales.size() << " sales)\n";
}

}  // namespace
}  // namespace vek
