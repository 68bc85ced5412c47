#pragma once
// The one exception every layer of vek raises. It carries what the classic
// runtime's error object carried: a number, the chain of procedures the error
// passed through (Source) and a description.

#include <cstdint>
#include <exception>
#include <string>
#include <string_view>

namespace vek {

// Base of the numbers that objects raise (the library's own are this + 512 + n).
inline constexpr int32_t vbObjectError = INT32_C(-2147221504);  // 0x80040000

class VekError : public std::exception {
 public:
  VekError(int32_t number, std::string source, std::string description);

  int32_t Number() const noexcept { return number_; }
  const std::string& Source() const noexcept { return source_; }
  const std::string& Description() const noexcept { return description_; }

  // Appends one link " -> Owner.Member, " to the Source chain.
  void AddLink(std::string_view owner, std::string_view member);

  const char* what() const noexcept override { return description_.c_str(); }

 private:
  int32_t number_;
  std::string source_;
  std::string description_;
};

// The text " -> Owner.Member, " that each procedure adds to a Source chain.
std::string SourceLink(std::string_view owner, std::string_view member);

// Numbers of the classic runtime that the platform raises.
enum RuntimeError : int32_t {
  kInvalidProcedureCall = 5,
  kOverflow = 6,
  kOutOfMemory = 7,
  kSubscriptOutOfRange = 9,
  kDivisionByZero = 11,
  kTypeMismatch = 13,
  kFileNotFound = 53,
  kPathFileAccessError = 75,
  kPathNotFound = 76,
  kObjectVariableNotSet = 91,
  kInvalidUseOfNull = 94,
  kInvalidPropertyValue = 380,
  kInvalidPropertyArrayIndex = 381,
  kObjectDoesNotSupportProperty = 438,
  kAutomationError = 440,
  kUnspecifiedError = INT32_C(-2147467259),  // 0x80004005
};

// The runtime's English description of one of its numbers ("Type mismatch").
std::string RuntimeErrorText(int32_t number);

// Raises a runtime error with its classic description and an empty Source.
[[noreturn]] void RaiseRuntimeError(int32_t number);

}  // namespace vek
