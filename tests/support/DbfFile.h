#pragma once
// A dBase table file as bytes, for tests that check what was written down
// to the byte: header, field layout and records with their deletion flag.

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace vek::testing {

struct DbfFile {
  explicit DbfFile(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    bytes = text.str();
  }
  // A little-endian number of `size` bytes at `at`.
  uint32_t Word(size_t at, size_t size) const {
    uint32_t value = 0;
    for (size_t i = 0; i < size; ++i) value |= static_cast<uint32_t>(static_cast<uint8_t>(bytes[at + i])) << (8 * i);
    return value;
  }
  uint32_t Records() const { return Word(4, 4); }
  // Record i (from 0), its deletion flag first (' ' or '*').
  std::string Record(uint32_t i) const { return bytes.substr(Word(8, 2) + i * Word(10, 2), Word(10, 2)); }
  uint32_t LiveRecords() const {
    uint32_t live = 0;
    for (uint32_t i = 0; i < Records(); ++i) live += Record(i)[0] == ' ' ? 1 : 0;
    return live;
  }
  uint8_t LanguageByte() const { return static_cast<uint8_t>(bytes[29]); }

  std::string bytes;
};

}  // namespace vek::testing
