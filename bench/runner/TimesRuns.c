// Runs commands in turn, round after round, and prints what each run took, from before it was
// started until it had been waited for. Small and static, so that starting a run costs little and
// the peak memory that the system reports for a run is not this program's own.
//
// Usage: TimesRuns <rounds> <input file> pipe|file pipe|null -- <command>... [-- <command>...]...
// `pipe` carries the input, or the output, through a pipe as a harness does; `file` makes the file
// the run's standard input, `null` throws its output away. Standard error is thrown away.
//
// Prints a line a run: the command's number from 0, nanoseconds, page faults, peak memory in KB,
// microseconds in user and in kernel mode, the wait status, bytes of output (0 with `null`).
#define _GNU_SOURCE
#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

extern char** environ;

enum { mostCommands = 16, pieceSize = 65536 };

struct Plan {
  int rounds;
  const char* input;
  int inputThroughPipe;
  int outputThroughPipe;
  char** commands[mostCommands];
  int commandCount;
};

struct Ends {
  int ours;
  int childs;
};

static char drained[pieceSize];

static void fail(const char* what) {
  perror(what);
  exit(1);
}

static struct Ends makePipe(int childReads) {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) fail("pipe");
  return childReads ? (struct Ends){ends[1], ends[0]} : (struct Ends){ends[0], ends[1]};
}

static int openOrFail(const char* path, int flags) {
  const int file = open(path, flags | O_CLOEXEC);
  if (file < 0) fail(path);
  return file;
}

static pid_t spawn(char** command, int input, int output, int error) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, input, STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
  posix_spawn_file_actions_adddup2(&actions, error, STDERR_FILENO);
  pid_t process = 0;
  if (posix_spawn(&process, command[0], &actions, NULL, command, environ) != 0) fail(command[0]);
  posix_spawn_file_actions_destroy(&actions);
  return process;
}

/// Moves what there is room for from the file into the pipe, page by page and uncopied. 0 when the
/// file has been moved whole or the other end is closed.
static int feed(int file, int pipe) {
  for (;;) {
    const ssize_t moved = splice(file, NULL, pipe, NULL, pieceSize, SPLICE_F_NONBLOCK);
    if (moved <= 0) return moved < 0 && errno == EAGAIN;
  }
}

/// Feeds and drains until the output ends. Gives the bytes of output.
static long carry(int file, int input, int output) {
  long total = 0;
  struct pollfd streams[] = {{.fd = input, .events = POLLOUT}, {.fd = output, .events = POLLIN}};
  while (streams[1].fd >= 0) {
    if (poll(streams, 2, -1) < 0) fail("poll");
    if (streams[0].fd >= 0 && streams[0].revents != 0 && !feed(file, input)) {
      close(input);
      streams[0].fd = -1;
    }
    if (streams[1].revents == 0) continue;
    const ssize_t count = read(output, drained, sizeof drained);
    if (count > 0) total += count;
    if (count <= 0) streams[1].fd = -1;
  }
  if (streams[0].fd >= 0) close(input);
  return total;
}

static long long nanoseconds(void) {
  struct timespec now;
  clock_gettime(CLOCK_MONOTONIC, &now);
  return now.tv_sec * 1000000000LL + now.tv_nsec;
}

static void run(const struct Plan* plan, int number) {
  const int file = openOrFail(plan->input, O_RDONLY);
  const int null = openOrFail("/dev/null", O_RDWR);
  const long long start = nanoseconds();
  struct Ends input = {-1, file};
  struct Ends output = {-1, null};
  if (plan->inputThroughPipe) input = makePipe(1);
  if (plan->outputThroughPipe) output = makePipe(0);
  if (plan->inputThroughPipe && !feed(file, input.ours)) {
    close(input.ours);
    input.ours = -1;
  }
  const pid_t process = spawn(plan->commands[number], input.childs, output.childs, null);
  if (plan->inputThroughPipe) close(input.childs);
  if (plan->outputThroughPipe) close(output.childs);
  const long bytes = plan->outputThroughPipe ? carry(file, input.ours, output.ours) : 0;
  if (!plan->outputThroughPipe && input.ours >= 0) fail("a large input needs its output drained");
  int status = 0;
  struct rusage usage;
  if (wait4(process, &status, 0, &usage) != process) fail("wait4");
  const long long taken = nanoseconds() - start;
  if (output.ours >= 0) close(output.ours);
  close(file);
  close(null);
  printf("%d %lld %ld %ld %ld %ld %d %ld\n", number, taken, usage.ru_minflt + usage.ru_majflt,
         usage.ru_maxrss, usage.ru_utime.tv_sec * 1000000L + usage.ru_utime.tv_usec,
         usage.ru_stime.tv_sec * 1000000L + usage.ru_stime.tv_usec, status, bytes);
}

static struct Plan planOf(int count, char** arguments) {
  if (count < 7) {
    fputs("usage: TimesRuns <rounds> <input> pipe|file pipe|null -- <command>...\n", stderr);
    exit(2);
  }
  struct Plan plan = {.rounds = atoi(arguments[1]),
                      .input = arguments[2],
                      .inputThroughPipe = strcmp(arguments[3], "pipe") == 0,
                      .outputThroughPipe = strcmp(arguments[4], "pipe") == 0};
  for (int at = 5; at < count; ++at) {
    if (strcmp(arguments[at], "--") != 0) continue;
    arguments[at] = NULL;
    if (plan.commandCount < mostCommands) plan.commands[plan.commandCount++] = arguments + at + 1;
  }
  return plan;
}

int main(int count, char** arguments) {
  const struct Plan plan = planOf(count, arguments);
  signal(SIGPIPE, SIG_IGN);
  for (int round = 0; round < plan.rounds; ++round) {
    for (int turn = 0; turn < plan.commandCount; ++turn) {
      run(&plan, (turn + round) % plan.commandCount);
    }
  }
  return 0;
}
