#include "cli/serve/Escape.h"

#include <cstdint>
#include <cstdio>

namespace vek::cli::serve {
namespace {

void AppendUnicodeEscape(std::string& out, uint32_t code) {
  char buffer[8];
  std::snprintf(buffer, sizeof buffer, "\\u%04x", static_cast<unsigned>(code));
  out += buffer;
}

// Length of the well-formed UTF-8 sequence at `at`, 0 when it is not one.
size_t Utf8Length(std::string_view text, size_t at) {
  const auto byte = [&](size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char lead = byte(at);
  size_t length = 0;
  uint32_t code = 0;
  if (lead >= 0xC2 && lead <= 0xDF) {
    length = 2, code = lead & 0x1Fu;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    length = 3, code = lead & 0x0Fu;
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    length = 4, code = lead & 0x07u;
  } else {
    return 0;
  }
  if (at + length > text.size()) return 0;
  for (size_t i = 1; i < length; ++i) {
    if ((byte(at + i) & 0xC0u) != 0x80u) return 0;
    code = (code << 6) | (byte(at + i) & 0x3Fu);
  }
  // Overlong forms, surrogates and code points past U+10FFFF are not UTF-8.
  if ((length == 3 && (code < 0x800 || (code >= 0xD800 && code <= 0xDFFF))) ||
      (length == 4 && (code < 0x10000 || code > 0x10FFFF))) {
    return 0;
  }
  return length;
}

}  // namespace

std::string HtmlEscape(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (const char c : text) {
    switch (c) {
      case '&': out += "&amp;"; break;
      case '<': out += "&lt;"; break;
      case '>': out += "&gt;"; break;
      case '"': out += "&quot;"; break;
      case '\'': out += "&#39;"; break;
      default: out += c;
    }
  }
  return out;
}

std::string JsonString(std::string_view text) {
  std::string out;
  out.reserve(text.size() + 2);
  out += '"';
  for (size_t at = 0; at < text.size();) {
    const auto c = static_cast<unsigned char>(text[at]);
    if (c < 0x80) {
      switch (c) {
        case '"': out += "\\\""; break;
        case '\\': out += "\\\\"; break;
        case '\n': out += "\\n"; break;
        case '\r': out += "\\r"; break;
        case '\t': out += "\\t"; break;
        case '<': case '>': case '&': AppendUnicodeEscape(out, c); break;
        default:
          if (c < 0x20 || c == 0x7F) {
            AppendUnicodeEscape(out, c);
          } else {
            out += static_cast<char>(c);
          }
      }
      ++at;
      continue;
    }
    const size_t length = Utf8Length(text, at);
    if (length == 0) {
      // A Latin-1 byte: its code point, written as UTF-8.
      out += static_cast<char>(0xC0 | (c >> 6));
      out += static_cast<char>(0x80 | (c & 0x3F));
      ++at;
    } else if (length == 3 && c == 0xE2 && static_cast<unsigned char>(text[at + 1]) == 0x80 &&
               (static_cast<unsigned char>(text[at + 2]) == 0xA8 || static_cast<unsigned char>(text[at + 2]) == 0xA9)) {
      // U+2028 and U+2029 end a line inside a script.
      AppendUnicodeEscape(out, 0x2000u + static_cast<unsigned char>(text[at + 2]) - 0x80u);
      at += 3;
    } else {
      out.append(text.substr(at, length));
      at += length;
    }
  }
  out += '"';
  return out;
}

}  // namespace vek::cli::serve
