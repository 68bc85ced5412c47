#include "vek/db/dialect/Tokenizer.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "vek/platform/VekError.h"

namespace vek::dialect {
namespace {

std::vector<Token> Significant(std::string_view sql) {
  std::vector<Token> tokens;
  for (const Token& token : Tokenize(sql)) {
    if (token.kind != TokenKind::Whitespace) tokens.push_back(token);
  }
  return tokens;
}

// The error description, or "" when the text tokenizes.
std::string TokenizeError(std::string_view sql) {
  try {
    Tokenize(sql);
  } catch (const VekError& error) {
    EXPECT_EQ(error.Number(), static_cast<int32_t>(0x80040E14u));
    return error.Description();
  }
  return "";
}

TEST(Tokenizer, KindsTextsAndOffsets) {
  const std::string sql = "SELECT [a]]b],N'x''y', \"q\"\"r\", 12.5e3, .5, 12. <> !< @p";
  const auto tokens = Significant(sql);
  ASSERT_EQ(tokens.size(), 15u);
  EXPECT_EQ(tokens[0].kind, TokenKind::Word);
  EXPECT_EQ(tokens[1].kind, TokenKind::BracketedName);
  EXPECT_EQ(tokens[1].text, "[a]]b]");
  EXPECT_EQ(tokens[1].offset, 7u);
  EXPECT_EQ(tokens[3].kind, TokenKind::NationalString);
  EXPECT_EQ(tokens[3].text, "N'x''y'");
  EXPECT_EQ(StringValue(tokens[3]), "x'y");
  EXPECT_EQ(tokens[5].kind, TokenKind::QuotedName);
  EXPECT_EQ(tokens[5].text, "\"q\"\"r\"");
  EXPECT_EQ(tokens[7].kind, TokenKind::Number);
  EXPECT_EQ(tokens[7].text, "12.5e3");
  EXPECT_EQ(tokens[9].text, ".5");
  EXPECT_EQ(tokens[11].kind, TokenKind::Number);
  EXPECT_EQ(tokens[11].text, "12.");
  EXPECT_EQ(tokens[12].text, "<>");
  EXPECT_EQ(tokens[13].text, "!<");
  EXPECT_EQ(tokens[14].kind, TokenKind::Word);
  EXPECT_EQ(tokens[14].text, "@p");
  for (const Token& token : tokens)
    EXPECT_EQ(sql.substr(token.offset, token.text.size()), token.text);
}

TEST(Tokenizer, LineCommentEndsAtCarriageReturnOrLineFeed) {
  const auto tokens =
      Significant("AND (D.Nm_Cidade Like '%x%') -- Cidade Destino\rFROM t -- last\nWHERE");
  ASSERT_GE(tokens.size(), 4u);
  EXPECT_EQ(tokens[tokens.size() - 5].kind, TokenKind::Comment);
  EXPECT_EQ(tokens[tokens.size() - 5].text, "-- Cidade Destino");
  EXPECT_TRUE(IsKeyword(tokens[tokens.size() - 4], "from"));
  EXPECT_EQ(tokens[tokens.size() - 2].text, "-- last");
  EXPECT_TRUE(IsKeyword(tokens.back(), "WHERE"));
  // A comment at the very end has no line end at all.
  EXPECT_EQ(Significant("SELECT 1 -- end").back().text, "-- end");
}

TEST(Tokenizer, BlockCommentsNestAndQuotesInsideOtherTokensOpenNoStrings) {
  auto tokens = Significant("a /* x /* y */ z */ b");
  ASSERT_EQ(tokens.size(), 3u);
  EXPECT_EQ(tokens[1].kind, TokenKind::Comment);
  EXPECT_EQ(tokens[1].text, "/* x /* y */ z */");
  EXPECT_EQ(tokens[2].text, "b");

  tokens = Significant("'it''s -- not a comment' [x'y] \"a'b\" -- it's\r/* ' */ c");
  ASSERT_EQ(tokens.size(), 6u);
  EXPECT_EQ(tokens[0].kind, TokenKind::String);
  EXPECT_EQ(StringValue(tokens[0]), "it's -- not a comment");
  EXPECT_EQ(tokens[1].kind, TokenKind::BracketedName);
  EXPECT_EQ(tokens[2].kind, TokenKind::QuotedName);
  EXPECT_EQ(tokens[3].kind, TokenKind::Comment);
  EXPECT_EQ(tokens[4].kind, TokenKind::Comment);
  EXPECT_EQ(tokens[5].text, "c");
}

TEST(Tokenizer, NationalPrefixOnlyStartsAWordAndAccentedNamesAreOneWord) {
  auto tokens = Significant("n'a' N'' ASN'b' DATEDIFF(N,x,y)");
  EXPECT_EQ(tokens[0].kind, TokenKind::NationalString);
  EXPECT_EQ(StringValue(tokens[1]), "");
  EXPECT_EQ(tokens[2].kind, TokenKind::Word);
  EXPECT_EQ(tokens[2].text, "ASN");
  EXPECT_EQ(tokens[3].kind, TokenKind::String);
  EXPECT_EQ(tokens[6].kind, TokenKind::Word);
  EXPECT_EQ(tokens[6].text, "N");

  tokens = Significant("Cód_Ação$1 #temp");
  ASSERT_EQ(tokens.size(), 2u);
  EXPECT_EQ(tokens[0].text, "Cód_Ação$1");
  EXPECT_EQ(tokens[1].text, "#temp");
}

TEST(Tokenizer, UnterminatedTokensAreSyntaxErrors) {
  EXPECT_NE(TokenizeError("SELECT 'abc").find("offset 7"), std::string::npos);
  EXPECT_NE(TokenizeError("SELECT 'it''s").find("string"), std::string::npos);
  EXPECT_NE(TokenizeError("SELECT N'x").find("string"), std::string::npos);
  EXPECT_NE(TokenizeError("SELECT [abc").find("bracketed"), std::string::npos);
  EXPECT_NE(TokenizeError("SELECT [a]]").find("bracketed"), std::string::npos);
  EXPECT_NE(TokenizeError("SELECT \"abc").find("quoted"), std::string::npos);
  EXPECT_NE(TokenizeError("SELECT 1 /* a /* b */").find("comment"), std::string::npos);
  EXPECT_EQ(TokenizeError("SELECT '' + ']' + [a]]]"), "");
}

TEST(Tokenizer, OddCharactersBecomeOperatorsAndTheEndRepeats) {
  const auto tokens = Significant("€ ` ? #");
  ASSERT_EQ(tokens.size(), 4u);
  EXPECT_EQ(tokens[0].kind, TokenKind::Word);  // a UTF-8 letter-like byte run
  EXPECT_EQ(tokens[1].kind, TokenKind::Operator);
  EXPECT_EQ(tokens[2].text, "?");
  Tokenizer tokenizer("x");
  EXPECT_EQ(tokenizer.Next().text, "x");
  EXPECT_EQ(tokenizer.Next().kind, TokenKind::End);
  EXPECT_EQ(tokenizer.Next().kind, TokenKind::End);
  EXPECT_TRUE(Tokenize("").empty());
}

}  // namespace
}  // namespace vek::dialect
