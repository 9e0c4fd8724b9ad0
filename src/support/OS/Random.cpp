#include "support/OS/Random.h"

#include "support/Text/Hash.h"

#include <sys/random.h>
#include <unistd.h>

#include <chrono>

namespace quillstead::OS {

std::uint64_t randomNumber() {
  std::uint64_t number = 0;
  if (getentropy(&number, sizeof number) == 0) return number;
  const auto now = std::chrono::system_clock::now().time_since_epoch().count();
  return Text::mixed(static_cast<std::uint64_t>(now)) ^
         Text::mixed(static_cast<std::uint64_t>(getpid()));
}

}  // namespace quillstead::OS
