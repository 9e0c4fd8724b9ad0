// The least a native memory server can be: it answers the handshake and both tools with constant
// replies, line by line as they come, and keeps silent at everything else.
#define _GNU_SOURCE
#include <stdio.h>
#include <string.h>
#include <unistd.h>

static const char handshake[] =
    "\"result\":{\"protocolVersion\":\"2024-11-05\",\"capabilities\":{\"tools\":{}},"
    "\"serverInfo\":{\"name\":\"AnswersBothTools\",\"version\":\"1\"}}}\n";

static const char rules[] =
    "\"result\":{\"content\":[{\"type\":\"text\",\"text\":"
    "\"<user-rules>\\nAnswer in plain English.\\nRun the tests before a commit.\\n"
    "Index: build, style\\n</user-rules>\"}],\"_meta\":{\"quillstead/replyKind\":\"rules\","
    "\"quillstead/rulesLane\":\"card\",\"quillstead/indexSpan\":19}}}\n";

static const char memory[] =
    "\"result\":{\"content\":[{\"type\":\"text\",\"text\":"
    "\"<quillstead-memory>\\nTwo cards for this prompt:\\n\\n"
    "## Build\\nThe release preset makes a static program.\\n\\n"
    "## Style\\nFunctions stay under 60 lines.\\n</quillstead-memory>\"}],"
    "\"_meta\":{\"quillstead/replyKind\":\"cards\",\"quillstead/cardCount\":2,"
    "\"quillstead/cardSpans\":[51,39]}}}\n";

static char input[65536];
static char output[4096];

static size_t append(size_t length, const char* text, size_t size) {
  if (size > sizeof output - length) return length;
  memcpy(output + length, text, size);
  return length + size;
}

/// Adds the reply to one request line to the output, which is `length` bytes long, and gives the
/// new length. The id is copied as the digits that it came in.
static size_t answer(size_t length, const char* line, size_t size) {
  static const char key[] = "\"id\":";
  const char* id = memmem(line, size, key, sizeof key - 1);
  if (!id) return length;
  id += sizeof key - 1;
  while (*id == ' ') ++id;
  size_t digits = 0;
  while (id[digits] >= '0' && id[digits] <= '9') ++digits;

  length = append(length, "{\"jsonrpc\":\"2.0\",\"id\":", 22);
  length = append(length, id, digits);
  length = append(length, ",", 1);
  if (memmem(line, size, "\"initialize\"", 12)) {
    return append(length, handshake, sizeof handshake - 1);
  }
  if (memmem(line, size, "\"rules_get\"", 11)) return append(length, rules, sizeof rules - 1);
  return append(length, memory, sizeof memory - 1);
}

int main(void) {
  size_t held = 0;
  for (;;) {
    const ssize_t count = read(STDIN_FILENO, input + held, sizeof input - held);
    if (count <= 0) return count < 0;
    held += (size_t)count;
    size_t start = 0;
    size_t length = 0;
    for (const char* end; (end = memchr(input + start, '\n', held - start)) != NULL;) {
      const size_t size = (size_t)(end - (input + start));
      length = answer(length, input + start, size);
      start += size + 1;
    }
    memmove(input, input + start, held - start);
    held -= start;
    if (length > 0 && write(STDOUT_FILENO, output, length) < 0) return 1;
  }
}
