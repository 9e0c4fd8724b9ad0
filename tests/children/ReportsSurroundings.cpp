// Prints, a line each: the number of its arguments, its name, its directory, and the value of
// QUILLSTEAD_TEST_MARK.
#include "support/OS/Descriptor.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>

int main(int count, char** arguments) {
  const char* const mark = std::getenv("QUILLSTEAD_TEST_MARK");
  const std::string report = std::to_string(count) + "\n" + arguments[0] + "\n" +
                             std::filesystem::current_path().string() + "\n" +
                             (mark ? mark : "none") + "\n";
  quillstead::OS::writeAll(STDOUT_FILENO, report);
}
