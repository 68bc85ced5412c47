// vek serve seen by a real browser: the tool serves a demo terminal, headless
// Chromium opens the board and is driven over the DevTools protocol (its
// pipe: NUL-separated JSON on file descriptors 3 and 4). The test inserts a
// trip, sees the page show it, changes it in the database, sees the page
// follow without a reload, saves a screenshot, and sees the board say it is
// out of date after a minute without the server. Without Chromium it fails.

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <chrono>
#include <iostream>
#include <optional>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "cli/Commands.h"
#include "support/TestSupport.h"
#include "vek/vek.h"

namespace vek {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

std::string FindChromium() {
  if (const char* given = std::getenv("VEK_CHROMIUM")) return given;
  for (const char* name : {"chromium", "chromium-browser", "google-chrome"}) {
    const char* path = std::getenv("PATH");
    std::istringstream folders(path ? path : "/usr/bin");
    for (std::string folder; std::getline(folders, folder, ':');) {
      const fs::path candidate = fs::path(folder) / name;
      if (::access(candidate.c_str(), X_OK) == 0) return candidate.string();
    }
  }
  return {};
}

// A child process; killed and reaped when the object goes.
struct Child {
  pid_t pid = -1;
  ~Child() { Stop(SIGKILL); }
  int Stop(int signal) {
    if (pid <= 0) return -1;
    ::kill(pid, signal);
    int status = 0;
    ::waitpid(pid, &status, 0);
    pid = -1;
    return status;
  }
};

std::string PercentDecode(const std::string& text) {
  std::string out;
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '%' && i + 2 < text.size()) {
      out += static_cast<char>(std::stoi(text.substr(i + 1, 2), nullptr, 16));
      i += 2;
    } else {
      out += text[i];
    }
  }
  return out;
}

std::string Base64Decode(const std::string& text) {
  static const std::string alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string out;
  uint32_t bits = 0;
  int count = 0;
  for (const char c : text) {
    const size_t value = alphabet.find(c);
    if (value == std::string::npos) continue;  // padding, escapes
    bits = (bits << 6) | static_cast<uint32_t>(value);
    count += 6;
    if (count >= 8) {
      count -= 8;
      out += static_cast<char>((bits >> count) & 0xFF);
    }
  }
  return out;
}

// The text of "name":"..." in a DevTools message (values without escapes).
std::string StringField(const std::string& message, const std::string& name) {
  const std::string key = "\"" + name + "\":\"";
  const size_t at = message.find(key);
  if (at == std::string::npos) return {};
  const size_t start = at + key.size();
  return message.substr(start, message.find('"', start) - start);
}

