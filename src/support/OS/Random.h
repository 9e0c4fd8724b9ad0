#pragma once

#include <cstdint>

namespace quillstead::OS {

/// An unpredictable number from the system. If the system cannot give one, the number is made of
/// the time and the process number: enough to make a name unique.
std::uint64_t randomNumber();

}  // namespace quillstead::OS
