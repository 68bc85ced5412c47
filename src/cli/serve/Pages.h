#pragma once
// The web screens' pages: HTML drawn from a snapshot (every database text
// through HtmlEscape), and the style sheet and scripts they load. The
// scripts poll the JSON endpoints and redraw the rows without reloading.

#include <string>
#include <string_view>

#include "cli/serve/Screens.h"

namespace vek::cli::serve {

// The board page; `board` null when the database could not be read (the
// page still loads and its script keeps asking).
std::string BoardPage(const Board* board);
std::string YardPage(const Yard* yard);

// A static resource by its path under /static/ ("estilo.css", "painel.js",
// "patio.js"); empty when there is none. `type` gets its content type.
std::string_view StaticResource(std::string_view name, std::string_view& type);

}  // namespace vek::cli::serve
