#include "support/JSON/Reader.h"

#include "support/JSON/Encoding.h"

#include <boost/json/basic_parser_impl.hpp>

#include <iterator>

namespace quillstead::JSON {

namespace {

/// Builds values from the parser's events. Finished values wait on one stack until their container
/// ends and takes them; an object's keys wait there as texts, each before its value.
class Builder {
 public:
  Builder(std::size_t documentSize, std::size_t mostValues)
      : bytesLeft_(documentSize), valuesLeft_(mostValues) {}

  static constexpr std::size_t max_object_size = static_cast<std::size_t>(-1);
  static constexpr std::size_t max_array_size = static_cast<std::size_t>(-1);
  static constexpr std::size_t max_key_size = static_cast<std::size_t>(-1);
  static constexpr std::size_t max_string_size = static_cast<std::size_t>(-1);

  using Error = boost::json::error_code;
  using Characters = boost::json::string_view;

  Value take() { return std::move(values_.back()); }

  static bool on_document_begin(Error&) { return true; }
  static bool on_document_end(Error&) { return true; }
  static bool on_object_begin(Error&) { return true; }
  static bool on_array_begin(Error&) { return true; }
  static bool on_comment_part(Characters, Error&) { return true; }
  static bool on_comment(Characters, Error&) { return true; }

  bool on_object_end(std::size_t count, Error& error) {
    std::vector<Member> members;
    members.reserve(count);
    const std::size_t first = values_.size() - 2 * count;
    for (std::size_t at = first; at < values_.size(); at += 2) {
      members.push_back({std::move(*values_[at].text()), std::move(values_[at + 1])});
    }
    values_.resize(first);
    return add(Object(std::move(members)), error);
  }

  bool on_array_end(std::size_t count, Error& error) {
    const auto first = values_.end() - static_cast<std::ptrdiff_t>(count);
    Array elements(std::make_move_iterator(first), std::make_move_iterator(values_.end()));
    values_.erase(first, values_.end());
    return add(std::move(elements), error);
  }

  bool on_key_part(Characters part, std::size_t, Error&) { return gather(part); }
  bool on_key(Characters part, std::size_t, Error& error) { return add(finish(part), error); }
  bool on_string_part(Characters part, std::size_t, Error&) { return gather(part); }
  bool on_string(Characters part, std::size_t, Error& error) { return add(finish(part), error); }

  bool on_number_part(Characters part, Error&) { return gather(part); }
  bool on_int64(std::int64_t, Characters part, Error& error) { return addNumber(part, error); }
  bool on_uint64(std::uint64_t, Characters part, Error& error) { return addNumber(part, error); }
  bool on_double(double, Characters part, Error& error) { return addNumber(part, error); }

  bool on_bool(bool boolean, Error& error) { return add(boolean, error); }
  bool on_null(Error& error) { return add(nullptr, error); }

 private:
  /// A long text gets room for all that the document can still hold, instead of being moved again
  /// and again as it grows. Memory that is never written to costs nothing.
  bool gather(Characters part) {
    constexpr std::size_t longText = 65'536;
    const std::size_t size = pending_.size() + part.size();
    if (size > longText && size > pending_.capacity()) pending_.reserve(std::max(size, bytesLeft_));
    pending_.append(part.data(), part.size());
    return true;
  }

  std::string finish(Characters part) {
    gather(part);
    bytesLeft_ -= std::min(bytesLeft_, pending_.size());
    if (pending_.capacity() > 2 * pending_.size()) pending_.shrink_to_fit();
    return std::exchange(pending_, {});
  }

  bool addNumber(Characters part, Error& error) {
    return add(Number::fromText(finish(part)), error);
  }

  bool add(Value value, Error& error) {
    if (valuesLeft_-- == 0) {
      error = boost::json::error::array_too_large;
      return false;
    }
    values_.push_back(std::move(value));
    return true;
  }

  std::vector<Value> values_;
  std::string pending_;  ///< what has come of a text or number that the parser hands over in parts
  std::size_t bytesLeft_;   ///< at least what the rest of the document takes when decoded
  std::size_t valuesLeft_;  ///< how many more values the document may hold
};

std::optional<Value> readUTF8(std::string_view bytes, std::size_t mostValues) {
  boost::json::parse_options options;
  options.max_depth = maximumDepth;
  boost::json::basic_parser<Builder> parser(options, bytes.size(), mostValues);
  boost::json::error_code error;
  const std::size_t consumed = parser.write_some(false, bytes.data(), bytes.size(), error);
  if (error || consumed != bytes.size()) return std::nullopt;

  Value value = parser.handler().take();
  if (!value.object() && !value.array()) return std::nullopt;
  return value;
}

}  // namespace

std::optional<Value> read(std::string_view bytes, std::size_t mostValues) {
  const auto [encoding, markLength] = detectEncoding(bytes);
  bytes.remove_prefix(markLength);
  if (encoding == Encoding::utf8) return readUTF8(bytes, mostValues);

  const std::optional<std::string> utf8 = toUTF8(bytes, encoding);
  return utf8 ? readUTF8(*utf8, mostValues) : std::nullopt;
}

}  // namespace quillstead::JSON
