#pragma once
// Reads a file back through LibreOffice, a program that did not write it:
// headless, with a profile folder of the test run's own (other runs use
// LibreOffice at the same time), converted to CSV in UTF-8 with raw cell
// values (numbers with a point and only the decimals needed, dates as
// m/d/yyyy). A missing LibreOffice fails the test that asked.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "support/TestSupport.h"

namespace vek::testing {

using CsvRows = std::vector<std::vector<std::string>>;

inline CsvRows ParseCsv(const std::string& text) {
  CsvRows rows;
  std::vector<std::string> row;
  std::string cell;
  bool quoted = false;
  bool any = false;
  for (size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (quoted) {
      if (c == '"' && i + 1 < text.size() && text[i + 1] == '"') {
        cell.push_back('"');
        ++i;
      } else if (c == '"') {
        quoted = false;
      } else {
        cell.push_back(c);
      }
    } else if (c == '"') {
      quoted = true;
      any = true;
    } else if (c == ',') {
      row.push_back(std::move(cell));
      cell.clear();
      any = true;
    } else if (c == '\n' || c == '\r') {
      if (c == '\r' && i + 1 < text.size() && text[i + 1] == '\n') ++i;
      if (any || !cell.empty()) {
        row.push_back(std::move(cell));
        rows.push_back(std::move(row));
      }
      row.clear();
      cell.clear();
      any = false;
    } else {
      cell.push_back(c);
      any = true;
    }
  }
  if (any || !cell.empty()) {
    row.push_back(std::move(cell));
    rows.push_back(std::move(row));
  }
  return rows;
}

// The rows of `file` as LibreOffice reads them with `import_filter` (for a
// dBase table, "dBase:ANSI": its code page, Windows-1252), the header row first.
inline CsvRows ReadWithLibreOffice(const std::filesystem::path& file, const std::string& import_filter) {
  ScratchFolder scratch;
  const std::filesystem::path out = scratch.Path() / "csv";
  std::filesystem::create_directories(out);
  const std::string command =
      "env LC_ALL=C.UTF-8 LANG=C.UTF-8 libreoffice --headless --norestore"
      " -env:UserInstallation=file://" + (scratch.Path() / "profile").string() +
      " '--infilter=" + import_filter + "'"
      " --convert-to 'csv:Text - txt - csv (StarCalc):44,34,76,1,,0,false,true,false,false'"
      " --outdir '" + out.string() + "' '" + file.string() + "' > '" + (scratch.Path() / "log").string() + "' 2>&1";
  const int status = std::system(command.c_str());
  const std::filesystem::path csv = out / (file.stem().string() + ".csv");
  if (status != 0 || !std::filesystem::exists(csv)) {
    std::ifstream log(scratch.Path() / "log");
    std::stringstream text;
    text << log.rdbuf();
    ADD_FAILURE() << "LibreOffice could not read " << file << " (status " << status << "): " << text.str();
    return {};
  }
  std::ifstream in(csv, std::ios::binary);
  std::stringstream text;
  text << in.rdbuf();
  return ParseCsv(text.str());
}

}  // namespace vek::testing
