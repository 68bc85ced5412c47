#include "vek/db/backup/BackupStatement.h"

#include <cstdlib>
#include <vector>

#include "vek/db/DbError.h"
#include "vek/db/dialect/Tokenizer.h"
#include "vek/platform/Text.h"

namespace vek::backup {
namespace {

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

// The tokens of the text without blanks and comments.
std::vector<dialect::Token> Tokens(std::string_view text) {
  std::vector<dialect::Token> tokens;
  dialect::Tokenizer tokenizer(text);
  for (dialect::Token token = tokenizer.Next(); token.kind != dialect::TokenKind::End; token = tokenizer.Next()) {
    if (token.kind != dialect::TokenKind::Whitespace && token.kind != dialect::TokenKind::Comment) {
      tokens.push_back(token);
    }
  }
  return tokens;
}

// The text of a 'string' or N'string' token, its doubled quotes made single.
std::string QuotedText(const dialect::Token& token) {
  std::string_view text = token.text;
  if (token.kind == dialect::TokenKind::NationalString) text.remove_prefix(1);
  text = text.substr(1, text.size() - 2);
  return Replace(text, "''", "'");
}

class Reader {
 public:
  Reader(std::string_view text, const char* source) : tokens_(Tokens(text)), source_(source) {}

  bool AtEnd() const { return at_ >= tokens_.size() || (tokens_[at_].text == ";" && at_ + 1 == tokens_.size()); }
  bool NextIs(std::string_view word) const {
    return at_ < tokens_.size() && EqualsIgnoreCase(tokens_[at_].text, word);
  }
  bool Accept(std::string_view word) {
    if (!NextIs(word)) return false;
    ++at_;
    return true;
  }
  void Expect(std::string_view word) {
    if (!Accept(word)) Fail("expected " + std::string(word));
  }
  std::string Name() {
    if (at_ >= tokens_.size()) Fail("expected the database's name");
    const dialect::Token& token = tokens_[at_++];
    if (token.kind == dialect::TokenKind::BracketedName) {
      return Replace(token.text.substr(1, token.text.size() - 2), "]]", "]");
    }
    if (token.kind != dialect::TokenKind::Word) Fail("expected the database's name");
    return std::string(token.text);
  }
  std::string String() {
    if (at_ >= tokens_.size() || (tokens_[at_].kind != dialect::TokenKind::String &&
                                  tokens_[at_].kind != dialect::TokenKind::NationalString)) {
      Fail("expected a quoted text");
    }
    return QuotedText(tokens_[at_++]);
  }
  int Number() {
    if (at_ >= tokens_.size() || tokens_[at_].kind != dialect::TokenKind::Number) Fail("expected a number");
    return std::atoi(std::string(tokens_[at_++].text).c_str());
  }
  std::string Word() {
    if (at_ >= tokens_.size() || tokens_[at_].kind != dialect::TokenKind::Word) Fail("expected an option");
    return UCase(tokens_[at_++].text);
  }
  [[noreturn]] void Fail(const std::string& what) const {
    const std::string near = at_ < tokens_.size() ? " near '" + std::string(tokens_[at_].text) + "'" : " at the end";
    RaiseDbError(adErrSyntax, source_, "BACKUP DATABASE: " + what + near + ".");
  }

 private:
  std::vector<dialect::Token> tokens_;
  size_t at_ = 0;
  const char* source_;
};

}  // namespace

bool IsBackupStatement(std::string_view text) {
  size_t at = 0;
  while (at < text.size() && IsBlank(text[at])) ++at;
  return text.size() - at > 6 && EqualsIgnoreCase(text.substr(at, 6), "BACKUP") && IsBlank(text[at + 6]);
}

BackupStatement ParseBackupStatement(std::string_view text, const char* source) {
  Reader reader(text, source);
  BackupStatement statement;
  reader.Expect("BACKUP");
  reader.Expect("DATABASE");
  statement.database = reader.Name();
  reader.Expect("TO");
  reader.Expect("DISK");
  reader.Expect("=");
  statement.disk = reader.String();
  if (statement.disk.empty()) reader.Fail("the backup file's name is empty");
  if (reader.Accept("WITH")) {
    do {
      const std::string option = reader.Word();
      if (option == "DIFFERENTIAL") {
        statement.differential = true;
      } else if (option == "INIT" || option == "FORMAT") {
        statement.overwrite = true;
      } else if (option == "NAME" || option == "DESCRIPTION") {
        reader.Expect("=");
        const std::string value = reader.String();
        if (option == "NAME") statement.name = value;
      } else if (option == "STATS") {
        statement.stats = reader.Accept("=") ? reader.Number() : 10;
      } else if (option != "NOINIT" && option != "NOFORMAT" && option != "SKIP" && option != "NOSKIP" &&
                 option != "REWIND" && option != "NOREWIND" && option != "UNLOAD" && option != "NOUNLOAD") {
        RaiseDbError(adErrSyntax, source, "BACKUP DATABASE: the option " + option + " is not supported.");
      }
    } while (reader.Accept(","));
  }
  if (!reader.AtEnd()) reader.Fail("unexpected text");
  return statement;
}

}  // namespace vek::backup
