#pragma once
// The workstation program (tests/parking/ParkingWorkstation.cpp) run as a
// process of its own, as the terminal's programs run beside each other.

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

extern char** environ;

namespace vek::testing {

// Starts the workstation program with the arguments; its standard output
// goes to `output` when given. Returns the process, or -1.
inline pid_t StartWorkstation(const std::vector<std::string>& arguments,
                              const std::filesystem::path& output = {}) {
  std::vector<std::string> args = {VEK_PARKING_WORKSTATION};
  args.insert(args.end(), arguments.begin(), arguments.end());
  std::vector<char*> argv;
  for (std::string& arg : args) argv.push_back(arg.data());
  argv.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  const std::string output_path = output.string();
  if (!output.empty()) {
    posix_spawn_file_actions_addopen(&actions, 1, output_path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  }
  pid_t pid = 0;
  const int started = posix_spawn(&pid, argv[0], &actions, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  return started == 0 ? pid : -1;
}

// Waits for the process: its exit code, or -1 when it did not exit by
// itself (killed by a signal).
inline int ExitCode(pid_t pid) {
  int status = 0;
  if (pid <= 0 || waitpid(pid, &status, 0) != pid) return -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// The lines a workstation printed.
inline std::vector<std::string> OutputLines(const std::filesystem::path& output) {
  std::vector<std::string> lines;
  std::ifstream in(output);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

}  // namespace vek::testing
