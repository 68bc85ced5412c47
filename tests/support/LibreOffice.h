#pragma once
// Reads workbooks back with LibreOffice, a program that did not write them:
// every sheet of every file is converted to CSV (cells as they are shown)
// in one run, with a user profile of its own, so that runs at the same time
// don't share one. A machine without LibreOffice fails the test that asks.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace vek::testing {

using SheetCells = std::vector<std::vector<std::string>>;

inline std::vector<std::string> ParseCsvLine(const std::string& line) {
  std::vector<std::string> cells(1);
  bool quoted = false;
  for (size_t i = 0; i < line.size(); ++i) {
    const char c = line[i];
    if (quoted) {
      if (c == '"' && i + 1 < line.size() && line[i + 1] == '"') {
        cells.back().push_back('"');
        ++i;
      } else if (c == '"') {
        quoted = false;
      } else {
        cells.back().push_back(c);
      }
    } else if (c == '"') {
      quoted = true;
    } else if (c == ',') {
      cells.emplace_back();
    } else if (c != '\r') {
      cells.back().push_back(c);
    }
  }
  return cells;
}

// file -> sheet name -> rows of cells. Empty when the conversion failed
// (the failure is recorded in the test).
inline std::map<std::string, std::map<std::string, SheetCells>> ReadWithLibreOffice(
    const std::vector<std::filesystem::path>& files) {
  namespace fs = std::filesystem;
  std::map<std::string, std::map<std::string, SheetCells>> read;
  if (std::system("command -v libreoffice > /dev/null 2>&1") != 0) {
    ADD_FAILURE() << "LibreOffice is needed to read the workbooks back (Debian: libreoffice-calc-nogui)";
    return read;
  }
  std::random_device random;
  const fs::path work = fs::temp_directory_path() / ("vek-lo-" + std::to_string(random()));
  fs::create_directories(work / "out");
  // Every sheet to its own file ("-1"), cells as shown, UTF-8, comma-separated.
  std::string command = "cd '" + work.string() + "' && LC_ALL=C.UTF-8 timeout 300 libreoffice --headless "
                        "'-env:UserInstallation=file://" + (work / "profile").string() + "' --convert-to "
                        "'csv:Text - txt - csv (StarCalc):44,34,76,1,,0,false,true,true,false,false,-1' --outdir out";
  for (const fs::path& file : files) command += " '" + file.string() + "'";
  command += " > lo.log 2>&1";
  const int status = std::system(command.c_str());
  for (const fs::path& file : files) {
    const std::string stem = file.stem().string();
    for (const auto& entry : fs::directory_iterator(work / "out")) {
      const std::string name = entry.path().stem().string();
      if (!name.starts_with(stem + "-")) continue;
      std::ifstream in(entry.path());
      SheetCells cells;
      std::string line;
      while (std::getline(in, line)) cells.push_back(ParseCsvLine(line));
      read[file.string()][name.substr(stem.size() + 1)] = std::move(cells);
    }
    if (!read.contains(file.string())) {
      std::ifstream log(work / "lo.log");
      std::stringstream text;
      text << log.rdbuf();
      ADD_FAILURE() << "LibreOffice did not read " << file << " (status " << status << "): " << text.str();
    }
  }
  std::error_code ignored;
  fs::remove_all(work, ignored);
  return read;
}

}  // namespace vek::testing
