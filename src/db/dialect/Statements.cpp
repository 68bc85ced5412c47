#include "vek/db/dialect/Statements.h"

#include "vek/db/dialect/Tokenizer.h"

#include <cctype>

namespace vek::dialect {
namespace {

// The offset just past the body that a "$tag$" mark at `begin` opens, or npos
// when the text there is no such mark or the body is not closed.
size_t DollarQuoteEnd(std::string_view sql, size_t begin) {
  size_t close = begin + 1;
  while (close < sql.size() && (std::isalnum(static_cast<unsigned char>(sql[close])) || sql[close] == '_')) ++close;
  if (close >= sql.size() || sql[close] != '$') return std::string_view::npos;
  const std::string_view mark = sql.substr(begin, close - begin + 1);
  const size_t end = sql.find(mark, close + 1);
  return end == std::string_view::npos ? end : end + mark.size();
}

// Walks the text and counts statements, stopping once `limit` is reached.
size_t Count(std::string_view sql, size_t limit) {
  Tokenizer tokenizer(sql);
  size_t count = 0;
  bool in_statement = false;
  // Within a CREATE TRIGGER the body's own statements end in ";" too; its
  // BEGIN opens the body and the END that matches it (CASE ... END nested
  // inside counted apart) closes it.
  size_t words_seen = 0;
  bool create_first = false;
  bool is_trigger = false;
  bool in_body = false;
  size_t case_depth = 0;

  for (Token token = tokenizer.Next(); token.kind != TokenKind::End; token = tokenizer.Next()) {
    if (token.kind == TokenKind::Whitespace || token.kind == TokenKind::Comment) continue;
    // A PostgreSQL body between $$ or $tag$ marks (the schema's functions)
    // is one string: its semicolons end nothing.
    if (token.kind == TokenKind::Operator && token.text == "$") {
      if (const size_t end = DollarQuoteEnd(sql, token.offset); end != std::string_view::npos) {
        if (!in_statement) {
          in_statement = true;
          if (++count >= limit) return count;
        }
        sql = sql.substr(end);
        tokenizer = Tokenizer(sql);
        continue;
      }
    }
    if (token.kind == TokenKind::Operator && token.text == ";" && !in_body) {
      in_statement = false;
      words_seen = 0;
      create_first = false;
      is_trigger = false;
      continue;
    }
    if (!in_statement) {
      in_statement = true;
      if (++count >= limit) return count;
    }
    if (token.kind != TokenKind::Word) continue;
    ++words_seen;
    if (words_seen == 1) {
      create_first = IsKeyword(token, "CREATE");
    } else if (create_first && words_seen <= 4 && IsKeyword(token, "TRIGGER")) {
      is_trigger = true;
    }
    if (!is_trigger) continue;
    if (!in_body) {
      if (IsKeyword(token, "BEGIN")) in_body = true;
    } else if (IsKeyword(token, "CASE")) {
      ++case_depth;
    } else if (IsKeyword(token, "END")) {
      if (case_depth > 0) {
        --case_depth;
      } else {
        in_body = false;
      }
    }
  }
  return count;
}

}  // namespace

size_t CountStatements(std::string_view sql) { return Count(sql, static_cast<size_t>(-1)); }

bool HoldsMoreThanOneStatement(std::string_view sql) { return Count(sql, 2) > 1; }

}  // namespace vek::dialect
