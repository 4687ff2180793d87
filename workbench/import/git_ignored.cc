#include "workbench/import/git_ignored.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>

#include "platform/threads/process.h"

namespace forgeyard::workbench {

namespace {

std::string readAll(int descriptor) {
  std::string text;
  std::array<char, 65536> buffer{};
  for (;;) {
    const ssize_t count = ::read(descriptor, buffer.data(), buffer.size());
    if (count > 0) text.append(buffer.data(), static_cast<std::size_t>(count));
    if (count == 0 || (count < 0 && errno != EINTR)) return text;
  }
}

std::string outputOf(std::vector<std::string> arguments) {
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) return {};
  const Descriptor readEnd(ends[0]);
  Descriptor writeEnd(ends[1]);
  ProcessOptions options;
  options.program = arguments.front();
  options.arguments = std::move(arguments);
  options.standardOutput = ends[1];
  ProcessStartError error;
  const std::unique_ptr<Process> process = Process::start(options, error);
  writeEnd.reset();
  return process ? readAll(readEnd.get()) : std::string();
}

}  // namespace

std::unordered_set<std::string> ignoredByGit(const std::string& directory) {
  // A repository of somebody else may name a program to watch its files; it isn't ours to start.
  const std::string list = outputOf({"git", "-c", "core.fsmonitor=false", "-C", directory, "ls-files",
                                     "--others", "--ignored", "--exclude-standard", "--directory", "-z"});
  std::unordered_set<std::string> paths;
  for (std::size_t at = 0; at < list.size();) {
    const std::size_t end = list.find('\0', at);
    std::string path = list.substr(at, end - at);
    if (path.ends_with('/')) path.pop_back();
    if (path == "." || path.empty()) return {};
    paths.insert(std::move(path));
    at = end == list.npos ? list.size() : end + 1;
  }
  return paths;
}

}  // namespace forgeyard::workbench
