#include "server/Protocol/Reply.h"

#include <cstdint>
#include <utility>

namespace quillstead::Reply {

JSON::Value result(JSON::View id, JSON::Object result) {
  return JSON::objectOf({{"jsonrpc", "2.0"}, {"id", id}, {"result", std::move(result)}});
}

JSON::Value error(JSON::View id, Error code, std::string_view message) {
  JSON::Object error =
      JSON::objectOf({{"code", static_cast<std::int64_t>(code)}, {"message", message}});
  return JSON::objectOf({{"jsonrpc", "2.0"}, {"id", id}, {"error", std::move(error)}});
}

}  // namespace quillstead::Reply
