#include "platform/threads/process.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "tests/platform/support/scratch.h"
#include "tests/platform/threads/child_process.h"
#include "tests/support/places.h"

namespace forgeyard {
namespace {

using testing::HasSubstr;
using Step = ProcessStartError::Step;

// With the kernel's descriptor for a process, and with the thread that stands in for it.
class ProcessTest : public testing::TestWithParam<bool> {
 protected:
  ProcessOptions options() const {
    ProcessOptions options;
    options.watchByThread = GetParam();
    return options;
  }
};
INSTANTIATE_TEST_SUITE_P(Watch, ProcessTest, testing::Bool(),
                         [](const auto& info) { return info.param ? "ByThread" : "ByDescriptor"; });

TEST_P(ProcessTest, ExitCodeIsTheChilds) {
  struct Case {
    std::vector<std::string> arguments;
    int expected;
  };
  const Case cases[] = {
      {{"exit", "0"}, 0},
      {{"exit", "7"}, 7},
      {{"exit", "-1"}, 255},
      {{"die", std::to_string(SIGTERM)}, 128 + SIGTERM},
      {{"die", std::to_string(SIGKILL)}, 128 + SIGKILL},
  };
  for (const Case& row : cases) {
    ChildProcess child(row.arguments, options());
    EXPECT_EQ(child.wait(), row.expected) << row.arguments[0] << " " << row.arguments[1];
    EXPECT_EQ(child.process().exitCode(), row.expected);
    EXPECT_TRUE(child.process().isSignalled());
    EXPECT_FALSE(child.process().kill(SIGTERM));
  }
}

TEST_P(ProcessTest, RunningChildIsNotSignalledAndHasNoCode) {
  ChildProcess child({"hang"}, options());
  ASSERT_EQ(child.line(), "ready");
  EXPECT_FALSE(child.process().isSignalled());
  EXPECT_EQ(child.process().exitCode(), std::nullopt);
  EXPECT_TRUE(child.process().kill(SIGTERM));
  EXPECT_EQ(child.wait(), 128 + SIGTERM);
}

// As where a host ignores SIGCHLD: the kernel throws the code away.
TEST_P(ProcessTest, LostExitCodeIsAFailure) {
  struct sigaction ignoring {};
  struct sigaction previous {};
  ignoring.sa_handler = SIG_IGN;
  ::sigaction(SIGCHLD, &ignoring, &previous);
  {
    ChildProcess child({"exit", "0"}, options());
    EXPECT_EQ(child.wait(), 255);
  }
  ::sigaction(SIGCHLD, &previous, nullptr);
}

TEST(Process, ArgumentsArriveAsTheyAre) {
  const std::string longOne(2000, 'x');
  ChildProcess child({"echo", "a b", "", "\\home\\u\\a.c", "\"q\"", "$HOME *", longOne});
  EXPECT_EQ(child.output(), "a b\n\n\\home\\u\\a.c\n\"q\"\n$HOME *\n" + longOne + "\n");
}

TEST(Process, RunsInItsWorkingDirectory) {
  const ScratchDirectory scratch;
  ProcessOptions options;
  options.workingDirectory = scratch.path();
  EXPECT_EQ(ChildProcess({"directory"}, options).line(), std::filesystem::canonical(scratch.path()));
  EXPECT_EQ(ChildProcess({"directory"}).line(), std::filesystem::current_path());
}

TEST(Process, EnvironmentIsReplacedOrInherited) {
  const ScopedVariable variable("FORGEYARD_TEST_VARIABLE", "here");
  ProcessOptions options;
  options.environment = {"A=1", "B=two words"};
  EXPECT_EQ(ChildProcess({"environment"}, options).output(), "A=1\nB=two words\n");
  EXPECT_THAT(ChildProcess({"environment"}).output(), HasSubstr("FORGEYARD_TEST_VARIABLE=here\n"));
}

TEST(Process, OutputsMayBeCrossed) {
  ChildProcess child({"cross"});
  EXPECT_EQ(child.output(), "to errors\n");
  EXPECT_EQ(child.errors(), "to output\n");
  EXPECT_EQ(child.wait(), 0);
}

TEST(Process, InheritsNothingButItsThreeDescriptors) {
  const Descriptor leaky(::open("/dev/zero", O_RDONLY));
  const Descriptor high(::fcntl(leaky.get(), F_DUPFD, 200));
  ChildProcess child({"descriptors"});
  EXPECT_EQ(child.output(), "0 /dev/null\n1 \n2 \n");
}

unsigned long long maskOf(const std::string& report, const std::string& name) {
  return std::stoull(report.substr(report.find(name + ":") + name.size() + 1), nullptr, 16);
}

TEST(Process, StartsWithSignalsAsProgramsExpectThem) {
  sigset_t all;
  sigset_t previous;
  sigfillset(&all);
  pthread_sigmask(SIG_BLOCK, &all, &previous);
  const auto pipeAction = ::signal(SIGPIPE, SIG_IGN);
  ChildProcess child({"signals"});
  const std::string report = child.output();
  ::signal(SIGPIPE, pipeAction);
  pthread_sigmask(SIG_SETMASK, &previous, nullptr);
  EXPECT_EQ(maskOf(report, "SigBlk"), 0u) << report;
  EXPECT_EQ(maskOf(report, "SigIgn") & (1u << (SIGPIPE - 1)), 0u) << report;
}

TEST(Process, OwnGroupKeepsTerminalSignalsAway) {
  ProcessOptions options;
  options.ownGroup = true;
  EXPECT_EQ(ChildProcess({"group"}, options).line(), "own");
  EXPECT_EQ(ChildProcess({"group"}).line(), "shared");
}

TEST(Process, FailedStartSaysWhatAndWhy) {
  const ScratchDirectory scratch;
  writeFile(scratch / "data", "no program");
  writeFile(scratch / "broken", "\x01\x02");
  ::chmod((scratch / "broken").c_str(), 0700);
  struct Case {
    const char* name;
    std::string program, directory;
    Step step;
    int error;
  };
  const Case cases[] = {
      {"missing", scratch / "none", "", Step::Program, ENOENT},
      {"missing on the path", "forgeyard-no-such-program", "", Step::Program, ENOENT},
      {"not executable", scratch / "data", "", Step::Program, EACCES},
      {"no program format", scratch / "broken", "", Step::Program, ENOEXEC},
      {"a directory", scratch.path(), "", Step::Program, EACCES},
      {"directory missing", "/bin/true", scratch / "none", Step::WorkingDirectory, ENOENT},
      {"directory is a file", "/bin/true", scratch / "data", Step::WorkingDirectory, ENOTDIR},
      {"program missing in a good directory", scratch / "none", scratch.path(), Step::Program, ENOENT},
  };
  for (const Case& row : cases) {
    ProcessOptions options;
    options.program = row.program;
    options.workingDirectory = row.directory;
    ProcessStartError error;
    EXPECT_FALSE(Process::start(options, error)) << row.name;
    EXPECT_EQ(error.step, row.step) << row.name;
    EXPECT_EQ(error.error, row.error) << row.name;
    EXPECT_THAT(error.message, HasSubstr(row.program)) << row.name;
    EXPECT_THAT(error.message, HasSubstr(row.directory)) << row.name;
  }
}

TEST(Process, ArgumentsBeyondTheSystemsLimitFailToStart) {
  ProcessOptions options;
  options.program = "/bin/true";
  options.arguments = {"true", std::string(4 << 20, 'x')};
  ProcessStartError error;
  EXPECT_FALSE(Process::start(options, error));
  EXPECT_EQ(error.error, E2BIG);
}

class Ended : public Waitable {
 public:
  explicit Ended(pid_t pid) : fd_(static_cast<int>(::syscall(SYS_pidfd_open, pid, 0))) {}
  int descriptor() const noexcept override { return fd_.get(); }

