#include "cli/serve/Server.h"

#include <httplib.h>

#include <charconv>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <optional>
#include <set>

#include "cli/serve/Escape.h"
#include "cli/serve/Pages.h"
#include "cli/serve/Screens.h"

namespace vek::cli::serve {

struct TerminalServer::Snapshot {
  std::optional<Board> board;
  std::string board_json;
  std::optional<Yard> yard;
  std::string yard_json;
  std::string board_error;  // short, for the screens; empty when read
  std::string yard_error;
};

namespace {

constexpr const char* kHtml = "text/html; charset=utf-8";
constexpr const char* kJson = "application/json; charset=utf-8";
constexpr const char* kUnavailable = "Banco de dados indisponível";

// One log line: a server's message may span lines.
std::string ErrorLine(const VekError& error) {
  char number[16];
  std::snprintf(number, sizeof number, "0x%08X", static_cast<unsigned>(error.Number()));
  std::string line = error.Description() + " (error " + number + ", source: " + error.Source() + ")";
  for (char& c : line) {
    if (c == '\n' || c == '\r') c = ' ';
  }
  return line;
}

std::string JsonError(const std::string& message) { return "{\"erro\":" + JsonString(message) + "}"; }

// Only the parameters a path knows, with the values it accepts.
bool ParametersAllowed(const httplib::Request& request, const std::set<std::string>& known) {
  for (const auto& [name, value] : request.params) {
    if (!known.contains(name)) return false;
    if (name == "som" && value != "0" && value != "1") return false;
  }
  return true;
}

void BadRequest(httplib::Response& response) {
  response.status = 400;
  response.set_content(JsonError("Parâmetro inválido"), kJson);
}

}  // namespace

bool ParseListenAddress(const std::string& text, std::string& host, int& port) {
  const size_t colon = text.rfind(':');
  if (colon == std::string::npos || colon == 0 || colon + 1 == text.size()) return false;
  host = text.substr(0, colon);
  if (host.front() == '[') {
    if (host.size() < 3 || host.back() != ']') return false;
    host = host.substr(1, host.size() - 2);
  } else if (host.find(':') != std::string::npos) {
    return false;  // IPv6 goes between brackets
  }
  const std::string digits = text.substr(colon + 1);
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), port);
  return error == std::errc() && end == digits.data() + digits.size() && port >= 0 && port <= 65535;
}

TerminalServer::TerminalServer(std::shared_ptr<cgpSistema> session, int32_t company, ServeOptions options,
                               std::ostream& log)
    : session_(std::move(session)),
      company_(company),
      options_(std::move(options)),
      log_(log),
      http_(std::make_unique<httplib::Server>()),
      snapshot_(std::make_shared<Snapshot>()) {
  Route();
}

TerminalServer::~TerminalServer() {
  Stop();
  if (worker_.joinable()) worker_.join();
}

void TerminalServer::Log(const std::string& line) {
  std::lock_guard lock(log_mutex_);
  log_ << "vek serve: " << line << std::endl;
}

std::shared_ptr<const TerminalServer::Snapshot> TerminalServer::Current() const {
  std::lock_guard lock(snapshot_mutex_);
  return snapshot_;
}

void TerminalServer::Refresh() {
  auto fresh = std::make_shared<Snapshot>();
  std::string error_line;
  {
    std::lock_guard lock(database_mutex_);
    cgdEmpresaUsuariaSistema company;
    company.Ob_cgpSistema(session_);
    company.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", Variant(company_));
    try {
      fresh->board = ReadBoard(company, options_.rows);
      fresh->board_json = BoardJson(*fresh->board);
    } catch (const VekError& error) {
      fresh->board_error = kUnavailable;
      error_line = ErrorLine(error);
    }
    try {
      fresh->yard = ReadYard(company);
      fresh->yard_json = YardJson(*fresh->yard);
    } catch (const VekError& error) {
      fresh->yard_error = kUnavailable;
      if (error_line.empty()) error_line = ErrorLine(error);
    }
  }
  {
    std::lock_guard lock(snapshot_mutex_);
    snapshot_ = fresh;
  }
  std::lock_guard lock(log_mutex_);
  if (error_line != last_error_) {
    log_ << "vek serve: " << (error_line.empty() ? std::string("the database answers again") : error_line)
         << std::endl;
    last_error_ = error_line;
  }
}

