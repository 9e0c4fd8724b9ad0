// Reading and writing JSON, against Boost.JSON parsing the same bytes without building values.
#include "Documents.h"
#include "support/JSON/Reader.h"
#include "support/JSON/Writer.h"

#include <benchmark/benchmark.h>
#include <boost/json/basic_parser_impl.hpp>

namespace {

using namespace quillstead;

constexpr std::int64_t kilobyte = 1000;
constexpr std::int64_t megabyte = 1000 * kilobyte;

/// Takes every event of the parser and does nothing with it.
struct Nothing {
  using Error = boost::json::error_code;
  using Characters = boost::json::string_view;

  static constexpr std::size_t max_object_size = static_cast<std::size_t>(-1);
  static constexpr std::size_t max_array_size = static_cast<std::size_t>(-1);
  static constexpr std::size_t max_key_size = static_cast<std::size_t>(-1);
  static constexpr std::size_t max_string_size = static_cast<std::size_t>(-1);

  static bool on_document_begin(Error&) { return true; }
  static bool on_document_end(Error&) { return true; }
  static bool on_object_begin(Error&) { return true; }
  static bool on_object_end(std::size_t, Error&) { return true; }
  static bool on_array_begin(Error&) { return true; }
  static bool on_array_end(std::size_t, Error&) { return true; }
  static bool on_key_part(Characters, std::size_t, Error&) { return true; }
  static bool on_key(Characters, std::size_t, Error&) { return true; }
  static bool on_string_part(Characters, std::size_t, Error&) { return true; }
  static bool on_string(Characters, std::size_t, Error&) { return true; }
  static bool on_number_part(Characters, Error&) { return true; }
  static bool on_int64(std::int64_t, Characters, Error&) { return true; }
  static bool on_uint64(std::uint64_t, Characters, Error&) { return true; }
  static bool on_double(double, Characters, Error&) { return true; }
  static bool on_bool(bool, Error&) { return true; }
  static bool on_null(Error&) { return true; }
  static bool on_comment_part(Characters, Error&) { return true; }
  static bool on_comment(Characters, Error&) { return true; }
};

using Document = std::string(std::size_t);

std::string sized(const benchmark::State& state, Document make) {
  return make(static_cast<std::size_t>(state.range(0)));
}

void note(benchmark::State& state, const std::string& document) {
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(document.size()));
}

void parseIntoNothing(benchmark::State& state, Document make) {
  const std::string document = sized(state, make);
  for ([[maybe_unused]] const auto _ : state) {
    boost::json::basic_parser<Nothing> parser{boost::json::parse_options()};
    boost::json::error_code error;
    const std::size_t consumed = parser.write_some(false, document.data(), document.size(), error);
    if (error || consumed != document.size()) state.SkipWithError("not one document");
    benchmark::DoNotOptimize(consumed);
  }
  note(state, document);
}

void read(benchmark::State& state, Document make) {
  const std::string document = sized(state, make);
  for ([[maybe_unused]] const auto _ : state) {
    const auto value = JSON::read(document);
    if (!value) state.SkipWithError("not read");
    benchmark::DoNotOptimize(value);
  }
  note(state, document);
}

void write(benchmark::State& state, Document make) {
  const std::string document = sized(state, make);
  const auto value = JSON::read(document);
  if (!value) return state.SkipWithError("not read");
  std::string written;
  for ([[maybe_unused]] const auto _ : state) {
    written = JSON::write(value->root(), JSON::Slashes::plain, std::move(written));
    benchmark::DoNotOptimize(written.data());
  }
  if (written.size() != document.size()) state.SkipWithError("written otherwise than read");
  note(state, document);
}

void sizes(benchmark::internal::Benchmark* benchmark) {
  for (std::int64_t size = kilobyte; size <= 100 * megabyte; size *= 10) benchmark->Arg(size);
}

BENCHMARK_CAPTURE(parseIntoNothing, text, Documents::longText)->Apply(sizes);
BENCHMARK_CAPTURE(read, text, Documents::longText)->Apply(sizes);
BENCHMARK_CAPTURE(write, text, Documents::longText)->Apply(sizes);
BENCHMARK_CAPTURE(parseIntoNothing, values, Documents::manyValues)->Apply(sizes);
BENCHMARK_CAPTURE(read, values, Documents::manyValues)->Apply(sizes);
BENCHMARK_CAPTURE(write, values, Documents::manyValues)->Apply(sizes);

}  // namespace
