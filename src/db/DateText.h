#pragma once
// Dates as text where the database has no date type of its own (SQLite):
// 'yyyy-mm-dd hh:mm:ss'.

#include <optional>
#include <string>
#include <string_view>

#include "vek/platform/Date.h"

namespace vek {

std::string CanonicalDateText(Date date);
// Reads the canonical text and its near forms ('yyyy-mm-dd', a 'T' between
// date and time, fractions of a second, which round to the second).
std::optional<Date> ParseCanonicalDate(std::string_view text);

}  // namespace vek
