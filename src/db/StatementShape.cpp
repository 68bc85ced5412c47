#include "vek/db/StatementShape.h"

#include <charconv>

#include "vek/db/dialect/SqliteTranslator.h"
#include "vek/db/dialect/Tokenizer.h"
#include "vek/platform/VekError.h"
#include "vek/platform/Text.h"

namespace vek {
namespace {

using dialect::EqualsAsciiNoCase;
using dialect::IsKeyword;
using dialect::Token;
using dialect::TokenKind;

// Probe values: far from anything the system writes, each one unique.
constexpr int64_t kIntegerProbe = 900000000000;
constexpr std::string_view kTextProbe = "\x01vek";

bool IsSignificant(const Token& token) {
  return token.kind != TokenKind::Whitespace && token.kind != TokenKind::Comment;
}

std::string IntegerProbe(size_t index) { return std::to_string(kIntegerProbe + static_cast<int64_t>(index)); }
std::string RealProbe(size_t index) { return IntegerProbe(index) + ".5"; }
std::string TextProbe(size_t index) { return std::string(kTextProbe) + std::to_string(index) + "\x01"; }
// Dates keep their kind: a probe date is a date, one second apart per literal.
std::string DateProbeValue(size_t index) {
  const int64_t seconds = static_cast<int64_t>(index);
  char text[32];
  std::snprintf(text, sizeof text, "1801-01-01 %02d:%02d:%02d", static_cast<int>(seconds / 3600 % 24),
                static_cast<int>(seconds / 60 % 60), static_cast<int>(seconds % 60));
  return text;
}

std::string DayFirstDateProbe(size_t index) {
  const std::string value = DateProbeValue(index);  // 1801-01-01 hh:mm:ss
  return "01/01/1801" + value.substr(10);
}

// The value of a number literal, when it is a plain one a parameter can carry.
std::optional<Variant> NumberValue(std::string_view text) {
  if (text.find_first_not_of("0123456789") == std::string_view::npos) {
    int32_t value = 0;
    auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error == std::errc() && end == text.data() + text.size()) return Variant(value);
    return std::nullopt;
  }
  if (text.find_first_not_of("0123456789.") != std::string_view::npos) return std::nullopt;
  double value = 0;
  auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return Variant(value);
}

// Keeps track of where literals must stay in the text.
class Context {
 public:
  void See(const Token& token) {
    if (token.kind == TokenKind::Operator && token.text == "(") {
      // A conversion's arguments choose its form; a substring's positions
      // are part of the expression an index is made on.
      functions_.push_back(EqualsAsciiNoCase(previous_, "CONVERT") || EqualsAsciiNoCase(previous_, "CAST") ||
                           EqualsAsciiNoCase(previous_, "SUBSTRING"));
      if (previous_is_top_) top_parenthesis_ = functions_.size();
    } else if (token.kind == TokenKind::Operator && token.text == ")") {
      if (!functions_.empty()) functions_.pop_back();
      if (listing_positions_ && functions_.size() < list_depth_) listing_positions_ = false;
      if (top_parenthesis_ > functions_.size()) top_parenthesis_ = 0;
    } else if (token.kind == TokenKind::Word) {
      if (IsKeyword(token, "BY") && (EqualsAsciiNoCase(previous_, "ORDER") || EqualsAsciiNoCase(previous_, "GROUP"))) {
        listing_positions_ = true;
        list_depth_ = functions_.size();
      } else if (IsKeyword(token, "HAVING") || IsKeyword(token, "UNION") || IsKeyword(token, "LIMIT")) {
        listing_positions_ = false;
      }
    } else if (token.kind == TokenKind::Operator && token.text == ";") {
      listing_positions_ = false;
    }
    previous_is_top_ = token.kind == TokenKind::Word && IsKeyword(token, "TOP");
    // A LIKE pattern's characters choose the form of its translation.
    previous_is_like_ = token.kind == TokenKind::Word && (IsKeyword(token, "LIKE") || IsKeyword(token, "ESCAPE"));
    previous_ = token.kind == TokenKind::Word ? token.text : std::string_view();
  }

  // Whether a literal seen now must stay as it is.
  bool KeepsLiteral() const {
    if (previous_is_like_) return true;
    if (previous_is_top_ || (top_parenthesis_ != 0 && top_parenthesis_ == functions_.size())) return true;
    if (listing_positions_) return true;
    for (bool convert : functions_) {
      if (convert) return true;
    }
    return false;
  }

