#include "platform/files/status_batch.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <new>
#include <system_error>
#include <thread>

#include "platform/files/blocked_signals.h"

namespace forgeyard {
namespace {

// What one thread takes at a time: about the cost of starting a thread.
constexpr std::size_t kShare = 128;
// More than most machines have cores: on a slow disk the threads wait.
constexpr std::size_t kMostThreads = 8;

}  // namespace

std::vector<std::optional<FileStatus>> statusBatch(FileSystem& disk, std::span<const BString> paths) {
  std::vector<std::optional<FileStatus>> answers(paths.size());
  std::atomic<std::size_t> next{0};
  std::atomic<bool> failed{false};
  // A question throws for want of memory alone.
  const auto work = [&] {
    try {
      for (std::size_t begin; !failed && (begin = next.fetch_add(kShare)) < paths.size();) {
        const std::size_t end = std::min(begin + kShare, paths.size());
        for (std::size_t i = begin; i < end; ++i) answers[i] = disk.status(paths[i]);
      }
    } catch (const std::bad_alloc&) {
      failed = true;
    }
  };
  {
    std::vector<std::jthread> helpers;
    const BlockedSignals blocked;
    const std::size_t threads = std::min((paths.size() + kShare - 1) / kShare, kMostThreads);
    helpers.reserve(kMostThreads);
    try {
      while (helpers.size() + 1 < threads) helpers.emplace_back(work);
    } catch (const std::system_error&) {
      // No more threads to be had: those that run do the work.
    }
    work();
  }
  if (failed) throw std::bad_alloc();
  return answers;
}

}  // namespace forgeyard
