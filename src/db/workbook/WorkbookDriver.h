#pragma once
// The workbook provider: what Jet's Excel connection ("Extended Properties=
// Excel 8.0;" on a workbook file) does here, on an .xlsx file. A sheet is a
// table whose headings are its row 1: "[DADOS$]" (or SELECT * FROM
// [DADOS$]) reads it as a record set, one row per sheet row below the
// headings, and "UPDATE [DADOS$] SET heading = value, ... WHERE heading =
// value" writes the cells of the rows it finds. Values: numbers, a number
// divided by a power of ten ("12345/100", written as the exact decimal
// 123.45), "#mm/dd/yyyy#" dates (a date cell under a date format), 'text',
// NULL. Every UPDATE is in the file when Execute returns (see WorkbookFile:
// temporary file and rename). Internal: only Driver.cpp creates it.
//
// Errors (Source "Microsoft Excel Workbook"): 0x80004005 for the file
// (missing, not a workbook, read-only), 0x80040E37 for a missing sheet,
// 0x80040E10 for a heading the sheet lacks, 0x80040E14 for a statement the
// provider doesn't run.

#include <memory>
#include <string>

#include "vek/db/Driver.h"

namespace vek {

inline constexpr int32_t kWorkbookNoSuchHeading = static_cast<int32_t>(0x80040E10u);

std::unique_ptr<Driver> OpenWorkbookDriver(const std::string& path);

}  // namespace vek
