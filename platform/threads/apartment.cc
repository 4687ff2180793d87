#include "platform/threads/apartment.h"

#include <atomic>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

namespace forgeyard {

namespace {

// Where a thread sleeps until its call is answered: one for each thread, since it can wait for one call at a
// time. Shared, because the owner still wakes the thread while the thread, awake already, may have ended.
class Answer {
 public:
  void give() {
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      given_ = true;
    }
    arrived_.notify_one();
  }
  void take() {
    std::unique_lock<std::mutex> lock(mutex_);
    arrived_.wait(lock, [this] { return given_; });
    given_ = false;
  }

 private:
  std::mutex mutex_;
  std::condition_variable arrived_;
  bool given_ = false;
};

thread_local std::shared_ptr<Answer> ownAnswer;

const std::shared_ptr<Answer>& answerOfThread() {
  if (!ownAnswer) ownAnswer = std::make_shared<Answer>();
  return ownAnswer;
}

}  // namespace

// Lies on the stack of the thread that waits for the answer, and is gone once that is given.
struct Apartment::Call {
  void (*invoke)(void*);
  void* argument;
  std::shared_ptr<Answer> answer;
  std::exception_ptr error;
};

struct Apartment::Item {
  Call* call = nullptr;  // or else
  std::function<void()> posted;
};

struct Apartment::Queue {
  std::mutex mutex;
  std::deque<Item> items;
  bool ended = false;
  bool quit = false;
  std::atomic<int> waking{0};  // threads on their way to wake the loop
};

namespace {

thread_local std::shared_ptr<Apartment> ownApartment;

struct MainApartment {
  std::mutex mutex;
  std::shared_ptr<Apartment> apartment;
};

MainApartment& mainApartment() {
  // Never destroyed: threads may ask for it while the program ends.
  static MainApartment& instance = *new MainApartment;
  return instance;
}

}  // namespace

Apartment::Apartment(std::unique_ptr<MessageLoop> loop)
    : loop_(std::move(loop)), queue_(std::make_unique<Queue>()) {}

Apartment::~Apartment() = default;

Apartment* Apartment::current() noexcept {
  return ownApartment.get();
}

std::shared_ptr<Apartment> Apartment::currentShared() {
  if (!ownApartment) throw StatusError(CO_E_NOTINITIALIZED);
  return ownApartment;
}

std::shared_ptr<Apartment> Apartment::main() {
  MainApartment& holder = mainApartment();
  const std::lock_guard<std::mutex> lock(holder.mutex);
  if (!holder.apartment) throw StatusError(CO_E_NOTINITIALIZED);
  return holder.apartment;
}

void Apartment::requireOwner() const {
  if (!isOwner()) throw StatusError(RPC_E_WRONG_THREAD);
}

// Changes the queue, and wakes the owner if `apply` says so; false, with nothing changed, after the end. The
// loop is woken outside of the lock, since the owner is awake before wake() returns and takes the lock at
// once.
template <class Change>
bool Apartment::change(Change&& apply) {
  {
    const std::lock_guard<std::mutex> lock(queue_->mutex);
    if (queue_->ended) return false;
    if (!apply(*queue_)) return true;
    queue_->waking.fetch_add(1, std::memory_order_relaxed);
  }
  loop_->wake();
  queue_->waking.fetch_sub(1, std::memory_order_release);
  return true;
}

// Queues an item. While there are items before it, whoever serves those sees this one too.
bool Apartment::enqueue(Item item) {
  return change([&](Queue& queue) {
    queue.items.push_back(std::move(item));
    return queue.items.size() == 1;
  });
}

bool Apartment::post(std::function<void()> work) {
  return enqueue({nullptr, std::move(work)});
}

void Apartment::callOwner(void (*invoke)(void*), void* argument) {
  Call call{invoke, argument, answerOfThread(), nullptr};
  if (!enqueue({&call, nullptr})) throw StatusError(RPC_E_DISCONNECTED);
  ownAnswer->take();
  if (call.error) std::rethrow_exception(std::move(call.error));
}

void Apartment::answer(Call& call, std::exception_ptr error) noexcept {
  call.error = std::move(error);
  const std::shared_ptr<Answer> answer = call.answer;
  answer->give();
}

