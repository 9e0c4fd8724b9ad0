#pragma once

#include "hook/PretoolAnswer.h"

#include <optional>
#include <string>
#include <utility>

namespace quillstead::hook {

/// The document with which a stamp answers the payload; absent when the call is let through.
inline std::optional<std::string> stampedDocument(std::string payload, PretoolAnswer::Stamp stamp,
                                                  Decision decision = Decision::none) {
  std::string document = PretoolAnswer::document(std::move(payload), stamp, decision);
  if (document == "{}") return std::nullopt;
  return document;
}

}  // namespace quillstead::hook
