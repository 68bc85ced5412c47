#pragma once
// The error trap that every procedure of the library runs its body in, and the
// helpers that raise the library's own errors. A trapped error leaves with the
// same number and description and one more link " -> Owner.Member, " on its
// Source; any other C++ exception becomes a VekError at the first trap.

#include <cstdint>
#include <exception>
#include <new>
#include <string>
#include <string_view>
#include <type_traits>
#include <typeinfo>
#include <utility>

#include "vek/foundation/MessageCatalogue.h"
#include "vek/platform/VekError.h"

namespace vek {

// The class name of an object's dynamic type, without namespaces
// ("cgdBairro" for a vek::cgdBairro), as the error chain names it.
std::string RuntimeTypeName(const std::type_info& type);
template <class T>
std::string RuntimeTypeName(const T& object) {
  return RuntimeTypeName(typeid(object));
}

// Raises an own error: the number, the catalogue text as description, and the
// link of the raising procedure as Source. Raised inside a trapped body of the
// same procedure, the error leaves with that link twice.
[[noreturn]] void RaiseError(int32_t number, std::string_view owner, std::string_view member);
// Raises an error with a description of its own (business failures).
[[noreturn]] void RaiseError(int32_t number, std::string_view owner, std::string_view member,
                             std::string description);

// Turns the exception in flight (not a VekError) into one with the link.
[[noreturn]] void RaiseForeignError(std::string_view owner, std::string_view member);

// Runs `body`, re-raising whatever escapes it with the link of owner.member.
// `owner` is the owner's name, or a callable giving it, which is called only
// when an error passes (finding an object's run-time name costs time).
template <class Owner, class Body>
decltype(auto) Trap(const Owner& owner, std::string_view member, Body&& body) {
  const auto owner_name = [&]() -> std::string {
    if constexpr (std::is_invocable_v<const Owner&>) {
      return std::string(owner());
    } else {
      return std::string(owner);
    }
  };
  try {
    return std::forward<Body>(body)();
  } catch (VekError& error) {
    error.AddLink(owner_name(), member);
    throw;
  } catch (...) {
    RaiseForeignError(owner_name(), member);
  }
}

}  // namespace vek
