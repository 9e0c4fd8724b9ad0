// Closes its standard output before anything else, then reads what it is asked and ends well.
#include "Replies.h"

int main() {
  close(STDOUT_FILENO);
  quillstead::Replies::everythingOnStandardInput();
}
