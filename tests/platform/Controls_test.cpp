#include "vek/platform/Controls.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "support/TestSupport.h"

namespace vek {
namespace {

using testing::ErrorOf;

TEST(ListComboBoxTest, EntriesCarryTextAndItemDataByIndex) {
  ListComboBox list;
  ComboBox& combo = list;
  EXPECT_EQ(combo.NewIndex(), -1);
  EXPECT_EQ(combo.ListCount(), 0);

  // The way a loader fills it: a heading entry, then one entry per row.
  combo.AddItem("--ESCOLHA-->");
  combo.ItemData(combo.NewIndex(), 0);
  combo.AddItem("Centro");
  combo.ItemData(combo.NewIndex(), 17);
  combo.AddItem("São José");
  EXPECT_EQ(combo.NewIndex(), 2);
  combo.ItemData(combo.NewIndex(), -5);

  EXPECT_EQ(combo.ListCount(), 3);
  EXPECT_EQ(combo.List(0), "--ESCOLHA-->");
  EXPECT_EQ(combo.List(2), "São José");
  EXPECT_EQ(combo.ItemData(1), 17);
  EXPECT_EQ(combo.ItemData(2), -5);

  combo.AddItem("Sem dado");
  EXPECT_EQ(combo.ItemData(3), 0);

  for (int32_t bad : {-1, 4}) {
    EXPECT_EQ(ErrorOf([&] { combo.ItemData(bad); }).Number(), 381) << bad;
    EXPECT_EQ(ErrorOf([&] { combo.ItemData(bad, 1); }).Number(), 381) << bad;
    EXPECT_EQ(ErrorOf([&] { combo.List(bad); }).Number(), 381) << bad;
  }
  EXPECT_EQ(ErrorOf([&] { combo.List(4); }).Description(), "Invalid property array index");

  combo.Clear();
  EXPECT_EQ(combo.ListCount(), 0);
  EXPECT_EQ(combo.NewIndex(), -1);
  EXPECT_EQ(ErrorOf([&] { combo.List(0); }).Number(), 381);
}

TEST(ListGridTest, RowsCountTheHeaderRowAndFollowTheLines) {
  ListGrid grid;
  FlexGrid& flex = grid;
  EXPECT_EQ(flex.Rows(), 1);
  EXPECT_TRUE(grid.Lines().empty());

  flex.FormatString("^Código|<Nome|<Cidade");
  flex.ColWidth(0, 300);
  flex.ColWidth(2, 2500);
  flex.AddItem("\t1\tCentro\tBrasília");
  flex.AddItem("\t2\tAsa Sul\tBrasília");
  EXPECT_EQ(flex.Rows(), 3);
  ASSERT_EQ(grid.Lines().size(), 2u);
  EXPECT_EQ(grid.Lines()[1], "\t2\tAsa Sul\tBrasília");
  EXPECT_EQ(flex.FormatString(), "^Código|<Nome|<Cidade");
  EXPECT_EQ(flex.ColWidth(2), 2500);
  EXPECT_EQ(flex.ColWidth(1), -1);
  EXPECT_EQ(grid.ColWidths().size(), 2u);

  flex.Rows(2);
  ASSERT_EQ(grid.Lines().size(), 1u);
  EXPECT_EQ(grid.Lines()[0], "\t1\tCentro\tBrasília");
  flex.Rows(4);
  EXPECT_EQ(grid.Lines().size(), 3u);
  EXPECT_EQ(grid.Lines()[2], "");
  flex.AddItem("\t9");
  EXPECT_EQ(flex.Rows(), 5);
  EXPECT_EQ(grid.Lines().back(), "\t9");

  EXPECT_EQ(ErrorOf([&] { flex.Rows(0); }).Number(), 380);
  EXPECT_EQ(flex.Rows(), 5);

  flex.Clear();
  EXPECT_EQ(flex.Rows(), 1);
  EXPECT_TRUE(grid.Lines().empty());
  EXPECT_EQ(flex.FormatString(), "^Código|<Nome|<Cidade");

  // Width for every column replaces the single ones.
  flex.ColWidth(-1, 1000);
  EXPECT_EQ(flex.ColWidth(0), 1000);
  EXPECT_EQ(flex.ColWidth(2), 1000);
  flex.ColWidth(1, 50);
  EXPECT_EQ(flex.ColWidth(1), 50);
  EXPECT_EQ(flex.ColWidth(3), 1000);
  EXPECT_EQ(ErrorOf([&] { flex.ColWidth(-2, 1); }).Number(), 381);
  EXPECT_EQ(ErrorOf([&] { flex.ColWidth(-2); }).Number(), 381);
}

TEST(SilentControlsTest, AProgressWindowIsVisibleFromShowToClose) {
  SilentProgress progress;
  EXPECT_FALSE(progress.Visible());
  progress.Show();
  EXPECT_TRUE(progress.Visible());
  progress.Close();
  EXPECT_FALSE(progress.Visible());
}

TEST(SilentControlsTest, AMessageBoxWithoutAScreenAnswersTheSafeChoiceAndRemembersEveryMessage) {
  SilentMessageBox silent;
  MessageBox& box = silent;
  // Icons and the default button don't change which answer is safe.
  const std::vector<std::pair<int32_t, int32_t>> cases = {
      {vbOKOnly, vbOK},
      {vbOKOnly + vbInformation, vbOK},
      {vbOKCancel, vbCancel},
      {vbAbortRetryIgnore, vbAbort},
      {vbYesNoCancel + vbQuestion + vbDefaultButton3, vbCancel},
      {vbYesNo, vbNo},
      {vbYesNo + vbCritical + vbDefaultButton2, vbNo},
      {vbRetryCancel + vbExclamation, vbCancel},
  };
  for (const auto& [buttons, answer] : cases) {
    EXPECT_EQ(box.Show("Pergunta " + std::to_string(buttons), buttons, "Vek"), answer) << buttons;
  }
  ASSERT_EQ(silent.Messages().size(), cases.size());
  EXPECT_EQ(silent.Messages()[2].prompt, "Pergunta 1");
  EXPECT_EQ(silent.Messages()[2].buttons, vbOKCancel);
  EXPECT_EQ(silent.Messages()[6].buttons, vbYesNo + vbCritical + vbDefaultButton2);
  EXPECT_EQ(silent.Messages()[6].title, "Vek");
}

}  // namespace
}  // namespace vek
