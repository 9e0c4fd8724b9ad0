// Neither reads nor writes, and never ends by itself.
#include <unistd.h>

int main() {
  for (;;) pause();
}