void Apartment::serve(Call& call) noexcept {
  std::exception_ptr error;
  try {
    call.invoke(call.argument);
  } catch (...) {
    error = std::current_exception();
  }
  answer(call, std::move(error));
}

bool Apartment::serveNext() {
  Item item;
  {
    const std::lock_guard<std::mutex> lock(queue_->mutex);
    if (queue_->items.empty()) return false;
    item = std::move(queue_->items.front());
    queue_->items.pop_front();
  }
  if (item.call) {
    serve(*item.call);
  } else {
    ignore(guard(item.posted));
  }
  return true;
}

// Whoever stops serving while calls wait has the loop come back for them.
void Apartment::wakeForRest() {
  const std::lock_guard<std::mutex> lock(queue_->mutex);
  if (!queue_->items.empty()) loop_->wake();
}

bool Apartment::pumpPending() {
  requireOwner();
  std::size_t waiting = 0;
  {
    const std::lock_guard<std::mutex> lock(queue_->mutex);
    waiting = queue_->items.size();
  }
  if (waiting == 0) return false;
  // Not those that come meanwhile: a flood of calls must not keep the handles from being looked at.
  while (waiting-- > 0 && serveNext()) {
  }
  wakeForRest();
  return true;
}

std::size_t Apartment::waitPumping(Waitables handles) {
  requireOwner();
  if (handles.empty()) throw StatusError(E_INVALIDARG);
  // Entered from inside a call, the wake-up for the calls behind that one has been taken already.
  wakeForRest();
  for (;;) {
    if (const auto index = loop_->wait(handles)) return *index;
    pumpPending();
  }
}

void Apartment::run() {
  requireOwner();
  wakeForRest();
  while (!takeQuit()) {
    static_cast<void>(loop_->wait({}));
    pumpPending();
  }
}

bool Apartment::takeQuit() {
  const std::lock_guard<std::mutex> lock(queue_->mutex);
  return std::exchange(queue_->quit, false);
}

void Apartment::quit() {
  change([](Queue& queue) {
    queue.quit = true;
    return true;
  });
}

void Apartment::addStub(std::shared_ptr<Stub> stub) {
  stubs_.push_front(std::move(stub));
  stubs_.front()->self = stubs_.begin();
  stubs_.front()->listed = true;
}

void Apartment::removeStub(const std::shared_ptr<Stub>& stub) noexcept {
  if (!stub->listed) return;
  stub->listed = false;
  stubs_.erase(stub->self);
  stub->drop();
}

void Apartment::dropStub(std::shared_ptr<Stub> stub) noexcept {
  if (isOwner()) {
    removeStub(stub);
    return;
  }
  try {
    post([this, stub = std::move(stub)] { removeStub(stub); });
  } catch (const std::bad_alloc&) {  // NOLINT(bugprone-empty-catch): then it goes when the apartment ends
  }
}

void Apartment::end() noexcept {
  std::deque<Item> refused;
  {
    const std::lock_guard<std::mutex> lock(queue_->mutex);
    queue_->ended = true;
    refused.swap(queue_->items);
  }
  // The loop is the host's, and may go with this scope.
  while (queue_->waking.load(std::memory_order_acquire) != 0) std::this_thread::yield();
  for (const Item& item : refused) {
    if (item.call) answer(*item.call, std::make_exception_ptr(StatusError(RPC_E_DISCONNECTED)));
  }
  refused.clear();
  while (!stubs_.empty()) removeStub(std::shared_ptr<Stub>(stubs_.front()));
}

ApartmentScope::ApartmentScope(std::unique_ptr<MessageLoop> loop)
    : outermost_(!ownApartment),
      apartment_(outermost_ ? std::make_shared<Apartment>(std::move(loop)) : ownApartment) {
  if (!outermost_) return;
  ownApartment = apartment_;
  MainApartment& holder = mainApartment();
  const std::lock_guard<std::mutex> lock(holder.mutex);
  if (!holder.apartment) holder.apartment = apartment_;
}

ApartmentScope::~ApartmentScope() {
  if (!outermost_) return;
  {
    MainApartment& holder = mainApartment();
    const std::lock_guard<std::mutex> lock(holder.mutex);
    if (holder.apartment == apartment_) holder.apartment = nullptr;
  }
  apartment_->end();
  ownApartment = nullptr;
}

}  // namespace forgeyard
