// Eight workstations at once on one database, each its own program: every
// one draws numbers of the same sequence and enters and closes vehicles.
// No number is handed out twice, every ticket is numbered once and closed,
// and no workstation ever sees the database busy (waiting for it is the
// driver's job).
#include <gtest/gtest.h>

#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "parking/ParkingData.h"
#include "support/Workstation.h"

namespace vek {
namespace {

TEST(ManyWorkstations, EightDrawAndParkAtOnceWithoutLosingOrRepeatingANumber) {
  constexpr int kWorkstations = 8;
  constexpr int kNumbersEach = 1000;
  testing::ScratchFolder folder;
  testing::TerminalDatabase db((folder.Path() / "Vek.db").string());
  testing::AddTariff(db, 21, "ESTACIONAMENTO", "2");

  std::vector<pid_t> workstations;
  for (int w = 0; w < kWorkstations; ++w) {
    std::vector<std::string> args = {"draw", std::to_string(kNumbersEach)};
    for (const std::string& argument : db.SessionArguments()) args.push_back(argument);
    args.push_back(std::to_string(w));
    workstations.push_back(
        testing::StartWorkstation(args, folder.Path() / ("workstation" + std::to_string(w) + ".txt")));
    ASSERT_GT(workstations.back(), 0);
  }
  // A workstation that met an error (a busy database among them) ends with
  // 1 and says so on its standard error.
  for (int w = 0; w < kWorkstations; ++w) EXPECT_EQ(testing::ExitCode(workstations[w]), 0) << "workstation " << w;

  std::set<int32_t> numbers;
  std::set<int32_t> tickets;
  int drawn = 0;
  int entered = 0;
  for (int w = 0; w < kWorkstations; ++w) {
    for (const std::string& line :
         testing::OutputLines(folder.Path() / ("workstation" + std::to_string(w) + ".txt"))) {
      std::istringstream in(line);
      std::string kind;
      int32_t key = 0;
      in >> kind >> key;
      if (kind == "seq") {
        ++drawn;
        EXPECT_TRUE(numbers.insert(key).second) << "number " << key << " handed out twice";
      } else {
        ++entered;
        EXPECT_TRUE(tickets.insert(key).second) << "ticket " << key << " numbered twice";
      }
    }
  }
  EXPECT_EQ(drawn, kWorkstations * kNumbersEach);
  ASSERT_EQ(numbers.size(), static_cast<size_t>(kWorkstations * kNumbersEach));
  EXPECT_EQ(*numbers.begin(), 1);
  EXPECT_EQ(*numbers.rbegin(), kWorkstations * kNumbersEach);
  EXPECT_EQ(CLng(db.Query("SELECT No_Sequencial FROM TbSequenciadores WHERE Nm_Atributo = 'Cd_Carga'")
                     ->Fields()
                     .Item(0)
                     .Value()),
            kWorkstations * kNumbersEach);

  // Every vehicle came in and went out under its own ticket.
  constexpr int kTickets = kWorkstations * kNumbersEach / 10;
  EXPECT_EQ(entered, kTickets);
  EXPECT_EQ(tickets.size(), static_cast<size_t>(kTickets));
  std::set<int32_t> stored;
  std::set<std::string> plates;
  for (auto rows = db.Query("SELECT Cd_TicketEstacionamento, Cd_Placa, No_Situacao FROM TbTicketEstacionamento");
       !rows->Eof(); rows->MoveNext()) {
    stored.insert(CLng(rows->Fields().Item(0).Value()));
    plates.insert(CStr(rows->Fields().Item(1).Value()));
    EXPECT_EQ(CLng(rows->Fields().Item(2).Value()), 2) << "ticket " << CLng(rows->Fields().Item(0).Value());
  }
  EXPECT_EQ(stored, tickets);
  EXPECT_EQ(plates.size(), static_cast<size_t>(kTickets));
  EXPECT_EQ(testing::CountOf(db, "TbTicketEstacionamento_TbTarifa"), kTickets);
  EXPECT_EQ(testing::DatabaseCheck(db), "ok");
}

}  // namespace
}  // namespace vek