class DevTools {
 public:
  DevTools(const std::string& chromium, const fs::path& profile) {
    int to_browser[2], from_browser[2];
    if (::pipe(to_browser) != 0 || ::pipe(from_browser) != 0) throw std::runtime_error("pipe");
    browser_.pid = ::fork();
    if (browser_.pid == 0) {
      ::dup2(to_browser[0], 3);
      ::dup2(from_browser[1], 4);
      for (int fd = 5; fd < 1024; ++fd) ::close(fd);
      const int null = ::open("/dev/null", O_WRONLY);
      ::dup2(null, 1);
      ::dup2(null, 2);
      std::vector<std::string> args{chromium, "--headless", "--disable-gpu", "--remote-debugging-pipe",
                                    "--no-first-run", "--no-default-browser-check", "--hide-scrollbars",
                                    "--user-data-dir=" + profile.string(), "about:blank"};
      if (::geteuid() == 0) args.insert(args.begin() + 1, "--no-sandbox");
      std::vector<char*> argv;
      for (std::string& arg : args) argv.push_back(arg.data());
      argv.push_back(nullptr);
      ::execv(argv[0], argv.data());
      ::_exit(127);
    }
    ::close(to_browser[0]);
    ::close(from_browser[1]);
    write_fd_ = to_browser[1];
    read_fd_ = from_browser[0];
  }
  ~DevTools() {
    if (write_fd_ >= 0) {
      Send("Browser.close", "{}", false);
      ::close(write_fd_);
    }
    if (read_fd_ >= 0) ::close(read_fd_);
    for (int i = 0; i < 50 && browser_.pid > 0; ++i) {
      if (::waitpid(browser_.pid, nullptr, WNOHANG) == browser_.pid) browser_.pid = -1;
      std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
  }

  // Sends a command (to the page's session when `on_page`) and returns its answer.
  std::string Send(const std::string& method, const std::string& params, bool on_page = true) {
    const int id = ++last_id_;
    std::string message = "{\"id\":" + std::to_string(id) + ",";
    if (on_page && !session_.empty()) message += "\"sessionId\":\"" + session_ + "\",";
    message += "\"method\":\"" + method + "\",\"params\":" + params + "}";
    message.push_back('\0');
    if (::write(write_fd_, message.data(), message.size()) != static_cast<ssize_t>(message.size())) return {};
    const std::string prefix = "{\"id\":" + std::to_string(id) + ",";
    for (;;) {
      std::string answer = Next(std::chrono::seconds(60));
      if (answer.empty()) return {};
      if (answer.starts_with(prefix)) return answer;
    }
  }

  // Waits for an event whose message holds `method`.
  bool WaitFor(const std::string& method, std::chrono::seconds limit) {
    const std::string needle = "\"method\":\"" + method + "\"";
    for (;;) {
      if (events_.find(needle) != std::string::npos) return true;
      if (Next(limit).empty()) return false;
    }
  }
  bool Saw(const std::string& method) const { return events_.find("\"method\":\"" + method + "\"") != std::string::npos; }

  void OpenPage(const std::string& url) {
    const std::string target = StringField(Send("Target.createTarget", "{\"url\":\"about:blank\"}", false), "targetId");
    ASSERT_FALSE(target.empty());
    session_ = StringField(Send("Target.attachToTarget", "{\"targetId\":\"" + target + "\",\"flatten\":true}", false),
                           "sessionId");
    ASSERT_FALSE(session_.empty());
    Send("Page.enable", "{}");
    Send("Emulation.setDeviceMetricsOverride",
         "{\"width\":1600,\"height\":900,\"deviceScaleFactor\":1,\"mobile\":false}");
    Send("Page.navigate", "{\"url\":\"" + url + "\"}");
  }

  // The value of a script expression giving text.
  std::string Evaluate(const std::string& expression) {
    std::string quoted;
    for (const char c : "encodeURIComponent(String(" + expression + "))") {
      if (c == '"' || c == '\\') quoted += '\\';
      quoted += c;
    }
    return PercentDecode(StringField(Send("Runtime.evaluate", "{\"expression\":\"" + quoted + "\",\"returnByValue\":true}"),
                                     "value"));
  }

  // Evaluates until the text holds `needle`; the time it took, or nothing.
  std::optional<Clock::duration> WaitForText(const std::string& expression, const std::string& needle,
                                             std::chrono::seconds limit) {
    const auto start = Clock::now();
    while (Clock::now() - start < limit) {
      if (Evaluate(expression).find(needle) != std::string::npos) return Clock::now() - start;
      std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    return std::nullopt;
  }

 private:
  // The next message (events are kept in events_); empty on timeout or end.
  std::string Next(std::chrono::seconds limit) {
    const auto deadline = Clock::now() + limit;
    for (;;) {
      const size_t end = buffer_.find('\0');
      if (end != std::string::npos) {
        std::string message = buffer_.substr(0, end);
        buffer_.erase(0, end + 1);
        if (message.starts_with("{\"method\"")) events_ += message + "\n";
        return message;
      }
      const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
      if (left <= 0) return {};
      pollfd readable{read_fd_, POLLIN, 0};
      if (::poll(&readable, 1, static_cast<int>(left)) <= 0) return {};
      char chunk[65536];
      const ssize_t got = ::read(read_fd_, chunk, sizeof chunk);
      if (got <= 0) return {};
      buffer_.append(chunk, static_cast<size_t>(got));
    }
  }

  Child browser_;
  int write_fd_ = -1;
  int read_fd_ = -1;
  int last_id_ = 0;
  std::string session_;
  std::string buffer_;
  std::string events_;
};

// Starts `vek serve folder --listen 127.0.0.1:0` and reads the address it prints.
std::string StartServe(Child& serve, const fs::path& folder) {
  int out[2];
  if (::pipe(out) != 0) return {};
  serve.pid = ::fork();
  if (serve.pid == 0) {
    ::dup2(out[1], 1);
    ::close(out[0]);
    ::execl(VEK_PROGRAM, VEK_PROGRAM, "serve", folder.c_str(), "--listen", "127.0.0.1:0", static_cast<char*>(nullptr));
    ::_exit(127);
  }
  ::close(out[1]);
  std::string line;
  const auto deadline = Clock::now() + std::chrono::seconds(30);
  while (line.find('\n') == std::string::npos && Clock::now() < deadline) {
    pollfd readable{out[0], POLLIN, 0};
    if (::poll(&readable, 1, 1000) <= 0) continue;
    char chunk[512];
    const ssize_t got = ::read(out[0], chunk, sizeof chunk);
    if (got <= 0) break;
    line.append(chunk, static_cast<size_t>(got));
  }
  ::close(out[0]);
  const size_t at = line.find("http://");
  if (at == std::string::npos) return {};
  return line.substr(at, line.find('/', at + 7) + 1 - at);
}

TEST(ServeBrowserTest, TheBoardInChromiumShowsTheTripsAndFollowsTheDatabase) {
  const std::string chromium = FindChromium();
  ASSERT_FALSE(chromium.empty()) << "Chromium is needed for this test (apt-get install chromium)";

  testing::ScratchApp app;
  const fs::path folder = app.Path() / "terminal";
  {
    std::ostringstream ignored;
    cli::RunDemo(folder, {}, ignored);
    SetAppPath({});
  }
  // A trip of the test's own, due now on the system clock, so it leads the
  // departures; its destination's name is markup that must stay text.
  const std::string company =
      GetPrivateProfileString("EmpresaUsuaria", "Cd_EmpresaUsuariaSistema", "", folder / "Vek.ini");
  const std::string city = "Pirenópolis<script>alert(1)</script>";
  auto database = std::make_shared<Connection>();
  database->Open("Driver=SQLite3;Database=" + (folder / "Vek.db").string());
  database->Execute("INSERT INTO TbCidade (Cd_Cidade, Nm_Cidade, Cd_UF, Sg_UF, Qt_DistanciaEmKm) SELECT 9001, '" +
                    city + "', Cd_UF, Sg_UF, 120 FROM TbCidade WHERE Cd_Cidade = (SELECT MIN(Cd_Cidade) FROM TbCidade)");
  database->Execute("INSERT INTO TbLinha (Cd_Linha, Cd_CidadeOrigem, Cd_CidadeDestino) SELECT 9001, MIN(Cd_Cidade), "
                    "9001 FROM TbCidade WHERE Cd_Cidade < 9001");
  database->Execute("INSERT INTO TbHorariosLinha (Cd_EmpresaUsuariaSistema, Cd_Linha, Cd_HorarioLinha, "
                    "Cd_EmpresaOnibus, Cd_TipoOnibus, Ic_TemEmbarques, Ic_TemDesembarque, No_Plataforma) SELECT " +
                    company + ", 9001, 9001, MIN(Cd_EmpresaOnibus), (SELECT MIN(Cd_TipoOnibus) FROM TbTipoOnibus), "
                    "1, 0, 9 FROM TbEmpresaOnibus");
  const std::string now = Format(Variant(SystemClock().Now()), "yyyy-mm-dd hh:Nn") + ":00";
  database->Execute("INSERT INTO TbViagemOnibus (Cd_EmpresaUsuariaSistema, Cd_ViagemOnibus, Cd_Linha, "
                    "Cd_HorarioLinha, Hr_Previsto, No_Plataforma, No_Andamento) VALUES (" +
                    company + ", 9001, 9001, 9001, '" + now + "', 9, 1)");

  Child serve;
  const std::string address = StartServe(serve, folder);
  ASSERT_FALSE(address.empty()) << "vek serve printed no address";

  DevTools browser(chromium, app.Path() / "chromium-profile");
  browser.OpenPage(address);
  const std::string first_departure = "document.querySelector('#partidas tbody tr').innerText";
  ASSERT_TRUE(browser.WaitForText(first_departure, "Embarque", std::chrono::seconds(30)))
      << browser.Evaluate("document.body.innerText");
  const std::string row = browser.Evaluate(first_departure);
  EXPECT_NE(row.find(city + "/"), std::string::npos) << row;  // the markup is shown as text
  EXPECT_NE(row.find("9"), std::string::npos) << row;
  EXPECT_EQ(browser.Evaluate("document.scripts.length"), "1");
  EXPECT_FALSE(browser.Saw("Page.javascriptDialogOpening"));
  EXPECT_EQ(browser.Evaluate("document.querySelector('h2').innerText"), "CHEGADAS");  // upper case on screen
  EXPECT_NE(browser.Evaluate("document.getElementById('relogio').innerText").find(":"), std::string::npos);

  // The page follows the database without being reloaded.
  browser.Evaluate("window.mesmaPagina = 'sim'");
  database->Execute("UPDATE TbViagemOnibus SET No_Andamento = 2 WHERE Cd_ViagemOnibus = 9001");
  const auto followed = browser.WaitForText(first_departure, "Partiu", std::chrono::seconds(20));
  ASSERT_TRUE(followed) << browser.Evaluate(first_departure);
  EXPECT_LE(*followed, std::chrono::seconds(5));
  std::cout << "[          ] the page followed the database in "
            << std::chrono::duration_cast<std::chrono::milliseconds>(*followed).count() << " ms\n";
  EXPECT_EQ(browser.Evaluate("window.mesmaPagina"), "sim");
  EXPECT_NE(browser.Evaluate("document.getElementById('atualizado').innerText").find("/"), std::string::npos);

  const std::string png = Base64Decode(StringField(browser.Send("Page.captureScreenshot", "{\"format\":\"png\"}"), "data"));
  ASSERT_GT(png.size(), 10000u);
  EXPECT_EQ(png.substr(0, 8), "\x89PNG\r\n\x1a\n");
  // Beside the test program, in the build folder, never in the sources.
  const fs::path screenshot = fs::read_symlink("/proc/self/exe").parent_path() / "serve-board.png";
  std::ofstream(screenshot, std::ios::binary) << png;
  std::cout << "[          ] screenshot: " << screenshot.string() << "\n";

  // The server stops; after a minute without answers (in the page's virtual
  // time) the board says so and hides the trips.
  const int status = serve.Stop(SIGTERM);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
  EXPECT_EQ(browser.Evaluate("document.body.classList.contains('desatualizado')"), "false");
  browser.Send("Emulation.setVirtualTimePolicy", "{\"policy\":\"advance\",\"budget\":70000}");
  ASSERT_TRUE(browser.WaitFor("Emulation.virtualTimeBudgetExpired", std::chrono::seconds(60)));
  EXPECT_EQ(browser.Evaluate("document.body.classList.contains('desatualizado')"), "true");
  EXPECT_EQ(browser.Evaluate("getComputedStyle(document.querySelector('main')).display"), "none");
  EXPECT_NE(browser.Evaluate("document.getElementById('desatualizado').innerText").find("QUADRO DESATUALIZADO"),
            std::string::npos);
  database->Close();
}

}  // namespace
}  // namespace vek
