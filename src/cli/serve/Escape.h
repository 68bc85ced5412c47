#pragma once
// Text from the database on its way into a web page or a JSON answer. Both
// are written once, here: every screen of vek serve goes through them.

#include <string>
#include <string_view>

namespace vek::cli::serve {

// `text` as HTML character data or a quoted attribute value: & < > " ' are
// written as entities, everything else (UTF-8 included) as it is.
std::string HtmlEscape(std::string_view text);

// `text` as a JSON string, quotes included. Control characters are \u
// escapes; < > & and U+2028/U+2029 are \u escapes too, so the text can sit
// inside a <script> element. Bytes that are not UTF-8 read as Latin-1, as
// the platform reads them, so the answer is always valid UTF-8.
std::string JsonString(std::string_view text);

}  // namespace vek::cli::serve
