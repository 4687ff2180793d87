#include "engine/run/output_reader.h"

#include <array>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace forgeyard {

namespace {

constexpr std::size_t kBufferBytes = 65536;
// A line that never ends is cut here, so that memory stays bounded.
constexpr std::size_t kLongestLine = std::size_t{16} << 20;

}  // namespace

// What the thread and the main thread have in common.
struct OutputReader::Shared {
  explicit Shared(Descriptor readEnd, IOutputTab* output)
      : pipe(std::move(readEnd)), tab(Ref<IOutputTab>(output)) {}

  void run();
  void take(std::string_view bytes);
  bool show();

  Descriptor pipe;
  MarshalledRef<IOutputTab> tab;
  Event cancelled;
  bool showing = true;  // main thread only
  std::string line;     // the rest is the reading thread's
  std::vector<BString> lines;
};

// Cuts bytes into lines and keeps what has not ended.
void OutputReader::Shared::take(std::string_view bytes) {
  while (!bytes.empty()) {
    const std::size_t end = bytes.find('\n');
    const std::string_view piece = bytes.substr(0, end);
    if (line.empty() && end != bytes.npos && piece.find('\r') == piece.npos) {
      lines.push_back(BString::fromNarrow(piece));
    } else {
      for (const char c : piece) {
        if (c != '\r') line.push_back(c);
      }
      if (end != bytes.npos || line.size() > kLongestLine) {
        lines.push_back(BString::fromNarrow(line));
        line.clear();
      }
    }
    bytes.remove_prefix(end == bytes.npos ? bytes.size() : end + 1);
  }
}

// False when the main thread is there no more.
bool OutputReader::Shared::show() {
  if (lines.empty()) return true;
  const HRESULT status = tab.status([this](IOutputTab& output) {
    for (const BString& text : lines) {
      if (showing) ignore(output.MsgOut(text));
    }
    return S_OK;
  });
  lines.clear();
  return succeeded(status);
}

void OutputReader::Shared::run() {
  std::array<char, kBufferBytes> buffer;
  for (;;) {
    const ReadResult read = readOrCancel(pipe, cancelled, buffer);
    if (read.end != ReadEnd::Data) break;
    take(std::string_view(buffer.data(), read.bytes));
    if (!show()) break;
  }
  pipe.reset();
}

OutputReader::OutputReader(IOutputTab* tab) {
  Pipe pipe;
  shared_ = std::make_shared<Shared>(std::move(pipe.readEnd), tab);
  writeEnd_ = std::move(pipe.writeEnd);
  thread_ = std::make_unique<Thread>("output reader", [shared = shared_] { shared->run(); });
}

OutputReader::~OutputReader() {
  thread_->detach();
}

void OutputReader::stopShowing() {
  shared_->showing = false;
}

void OutputReader::cancel() {
  shared_->cancelled.set();
}

}  // namespace forgeyard
