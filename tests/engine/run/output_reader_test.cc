#include "engine/run/output_reader.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "engine/component/output_tab.h"
#include "engine/run/tool_runner.h"
#include "platform/threads/apartment.h"
#include "tests/support/test_host.h"

namespace forgeyard {
namespace {

class Tab final : public ComObject<OutputTab> {
 public:
  explicit Tab(test::TestHost* host) : host_(host) {}

 private:
  IServiceLookup* outputServices() const override { return host_.get(); }
  Ref<test::TestHost> host_;
};

class OutputReaderTest : public testing::Test {
 protected:
  void feed(OutputReader& reader, const std::string& bytes) {
    ASSERT_EQ(write(reader.writeEnd(), bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
  }
  std::vector<std::string> finish(OutputReader& reader) {
    reader.closeWriteEnd();
    apartment_->waitPumping({&reader.ended()});
    return host_->lines();
  }

  ApartmentScope apartment_;
  Ref<test::TestHost> host_ = make<test::TestHost>();
  Ref<Tab> tab_ = make<Tab>(host_.get());
};

TEST_F(OutputReaderTest, CutsBytesIntoLines) {
  struct Case {
    const char* name;
    std::string bytes;
    std::vector<std::string> lines;
  };
  const std::vector<Case> cases{
      {"both line ends", "a\r\nb\n", {"a", "b"}},
      {"unfinished last line is lost", "a\nrest", {"a"}},
      {"empty lines", "\n\r\n", {"", ""}},
      {"carriage returns inside", "10%\r20%\rdone\n", {"10%20%done"}},
      {"nothing", "", {}},
      {"letters beyond ASCII", "caf\xC3\xA9\n", {"caf\xC3\xA9"}},
      {"bytes that are no UTF-8", "\xFF\x80x\n", {"\xFF\x80x"}},
      {"nul", std::string("a\0b\n", 4), {std::string("a\0b", 3)}},
  };
  for (const auto& [name, bytes, lines] : cases) {
    check(host_->ClearTab(u"Build"));
    OutputReader reader(tab_.get());
    feed(reader, bytes);
    EXPECT_EQ(finish(reader), lines) << name;
  }
}

TEST_F(OutputReaderTest, ALineShowsWhenItEndsAndNotWhenTheToolEnds) {
  OutputReader reader(tab_.get());
  feed(reader, "first\nsec");
  while (host_->lines().empty()) apartment_->pumpPending();
  EXPECT_EQ(host_->lines(), (std::vector<std::string>{"first"}));
  feed(reader, "ond\n");
  EXPECT_EQ(finish(reader), (std::vector<std::string>{"first", "second"}));
}

TEST_F(OutputReaderTest, NoLineFollowsAStop) {
  OutputReader reader(tab_.get());
  feed(reader, "shown\n");
  while (host_->lines().empty()) apartment_->pumpPending();
  reader.stopShowing();
  feed(reader, "late\n");
  EXPECT_EQ(finish(reader), (std::vector<std::string>{"shown"}));
}

TEST_F(OutputReaderTest, CancelEndsTheThreadThoughThePipeIsHeld) {
  OutputReader reader(tab_.get());
  reader.cancel();
  apartment_->waitPumping({&reader.ended()});
  EXPECT_TRUE(reader.ended().isSignalled());
}

TEST(ExitCodes, AreShownSignedAndInHexadecimal) {
  EXPECT_EQ(exitCodeLine(0), "Exit Code: 0 (0x0).");
  EXPECT_EQ(exitCodeLine(-1), "Exit Code: -1 (0xffffffff).");
  EXPECT_EQ(exitCodeLine(139), "Exit Code: 139 (0x8b).");
}

}  // namespace
}  // namespace forgeyard