 private:
  Descriptor fd_;
};

TEST(Process, ChildThatOutlivesItsObjectIsCollectedLater) {
  ProcessOptions options;
  options.program = places::programs() + "/platform_os_child";
  options.arguments = {"child", "hang"};
  ProcessStartError error;
  auto process = Process::start(options, error);
  ASSERT_TRUE(process) << error.message;
  const pid_t pid = process->id();
  process.reset();
  EXPECT_EQ(::kill(pid, 0), 0) << "still running";
  const Ended ended(pid);
  ::kill(pid, SIGKILL);
  waitAny({&ended});
  EXPECT_EQ(::kill(pid, 0), 0) << "ended, not collected";
  ChildProcess next({"exit", "0"});
  next.wait();
  EXPECT_EQ(::kill(pid, 0), -1);
  EXPECT_EQ(errno, ESRCH);
}

TEST(Pipe, EndsWhenTheLastWriterCloses) {
  Pipe pipe;
  Event cancel;
  ASSERT_EQ(::write(pipe.writeEnd.get(), "abc", 3), 3);
  pipe.writeEnd.reset();
  char bytes[2];
  ReadResult read = readOrCancel(pipe.readEnd, cancel, bytes);
  EXPECT_EQ(read.end, ReadEnd::Data);
  EXPECT_EQ(read.bytes, 2u);
  EXPECT_EQ(readOrCancel(pipe.readEnd, cancel, bytes).bytes, 1u);
  EXPECT_EQ(readOrCancel(pipe.readEnd, cancel, bytes).end, ReadEnd::EndOfFile);
}

TEST(Pipe, IsNotInheritedByChildren) {
  Pipe pipe;
  Event cancel;
  ChildProcess child({"hang"});
  ASSERT_EQ(child.line(), "ready");
  pipe.writeEnd.reset();
  char byte = 0;
  EXPECT_EQ(readOrCancel(pipe.readEnd, cancel, {&byte, 1}).end, ReadEnd::EndOfFile);
}

TEST(Pipe, CancelWinsOverData) {
  Pipe pipe;
  Event cancel;
  ASSERT_EQ(::write(pipe.writeEnd.get(), "abc", 3), 3);
  cancel.set();
  char bytes[4];
  EXPECT_EQ(readOrCancel(pipe.readEnd, cancel, bytes).end, ReadEnd::Cancelled);
  cancel.reset();
  EXPECT_EQ(readOrCancel(pipe.readEnd, cancel, bytes).bytes, 3u);
}

}  // namespace
}  // namespace forgeyard
