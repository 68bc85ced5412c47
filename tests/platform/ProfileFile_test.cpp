#include "vek/platform/ProfileFile.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

#include "support/TestSupport.h"
#include "vek/platform/Text.h"

namespace vek {
namespace {

namespace fs = std::filesystem;

class ProfileFileTest : public ::testing::Test {
 protected:
  void WriteRaw(const std::string& content) const {
    std::ofstream out(file_, std::ios::binary | std::ios::trunc);
    out << content;
  }
  std::string ReadRaw() const {
    std::ifstream in(file_, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  }

  testing::ScratchFolder scratch_;
  const fs::path folder_ = scratch_.Path();
  const fs::path file_ = folder_ / "Vek.ini";
};

TEST_F(ProfileFileTest, BufferIsCutToSizeMinusOneWithNulAndRestUntouched) {
  const std::string exact(254, 'a');
  const std::string longer = std::string(253, 'b') + "cdefghijklmnopqrstuvwxyz" + std::string(23, 'z');
  WriteRaw("[Persistencia]\r\nExact=" + exact + "\r\nLonger=" + longer + "\r\nPadded=\"ab  \"\r\n");

  std::string buffer(255, ' ');
  EXPECT_EQ(GetPrivateProfileString("Persistencia", "Exact", "", buffer, 255, file_), 254u);
  EXPECT_EQ(buffer, exact + std::string(1, '\0'));

  buffer.assign(255, ' ');
  EXPECT_EQ(GetPrivateProfileString("Persistencia", "Longer", "", buffer, 255, file_), 254u);
  EXPECT_EQ(buffer, longer.substr(0, 254) + std::string(1, '\0'));

  // A short value leaves the buffer's spaces after the NUL as they were.
  buffer.assign(255, ' ');
  EXPECT_EQ(GetPrivateProfileString("Persistencia", "Padded", "", buffer, 255, file_), 4u);
  EXPECT_EQ(buffer, "ab  " + std::string(1, '\0') + std::string(250, ' '));

  buffer.assign(255, ' ');
  EXPECT_EQ(GetPrivateProfileString("Persistencia", "Missing", "", buffer, 255, file_), 0u);
  EXPECT_EQ(buffer, std::string(1, '\0') + std::string(254, ' '));
}

TEST_F(ProfileFileTest, CutCountsCharactersOfUtf8Text) {
  std::string accented;
  for (int i = 0; i < 300; ++i) accented += "é";
  WriteRaw("[S]\nLong=" + accented + "\nShort=çãoÉ\n");

  std::string buffer(255, ' ');
  EXPECT_EQ(GetPrivateProfileString("S", "Long", "", buffer, 255, file_), 254u);
  EXPECT_EQ(Len(buffer), 255);
  EXPECT_EQ(buffer.substr(0, 508), accented.substr(0, 508));
  EXPECT_EQ(buffer.back(), '\0');

  // The characters after the NUL are the buffer's, even when they are
  // multi-byte themselves.
  buffer = "ÀÀÀÀÀÀ";
  EXPECT_EQ(GetPrivateProfileString("S", "Short", "", buffer, 3, file_), 2u);
  EXPECT_EQ(buffer, "çã" + std::string(1, '\0') + "ÀÀÀ");

  buffer = "kumquat";
  EXPECT_EQ(GetPrivateProfileString("S", "Short", "", buffer, 0, file_), 0u);
  EXPECT_EQ(buffer, "kumquat");
  EXPECT_EQ(GetPrivateProfileString("S", "Short", "", buffer, 1, file_), 0u);
  EXPECT_EQ(buffer, std::string(1, '\0') + "umquat");

  // A buffer shorter than the value grows to hold it.
  buffer.clear();
  EXPECT_EQ(GetPrivateProfileString("S", "Short", "", buffer, 100, file_), 4u);
  EXPECT_EQ(buffer, "çãoÉ" + std::string(1, '\0'));
}

TEST_F(ProfileFileTest, MissingFileSectionOrKeyGiveTheDefault) {
  std::string buffer(20, ' ');
  EXPECT_EQ(GetPrivateProfileString("S", "K", "fallback  ", buffer, 20, file_), 8u);
  EXPECT_EQ(buffer.substr(0, 9), "fallback" + std::string(1, '\0'));
  EXPECT_EQ(GetPrivateProfileString("S", "K", "one two  ", file_), "one two");

  WriteRaw("Orphan=above every section\n[S]\nK=value\nEmpty=\nNoEquals\n\n[Other]\nX=1\n");
  EXPECT_EQ(GetPrivateProfileString("Absent", "K", "d", file_), "d");
  EXPECT_EQ(GetPrivateProfileString("S", "Absent", "d", file_), "d");
  EXPECT_EQ(GetPrivateProfileString("S", "NoEquals", "d", file_), "d");
  EXPECT_EQ(GetPrivateProfileString("S", "Orphan", "d", file_), "d");
  EXPECT_EQ(GetPrivateProfileString("", "K", "d", file_), "d");
  EXPECT_EQ(GetPrivateProfileString("S", "", "d", file_), "d");
  // A key must not leak into the next section.
  EXPECT_EQ(GetPrivateProfileString("Other", "K", "d", file_), "d");
  // A key written empty is present: the default applies only to a missing key,
  // and with the empty default both read the same.
  EXPECT_EQ(GetPrivateProfileString("S", "Empty", "d", file_), "");
  EXPECT_EQ(FindProfileValue("S", "Empty", file_), std::optional<std::string>(""));
  EXPECT_EQ(FindProfileValue("S", "Absent", file_), std::nullopt);
  EXPECT_EQ(GetPrivateProfileString("S", "Empty", "", file_),
            GetPrivateProfileString("S", "Absent", "", file_));
}

TEST_F(ProfileFileTest, ParsingTrimsUnquotesAndIgnoresCase) {
  WriteRaw(
      "\xEF\xBB\xBF[  Persistencia  ]\r\n"
      "  Ds_CaminhoDB  =   C:\\Vek\\dados.db  \r\n"
      "\tTabbed\t=\tx y\t\n"
      "Quoted=\"  padded  \"\n"
      "Single='single'\n"
      "Mismatched=\"abc'\n"
      "LoneQuote=\"\n"
      ";Commented=hidden\n"
      "[ImpressoraRelatório]\r\n"
      "Nm_ImpressoraRelatório=Épson LX\r\n"
      "[Relat\xF3rio]\n"
      "Nome=Jo\xE3o\n"
      "[Dup]\nA=first\n[Dup]\nA=second\nB=later\n");

  EXPECT_EQ(GetPrivateProfileString("persistencia", "DS_CAMINHODB", "", file_), "C:\\Vek\\dados.db");
  EXPECT_EQ(GetPrivateProfileString(" Persistencia ", " Tabbed ", "", file_), "x y");
  EXPECT_EQ(GetPrivateProfileString("Persistencia", "Quoted", "", file_), "  padded  ");
  EXPECT_EQ(GetPrivateProfileString("Persistencia", "Single", "", file_), "single");
  EXPECT_EQ(GetPrivateProfileString("Persistencia", "Mismatched", "", file_), "\"abc'");
  EXPECT_EQ(GetPrivateProfileString("Persistencia", "LoneQuote", "", file_), "\"");
  EXPECT_EQ(GetPrivateProfileString("Persistencia", ";Commented", "d", file_), "d");
  EXPECT_EQ(GetPrivateProfileString("IMPRESSORARELATÓRIO", "nm_impressorarelatório", "", file_),
            "Épson LX");
  // An old single-byte file: its names match and its text comes back as UTF-8.
  EXPECT_EQ(GetPrivateProfileString("RELATÓRIO", "nome", "", file_), "João");
  EXPECT_EQ(GetPrivateProfileString("Dup", "A", "", file_), "first");
  EXPECT_EQ(GetPrivateProfileString("dup", "B", "", file_), "later");
}

TEST_F(ProfileFileTest, GarbageReadsAsMissingAndNeverThrows) {
  std::string garbage;
  std::mt19937 random(7);
  for (int i = 0; i < 4096; ++i) garbage.push_back(static_cast<char>(random() % 256));
  garbage += std::string("\0\0[S\xFF\xFE\0K=\x80", 11);
  WriteRaw(garbage);
  EXPECT_EQ(GetPrivateProfileString("S", "K", "d", file_), "d");
  std::string buffer(10, ' ');
  EXPECT_EQ(GetPrivateProfileString("S", "K", "", buffer, 10, file_), 0u);

  // Writing into it keeps every byte that was there.
  EXPECT_TRUE(WritePrivateProfileString("S", "K", "v", file_));
  EXPECT_EQ(ReadRaw().substr(0, garbage.size()), garbage);
  EXPECT_EQ(GetPrivateProfileString("S", "K", "d", file_), "v");

  // A folder in place of the file.
  const fs::path folder_as_file = folder_ / "sub.ini";
  fs::create_directory(folder_as_file);
  EXPECT_EQ(GetPrivateProfileString("S", "K", "d", folder_as_file), "d");
  EXPECT_FALSE(WritePrivateProfileString("S", "K", "v", folder_as_file));
}

TEST_F(ProfileFileTest, WritesCreateFileSectionsAndKeysInPlace) {
  EXPECT_TRUE(WritePrivateProfileString("App1", "key1", "string1", file_));
  EXPECT_EQ(ReadRaw(), "[App1]\r\nkey1=string1\r\n");
  EXPECT_TRUE(WritePrivateProfileString("App1", "key2", "string2", file_));
  EXPECT_TRUE(WritePrivateProfileString("App2", "key3", "", file_));
  EXPECT_EQ(ReadRaw(), "[App1]\r\nkey1=string1\r\nkey2=string2\r\n[App2]\r\nkey3=\r\n");

  // Comments, blank lines, odd lines and spellings stay; a new key goes after
  // the section's last key, a new section at the end, LF endings stay LF.
  const std::string before =
      "; terminal settings\n"
      "[Persistencia]\n"
      "  Cursor = 1\n"
      "odd line\n"
      "LockType=3\n"
      "; about the printers\n"
      "\n"
      "[ImpressoraRelatório]\n"
      "Nm_ImpressoraRelatório=old\n"
      "\n"
      "[Aparencia]\n"
      "No_CorFundo=255";
  WriteRaw(before);
  EXPECT_TRUE(WritePrivateProfileString("PERSISTENCIA", "cursor", "2", file_));
  EXPECT_TRUE(WritePrivateProfileString("persistencia", "Cd_DB", "31", file_));
  EXPECT_TRUE(WritePrivateProfileString("IMPRESSORARELATÓRIO", "nm_impressorarelatório", "new",
                                        file_));
  EXPECT_TRUE(WritePrivateProfileString("Aparencia", "No_CorRealceFoco", "7", file_));
  EXPECT_TRUE(WritePrivateProfileString("Backup", "Ds_PathBkpLocal", "/var/bkp", file_));
  EXPECT_EQ(ReadRaw(),
            "; terminal settings\n"
            "[Persistencia]\n"
            "  Cursor=2\n"
            "odd line\n"
            "LockType=3\n"
            "Cd_DB=31\n"
            "; about the printers\n"
            "\n"
            "[ImpressoraRelatório]\n"
            "Nm_ImpressoraRelatório=new\n"
            "\n"
            "[Aparencia]\n"
            "No_CorFundo=255\n"
            "No_CorRealceFoco=7\n"
            "[Backup]\n"
            "Ds_PathBkpLocal=/var/bkp\n");
  EXPECT_EQ(GetPrivateProfileString("Persistencia", "Cursor", "", file_), "2");

  // Writing the value already there leaves the file alone.
  const auto stamp = fs::last_write_time(file_);
  const std::string same = ReadRaw();
  EXPECT_TRUE(WritePrivateProfileString("Persistencia", "LockType", "3", file_));
  EXPECT_EQ(ReadRaw(), same);
  EXPECT_EQ(fs::last_write_time(file_), stamp);
}

TEST_F(ProfileFileTest, DeletesKeysAndSections) {
  const std::string before =
      "[App1]\r\nkey1=string1\r\n; note\r\nkey2=string2\r\n"
      "[App2]\r\nkey4=string4\r\n"
      "[app1]\r\nKEY2=again\r\n";
  WriteRaw(before);
  EXPECT_TRUE(WritePrivateProfileString("App1", "Nope", std::nullopt, file_));
  EXPECT_TRUE(WritePrivateProfileString("Nope", std::nullopt, std::nullopt, file_));
  EXPECT_EQ(ReadRaw(), before);

  EXPECT_TRUE(WritePrivateProfileString("App1", "key2", std::nullopt, file_));
  EXPECT_EQ(ReadRaw(), "[App1]\r\nkey1=string1\r\n; note\r\n[App2]\r\nkey4=string4\r\n[app1]\r\n");
  EXPECT_EQ(GetPrivateProfileString("App1", "key2", "gone", file_), "gone");

  EXPECT_TRUE(WritePrivateProfileString("APP1", std::nullopt, "ignored", file_));
  EXPECT_EQ(ReadRaw(), "[App2]\r\nkey4=string4\r\n");
  EXPECT_EQ(GetPrivateProfileString("App1", "key1", "gone", file_), "gone");

  // Nothing to delete in a missing file, and no file is made for it.
  const fs::path missing = folder_ / "missing.ini";
  EXPECT_TRUE(WritePrivateProfileString("S", "K", std::nullopt, missing));
  EXPECT_FALSE(fs::exists(missing));
}

TEST_F(ProfileFileTest, RefusedWritesLeaveTheFileAsItWas) {
  EXPECT_FALSE(WritePrivateProfileString("S", "K", "v", folder_ / "no" / "such" / "Vek.ini"));
  EXPECT_FALSE(fs::exists(folder_ / "no"));

  WriteRaw("[S]\nK=v\n");
  EXPECT_FALSE(WritePrivateProfileString("S", "A=B", "v", file_));
  EXPECT_FALSE(WritePrivateProfileString("S", "K", "line\n[T]\nX=1", file_));
  EXPECT_FALSE(WritePrivateProfileString("S\nX", "K", "v", file_));
  EXPECT_FALSE(WritePrivateProfileString("  ", "K", "v", file_));
  EXPECT_FALSE(WritePrivateProfileString("S", " ", "v", file_));
  EXPECT_EQ(ReadRaw(), "[S]\nK=v\n");

  // The file's permissions survive the replacement, and no temporary file
  // is left behind.
  ::chmod(file_.c_str(), 0640);
  EXPECT_TRUE(WritePrivateProfileString("S", "K", "w", file_));
  struct stat info {};
  ASSERT_EQ(::stat(file_.c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 0777, 0640u);
  int entries = 0;
  for ([[maybe_unused]] const auto& entry : fs::directory_iterator(folder_)) ++entries;
  EXPECT_EQ(entries, 1);

  // Through a link, the link stays and the file it names changes.
  const fs::path link = folder_ / "link.ini";
  fs::create_symlink(file_, link);
  EXPECT_TRUE(WritePrivateProfileString("S", "K", "linked", link));
  EXPECT_TRUE(fs::is_symlink(link));
  EXPECT_EQ(ReadRaw(), "[S]\nK=linked\n");
}

}  // namespace
}  // namespace vek
