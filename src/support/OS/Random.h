#pragma once

#include <cstdint>

namespace quillstead::OS {

/// A number that nobody can foresee, from the system. Where the system has none to give, one made
/// of the time and the process's number: it still tells one name from another.
std::uint64_t randomNumber();

}  // namespace quillstead::OS
