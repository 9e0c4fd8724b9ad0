// Writes 40,000 bytes to standard output, 5,000 at a time with pauses: letters that go round.
#include "support/OS/Descriptor.h"

#include <unistd.h>

#include <chrono>
#include <string>
#include <thread>

int main() {
  std::string all;
  for (std::size_t i = 0; i < 40'000; ++i) all += static_cast<char>('a' + i % 23);
  for (std::size_t at = 0; at < all.size(); at += 5'000) {
    quillstead::OS::writeAll(STDOUT_FILENO, std::string_view(all).substr(at, 5'000));
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
}
