// What starting a server costs at the least: twice, one after the other, each time with three
// pipes, a request of the usual size, and the output drained by poll until the server has ended.
// Then one line. Usage: StartsServerTwice <server>
#define _GNU_SOURCE
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

static const char requests[] =
    "{\"jsonrpc\":\"2.0\",\"id\":1,\"method\":\"initialize\",\"params\":{\"protocolVersion\":"
    "\"2024-11-05\",\"capabilities\":{},\"clientInfo\":{\"name\":\"floor\",\"version\":\"1\"}}}\n"
    "{\"jsonrpc\":\"2.0\",\"id\":2,\"method\":\"tools/call\",\"params\":{\"name\":\"rules_get\","
    "\"arguments\":{\"cwd\":\"/\",\"session_id\":\"4f7c4e1c-3b60-4b0e-9a55-0d1c7f3a2b11\","
    "\"transcript_path\":\"/tmp/transcript.jsonl\",\"card\":true,\"card_head_ceiling\":10000}}}\n";

static char drained[65536];

static pid_t spawn(char* server, const int ends[3]) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  for (int stream = 0; stream < 3; ++stream) {
    posix_spawn_file_actions_adddup2(&actions, ends[stream], stream);
  }
  // Asked to reset every signal, the C library does not look up the state of each one first.
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  sigset_t all;
  sigfillset(&all);
  posix_spawnattr_setsigdefault(&attributes, &all);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
  char* const arguments[] = {server, NULL};
  pid_t process = -1;
  if (posix_spawn(&process, server, &actions, &attributes, arguments, environ) != 0) process = -1;
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&actions);
  return process;
}

static void drain(int output, int error) {
  struct pollfd streams[] = {{.fd = output, .events = POLLIN}, {.fd = error, .events = POLLIN}};
  for (int open = 2; open > 0;) {
    if (poll(streams, 2, -1) < 0) return;
    for (int stream = 0; stream < 2; ++stream) {
      if (streams[stream].revents == 0) continue;
      if (read(streams[stream].fd, drained, sizeof drained) > 0) continue;
      close(streams[stream].fd);
      streams[stream].fd = -1;
      --open;
    }
  }
}

static int serve(char* server) {
  int input[2];
  int output[2];
  int error[2];
  if (pipe2(input, O_CLOEXEC) || pipe2(output, O_CLOEXEC) || pipe2(error, O_CLOEXEC)) return 0;
  if (write(input[1], requests, sizeof requests - 1) < 0) return 0;
  close(input[1]);
  const int ends[] = {input[0], output[1], error[1]};
  const pid_t process = spawn(server, ends);
  for (int stream = 0; stream < 3; ++stream) close(ends[stream]);
  drain(output[0], error[0]);
  int status = 0;
  return process > 0 && waitpid(process, &status, 0) == process && status == 0;
}

int main(int count, char** arguments) {
  if (count != 2 || !serve(arguments[1]) || !serve(arguments[1])) return 1;
  static const char line[] = "{\"continue\":true}\n";
  return write(STDOUT_FILENO, line, sizeof line - 1) < 0;
}
