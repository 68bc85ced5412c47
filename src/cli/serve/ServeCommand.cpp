// vek serve: the terminal's board and yard as web pages, served from a
// terminal folder until the process is told to stop (Ctrl+C, SIGTERM).

#include <pthread.h>
#include <signal.h>

#include <atomic>
#include <iostream>
#include <memory>
#include <string>
#include <thread>

#include "cli/BusScreens.h"
#include "cli/Commands.h"
#include "cli/serve/Server.h"

namespace vek::cli {

void ServeFolder(const std::filesystem::path& folder, const ServeArguments& arguments, std::ostream& out) {
  std::string host;
  int port = 0;
  if (!serve::ParseListenAddress(arguments.listen, host, port)) {
    throw VekError(kBusinessError, "vek serve", "Endereço inválido: " + arguments.listen + " (use ENDEREÇO:PORTA)");
  }
  auto session = OpenTerminal(folder);
  const int32_t company = CLng(session->Get("Cd_EmpresaUsuariaSistema"));
  if (company == 0) {
    throw VekError(kBusinessError, "vek serve",
                   "O Vek.ini de " + folder.string() +
                       " não informa a empresa usuária ([EmpresaUsuaria] Cd_EmpresaUsuariaSistema)");
  }
  serve::ServeOptions options;
  options.host = host;
  options.port = port;
  options.rows = arguments.rows;

  // Ctrl+C and SIGTERM are taken by a thread of their own, which stops the
  // server; every other thread leaves them blocked.
  sigset_t stop_signals;
  sigemptyset(&stop_signals);
  sigaddset(&stop_signals, SIGINT);
  sigaddset(&stop_signals, SIGTERM);
  sigset_t saved;
  pthread_sigmask(SIG_BLOCK, &stop_signals, &saved);
  struct MaskRestorer {
    sigset_t mask;
    ~MaskRestorer() { pthread_sigmask(SIG_SETMASK, &mask, nullptr); }
  } restore_mask{saved};

  serve::TerminalServer server(session, company, options, std::cerr);
  const int bound = server.Bind();
  const std::string shown = host.find(':') != std::string::npos ? "[" + host + "]" : host;
  out << "Serving the terminal " << std::filesystem::absolute(folder).lexically_normal().string() << " at http://"
      << shown << ":" << bound << "/ (board /, yard /patio, JSON /api/board and /api/patio); Ctrl+C stops"
      << std::endl;

  std::atomic<bool> served{false};
  std::thread signal_waiter([&] {
    const timespec tick{0, 200'000'000};
    while (!served) {
      if (sigtimedwait(&stop_signals, nullptr, &tick) > 0) {
        server.Stop();
        return;
      }
    }
  });
  server.Run();
  served = true;
  signal_waiter.join();
  session->Ob_Conexao()->Close();
  out << "Stopped serving" << std::endl;
}

void AddServeCommand(CLI::App& app) {
  struct Arguments {
    std::string folder = ".";
    ServeArguments serve;
  };
  auto arguments = std::make_shared<Arguments>();
  CLI::App* command = app.add_subcommand(
      "serve", "Serve the terminal's board (/) and yard (/patio) as web pages, with their JSON under /api");
  command->add_option("folder", arguments->folder, "The terminal folder (holding Vek.ini)")->capture_default_str();
  command->add_option("--listen", arguments->serve.listen, "Address and port to listen on (loopback by default)")
      ->capture_default_str();
  command->add_option("-r,--rows", arguments->serve.rows, "Trips on each panel of the board")
      ->capture_default_str()
      ->check(CLI::Range(0, 1000));
  command->callback([arguments] { ServeFolder(arguments->folder, arguments->serve, std::cout); });
}

}  // namespace vek::cli
