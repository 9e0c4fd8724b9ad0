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

/// `id`: the request's, whose document must outlive the reply; absent when it could not be read,
/// which is written as null.
JSON::Value result(JSON::View id, JSON::Object result);
JSON::Value error(JSON::View id, Error code, std::string_view message);

}  // namespace quillstead::Reply
