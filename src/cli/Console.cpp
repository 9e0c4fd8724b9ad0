#include "cli/Console.h"

#include "support/OS/Descriptor.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>

namespace quillstead::cli {

namespace {

bool wantsColours(int output, const OS::Environment& environment) {
  if (!environment.value("NO_COLOR").value_or("").empty()) return false;
  if (environment.value("TERM").value_or("dumb") == "dumb") return false;
  return isatty(output) == 1;
}

std::string_view codeOf(Colour colour) {
  switch (colour) {
    case Colour::red:
      return "31";
    case Colour::green:
      return "32";
    case Colour::yellow:
      return "33";
    case Colour::blue:
      return "34";
    case Colour::faint:
      return "2";
    case Colour::bold:
      break;
  }
  return "1";
}

}  // namespace

Console::Console(int output, int error, const OS::Environment& environment)
    : output_(output), error_(error), hasColours_(wantsColours(output, environment)) {}

void Console::print(std::string_view text) {
  constexpr std::size_t enough = 65'536;  // bytes
  kept_ += text;
  if (kept_.size() >= enough) flush();
}

void Console::complain(std::string_view text) {
  printError(std::string("quillstead: ").append(text).append("\n"));
}

void Console::printError(std::string_view text) {
  if (text.empty()) return;
  flush();
  OS::writeAll(error_, text);
}

bool Console::flush() {
  if (failure_ == 0 && !OS::writeAll(output_, kept_)) failure_ = errno != 0 ? errno : EIO;
  kept_.clear();
  return failure_ == 0;
}

bool Console::isHeard() const {
  pollfd output{.fd = output_, .events = 0, .revents = 0};
  return poll(&output, 1, 0) <= 0 || (output.revents & (POLLERR | POLLHUP)) == 0;
}

std::string Console::coloured(Colour colour, std::string_view text) const {
  if (!hasColours_) return std::string(text);
  return std::string("\x1B[").append(codeOf(colour)).append("m").append(text).append("\x1B[0m");
}

}  // namespace quillstead::cli
