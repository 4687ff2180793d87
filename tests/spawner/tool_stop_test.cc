#include <fcntl.h>
#include <sys/stat.h>

#include <thread>

#include "platform/threads/named_event.h"
#include "tests/spawner/spawner_test.h"
#include "tests/support/places.h"

// Every test reads the output to its end: that comes only when the last process that could write to it has
// ended.

namespace forgeyard {
namespace {

class ToolStopTest : public EachWayTest {};

INSTANTIATE_TEST_SUITE_P(Ways, ToolStopTest, testing::ValuesIn(kWays),
                         [](const auto& info) { return std::string(info.param); });

TEST_P(ToolStopTest, TheStopEventEndsTheToolAndAllItStarted) {
  const struct {
    std::string job;
    int exitCode;
  } cases[] = {
      {"hang", 143},           // of SIGTERM
      {"hang-stopped", 143},   // woken up for it
      {"hang-ignoring", 137},  // SIGKILL, a second later
      {"hang-politely 5", 5},
      {"hang-politely 0", 143},  // a stopped tool has not succeeded
      {"hang-with-daemon", 143},
  };
  const auto event = NamedEvent::create("StopEvent");
  for (const auto& [job, exitCode] : cases) {
    event->reset();
    Spawned run(tool(job));
    ASSERT_EQ(run.line(), "ready") << job;
    event->set();
    EXPECT_EQ(run.output(), "") << job;
    EXPECT_EQ(run.wait(), exitCode) << job;
    EXPECT_TRUE(event->isSet()) << "watching takes nothing from the event";
  }
}

TEST_P(ToolStopTest, StartsNothingWhenStoppedAlready) {
  const auto event = NamedEvent::create("StopEvent");
  event->set();
  EXPECT_EQ(spawn(tool("touch " + (scratch_ / "mark"))), (Result{143, ""}));
  EXPECT_FALSE(std::filesystem::exists(scratch_ / "mark"));
}

TEST_P(ToolStopTest, StopsOnSignals) {
  for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
    Spawned run(tool("hang-with-daemon"));
    ASSERT_EQ(run.line(), "ready");
    run.process().kill(signal);
    EXPECT_EQ(run.output(), "");
    EXPECT_EQ(run.wait(), 143);
  }
}

TEST_P(ToolStopTest, EndsWhatAToolLeavesBehind) {
  for (const int code : {0, 9}) {
    EXPECT_EQ(spawn(tool("leave-daemon " + std::to_string(code))), (Result{code, ""}));
  }
}

TEST_P(ToolStopTest, SeesTheToolEndAmongOthersThatEnd) {
  for (int i = 0; i < 20; ++i) EXPECT_EQ(spawn(tool("leave-orphans 7")), (Result{7, ""}));
}

TEST_P(ToolStopTest, EndsEverythingWhenTheHostIsKilled) {
  Spawned host({places::spawnerTools() + "/tool", "host", SPAWNER, command("hang-with-daemon")});
  ASSERT_EQ(host.line(), "ready");
  host.process().kill(SIGKILL);
  EXPECT_EQ(host.output(), "");
}

TEST_P(ToolStopTest, TheToolDiesWithAKilledSpawner) {
  Spawned run(tool("hang-ignoring"));
  ASSERT_EQ(run.line(), "ready");
  run.process().kill(SIGKILL);
  EXPECT_EQ(run.output(), "");
}

TEST_P(ToolStopTest, GoesOnWhenOnlyTheThreadThatStartedItEnds) {
  const std::string gate = scratch_ / "gate";
  ASSERT_EQ(::mkfifo(gate.c_str(), 0600), 0);
  std::unique_ptr<Spawned> run;
  std::thread([&] { run = std::make_unique<Spawned>(tool("gate " + gate)); }).join();
  EXPECT_EQ(run->line(), "ready");
  const int fd = ::open(gate.c_str(), O_WRONLY | O_CLOEXEC);
  EXPECT_EQ(run->wait(), 7);
  ::close(fd);
}

TEST_P(ToolStopTest, GoesWithoutAnEventThatIsNotOurs) {
  const std::string file = scratch_ / "StopEvent.event";
  writeFile(file, "not empty, so always readable");
  EXPECT_EQ(spawn(tool("exit 3")).exitCode, 3);
  std::filesystem::remove(file);
  std::filesystem::create_symlink("/dev/zero", file);
  EXPECT_EQ(spawn(tool("exit 3")).exitCode, 3);
  std::filesystem::remove(file);
  const auto event = NamedEvent::create("StopEvent");
  event->set();
  ASSERT_EQ(::chmod(scratch_.path().c_str(), 0777), 0);  // anyone could have put it there
  EXPECT_EQ(spawn(tool("exit 3")).exitCode, 3);
}

TEST_P(ToolStopTest, FindsTheEventInTheSessionsDirectory) {
  const ScopedVariable none("FORGEYARD_RUNTIME_DIR", std::nullopt);
  const ScopedVariable session("XDG_RUNTIME_DIR", scratch_.path());
  const auto event = NamedEvent::create("StopEvent");
  Spawned run(tool("hang"));
  ASSERT_EQ(run.line(), "ready");
  event->set();
  EXPECT_EQ(run.output(), "");
  EXPECT_EQ(run.wait(), 143);
}

}  // namespace
}  // namespace forgeyard
