#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quillstead::cli {

/// One check of `quillstead doctor`.
struct Check {
  enum class Status {
    ok,
    warn,  ///< it works, but not as well as it could
    fail,  ///< a prompt would get nothing, or a tool call would get no stamp
    skip,  ///< there is nothing to check, or no time was left
  };

  std::string id;  ///< "claude-code.hooks"
  Status status;
  std::string summary;
  std::string fix;  ///< what to do about it; empty when there is nothing to do
};

/// A check of which there is nothing to say but why.
Check skipped(std::string id, std::string why);

std::string_view nameOf(Check::Status status);

/// The problems that one check found. The worst decides its status; the summary lists all.
class Findings {
 public:
  void warn(std::string what, std::string fix);
  void fail(std::string what, std::string fix);

  [[nodiscard]] bool empty() const { return summaries_.empty(); }

  /// The check. `whenWell`: its summary when there is no problem.
  [[nodiscard]] Check check(std::string id, std::string whenWell) const;

 private:
  void add(Check::Status status, std::string what, std::string fix);

  Check::Status status_ = Check::Status::ok;
  std::vector<std::string> summaries_;
  std::vector<std::string> fixes_;
};

}  // namespace quillstead::cli
