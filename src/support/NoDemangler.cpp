// When nobody catches an exception, the C++ library's default handler prints the name of its type.
// For that it links a demangler, a seventh of the hook's size. This function replaces it and does
// nothing, so the name is printed in its mangled form.

#include <cstddef>

// The C++ ABI defines its name and what it returns.
extern "C" {

// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
char* __cxa_demangle(const char*, char*, std::size_t*, int*);

char* __cxa_demangle(const char* /*name*/, char* /*buffer*/, std::size_t* /*length*/, int* status) {
  constexpr int noValidName = -2;
  if (status != nullptr) *status = noValidName;
  return nullptr;
}
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)

}  // extern "C"
