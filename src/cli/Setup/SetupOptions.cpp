#include "cli/Setup/SetupOptions.h"

#include "cli/Context.h"
#include "cli/Setup/Harnesses.h"

namespace quillstead::cli {

std::vector<std::string> SetupOptions::chosen(const Context& context) const {
  std::vector<std::string> chosen =
      Harnesses::chosen(harnesses, context.places, context.environment);
  if (chosen.empty()) context.console.complain(Harnesses::noneIsThere);
  return chosen;
}

}  // namespace quillstead::cli
