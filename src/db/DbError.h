#pragma once
// Numbers of the data-access errors: the ADO family for database failures
// and the classic runtime's collection and cursor errors.

#include <cstdint>
#include <string>

namespace vek {

inline constexpr int32_t adErrSyntax = static_cast<int32_t>(0x80040E14u);       // syntax or unknown object
inline constexpr int32_t adErrConstraint = static_cast<int32_t>(0x80040E2Fu);   // constraint violation
inline constexpr int32_t adErrUnspecified = static_cast<int32_t>(0x80004005u);  // anything else
inline constexpr int32_t adErrItemNotFound = 3265;
inline constexpr int32_t adErrNoCurrentRecord = 3021;
inline constexpr int32_t adErrObjectClosed = 3704;
inline constexpr int32_t adErrObjectOpen = 3705;
inline constexpr int32_t adErrInvalidArgument = 3001;
inline constexpr int32_t adErrFeatureNotAvailable = 3251;

// Raises an error of the objects themselves with its classic description;
// `object` is the Source ("ADODB.Recordset", "ADODB.Fields", ...).
[[noreturn]] void RaiseAdoError(int32_t number, const char* object);
// Raises a database failure keeping the database's own message.
[[noreturn]] void RaiseDbError(int32_t number, std::string source, std::string description);

}  // namespace vek
