#include "cli/Texts.h"

#include "cli/CommandLine.h"
#include "cli/Completions.h"
#include "cli/Context.h"
#include "cli/ManPage.h"
#include "support/OS/Descriptor.h"
#include "support/OS/Directory.h"

#include <fcntl.h>

#include <cstdlib>
#include <string_view>

namespace quillstead::cli::Texts {

namespace {

bool write(const std::string& path, std::string_view text) {
  constexpr mode_t mode = 0644;
  const OS::Descriptor file(open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, mode));
  return file.isOpen() && OS::writeAll(file.number(), text);
}

}  // namespace

int run(const Options& options, const Context& context) {
  using Completions::Shell;
  constexpr mode_t mode = 0755;
  const std::string start = options.directory + "/";
  bool isWritten = OS::makeDirectories(options.directory, mode);
  for (const ProgramText& program : CommandLine::descriptions()) {
    const std::string& name = program.own.name;
    isWritten =
        isWritten && write(start + name + ".1", ManPage::of(program)) &&
        write(start + name + ".bash", Completions::of(program, Shell::bash)) &&
        write(std::string(start).append("_").append(name), Completions::of(program, Shell::zsh)) &&
        write(start + name + ".fish", Completions::of(program, Shell::fish));
  }
  if (isWritten) return EXIT_SUCCESS;
  context.console.complain(options.directory + ": cannot be written");
  return EXIT_FAILURE;
}

}  // namespace quillstead::cli::Texts
