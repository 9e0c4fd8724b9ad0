#pragma once

#include <string_view>
#include <vector>

/// What stop words and common words are, in scripts whose words spaces do not tell apart.
namespace quillstead::server::CommonPhrases {

enum class Saying { nothing, little, something };

/// For each byte of a run of such characters, whether it belongs to a phrase that says nothing
/// ("please", "how", "is") or little ("test", "file") of what a prompt is about.
std::vector<Saying> sayings(std::string_view run);

}  // namespace quillstead::server::CommonPhrases
