#include "vek/db/backup/ServerDump.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <sstream>
#include <vector>

#include "vek/db/DbError.h"
#include "vek/platform/Text.h"
#include "vek/platform/VekError.h"

extern char** environ;

namespace vek::backup {
namespace fs = std::filesystem;
namespace {

constexpr size_t kChunk = 1 << 20;

// A file removed when the scope ends.
struct ScratchFile {
  fs::path path;
  ~ScratchFile() {
    std::error_code ignored;
    fs::remove(path, ignored);
  }
};

struct Outcome {
  int exit_code = -1;
  std::string messages;  // what the tool wrote on stdout and stderr
};

// Runs a client tool with the server's address in its environment (never on
// its command line, where other users could read the password).
Outcome RunTool(const std::vector<std::string>& arguments, const ServerAddress& server, const fs::path& messages_file,
                const char* source) {
  std::vector<std::string> environment;
  for (char** entry = environ; *entry != nullptr; ++entry) {
    const std::string_view text(*entry);
    if (!server.password.empty() && text.starts_with("PGPASSWORD=")) continue;
    environment.emplace_back(text);
  }
  if (!server.password.empty()) environment.push_back("PGPASSWORD=" + server.password);
  std::vector<char*> argv;
  for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
  argv.push_back(nullptr);
  std::vector<char*> envp;
  for (std::string& entry : environment) envp.push_back(entry.data());
  envp.push_back(nullptr);

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, messages_file.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO);
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  pid_t child = 0;
  const int spawned = posix_spawnp(&child, argv[0], &actions, nullptr, argv.data(), envp.data());
  posix_spawn_file_actions_destroy(&actions);
  if (spawned != 0) {
    RaiseDbError(adErrUnspecified, source,
                 "Cannot run " + arguments[0] + " (the server's client tools): " + std::strerror(spawned) + ".");
  }
  int status = 0;
  while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  Outcome outcome;
  outcome.exit_code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  std::ifstream in(messages_file);
  std::stringstream text;
  text << in.rdbuf();
  outcome.messages = Trim(text.str());
  return outcome;
}

std::vector<std::string> ConnectionArguments(const ServerAddress& server) {
  std::vector<std::string> arguments;
  if (!server.host.empty()) arguments.push_back("--host=" + server.host);
  if (!server.port.empty()) arguments.push_back("--port=" + server.port);
  if (!server.user.empty()) arguments.push_back("--username=" + server.user);
  arguments.push_back("--no-password");
  return arguments;
}

}  // namespace

ServerAddress ServerFromConnectionString(const std::string& connection_string) {
  ServerAddress server;
  size_t pos = 0;
  while (pos < connection_string.size()) {
    size_t end = connection_string.find(';', pos);
    if (end == std::string::npos) end = connection_string.size();
    const std::string_view part(connection_string.data() + pos, end - pos);
    if (const size_t equals = part.find('='); equals != std::string_view::npos) {
      const std::string key = FoldCase(Trim(part.substr(0, equals)));
      std::string value = Trim(part.substr(equals + 1));
      if (value.size() >= 2 && value.front() == '{' && value.back() == '}') value = value.substr(1, value.size() - 2);
      if (key == "server" || key == "servername") server.host = value;
      if (key == "port") server.port = value;
      if (key == "database") server.database = value;
      if (key == "uid" || key == "username") server.user = value;
      if (key == "pwd" || key == "password") server.password = value;
    }
    pos = end + 1;
  }
  return server;
}

ServerAddress ServerFromSetting(const std::string& setting, const std::string& database) {
  ServerAddress server;
  server.host = setting;
  server.database = database;
  if (const size_t at = server.host.rfind('@'); at != std::string::npos) {
    server.user = server.host.substr(0, at);
    server.host.erase(0, at + 1);
  }
  if (const size_t colon = server.host.rfind(':'); colon != std::string::npos) {
    server.port = server.host.substr(colon + 1);
    server.host.erase(colon);
  }
  return server;
}

