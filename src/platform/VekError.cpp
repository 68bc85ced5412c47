#include "vek/platform/VekError.h"

#include <utility>

namespace vek {

VekError::VekError(int32_t number, std::string source, std::string description)
    : number_(number), source_(std::move(source)), description_(std::move(description)) {}

void VekError::AddLink(std::string_view owner, std::string_view member) {
  source_ += SourceLink(owner, member);
}

std::string SourceLink(std::string_view owner, std::string_view member) {
  std::string link = " -> ";
  link.append(owner).append(".").append(member).append(", ");
  return link;
}

std::string RuntimeErrorText(int32_t number) {
  switch (number) {
    case kInvalidProcedureCall: return "Invalid procedure call or argument";
    case kOverflow: return "Overflow";
    case kOutOfMemory: return "Out of memory";
    case kSubscriptOutOfRange: return "Subscript out of range";
    case kDivisionByZero: return "Division by zero";
    case kTypeMismatch: return "Type mismatch";
    case kFileNotFound: return "File not found";
    case kPathFileAccessError: return "Path/File access error";
    case kPathNotFound: return "Path not found";
    case kObjectVariableNotSet: return "Object variable or With block variable not set";
    case kInvalidUseOfNull: return "Invalid use of Null";
    case kInvalidPropertyValue: return "Invalid property value";
    case kInvalidPropertyArrayIndex: return "Invalid property array index";
    case kObjectDoesNotSupportProperty: return "Object doesn't support this property or method";
    case kAutomationError: return "Automation error";
    case kUnspecifiedError: return "Unspecified error";
    default: return "Application-defined or object-defined error";
  }
}

void RaiseRuntimeError(int32_t number) {
  throw VekError(number, std::string(), RuntimeErrorText(number));
}

}  // namespace vek
