// The entry gate and the exit cashier are different programs on one
// database: both run at once, and every ticket must come out numbered once
// and closed by its own exit.
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "parking/ParkingData.h"
#include "support/Workstation.h"

namespace vek {
namespace {

using testing::ExitCode;

pid_t StartWorkstation(const std::string& role, int32_t count, const std::vector<std::string>& database) {
  std::vector<std::string> args = {role, std::to_string(count)};
  args.insert(args.end(), database.begin(), database.end());
  return testing::StartWorkstation(args);
}

TEST(TwoWorkstationsTest, EntriesOnOneProgramAndExitsOnAnotherNumberEveryTicketOnceAndCloseItsOwn) {
  constexpr int32_t kVehicles = 150;
  testing::ScratchFolder folder;
  testing::TerminalDatabase db((folder.Path() / "Vek.db").string());
  testing::AddTariff(db, 21, "ESTACIONAMENTO", "2");

  const pid_t exits = StartWorkstation("exit", kVehicles, db.SessionArguments());
  const pid_t entries = StartWorkstation("entry", kVehicles, db.SessionArguments());
  ASSERT_GT(exits, 0);
  ASSERT_GT(entries, 0);
  EXPECT_EQ(ExitCode(entries), 0);
  EXPECT_EQ(ExitCode(exits), 0);

  std::set<int32_t> numbers;
  int32_t closed_right = 0;
  for (auto rows = db.Query("SELECT T.Cd_TicketEstacionamento, T.Cd_Placa, T.No_Situacao, "
                            "T.Qt_TempoPermanenciaMinutos, L.Qt_Unidade, T.Dt_Saida "
                            "FROM TbTicketEstacionamento T LEFT JOIN TbTicketEstacionamento_TbTarifa L "
                            "ON L.Cd_EmpresaUsuariaSistema = T.Cd_EmpresaUsuariaSistema "
                            "And L.Cd_TicketEstacionamento = T.Cd_TicketEstacionamento");
       !rows->Eof(); rows->MoveNext()) {
    Fields& f = rows->Fields();
    numbers.insert(CLng(f.Item(0).Value()));
    const int32_t index = std::stoi(CStr(f.Item(1).Value()).substr(1));
    // The exit of plate i wrote i minutes on the ticket and i + 1 units on
    // the ticket's own charge line.
    if (CLng(f.Item(2).Value()) == 2 && CLng(f.Item(3).Value()) == index && !f.Item(4).Value().IsNull() &&
        CLng(f.Item(4).Value()) == index + 1 && !f.Item(5).Value().IsNull()) {
      ++closed_right;
    }
  }
  EXPECT_EQ(static_cast<int32_t>(numbers.size()), kVehicles);
  EXPECT_EQ(*numbers.begin(), 1);
  EXPECT_EQ(*numbers.rbegin(), kVehicles);
  EXPECT_EQ(closed_right, kVehicles);
  EXPECT_EQ(testing::CountOf(db, "TbTicketEstacionamento"), kVehicles);
  EXPECT_EQ(testing::CountOf(db, "TbTicketEstacionamento_TbTarifa"), kVehicles);
  EXPECT_EQ(testing::CountOf(db, "TbTicketEstacionamento WHERE No_Situacao = 1"), 0);
}

}  // namespace
}  // namespace vek
