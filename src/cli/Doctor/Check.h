#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quillstead::cli {

/// One thing that `quillstead doctor` looked at.
struct Check {
  enum class Status {
    ok,
    warn,  ///< it works, but not as well as it could
    fail,  ///< a prompt would get nothing, or a tool call would go unstamped
    skip,  ///< there is nothing to look at, or no time was left
  };

  std::string id;  ///< "claude-code.hooks"
  Status status;
  std::string summary;
  std::string fix;  ///< what to do about it; empty when there is nothing to do
};

/// A check of which there is nothing to say but why.
Check skipped(std::string id, std::string why);

std::string_view nameOf(Check::Status status);

/// What is found wrong with one thing: the worst decides, and all are told.
class Findings {
 public:
  void warn(std::string what, std::string fix);
  void fail(std::string what, std::string fix);

  [[nodiscard]] bool empty() const { return summaries_.empty(); }

  /// The check: `whenWell` is its summary when nothing was found.
  [[nodiscard]] Check check(std::string id, std::string whenWell) const;

 private:
  void add(Check::Status status, std::string what, std::string fix);

  Check::Status status_ = Check::Status::ok;
  std::vector<std::string> summaries_;
  std::vector<std::string> fixes_;
};

}  // namespace quillstead::cli
