#include "cli/Doctor/Check.h"

#include "cli/Wording.h"

#include <algorithm>
#include <utility>

namespace quillstead::cli {

Check skipped(std::string id, std::string why) {
  return {.id = std::move(id), .status = Check::Status::skip, .summary = std::move(why), .fix = {}};
}

std::string_view nameOf(Check::Status status) {
  switch (status) {
    case Check::Status::ok:
      return "ok";
    case Check::Status::warn:
      return "warn";
    case Check::Status::fail:
      return "fail";
    case Check::Status::skip:
      break;
  }
  return "skip";
}

void Findings::warn(std::string what, std::string fix) {
  add(Check::Status::warn, std::move(what), std::move(fix));
}

void Findings::fail(std::string what, std::string fix) {
  add(Check::Status::fail, std::move(what), std::move(fix));
}

void Findings::add(Check::Status status, std::string what, std::string fix) {
  status_ = std::max(status_, status);
  summaries_.push_back(std::move(what));
  const bool isNew = std::find(fixes_.begin(), fixes_.end(), fix) == fixes_.end();
  if (!fix.empty() && isNew) fixes_.push_back(std::move(fix));
}

Check Findings::check(std::string id, std::string whenWell) const {
  return {.id = std::move(id),
          .status = status_,
          .summary = empty() ? std::move(whenWell) : Wording::joined(summaries_, "; "),
          .fix = Wording::joined(fixes_, "; ")};
}

}  // namespace quillstead::cli
