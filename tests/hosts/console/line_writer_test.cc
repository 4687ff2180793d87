#include "hosts/console/services/line_writer.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <string>
#include <thread>

#include "hosts/console/build/stop_signals.h"
#include "platform/text/bstring.h"
#include "platform/threads/event.h"
#include "platform/threads/pipe.h"
#include "tests/platform/support/temporary_directory.h"

namespace forgeyard::console {
namespace {

using State = LineWriter::State;
using std::chrono::milliseconds;

std::string readAll(int fd) {
  std::string text;
  char bytes[65536];
  for (ssize_t got = 0; (got = ::read(fd, bytes, sizeof bytes)) > 0;)
    text.append(bytes, static_cast<std::size_t>(got));
  return text;
}

TEST(LineWriter, WritesEveryKindOfTextAsUtf8) {
  const TemporaryDirectory directory;
  const std::string file = directory.put("out");
  const Descriptor out(::open(file.c_str(), O_WRONLY | O_CLOEXEC));
  const std::u16string texts[] = {u"",
                                  u"short",
                                  std::u16string(15, u'f'),
                                  std::u16string(16, u'g'),
                                  std::u16string(1000, u'h'),
                                  u"sixteen units ä",
                                  u"0123456789abcdef\u00e4 behind a block",
                                  u"\U0001F600 and \u20ac",
                                  std::u16string(400000, u'\u20ac')};
  std::string wanted;
  {
    LineWriter writer(out.get());
    for (const std::u16string& text : texts) {
      writer.line(text);
      wanted += BString(text).narrow() + "\n";
    }
  }
  EXPECT_TRUE(contentOf(file) == wanted);
}

TEST(LineWriter, KeepsLinesForAMomentAndNoLonger) {
  const TemporaryDirectory directory;
  const std::string file = directory.put("out");
  const Descriptor out(::open(file.c_str(), O_WRONLY | O_CLOEXEC));
  LineWriter writer(out.get());
  EXPECT_LT(writer.dueIn(), milliseconds::zero()) << "nothing waits";
  writer.line(std::string_view("x"));
  EXPECT_GT(writer.dueIn(), milliseconds::zero());
  EXPECT_LE(writer.dueIn(), milliseconds(50));
  writer.flush();
  EXPECT_LT(writer.dueIn(), milliseconds::zero());
  EXPECT_EQ(contentOf(file), "x\n");
  // A flood of lines that leaves nobody the time to flush: some leave all the same, long before the buffer is
  // full.
  while (contentOf(file).size() == 2 && writer.dueIn() < std::chrono::seconds(1))
    writer.line(std::string_view("y"));
  EXPECT_LT(contentOf(file).size(), 200000U);
}

TEST(LineWriter, FooterIsTakenAwayForLinesUnlessOthersHaveWrittenBelowIt) {
  const TemporaryDirectory directory;
  const std::string file = directory.put("out");
  const Descriptor out(::open(file.c_str(), O_WRONLY | O_CLOEXEC));
  LineWriter writer(out.get());
  writer.setFooter("f");
  writer.flush();
  writer.line(std::string_view("x"));
  writer.flush();
  EXPECT_EQ(contentOf(file), "\rf\x1b[K\r\x1b[Kx\n\rf\x1b[K");
  writer.abandonFooter();
  writer.line(std::string_view("y"));
  writer.setFooter({});
  writer.flush();
  EXPECT_TRUE(contentOf(file).ends_with("\rf\x1b[Ky\n"));
}

TEST(LineWriter, TellsThatNobodyReadsAnyMore) {
  ::signal(SIGPIPE, SIG_IGN);
  Pipe pipe;
  LineWriter writer(pipe.writeEnd.get());
  pipe.readEnd.reset();
  writer.line(std::string_view("lost"));
  writer.flush();
  EXPECT_EQ(writer.state(), State::Closed);
  writer.line(std::u16string(1 << 20, u'x'));
  EXPECT_EQ(finishOutput(writer, ExitCode::Success), ExitCode::OutputClosed);
}

TEST(LineWriter, TellsThatTheDiskIsFull) {
  const Descriptor full(::open("/dev/full", O_WRONLY | O_CLOEXEC));
  LineWriter writer(full.get());
  writer.line(std::string_view("lost"));
  writer.flush();
  EXPECT_EQ(writer.state(), State::Failed);
  EXPECT_EQ(writer.error(), ENOSPC);
}

TEST(LineWriter, GivesUpAStuckReaderWhenTheUserWantsToStop) {
  Pipe pipe;
  Event interrupt;
  LineWriter writer(pipe.writeEnd.get());
  writer.setInterrupt(&interrupt);
  interrupt.set();
  writer.line(std::string_view("there is room for this"));
  writer.flush();
  EXPECT_EQ(writer.state(), State::Open);
  // More than a pipe holds: without the interrupt this would never return.
  writer.line(std::string(std::size_t{4} << 20, 'x'));
  writer.flush();
  EXPECT_EQ(writer.state(), State::Abandoned);
}

TEST(LineWriter, WaitsForASlowReaderAlsoWhenTheUserWantsToStop) {
  Pipe pipe;
  Event interrupt;
  interrupt.set();
  const std::string line(std::size_t{1} << 20, 'x');
  std::string seen;
  std::thread reader([&] { seen = readAll(pipe.readEnd.get()); });
  {
    LineWriter writer(pipe.writeEnd.get());
    writer.line(line);
    writer.flush();
    writer.setInterrupt(&interrupt);
    for (int i = 0; i < 3; ++i) writer.line(line);
    writer.flush();
    EXPECT_EQ(writer.state(), State::Open);
  }
  pipe.writeEnd.reset();
  reader.join();
  EXPECT_EQ(seen.size(), 4 * (line.size() + 1));
}

TEST(StopSignals, AreTakenOneByOneAndKillNobody) {
  StopSignals signals;
  EXPECT_FALSE(signals.isSignalled());
  ::raise(SIGINT);
  ::raise(SIGTERM);
  EXPECT_TRUE(signals.isSignalled());
  EXPECT_EQ(signals.take(), SIGINT);
  EXPECT_EQ(signals.take(), SIGTERM);
  EXPECT_EQ(signals.take(), std::nullopt);
}

}  // namespace
}  // namespace forgeyard::console
