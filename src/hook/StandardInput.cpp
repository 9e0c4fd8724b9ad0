#include "hook/StandardInput.h"

#include "support/OS/Descriptor.h"
#include "support/OS/LargeMemory.h"

#include <unistd.h>

#include <array>

namespace quillstead::hook::StandardInput {

std::optional<std::string> readAll() {
  std::string all;
  // On the stack it would cost 16 page faults. Copying from an odd place would take a fifth longer.
  alignas(64) static std::array<char, 65'536> buffer;
  for (;;) {
    const OS::Transfer part = OS::read(STDIN_FILENO, buffer.data(), buffer.size());
    switch (part.result) {
      case OS::Transfer::Result::moved:
        OS::makeRoom(all, part.count);
        all.append(buffer.data(), part.count);
        break;
      case OS::Transfer::Result::ended:
        return all;
      case OS::Transfer::Result::notReady:
      case OS::Transfer::Result::failed:
        return std::nullopt;
    }
  }
}

}  // namespace quillstead::hook::StandardInput