 private:
  std::vector<bool> functions_;  // per open parenthesis: a CONVERT, CAST or SUBSTRING call
  std::string_view previous_;
  bool previous_is_top_ = false;
  bool previous_is_like_ = false;
  size_t top_parenthesis_ = 0;
  bool listing_positions_ = false;
  size_t list_depth_ = 0;
};

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// A character that would carry a number token on past its digits ("12e3",
// "0x1F", "12.5", "12abc"): after such a character an integer literal is not
// recognised by a template.
bool ContinuesNumber(char c) {
  return IsDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == '.' || c == '$' ||
         c == '@' || c == '#';
}

// Walks the statement's tokens once, building its shape and, when asked, its
// probe text and template. The text between literals is copied in one piece.
std::optional<StatementShape> Walk(std::string_view text, Dialect dialect, std::string* probe_text,
                                   ShapeTemplate* shape_template = nullptr) {
  if (shape_template) *shape_template = ShapeTemplate();
  bool templated = shape_template != nullptr;
  const bool decimals_bound = dialect != Dialect::PostgreSQL;
  StatementShape shape;
  try {
    dialect::Tokenizer tokenizer(text);
    Token token = tokenizer.Next();
    while (token.kind == TokenKind::Whitespace || token.kind == TokenKind::Comment) token = tokenizer.Next();
    if (token.kind != TokenKind::Word ||
        !(IsKeyword(token, "SELECT") || IsKeyword(token, "INSERT") || IsKeyword(token, "UPDATE") ||
          IsKeyword(token, "DELETE"))) {
      return std::nullopt;
    }
    shape.key.reserve(text.size());
    size_t copied = 0;  // the text before this offset is in the key already
    Context context;
    for (; token.kind != TokenKind::End; token = tokenizer.Next()) {
      if (!IsSignificant(token)) continue;
      if (token.kind == TokenKind::Operator && (token.text == "?" || token.text == "@")) return std::nullopt;
      if (token.kind == TokenKind::Word && token.text.front() == '@') return std::nullopt;
      std::optional<Variant> value;
      char kind = 0;
      if (!context.KeepsLiteral()) {
        if (token.kind == TokenKind::Number) {
          value = NumberValue(token.text);
          if (value && value->Type() != VariantType::Long && !decimals_bound) value.reset();
          if (value) kind = value->Type() == VariantType::Long ? 'i' : 'r';
        } else if (token.kind == TokenKind::String || token.kind == TokenKind::NationalString) {
          kind = dialect::IsSqliteDateLiteral(token) ? 'd' : 's';
          value = Variant(dialect::SqliteStringLiteralValue(token));
        }
      }
      if (value) {
        const size_t index = shape.literals.size();
        const std::string_view before = text.substr(copied, token.offset - copied);
        shape.key.append(before).append({'\x02', kind});
        if (templated) {
          templated = templated && kind != 'r' && (kind == 'i' || token.kind == TokenKind::String);
          shape_template->pieces.emplace_back(before);
          shape_template->kinds.push_back(kind);
        }
        if (probe_text) {
          probe_text->append(before);
          switch (kind) {
            case 'i': probe_text->append(IntegerProbe(index)); break;
            case 'r': probe_text->append(RealProbe(index)); break;
            // Written day first, so that the probe comes out as DateProbeValue
            // only where the translation reads it as a date: a date literal it
            // leaves as text can't be bound as a date.
            case 'd': probe_text->append("'" + DayFirstDateProbe(index) + "'"); break;
            default: probe_text->append("'" + TextProbe(index) + "'");
          }
        }
        copied = token.offset + token.text.size();
        shape.literals.push_back(std::move(*value));
      }
      context.See(token);
    }
    shape.key.append(text.substr(copied));
    if (probe_text) probe_text->append(text.substr(copied));
    if (templated) shape_template->pieces.emplace_back(text.substr(copied));
  } catch (const VekError&) {
    if (shape_template) *shape_template = ShapeTemplate();
    return std::nullopt;  // the tokenizer refused it: the translation will say why
  }
  if (shape_template) {
    // An integer followed by what would carry its token on can't be told apart by the template.
    for (size_t i = 0; templated && i < shape_template->kinds.size(); ++i) {
      const std::string& after = shape_template->pieces[i + 1];
      templated = shape_template->kinds[i] != 'i' || after.empty() || !ContinuesNumber(after.front());
    }
    if (!templated || shape.literals.empty()) *shape_template = ShapeTemplate();
  }
  if (shape.literals.empty()) return std::nullopt;
  return shape;
}

}  // namespace

