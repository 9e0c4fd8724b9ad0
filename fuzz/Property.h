#pragma once

#include "helpers/HarnessFacts.h"
#include "hook/Harness/Harnesses.h"
#include "support/JSON/Reader.h"
#include "support/JSON/Writer.h"
#include "support/Text/Text.h"

#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

/// What the fuzz targets promise of every input.
namespace quillstead::Fuzz {

/// Ends the program, for the fuzzer to keep the input, when a promise is broken.
inline void require(bool holds, const char* promise) {
  if (holds) return;
  static_cast<void>(std::fprintf(stderr, "broken promise: %s\n", promise));
  std::abort();
}

inline std::string_view bytes(const unsigned char* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

inline bool isUTF8(std::string_view text) { return Text::repaired(std::string(text)) == text; }

inline bool isOneLine(std::string_view text) {
  return !text.empty() && text.find_first_of("\r\n") == std::string_view::npos;
}

/// The object that a document for a harness is; it has to be one.
inline JSON::Document answerObject(std::string_view document) {
  require(isUTF8(document), "an answer is UTF-8");
  require(isOneLine(document), "an answer is one line");
  std::optional<JSON::Document> answer = JSON::read(document);
  require(answer && answer->root().object(), "an answer is a JSON object");
  return *std::move(answer);
}

/// What `document`, an answer of `adapter`, hands to the harness.
inline std::string contextIn(const hook::HarnessAdapter& adapter, std::string_view document) {
  const JSON::Document answer = answerObject(document);
  const auto context = quillstead::contextIn(answer.object(), harnessFacts(adapter.name()));
  require(context.has_value(), "an answer has its harness's form");
  return *context;
}

/// Every adapter's answer carries exactly `context`, as far as that is UTF-8.
inline void requireEnvelopesOf(const std::string& context) {
  const std::string expected = Text::repaired(context);
  for (const hook::HarnessAdapter* adapter : hook::Harnesses::all()) {
    require(contextIn(*adapter, adapter->envelope(context, "UserPromptSubmit")) == expected,
            "an answer carries the context unchanged");
  }
}

}  // namespace quillstead::Fuzz

/// The fuzzer calls it; its name and result are the fuzzer's.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size);
