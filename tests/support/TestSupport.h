#pragma once
// Helpers every test folder shares: error capture, statement lines, and guards
// that put the locale, the environment and the application folder back.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <string_view>

#include "vek/db/Connection.h"
#include "vek/db/Recordset.h"
#include "vek/platform/VekError.h"
#include "vek/platform/AppPath.h"
#include "vek/platform/Locale.h"

namespace vek::testing {

// The error a body raises; number 0 when it raises none, so that a check on
// the number fails.
inline VekError ErrorOf(const std::function<void()>& body) {
  try {
    body();
  } catch (const VekError& error) {
    return error;
  }
  return VekError(0, "", "nothing was raised");
}

// Statement lines joined the way the library joins them: a bare CR.
inline std::string Lines(std::initializer_list<std::string_view> lines) {
  std::string text;
  for (std::string_view line : lines) {
    if (!text.empty()) text.push_back('\r');
    text.append(line);
  }
  return text;
}

inline std::shared_ptr<Connection> OpenMemoryDatabase() {
  auto connection = std::make_shared<Connection>();
  connection->Open("Driver=SQLite3;Database=:memory:");
  return connection;
}

inline const Locale kDotLocale{".", ","};
inline const Locale kBrazilLocale{",", "."};

// Sets the process-wide separators for a scope.
class LocaleGuard {
 public:
  explicit LocaleGuard(Locale locale) : saved_(CurrentLocale()) { SetLocale(std::move(locale)); }
  ~LocaleGuard() { SetLocale(saved_); }
  LocaleGuard(const LocaleGuard&) = delete;
  LocaleGuard& operator=(const LocaleGuard&) = delete;

 private:
  Locale saved_;
};

// Sets (or, with nullptr, removes) an environment variable for a scope.
class EnvGuard {
 public:
  EnvGuard(const char* name, const char* value) : name_(name) {
    if (const char* old = std::getenv(name)) old_ = old;
    if (value == nullptr) {
      ::unsetenv(name);
    } else {
      ::setenv(name, value, 1);
    }
  }
  ~EnvGuard() {
    if (old_) {
      ::setenv(name_.c_str(), old_->c_str(), 1);
    } else {
      ::unsetenv(name_.c_str());
    }
  }
  EnvGuard(const EnvGuard&) = delete;
  EnvGuard& operator=(const EnvGuard&) = delete;

 private:
  std::string name_;
  std::optional<std::string> old_;
};

// A folder of its own for a test, removed afterwards.
class ScratchFolder {
 public:
  ScratchFolder() {
    std::random_device random;
    path_ = std::filesystem::temp_directory_path() / ("vek-test-" + std::to_string(random()));
    std::filesystem::create_directories(path_);
  }
  ~ScratchFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;
  const std::filesystem::path& Path() const { return path_; }

 private:
  std::filesystem::path path_;
};

// A scratch folder that is the application folder (where Vek.ini lives) and
// holds the user's settings store under config/.
class ScratchApp {
 public:
  ScratchApp() : xdg_("XDG_CONFIG_HOME", (folder_.Path() / "config").c_str()) {
    SetAppPath(folder_.Path());
  }
  ~ScratchApp() { SetAppPath({}); }
  const std::filesystem::path& Path() const { return folder_.Path(); }
  std::filesystem::path Ini() const { return folder_.Path() / "Vek.ini"; }

 private:
  ScratchFolder folder_;
  EnvGuard xdg_;
};

}  // namespace vek::testing
