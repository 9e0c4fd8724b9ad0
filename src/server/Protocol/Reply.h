#pragma once

#include "support/JSON/Value.h"

#include <string_view>

/// JSON-RPC answers.
namespace quillstead::Reply {

/// The error codes of JSON-RPC 2.0.
enum class Error {
  unreadable = -32'700,
  invalidRequest = -32'600,
  unknownMethod = -32'601,
  invalidParameters = -32'602,
};

/// `id`: the request's; null when it could not be read.
JSON::Value result(const JSON::Value& id, JSON::Object result);
JSON::Value error(const JSON::Value& id, Error code, std::string_view message);

}  // namespace quillstead::Reply
