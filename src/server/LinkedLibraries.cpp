#include "server/LinkedLibraries.h"

#include <sqlite3.h>
#include <utf8proc.h>

#include <initializer_list>

#ifdef __GLIBC__
#include <gnu/libc-version.h>
#endif

namespace quillstead::server::LinkedLibraries {

namespace {

std::string dotted(std::initializer_list<long> numbers) {
  std::string all;
  for (const long number : numbers) {
    if (!all.empty()) all += '.';
    all += std::to_string(number);
  }
  return all;
}

/// Empty where the C library belongs to the system.
std::string cLibrary() {
#if defined(__GLIBC__)
  return std::string("glibc ") + gnu_get_libc_version() + "\n";
#elif defined(QUILLSTEAD_MUSL_VERSION)
  return "musl " QUILLSTEAD_MUSL_VERSION "\n";
#else
  return {};
#endif
}

std::string cppLibrary() {
#if defined(_LIBCPP_VERSION)
  // 160001 is 16.0.1; before 16 there was one digit less.
  constexpr long major = _LIBCPP_VERSION >= 100'000 ? 10'000 : 1'000;
  constexpr long minor = 100;
  return "libc++ " + dotted({_LIBCPP_VERSION / major, _LIBCPP_VERSION % major / minor,
                             _LIBCPP_VERSION % minor});
#else
  return "libstdc++ " + dotted({_GLIBCXX_RELEASE});
#endif
}

std::string compiler() {
#if defined(__clang__)
  return "clang " + dotted({__clang_major__, __clang_minor__, __clang_patchlevel__});
#else
  return "GCC " + dotted({__GNUC__, __GNUC_MINOR__, __GNUC_PATCHLEVEL__});
#endif
}

}  // namespace

std::string lines() {
  return std::string("SQLite ") + sqlite3_libversion() + "\nutf8proc " + utf8proc_version() + "\n" +
         cLibrary() + cppLibrary() + "\n" + compiler();
}

}  // namespace quillstead::server::LinkedLibraries
