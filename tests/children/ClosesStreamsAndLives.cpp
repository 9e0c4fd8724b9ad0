// Closes its three streams at once and ends later, with status 7.
#include <unistd.h>

#include <chrono>
#include <thread>

int main() {
  for (int stream = 0; stream < 3; ++stream) close(stream);
  std::this_thread::sleep_for(std::chrono::milliseconds(200));
  _exit(7);
}
