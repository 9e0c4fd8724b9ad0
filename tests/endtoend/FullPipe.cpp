#include "FullPipe.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <array>
#include <stdexcept>

namespace quillstead {

FullPipe::FullPipe(const std::string& path) {
  if (mkfifo(path.c_str(), 0600) != 0) throw std::runtime_error("cannot make " + path);
  reading_ = OS::Descriptor(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  writing_ = OS::Descriptor(open(path.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC));
  for (const std::string& filling : {std::string(4096, '.'), std::string(".")}) {
    while (OS::write(writing_.number(), filling).result == OS::Transfer::Result::moved) {
    }
  }
}

std::string FullPipe::drain() const {
  std::string all;
  std::array<char, 65'536> buffer{};
  for (;;) {
    const OS::Transfer part = OS::read(reading_.number(), buffer.data(), buffer.size());
    if (part.result != OS::Transfer::Result::moved) return all;
    all.append(buffer.data(), part.count);
  }
}

}  // namespace quillstead
