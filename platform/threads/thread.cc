#include "platform/threads/thread.h"

#include <pthread.h>

#include <condition_variable>
#include <mutex>

#include "platform/files/blocked_signals.h"

namespace forgeyard {

struct Thread::State {
  Event finished;
};

namespace {

class Running {
 public:
  void add() {
    const std::lock_guard<std::mutex> lock(mutex_);
    ++count_;
  }
  void remove() {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (--count_ == 0) none_.notify_all();
  }
  std::size_t count() {
    const std::lock_guard<std::mutex> lock(mutex_);
    return count_;
  }
  void waitForNone() {
    std::unique_lock<std::mutex> lock(mutex_);
    none_.wait(lock, [this] { return count_ == 0; });
  }

 private:
  std::mutex mutex_;
  std::condition_variable none_;
  std::size_t count_ = 0;
};

// Never destroyed: a detached thread may outlive the program's static objects.
Running& threadCounter() {
  static Running& counter = *new Running;
  return counter;
}

void runBody(const std::string& name, std::function<void()>& body) noexcept {
  pthread_setname_np(pthread_self(), name.substr(0, 15).c_str());
  try {
    body();
  } catch (...) {  // NOLINT(bugprone-empty-catch): a host doesn't go down with one of its threads
  }
  body = nullptr;
}

}  // namespace

Thread::Thread(const std::string& name, std::function<void()> body) : state_(std::make_shared<State>()) {
  const BlockedSignals blocked;
  threadCounter().add();
  try {
    thread_ = std::thread([name, body = std::move(body), state = state_]() mutable {
      runBody(name, body);
      state->finished.set();
      state.reset();
      threadCounter().remove();
    });
  } catch (...) {
    threadCounter().remove();
    throw;
  }
}

Thread::~Thread() {
  join();
}

int Thread::descriptor() const noexcept {
  return state_->finished.descriptor();
}

void Thread::join() {
  if (thread_.joinable()) thread_.join();
}

void Thread::detach() {
  if (thread_.joinable()) thread_.detach();
}

std::size_t Thread::running() noexcept {
  return threadCounter().count();
}

void Thread::waitForAll() {
  threadCounter().waitForNone();
}

}  // namespace forgeyard
