// Measures programs from exec to exit, in turns, so that a noisy machine is noisy for all of them.
//
//   Measure <rounds> <input file> <program> [<program> ...]
//
// Each program gets the file as its standard input, and its output goes nowhere. Prints, for each
// program, the median and the lowest time in milliseconds.
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <span>
#include <vector>

namespace {

using Milliseconds = std::chrono::duration<double, std::milli>;

double timeOf(char* program, const char* input) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, input, O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  std::array<char*, 2> arguments{program, nullptr};

  const auto start = std::chrono::steady_clock::now();
  pid_t child = 0;
  int status = 1;
  if (posix_spawn(&child, program, &actions, nullptr, arguments.data(), environ) == 0) {
    waitpid(child, &status, 0);
  }
  const Milliseconds taken = std::chrono::steady_clock::now() - start;
  posix_spawn_file_actions_destroy(&actions);
  if (status != 0) {
    std::fprintf(stderr, "%s did not end well (%d)\n", program, status);
    std::exit(EXIT_FAILURE);
  }
  return taken.count();
}

}  // namespace

int main(int count, char** given) {
  const std::span<char*> arguments(given, static_cast<std::size_t>(count));
  if (arguments.size() < 4) return EXIT_FAILURE;
  const long rounds = std::strtol(arguments[1], nullptr, 10);
  const std::span<char*> programs = arguments.subspan(3);
  std::vector<std::vector<double>> times(programs.size());
  for (long round = 0; round < rounds; ++round) {
    for (std::size_t at = 0; at < programs.size(); ++at) {
      times[at].push_back(timeOf(programs[at], arguments[2]));
    }
  }
  for (std::vector<double>& all : times) {
    std::sort(all.begin(), all.end());
    std::printf("%.3f %.3f\n", all[all.size() / 2], all.front());
  }
  return EXIT_SUCCESS;
}
