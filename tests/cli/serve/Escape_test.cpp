#include "cli/serve/Escape.h"

#include <gtest/gtest.h>

namespace vek::cli::serve {
namespace {

TEST(ServeEscapeTest, HtmlEscapeWritesMarkupCharactersAsEntitiesAndKeepsTheRest) {
  EXPECT_EQ(HtmlEscape("<script>alert(1)</script>"), "&lt;script&gt;alert(1)&lt;/script&gt;");
  EXPECT_EQ(HtmlEscape(R"(a & b "c" 'd')"), "a &amp; b &quot;c&quot; &#39;d&#39;");
  // An entity already written is escaped again: the database text is shown as it is.
  EXPECT_EQ(HtmlEscape("&amp;"), "&amp;amp;");
  EXPECT_EQ(HtmlEscape("Santa Bárbara d'Oeste/SP"), "Santa Bárbara d&#39;Oeste/SP");
  EXPECT_EQ(HtmlEscape(""), "");
  EXPECT_EQ(HtmlEscape(std::string("a\0b", 3)), std::string("a\0b", 3));
}

TEST(ServeEscapeTest, JsonStringQuotesAndEscapesWhatWouldEndTheStringOrTheScript) {
  EXPECT_EQ(JsonString(""), "\"\"");
  EXPECT_EQ(JsonString("Goiânia/GO"), "\"Goiânia/GO\"");
  EXPECT_EQ(JsonString(R"(say "hi" \o/)"), R"("say \"hi\" \\o/")");
  EXPECT_EQ(JsonString("a\nb\rc\td"), R"("a\nb\rc\td")");
  EXPECT_EQ(JsonString(std::string("\x01\x1f\x7f\0", 4)), R"("\u0001\u001f\u007f\u0000")");
  EXPECT_EQ(JsonString("</script><b>&"), R"("\u003c/script\u003e\u003cb\u003e\u0026")");
  // U+2028 and U+2029 are valid in JSON but end a line in older scripts.
  EXPECT_EQ(JsonString("a\u2028b\u2029c"), R"("a\u2028b\u2029c")");
  // Four-byte characters pass whole.
  EXPECT_EQ(JsonString("\U0001F68C"), "\"\U0001F68C\"");
}

TEST(ServeEscapeTest, JsonStringReadsBytesThatAreNotUtf8AsLatin1) {
  // "Goiânia" in Latin-1, a truncated sequence, an overlong slash and a surrogate.
  EXPECT_EQ(JsonString("Goi\xE2nia"), "\"Goiânia\"");
  EXPECT_EQ(JsonString("\xC3"), "\"Ã\"");
  EXPECT_EQ(JsonString("\xC0\xAF"), "\"À¯\"");
  EXPECT_EQ(JsonString("\xED\xA0\x80"), "\"\xC3\xAD\xC2\xA0\xC2\x80\"");
}

}  // namespace
}  // namespace vek::cli::serve