void TerminalServer::Route() {
  httplib::Server& http = *http_;
  http.new_task_queue = [threads = options_.threads] { return new httplib::ThreadPool(threads); };
  // A screen polls on one connection for hours: closing it every few
  // requests races with the screen's next request on it.
  http.set_keep_alive_max_count(std::numeric_limits<size_t>::max());
  http.set_default_headers({{"Cache-Control", "no-store"},
                            {"X-Content-Type-Options", "nosniff"},
                            {"Content-Security-Policy",
                             "default-src 'self'; object-src 'none'; base-uri 'none'; frame-ancestors 'none'"}});

  http.Get("/", [this](const httplib::Request& request, httplib::Response& response) {
    if (!ParametersAllowed(request, {"som"})) return BadRequest(response);
    const auto snapshot = Current();
    if (!snapshot->board) response.status = 503;
    response.set_content(BoardPage(snapshot->board ? &*snapshot->board : nullptr), kHtml);
  });
  http.Get("/patio", [this](const httplib::Request& request, httplib::Response& response) {
    if (!ParametersAllowed(request, {})) return BadRequest(response);
    const auto snapshot = Current();
    if (!snapshot->yard) response.status = 503;
    response.set_content(YardPage(snapshot->yard ? &*snapshot->yard : nullptr), kHtml);
  });
  http.Get("/api/board", [this](const httplib::Request& request, httplib::Response& response) {
    if (!ParametersAllowed(request, {})) return BadRequest(response);
    const auto snapshot = Current();
    if (!snapshot->board) {
      response.status = 503;
      return response.set_content(JsonError(snapshot->board_error), kJson);
    }
    response.set_content(snapshot->board_json, kJson);
  });
  http.Get("/api/patio", [this](const httplib::Request& request, httplib::Response& response) {
    if (!ParametersAllowed(request, {})) return BadRequest(response);
    const auto snapshot = Current();
    if (!snapshot->yard) {
      response.status = 503;
      return response.set_content(JsonError(snapshot->yard_error), kJson);
    }
    response.set_content(snapshot->yard_json, kJson);
  });
  http.Get("/healthz", [this](const httplib::Request&, httplib::Response& response) {
    const auto snapshot = Current();
    const bool ok = snapshot->board && snapshot->yard;
    response.status = ok ? 200 : 503;
    response.set_content(ok ? "ok\n" : std::string(kUnavailable) + "\n", "text/plain; charset=utf-8");
  });
  http.Get(R"(/static/([a-z]+\.[a-z]+))", [](const httplib::Request& request, httplib::Response& response) {
    std::string_view type;
    const std::string_view resource = StaticResource(request.matches[1].str(), type);
    if (resource.empty()) {
      response.status = 404;
      return;
    }
    response.set_content(std::string(resource), std::string(type).c_str());
  });
  http.Post(R"(/api/avisos/(\d{1,10})/feito)", [this](const httplib::Request& request, httplib::Response& response) {
    if (!ParametersAllowed(request, {})) return BadRequest(response);
    const long long code = std::stoll(request.matches[1].str());
    if (code <= 0 || code > INT32_MAX) return BadRequest(response);
    MarkResult result;
    try {
      std::lock_guard lock(database_mutex_);
      result = MarkAnnouncementPlayed(session_, company_, static_cast<int32_t>(code));
    } catch (const VekError& error) {
      Log(ErrorLine(error));
      response.status = 503;
      return response.set_content(JsonError(kUnavailable), kJson);
    }
    switch (result) {
      case MarkResult::Marked:
        response.set_content("{\"marcado\":true}", kJson);
        {
          std::lock_guard lock(worker_mutex_);
          refresh_soon_ = true;
        }
        worker_wake_.notify_one();
        break;
      case MarkResult::AlreadyPlayed:
        response.status = 409;
        response.set_content("{\"marcado\":false,\"erro\":\"Aviso já anunciado\"}", kJson);
        break;
      case MarkResult::NotFound:
        response.status = 404;
        response.set_content(JsonError("Aviso não encontrado"), kJson);
        break;
    }
  });
  http.set_error_handler([](const httplib::Request&, httplib::Response& response) {
    if (response.body.empty()) {
      response.set_content(response.status == 404 ? JsonError("Não encontrado") : JsonError("Pedido inválido"),
                           kJson);
    }
  });
  http.set_exception_handler([this](const httplib::Request&, httplib::Response& response, std::exception_ptr error) {
    try {
      std::rethrow_exception(error);
    } catch (const VekError& vek_error) {
      Log(ErrorLine(vek_error));
    } catch (const std::exception& other) {
      Log(other.what());
    }
    response.status = 500;
    response.set_content(JsonError("Erro interno"), kJson);
  });
}

int TerminalServer::Bind() {
  Refresh();
  int port = options_.port;
  bool bound;
  if (port == 0) {
    port = http_->bind_to_any_port(options_.host);
    bound = port > 0;
  } else {
    bound = http_->bind_to_port(options_.host, port);
  }
  if (!bound) {
    throw VekError(kBusinessError, "vek serve",
                   "Não foi possível escutar em " + options_.host + ":" + std::to_string(options_.port));
  }
  return port;
}

void TerminalServer::Run() {
  if (options_.refresh.count() > 0) {
    worker_ = std::thread([this] {
      std::unique_lock lock(worker_mutex_);
      while (!stopping_) {
        worker_wake_.wait_for(lock, options_.refresh, [this] { return stopping_ || refresh_soon_; });
        if (stopping_) break;
        refresh_soon_ = false;
        lock.unlock();
        Refresh();
        lock.lock();
      }
    });
  }
  http_->listen_after_bind();
}

void TerminalServer::Stop() {
  {
    std::lock_guard lock(worker_mutex_);
    stopping_ = true;
  }
  worker_wake_.notify_all();
  http_->stop();
}

}  // namespace vek::cli::serve
