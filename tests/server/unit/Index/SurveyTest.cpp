#include "server/Index/Survey.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <set>
#include <string>
#include <string_view>

namespace quillstead::server {

namespace {

constexpr OS::FileStamp stamp{.size = 10, .modified = 1'000};

TEST(Fingerprint, DoesNotDependOnTheOrder) {
  Fingerprint forth;
  Fingerprint back;
  for (int number = 0; number < 100; ++number) {
    forth.add(Store::Kind::project, std::to_string(number), stamp);
    back.add(Store::Kind::project, std::to_string(99 - number), stamp);
  }
  EXPECT_EQ(forth.sum(), back.sum());
}

TEST(Fingerprint, ChangesWithEverythingThatItIsGiven) {
  std::set<std::int64_t> sums{Fingerprint().sum()};
  const auto add = [&](Store::Kind store, std::string_view name, OS::FileStamp given) {
    Fingerprint fingerprint;
    fingerprint.add(store, name, given);
    sums.insert(fingerprint.sum());
  };
  add(Store::Kind::project, "a.md", stamp);
  add(Store::Kind::personal, "a.md", stamp);
  add(Store::Kind::project, "b.md", stamp);
  add(Store::Kind::project, "a.mda.mda.md", stamp);
  add(Store::Kind::project, "", stamp);
  add(Store::Kind::project, std::string_view("\0", 1), stamp);
  add(Store::Kind::project, "a.md", {.size = 11, .modified = 1'000});
  add(Store::Kind::project, "a.md", {.size = 10, .modified = 1'001});
  EXPECT_EQ(sums.size(), 9U);
}

}  // namespace

}  // namespace quillstead::server