std::optional<StatementShape> ShapeOf(std::string_view text, Dialect dialect, ShapeTemplate* shape_template) {
  return Walk(text, dialect, nullptr, shape_template);
}

std::optional<std::vector<Variant>> MatchShape(std::string_view text, const ShapeTemplate& shape_template) {
  if (!shape_template.Usable()) return std::nullopt;
  const size_t count = shape_template.kinds.size();
  std::vector<Variant> literals;
  literals.reserve(count);
  size_t pos = 0;
  for (size_t i = 0; i < count; ++i) {
    const std::string& piece = shape_template.pieces[i];
    if (text.substr(pos, piece.size()) != piece) return std::nullopt;
    pos += piece.size();
    if (shape_template.kinds[i] == 'i') {
      // As the tokenizer reads it: a run of digits, not carried on (the next
      // piece does not start with such a character), and a value that fits.
      size_t end = pos;
      while (end < text.size() && IsDigit(text[end])) ++end;
      if (end == pos) return std::nullopt;
      int32_t value = 0;
      auto [stop, error] = std::from_chars(text.data() + pos, text.data() + end, value);
      if (error != std::errc() || stop != text.data() + end) return std::nullopt;
      literals.emplace_back(value);
      pos = end;
      continue;
    }
    // A quoted text, '' standing for '.
    if (pos >= text.size() || text[pos] != '\'') return std::nullopt;
    size_t end = pos + 1;
    for (;;) {
      const size_t quote = text.find('\'', end);
      if (quote == std::string_view::npos) return std::nullopt;
      if (quote + 1 < text.size() && text[quote + 1] == '\'') {
        end = quote + 2;
        continue;
      }
      end = quote + 1;
      break;
    }
    const Token token{TokenKind::String, text.substr(pos, end - pos), pos};
    if ((dialect::IsSqliteDateLiteral(token) ? 'd' : 's') != shape_template.kinds[i]) return std::nullopt;
    literals.emplace_back(dialect::SqliteStringLiteralValue(token));
    pos = end;
  }
  if (text.substr(pos) != shape_template.pieces.back()) return std::nullopt;
  return literals;
}

std::optional<ShapedTranslation> TranslateShape(
    std::string_view text, Dialect dialect, const std::function<std::string(std::string_view)>& translate) {
  std::string probe_text;
  const std::optional<StatementShape> shape = Walk(text, dialect, &probe_text);
  if (!shape) return std::nullopt;
  std::string translated;
  try {
    translated = translate(probe_text);
  } catch (const VekError&) {
    return std::nullopt;
  }
  std::vector<Token> tokens;
  try {
    tokens = dialect::Tokenize(translated);
  } catch (const VekError&) {
    return std::nullopt;
  }
  const size_t count = shape->literals.size();
  std::vector<bool> found(count, false);
  ShapedTranslation result;
  result.text.reserve(translated.size());
  for (const Token& token : tokens) {
    std::optional<size_t> index;
    if (token.kind == TokenKind::Number) {
      std::string_view digits = token.text;
      if (digits.ends_with(".5")) digits.remove_suffix(2);
      int64_t value = 0;
      auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
      if (error == std::errc() && end == digits.data() + digits.size() && value >= kIntegerProbe &&
          value < kIntegerProbe + static_cast<int64_t>(count)) {
        index = static_cast<size_t>(value - kIntegerProbe);
      }
    } else if (token.kind == TokenKind::String) {
      const std::string value = dialect::StringValue(token);
      for (size_t i = 0; i < count && !index; ++i) {
        if (value == TextProbe(i) || value == DateProbeValue(i)) index = i;
      }
    }
    if (!index) {
      result.text.append(token.text);
      continue;
    }
    if (found[*index]) return std::nullopt;  // a literal used twice can't be one parameter
    found[*index] = true;
    result.order.push_back(*index);
    result.text.push_back('?');
    // PostgreSQL reads an integer literal as integer but a parameter as of
    // unknown type, which "- ?" or "? + 1" can't resolve; text stays unknown
    // like its literal.
    if (dialect == Dialect::PostgreSQL && shape->literals[*index].Type() == VariantType::Long) {
      result.text.append("::integer");
    }
  }
  for (bool seen : found) {
    if (!seen) return std::nullopt;
  }
  return result;
}

}  // namespace vek
