#include "cli/UserRun.h"

#include <filesystem>

namespace quillstead::cli::test {

MadeUpHome::MadeUpHome() {
  set("HOME", path(""));
  set("PATH", "/usr/bin:/bin");
}

std::string MadeUpHome::path(std::string_view name) const {
  return name.empty() ? directory_.path() : directory_ / name;
}

void MadeUpHome::write(const std::string& name, std::string_view text) const {
  std::filesystem::create_directories(std::filesystem::path(path(name)).parent_path());
  unit::writeFile(path(name), text);
}

void MadeUpHome::set(std::string_view name, std::string_view value) {
  std::string entry = std::string(name) + "=";
  std::erase_if(environment_, [&](const std::string& old) { return old.starts_with(entry); });
  environment_.push_back(entry.append(value));
}

server::test::ProgramEnd MadeUpHome::run(std::vector<std::string> arguments) const {
  return server::test::ProgramRun({.executable = QUILLSTEAD_BINARY,
                                   .arguments = std::move(arguments),
                                   .environment = environment_,
                                   .input = {}})
      .finish();
}

}  // namespace quillstead::cli::test
