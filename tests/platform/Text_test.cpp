#include "vek/platform/Text.h"

#include <gtest/gtest.h>

#include "support/TestSupport.h"

namespace vek {
namespace {

using testing::ErrorOf;

TEST(Text, LengthsAndPositionsCountCharactersNotBytes) {
  const std::string word = "Conceição";  // ç and ã take two bytes each
  EXPECT_EQ(Len(word), 9);
  EXPECT_EQ(Left(word, 6), "Concei");
  EXPECT_EQ(Left(word, 7), "Conceiç");
  EXPECT_EQ(Mid(word, 7, 2), "çã");
  EXPECT_EQ(Mid(word, 8), "ão");
  EXPECT_EQ(Right(word, 3), "ção");
  EXPECT_EQ(InStr(word, "ã"), 8);
  EXPECT_EQ(InStr(9, word, "ã"), 0);
  EXPECT_EQ(Len("€"), 1);
  EXPECT_EQ(Len(""), 0);
}

TEST(Text, OutOfRangeArgumentsFollowTheRuntime) {
  EXPECT_EQ(Mid("abc", 4), "");
  EXPECT_EQ(Mid("abc", 2, 100), "bc");
  EXPECT_EQ(Mid("abc", 1, 0), "");
  EXPECT_EQ(Left("abc", 10), "abc");
  EXPECT_EQ(Right("abc", 10), "abc");
  EXPECT_EQ(ErrorOf([] { Mid("abc", 0); }).Number(), 5);
  EXPECT_EQ(ErrorOf([] { Mid("abc", 1, -1); }).Number(), 5);
  EXPECT_EQ(ErrorOf([] { Left("abc", -1); }).Number(), 5);
  EXPECT_EQ(ErrorOf([] { Asc(""); }).Number(), 5);
  EXPECT_EQ(InStr(4, "abc", ""), 0);
  EXPECT_EQ(InStr(2, "abc", ""), 2);
}

TEST(Text, TrimRemovesSpacesOnly) {
  EXPECT_EQ(Trim("  a b  "), "a b");
  EXPECT_EQ(LTrim("  a "), "a ");
  EXPECT_EQ(RTrim("  a "), "  a");
  EXPECT_EQ(Trim("\ta\t"), "\ta\t");
  EXPECT_EQ(Trim(std::string(" a\0 ", 4)), std::string("a\0", 2));
  EXPECT_EQ(Trim("    "), "");
}

TEST(Text, CaseMappingCoversAccentedLatinLetters) {
  EXPECT_EQ(UCase("são joão d'aliança"), "SÃO JOÃO D'ALIANÇA");
  EXPECT_EQ(LCase("ÁÉÍÓÚÇÑÜ"), "áéíóúçñü");
  EXPECT_EQ(UCase("ÿ"), "Ÿ");
  EXPECT_EQ(UCase("÷ß"), "÷ß");  // no case of their own
  EXPECT_TRUE(EqualsIgnoreCase("ImpressoraRelatório", "IMPRESSORARELATÓRIO"));
  EXPECT_FALSE(EqualsIgnoreCase("Relatorio", "Relatório"));  // accents still count
  EXPECT_FALSE(EqualsIgnoreCase("abc", "abcd"));
  EXPECT_EQ(FoldCase("Nm_BAIRRO"), "nm_bairro");
}

TEST(Text, CharacterCodesHexadecimalReplaceAndRepeat) {
  EXPECT_EQ(Asc("A"), 65);
  EXPECT_EQ(Asc("é"), 0xE9);
  EXPECT_EQ(Chr(0xE9), "é");
  EXPECT_EQ(Hex(0x41), "41");
  EXPECT_EQ(Hex(0), "0");
  EXPECT_EQ(Hex(-1), "FFFFFFFF");
  EXPECT_EQ(Replace("a.b.c", ".", ""), "abc");
  EXPECT_EQ(Replace("aaa", "aa", "b"), "ba");
  EXPECT_EQ(String(3, "çx"), "ççç");
  EXPECT_EQ(Space(2), "  ");
}

TEST(Text, InvalidUtf8ReadsAsLatin1) {
  const std::string latin1 = "Jos\xE9";  // a single-byte é
  EXPECT_EQ(Len(latin1), 4);
  EXPECT_EQ(Asc(Mid(latin1, 4)), 0xE9);
  EXPECT_EQ(EncodeUtf8(DecodeUtf8(latin1)), "José");
  EXPECT_EQ(Len("\xE2\x82"), 2);  // a cut three-byte sequence
}

}  // namespace
}  // namespace vek
