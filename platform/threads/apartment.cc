#include "platform/threads/apartment.h"

#include <condition_variable>
#include <deque>
#include <mutex>

namespace forgeyard {

// Lies on the stack of the thread that waits for the answer. The queue's mutex guards what the owner writes,
// so the owner is done with the object by the time that the waiting thread sees the answer.
struct Apartment::Call {
  void (*invoke)(void*);
  void* argument;
  bool answered = false;
  std::exception_ptr error;
  std::condition_variable answer;
};

struct Apartment::Queue {
  struct Item {
    Call* call = nullptr;  // or else
    std::function<void()> posted;
  };

  std::mutex mutex;
  std::deque<Item> items;
  bool ended = false;
  bool quit = false;
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

bool Apartment::post(std::function<void()> work) {
  const std::lock_guard<std::mutex> lock(queue_->mutex);
  if (queue_->ended) return false;
  queue_->items.push_back({nullptr, std::move(work)});
  // While there were items before, whoever serves those sees this one too. The loop is not woken after the
  // end.
  if (queue_->items.size() == 1) loop_->wake();
  return true;
}

void Apartment::callOwner(void (*invoke)(void*), void* argument) {
  Call call{invoke, argument, false, nullptr, {}};
  {
    std::unique_lock<std::mutex> lock(queue_->mutex);
    if (queue_->ended) throw StatusError(RPC_E_DISCONNECTED);
    queue_->items.push_back({&call, nullptr});
    if (queue_->items.size() == 1) loop_->wake();
    call.answer.wait(lock, [&] { return call.answered; });
  }
  if (call.error) std::rethrow_exception(std::move(call.error));
}

void Apartment::answer(Call& call, std::exception_ptr error) noexcept {
  const std::lock_guard<std::mutex> lock(queue_->mutex);
  call.error = std::move(error);
  call.answered = true;
  call.answer.notify_one();
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
  Queue::Item item;
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
  const std::lock_guard<std::mutex> lock(queue_->mutex);
  if (queue_->ended) return;
  queue_->quit = true;
  loop_->wake();
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
  std::deque<Queue::Item> refused;
  {
    const std::lock_guard<std::mutex> lock(queue_->mutex);
    queue_->ended = true;
    refused.swap(queue_->items);
  }
  for (const Queue::Item& item : refused) {
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
