#include "server/Index/CommonTerms.h"

#include <algorithm>
#include <chrono>
#include <cstddef>

namespace quillstead::server {

namespace {

constexpr char endOfTerm = '\n';
constexpr std::size_t mostBytesOfTerms = 4'096;

}  // namespace

bool CommonTerms::contain(std::string_view expression) const {
  for (std::string_view rest = text_; !rest.empty();) {
    const std::size_t length = std::min(rest.find(endOfTerm), rest.size());
    if (rest.substr(0, length) == expression) return true;
    rest.remove_prefix(std::min(length + 1, rest.size()));
  }
  return false;
}

void CommonTerms::add(std::string_view expression) {
  if (text_.size() + expression.size() >= mostBytesOfTerms) return;
  text_.append(expression).push_back(endOfTerm);
  isNew_ = true;
}

void CommonTerms::keep(Database& database) const {
  if (!isNew_) return;
  database.setPatience(std::chrono::milliseconds(0));
  if (!database.run("PRAGMA synchronous = OFF; PRAGMA secure_delete = ON")) return;
  database.prepare("UPDATE state SET commonTerms = ?1 WHERE fingerprint = ?2")
      .bind(1, text_)
      .bind(2, fingerprint_)
      .run();
}

}  // namespace quillstead::server
