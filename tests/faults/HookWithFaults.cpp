// The hook, with allocations and closes that fail as the environment asks. It is linked with
// --wrap, so that every allocation of the program, the libraries' too, comes through here.
//
// QUILLSTEAD_TEST_FAIL_ALLOCATION=n: the nth allocation since main began fails; with "+" behind it,
// so do all later ones. QUILLSTEAD_TEST_FAIL_CLOSE: every close says that a signal interrupted it,
// having closed. Whenever something was made to fail, a byte goes to descriptor 9.

#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <string_view>

// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp): the linker's names
extern "C" {
void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
void* __real_realloc(void* block, std::size_t size);
void* __real_aligned_alloc(std::size_t alignment, std::size_t size);
int __real_close(int descriptor);
int __real_main(int count, char** arguments);
}

namespace {

constexpr int reportDescriptor = 9;

long allocationsLeft = 0;  ///< until one fails; 0: none will
bool failsForGood = false;

bool failNow() {
  [[maybe_unused]] const ssize_t told = write(reportDescriptor, "x", 1);
  errno = ENOMEM;
  return true;
}

bool isToFail() {
  if (allocationsLeft == 0 || --allocationsLeft > 0) return false;
  if (failsForGood) allocationsLeft = 1;
  return failNow();
}

}  // namespace

extern "C" {
void* __wrap_malloc(std::size_t size) { return isToFail() ? nullptr : __real_malloc(size); }
void* __wrap_calloc(std::size_t count, std::size_t size) {
  return isToFail() ? nullptr : __real_calloc(count, size);
}
void* __wrap_realloc(void* block, std::size_t size) {
  return isToFail() ? nullptr : __real_realloc(block, size);
}
void* __wrap_aligned_alloc(std::size_t alignment, std::size_t size) {
  return isToFail() ? nullptr : __real_aligned_alloc(alignment, size);
}
int __wrap_main(int count, char** arguments) {
  if (const char* const order = std::getenv("QUILLSTEAD_TEST_FAIL_ALLOCATION")) {
    allocationsLeft = std::strtol(order, nullptr, 10);
    failsForGood = std::string_view(order).ends_with('+');
  }
  return __real_main(count, arguments);
}
int __wrap_close(int descriptor) {
  const int result = __real_close(descriptor);
  if (!std::getenv("QUILLSTEAD_TEST_FAIL_CLOSE")) return result;
  failNow();
  errno = EINTR;
  return -1;
}
}
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
