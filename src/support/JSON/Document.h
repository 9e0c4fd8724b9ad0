#pragma once

#include "support/JSON/Arena.h"
#include "support/JSON/View.h"

#include <utility>

namespace quillstead::JSON {

/// A document that was read. It owns what its views show, also after it was moved; the bytes it was
/// read from are not needed any more.
class Document {
 public:
  /// `root`, an object or an array, lies in `memory` with all that is in it.
  Document(Arena memory, View root) : memory_(std::move(memory)), root_(root) {}

  [[nodiscard]] View root() const { return root_; }

  /// The members of the object at the top; none when there is an array.
  [[nodiscard]] ObjectView object() const { return root_.object().value_or(ObjectView()); }

 private:
  Arena memory_;
  View root_;
};

}  // namespace quillstead::JSON
