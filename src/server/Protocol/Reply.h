#pragma once

#include "support/JSON/Value.h"

#include <cstdint>
#include <string_view>
#include <utility>

/// JSON-RPC answers. `id`: the request's, whose document must outlive the reply; absent when it
/// could not be read, which is written as null.
namespace quillstead::server::Reply {

/// The error codes of JSON-RPC 2.0.
enum class Error : std::int32_t {
  parseError = -32'700,
  invalidRequest = -32'600,
  methodNotFound = -32'601,
  invalidParams = -32'602,
};

inline JSON::Value result(JSON::View id, JSON::Object result) {
  return JSON::objectOf({{"jsonrpc", "2.0"}, {"id", id}, {"result", std::move(result)}});
}

inline JSON::Value error(JSON::View id, Error code, std::string_view message) {
  JSON::Object error =
      JSON::objectOf({{"code", static_cast<std::int64_t>(code)}, {"message", message}});
  return JSON::objectOf({{"jsonrpc", "2.0"}, {"id", id}, {"error", std::move(error)}});
}

}  // namespace quillstead::server::Reply
