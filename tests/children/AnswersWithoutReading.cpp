// Gives the answer about the rules and ends, whatever it is asked, without reading any of it.
#include "Replies.h"

int main() {
  using namespace quillstead;
  OS::writeAll(STDOUT_FILENO, Replies::handshake);
  OS::writeAll(STDOUT_FILENO, Replies::rules);
}
