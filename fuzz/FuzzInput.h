// What every fuzz target shares: the input as text, a scratch file for the
// readers of files, and the rule that a VekError is the one allowed way to
// refuse an input (anything else that escapes is a finding).
#pragma once

#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include "vek/platform/VekError.h"

namespace vek::fuzz {

inline std::string_view Text(const uint8_t* data, size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

// A file of this process holding the input, under a name with `extension`.
inline std::filesystem::path ScratchFile(const uint8_t* data, size_t size, std::string_view extension) {
  const std::filesystem::path path = std::filesystem::temp_directory_path() /
                                     ("vek-fuzz-" + std::to_string(getpid()) + std::string(extension));
  std::ofstream(path, std::ios::binary | std::ios::trunc).write(reinterpret_cast<const char*>(data),
                                                                static_cast<std::streamsize>(size));
  return path;
}

template <typename Body>
int Refusable(Body&& body) {
  try {
    body();
  } catch (const vek::VekError&) {
  }
  return 0;
}

}  // namespace vek::fuzz
