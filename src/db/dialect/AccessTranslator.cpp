#include "vek/db/dialect/AccessTranslator.h"

#include <optional>
#include <string>

#include "vek/db/DateText.h"
#include "vek/db/dialect/SqliteTranslator.h"
#include "vek/db/dialect/Tokenizer.h"
#include "vek/platform/Date.h"
#include "vek/platform/Text.h"

namespace vek::dialect {
namespace {

// "#m/d/yyyy[ time]#" or "#yyyy-mm-dd[ time]#" without its signs.
std::optional<Date> JetDate(std::string_view text) {
  const std::string trimmed = Trim(text);
  const size_t first = trimmed.find('/');
  if (first == std::string::npos) return ParseDate(trimmed);
  const size_t second = trimmed.find('/', first + 1);
  if (second == std::string::npos) return std::nullopt;
  // Month first: swapped into the day-first form that ParseDate reads.
  const std::string day_first = trimmed.substr(first + 1, second - first - 1) + "/" +
                                trimmed.substr(0, first) + trimmed.substr(second);
  return ParseDate(day_first);
}

std::string QuotedText(std::string_view value) { return "'" + Replace(value, "'", "''") + "'"; }

}  // namespace

std::string LowerAccessToTsql(std::string_view jet) {
  std::string out;
  out.reserve(jet.size() + 16);
  size_t i = 0;
  while (i < jet.size()) {
    const char c = jet[i];
    if (c == '\'' || c == '"' || c == '[') {
      const char close = c == '[' ? ']' : c;
      size_t end = i + 1;
      std::string value;
      while (true) {
        if (end >= jet.size()) {
          RaiseDialectError(std::string("Unclosed ") + c + " at offset " + std::to_string(i));
        }
        if (jet[end] == close) {
          // A doubled quote stands for one; a bracket closes at its first "]".
          if (c != '[' && end + 1 < jet.size() && jet[end + 1] == close) {
            value.push_back(close);
            end += 2;
            continue;
          }
          break;
        }
        value.push_back(jet[end++]);
      }
      if (c == '"') {
        out += QuotedText(value);
      } else {
        out.append(jet.substr(i, end + 1 - i));
      }
      i = end + 1;
      continue;
    }
    if (c == '#') {
      const size_t end = jet.find('#', i + 1);
      const std::optional<Date> date =
          end == std::string_view::npos ? std::nullopt : JetDate(jet.substr(i + 1, end - i - 1));
      if (!date) RaiseDialectError("A \"#\" that opens no date at offset " + std::to_string(i));
      out += QuotedText(CanonicalDateText(*date));
      i = end + 1;
      continue;
    }
    if (c == '/') {
      out.append(" * 1.0 /");
      ++i;
      continue;
    }
    out.push_back(c);
    ++i;
  }
  return out;
}

Translation TranslateAccessToSqlite(std::string_view jet, const ColumnKinds* kinds) {
  return TranslateToSqlite(LowerAccessToTsql(jet), kinds);
}

}  // namespace vek::dialect
