// The vek command-line tool: creates a terminal database and runs the
// terminal's work on it. Exit codes: 0 done, 1 failed, 2 bad usage.

#include <iostream>

#include "cli/Commands.h"

int main(int argc, char** argv) { return vek::cli::RunTool(argc, argv, std::cout, std::cerr); }
