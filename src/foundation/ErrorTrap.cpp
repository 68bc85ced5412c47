#include "vek/foundation/ErrorTrap.h"

#include <cxxabi.h>

#include <cstdlib>
#include <memory>

namespace vek {

std::string RuntimeTypeName(const std::type_info& type) {
  int status = 0;
  std::unique_ptr<char, void (*)(void*)> demangled(
      abi::__cxa_demangle(type.name(), nullptr, nullptr, &status), std::free);
  std::string name = status == 0 && demangled ? demangled.get() : type.name();
  // Drop namespaces but keep template arguments whole.
  const size_t template_start = name.find('<');
  const size_t last_scope = name.rfind("::", template_start);
  if (last_scope != std::string::npos) name.erase(0, last_scope + 2);
  return name;
}

void RaiseError(int32_t number, std::string_view owner, std::string_view member) {
  throw VekError(number, SourceLink(owner, member), MensagemErro(number));
}

void RaiseError(int32_t number, std::string_view owner, std::string_view member,
                std::string description) {
  throw VekError(number, SourceLink(owner, member), std::move(description));
}

void RaiseForeignError(std::string_view owner, std::string_view member) {
  try {
    throw;
  } catch (const std::bad_alloc&) {
    throw VekError(kOutOfMemory, SourceLink(owner, member), RuntimeErrorText(kOutOfMemory));
  } catch (const std::exception& error) {
    throw VekError(kUnspecifiedError, SourceLink(owner, member), error.what());
  } catch (...) {
    throw VekError(kUnspecifiedError, SourceLink(owner, member), RuntimeErrorText(kUnspecifiedError));
  }
}

}  // namespace vek
