#include "hook/Harness/Harnesses.h"

#include "hook/Harness/ClaudeCode.h"
#include "hook/Harness/Codex.h"
#include "hook/Harness/Cursor.h"
#include "hook/Harness/OpenCode.h"

#include <array>

namespace quillstead::hook::Harnesses {

namespace {

constinit const ClaudeCodeAdapter claudeCode;
constinit const CodexAdapter codex;
constinit const CursorAdapter cursor;
constinit const OpenCodeAdapter openCode;
constinit const std::array<const HarnessAdapter*, 4> adapters{&claudeCode, &codex, &cursor,
                                                              &openCode};

}  // namespace

std::span<const HarnessAdapter* const> all() { return adapters; }

const HarnessAdapter* named(std::string_view name) {
  for (const HarnessAdapter* adapter : adapters) {
    if (adapter->name() == name) return adapter;
  }
  return nullptr;
}

std::vector<std::string_view> knownNames() {
  std::vector<std::string_view> names;
  names.reserve(adapters.size());
  for (const HarnessAdapter* adapter : adapters) names.push_back(adapter->name());
  return names;
}

}  // namespace quillstead::hook::Harnesses
