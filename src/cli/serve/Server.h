#pragma once
// vek serve's HTTP server: the board (/), the yard (/patio), their JSON
// (/api/board, /api/patio), the announcement mark and /healthz.
//
// Every client is served from one snapshot of the board and one of the yard,
// which a single worker rebuilds from the database once per refresh period
// (and at once after an announcement is marked), so the database is read at
// most once a period however many screens ask. The only write is the
// announcement mark, through cgdAgendaSom. While the database fails, the
// data endpoints answer 503, the error is logged once per failure, and the
// worker keeps trying.

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <ostream>
#include <string>
#include <thread>

#include "vek/vek.h"

namespace httplib {
class Server;
}

namespace vek::cli::serve {

struct ServeOptions {
  std::string host = "127.0.0.1";
  int port = 8080;  // 0: any free port (Bind returns it)
  int32_t rows = 10;
  // How often the worker rebuilds the snapshots; zero: only when Refresh is
  // called (tests drive it so).
  std::chrono::milliseconds refresh{1000};
  size_t threads = 64;  // connections served at once
};

class TerminalServer {
 public:
  // Serves the terminal of `session` (an open connection) for the operating
  // company `company`. Log lines go to `log`.
  TerminalServer(std::shared_ptr<cgpSistema> session, int32_t company, ServeOptions options, std::ostream& log);
  ~TerminalServer();
  TerminalServer(const TerminalServer&) = delete;
  TerminalServer& operator=(const TerminalServer&) = delete;

  // Builds the first snapshots and binds the address; returns the port.
  // Raises 0x80040458 when the address can't be bound.
  int Bind();
  // Serves until Stop; the refresh worker runs meanwhile.
  void Run();
  // Ends Run (from any thread); safe to call more than once.
  void Stop();
  // Rebuilds the snapshots from the database now.
  void Refresh();

 private:
  struct Snapshot;
  void Route();
  std::shared_ptr<const Snapshot> Current() const;
  void Log(const std::string& line);

  std::shared_ptr<cgpSistema> session_;
  int32_t company_;
  ServeOptions options_;
  std::ostream& log_;
  std::unique_ptr<httplib::Server> http_;

  std::mutex database_mutex_;  // one user of the session at a time
  mutable std::mutex snapshot_mutex_;
  std::shared_ptr<const Snapshot> snapshot_;
  std::mutex log_mutex_;
  std::string last_error_;  // logged once until the database answers again

  std::mutex worker_mutex_;
  std::condition_variable worker_wake_;
  bool stopping_ = false;
  bool refresh_soon_ = false;
  std::thread worker_;
};

// Splits "host:port" ("[::1]:8080" for IPv6). Returns false when it is not one.
bool ParseListenAddress(const std::string& text, std::string& host, int& port);

}  // namespace vek::cli::serve
