// What a process costs that only copies its standard input to its standard output.
#include <unistd.h>

static char buffer[65536];

int main(void) {
  for (;;) {
    const ssize_t count = read(STDIN_FILENO, buffer, sizeof buffer);
    if (count <= 0) return count < 0;
    for (ssize_t written = 0; written < count;) {
      const ssize_t part = write(STDOUT_FILENO, buffer + written, (size_t)(count - written));
      if (part < 0) return 1;
      written += part;
    }
  }
}
