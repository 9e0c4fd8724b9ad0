#include "support/OS/NamesStamp.h"

namespace quillstead::OS {

std::optional<std::uint64_t> namesStamp(const Descriptor&) { return std::nullopt; }

}  // namespace quillstead::OS
