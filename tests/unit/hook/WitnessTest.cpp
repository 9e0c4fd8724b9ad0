#include "hook/Witness.h"
#include "unit/helpers/Files.h"
#include "unit/helpers/Process.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

namespace quillstead::hook::Witness {
namespace {

std::string warningAbout(const std::optional<std::string>& payloadCwd) {
  const unit::Captured captured(STDERR_FILENO);
  warnIfCwdWitnessesDisagree(payloadCwd);
  return captured.text();
}

std::string warning(const std::string& payloadCwd, const std::string& own) {
  return "quillstead-hook: WARNING \xE2\x80\x94 the harness says cwd=" + payloadCwd +
         " but this process is in " + own +
         ". Both lanes are scoped by the former; if they name different projects, this prompt may "
         "have been answered for the wrong one.\n";
}

class Witness : public ::testing::Test {
 protected:
  Witness() : here_(directory_ / "own") {
    std::filesystem::create_symlink(own_, directory_ / "link");
    std::filesystem::create_directory(directory_ / "other");
  }

  unit::TemporaryDirectory directory_;
  std::string own_ = [this] {
    std::filesystem::create_directory(directory_ / "own");
    return directory_ / "own";
  }();
  unit::ScopedDirectory here_;
};

TEST_F(Witness, WarnsInOneLineThatNamesBothDirectories) {
  EXPECT_EQ(warningAbout(directory_ / "other"), warning(directory_ / "other", own_));
}

TEST_F(Witness, SaysNothingWhenThePayloadNamesNoDirectory) {
  EXPECT_EQ(warningAbout(std::nullopt), "");
}

TEST_F(Witness, SaysNothingWhenBothNameTheSameDirectory) { EXPECT_EQ(warningAbout(own_), ""); }

TEST_F(Witness, SaysNothingForALinkToTheProcessesDirectory) {
  EXPECT_EQ(warningAbout(directory_ / "link"), "");
}

TEST_F(Witness, SaysNothingForATrailingSlash) {
  EXPECT_EQ(warningAbout(own_ + "/"), "");
  EXPECT_EQ(warningAbout(own_ + "//./"), "");
  EXPECT_EQ(warningAbout(directory_ / "link/"), "");
}

TEST_F(Witness, SaysNothingWhenTheProcessCameThroughALink) {
  const unit::ScopedDirectory through(directory_ / "link");
  EXPECT_EQ(warningAbout(own_), "");
}

TEST_F(Witness, QuotesThePayloadAsItIsAndItsOwnDirectoryCanonically) {
  const unit::ScopedDirectory through(directory_ / "link");
  const std::string payload = directory_ / "own/../other/";
  EXPECT_EQ(warningAbout(payload), warning(payload, own_));
}

TEST_F(Witness, WarnsAboutADirectoryThatIsNotThere) {
  EXPECT_EQ(warningAbout(directory_ / "missing"), warning(directory_ / "missing", own_));
  EXPECT_EQ(warningAbout("  blank "), warning("  blank ", own_));
}

TEST_F(Witness, SaysNothingWhenTheProcessesDirectoryIsGone) {
  const unit::ForkedRun run = unit::inForkedProcess([&] {
    std::filesystem::create_directory(directory_ / "gone");
    std::filesystem::current_path(directory_ / "gone");
    std::filesystem::remove(directory_ / "gone");
    warnIfCwdWitnessesDisagree(directory_ / "other");
  });
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.standardError, "");
}

TEST_F(Witness, SaysNothingInADirectoryThatThisUserCannotReachByItsPath) {
  const unit::ForkedRun run = unit::inForkedProcess([&] {
    constexpr uid_t somebody = 3'999'999;
    std::filesystem::permissions(directory_ / "", std::filesystem::perms::none);
    if (geteuid() == 0 && setuid(somebody) != 0) _exit(1);
    warnIfCwdWitnessesDisagree(own_);
    warnIfCwdWitnessesDisagree(directory_ / "other");
  });
  std::filesystem::permissions(directory_ / "", std::filesystem::perms::owner_all);
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.standardError, warning(directory_ / "other", own_));
}

}  // namespace
}  // namespace quillstead::hook::Witness