QueryResult BackupServerDatabase(const ServerAddress& server, const BackupStatement& statement, Date now) {
  constexpr const char* kSource = "pg_dump";
  const fs::path media(statement.disk);
  // The writer first: it locks the file and takes out a set cut short.
  SetWriter writer(media, statement.overwrite, kSource);
  ScratchFile dump{fs::path(media.string() + ".dump")};
  ScratchFile messages{fs::path(media.string() + ".dump.log")};
  std::vector<std::string> arguments = {"pg_dump", "--format=custom", "--file=" + dump.path.string()};
  for (std::string& argument : ConnectionArguments(server)) arguments.push_back(std::move(argument));
  arguments.push_back("--dbname=" + server.database);
  const Outcome outcome = RunTool(arguments, server, messages.path, kSource);
  if (outcome.exit_code != 0) {
    RaiseDbError(adErrUnspecified, kSource,
                 "pg_dump failed (exit " + std::to_string(outcome.exit_code) + "): " + outcome.messages);
  }
  std::error_code error;
  const uint64_t size = fs::file_size(dump.path, error);
  if (error) RaiseDbError(adErrUnspecified, kSource, "pg_dump wrote no dump file.");
  SetHeader header;
  header.kind = statement.differential ? SetKind::ServerDumpForDifferential : SetKind::ServerDump;
  header.name = statement.name;
  header.database = statement.database;
  header.time = now;
  header.payload_length = size;
  writer.Begin(header);
  std::ifstream in(dump.path, std::ios::binary);
  std::vector<char> buffer(kChunk);
  uint64_t left = size;
  while (left > 0) {
    const size_t part = static_cast<size_t>(std::min<uint64_t>(left, buffer.size()));
    if (!in.read(buffer.data(), static_cast<std::streamsize>(part))) {
      RaiseDbError(adErrUnspecified, kSource, "Cannot read the dump file back.");
    }
    writer.Write(buffer.data(), part);
    left -= part;
  }
  writer.Finish();
  return QueryResult{};
}

bool RestoreServerDump(const fs::path& media, const MediaSet& set, const ServerAddress& target, bool replace) {
  constexpr const char* kSource = "pg_restore";
  fs::path scratch = fs::temp_directory_path() / ("vek-restore-" + std::to_string(::getpid()));
  ScratchFile dump{fs::path(scratch.string() + ".dump")};
  ScratchFile messages{fs::path(scratch.string() + ".log")};
  {
    const int fd = ::open(dump.path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (fd < 0) RaiseDbError(adErrUnspecified, kSource, "Cannot write " + dump.path.string() + ".");
    bool ok = true;
    ReadPayload(media, set, [&](const unsigned char* data, size_t size) {
      while (ok && size > 0) {
        const ssize_t done = ::write(fd, data, size);
        ok = done > 0;
        if (ok) {
          data += done;
          size -= static_cast<size_t>(done);
        }
      }
    }, kSource);
    ::close(fd);
    if (!ok) RaiseDbError(adErrUnspecified, kSource, "Cannot write " + dump.path.string() + ".");
  }
  std::vector<std::string> create = {"createdb"};
  for (std::string& argument : ConnectionArguments(target)) create.push_back(std::move(argument));
  create.push_back(target.database);
  const Outcome created = RunTool(create, target, messages.path, "createdb");
  const bool exists = created.exit_code != 0 && created.messages.find("already exists") != std::string::npos;
  if (created.exit_code != 0 && !exists) {
    RaiseDbError(adErrUnspecified, "createdb", "createdb failed: " + created.messages);
  }
  if (exists && !replace) return false;
  std::vector<std::string> restore = {"pg_restore", "--no-owner", "--exit-on-error"};
  if (exists) {
    restore.push_back("--clean");
    restore.push_back("--if-exists");
  }
  for (std::string& argument : ConnectionArguments(target)) restore.push_back(std::move(argument));
  restore.push_back("--dbname=" + target.database);
  restore.push_back(dump.path.string());
  const Outcome restored = RunTool(restore, target, messages.path, kSource);
  if (restored.exit_code != 0) {
    RaiseDbError(adErrUnspecified, kSource,
                 "pg_restore failed (exit " + std::to_string(restored.exit_code) + "): " + restored.messages);
  }
  return true;
}

}  // namespace vek::backup
