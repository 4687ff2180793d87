#include "adapters/common/fitted_command.h"

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <optional>
#include <stdexcept>

#include "adapters/common/response_file.h"

namespace forgeyard {
namespace {

// The kernel's rules: a quarter of the stack's limit for arguments and environment together, within bounds;
// 32 pages for one argument.
constexpr std::size_t kSmallestTotal = std::size_t{128} << 10;
constexpr std::size_t kLargestTotal = std::size_t{6} << 20;
constexpr std::size_t kLongestArgument = std::size_t{128} << 10;
// The program's name again and what the kernel itself adds.
constexpr std::size_t kReserve = 8192;

std::size_t largestTotal() {
  struct rlimit stack {};
  if (::getrlimit(RLIMIT_STACK, &stack) != 0 || stack.rlim_cur == RLIM_INFINITY) return kLargestTotal;
  return std::clamp(static_cast<std::size_t>(stack.rlim_cur / 4), kSmallestTotal, kLargestTotal);
}

// With its terminator and the pointer to it.
std::size_t sizeOf(std::string_view text) {
  return text.size() + 1 + sizeof(char*);
}

std::size_t environmentSize() {
  std::size_t size = 0;
  for (char** entry = environ; *entry; ++entry) size += sizeOf(*entry);
  return size;
}

// Nothing for a command that fits.
std::optional<std::string> excess(const std::vector<std::string>& command) {
  std::size_t total = environmentSize() + kReserve;
  std::size_t longest = 0;
  for (const std::string& word : command) {
    total += sizeOf(word);
    longest = std::max(longest, word.size() + 1);
  }
  if (longest > kLongestArgument)
    return "one of its arguments has " + std::to_string(longest - 1) + " bytes, and the system takes " +
           std::to_string(kLongestArgument - 1) + "; write the names into a file that the tool reads";
  if (total > largestTotal())
    return "its arguments and the environment have " + std::to_string(total) +
           " bytes, and the system takes " + std::to_string(largestTotal()) +
           "; write the names into a file that the tool reads, or raise the limit of the stack, of which "
           "this is "
           "a quarter (ulimit -s)";
  return std::nullopt;
}

}  // namespace

FittedCommand::FittedCommand(std::vector<std::string> command) : words_(std::move(command)) {
  const std::optional<std::string> problem = excess(words_);
  if (!problem) return;
  const std::string program = words_.front();
  if (!readsResponseFiles(program)) throw std::runtime_error("cannot start \"" + program + "\": " + *problem);
  words_.erase(words_.begin());
  responseFile_ = std::make_unique<MemoryFile>("arguments", responseFileText(words_));
  words_ = {program, "@" + responseFile_->path()};
}

}  // namespace forgeyard
