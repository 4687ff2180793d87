#pragma once

#include <algorithm>
#include <cstdint>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "platform/com/object.h"

namespace forgeyard {

// Events: a source keeps the sinks that were advised on one of its event interfaces and calls them in the
// order in which they came.
struct IConnectionPoint : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("B196B286-BAB4-101A-B69C-00AA00341D07");

  virtual HRESULT GetConnectionInterface(Guid* iid) = 0;
  // Keeps a reference to the sink until Unadvise; E_NOINTERFACE when it hasn't got the event interface.
  virtual HRESULT Advise(IUnknown* sink, std::uint32_t* cookie) = 0;
  virtual HRESULT Unadvise(std::uint32_t cookie) = 0;
};

struct IConnectionPointContainer : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("B196B284-BAB4-101A-B69C-00AA00341D07");

  // CONNECT_E_NOCONNECTION for an event interface that this object doesn't fire.
  virtual HRESULT FindConnectionPoint(const Guid& iid, Ref<IConnectionPoint>* out) = 0;
};

// Told when a property changes, by the identifier that the member has in its interface.
struct IPropertyNotifySink : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("9BFBBC02-EFF1-101A-84ED-00AA00341D07");

  virtual HRESULT OnChanged(std::int32_t id) = 0;
  virtual HRESULT OnRequestEdit(std::int32_t id) = 0;
};

// The sinks of one event interface. An object of its own, so that it may outlive the source while a client
// holds it.
template <class Event>
class ConnectionPoint final : public ComObject<IConnectionPoint> {
 public:
  HRESULT GetConnectionInterface(Guid* iid) override {
    *iid = Event::iid;
    return S_OK;
  }
  HRESULT Advise(IUnknown* sink, std::uint32_t* cookie) override {
    *cookie = 0;
    return guard([&] {
      Ref<Event> event = query<Event>(sink);
      if (!event) return E_NOINTERFACE;
      sinks_.emplace_back(lastCookie_ + 1, std::move(event));
      *cookie = ++lastCookie_;
      return S_OK;
    });
  }
  HRESULT Unadvise(std::uint32_t cookie) override {
    const auto found = find(cookie);
    if (found == sinks_.end()) return CONNECT_E_NOCONNECTION;
    const Ref<Event> released = std::move(found->second);
    sinks_.erase(found);
    return S_OK;
  }

  bool empty() const { return sinks_.empty(); }
  // Calls body(sink) for each sink that is connected at this moment, until one answers false (a body without
  // an answer sees all). Sinks may come and go meanwhile: one that came isn't called yet, one that has gone,
  // or whose source has, isn't called any more.
  template <class Body>
  void fire(Body&& body) {
    const Ref<ConnectionPoint> self(this);
    const auto sinks = sinks_;
    for (const auto& [cookie, sink] : sinks) {
      if (find(cookie) == sinks_.end()) continue;
      if constexpr (std::is_void_v<decltype(body(*sink))>) {
        body(*sink);
      } else {
        if (!body(*sink)) return;
      }
    }
  }
  void clear() { std::exchange(sinks_, {}); }

 private:
  auto find(std::uint32_t cookie) {
    const auto found = std::lower_bound(sinks_.begin(), sinks_.end(), cookie,
                                        [](const auto& sink, std::uint32_t c) { return sink.first < c; });
    return found != sinks_.end() && found->first == cookie ? found : sinks_.end();
  }

  std::vector<std::pair<std::uint32_t, Ref<Event>>> sinks_;  // cookies ascend
  std::uint32_t lastCookie_ = 0;
};

// The container over a fixed list of event interfaces; stands in ComObject's list. Its sinks are let go when
// the object ends, also those of a point that a client still holds.
template <class... Events>
class ConnectionPoints : public IConnectionPointContainer {
 public:
  using Base = IConnectionPointContainer;
  static constexpr Guid iid = IConnectionPointContainer::iid;

  HRESULT FindConnectionPoint(const Guid& wanted, Ref<IConnectionPoint>* out) override {
    *out = nullptr;
    static_cast<void>(
        ((wanted == Events::iid && (*out = Ref<IConnectionPoint>(point<Events>()), true)) || ...));
    return *out ? S_OK : CONNECT_E_NOCONNECTION;
  }

 protected:
  ~ConnectionPoints() { dropSinks(); }

  template <class Event>
  ConnectionPoint<Event>* point() const {
    return std::get<Ref<ConnectionPoint<Event>>>(points_).get();
  }
  // Sends IPropertyNotifySink::OnChanged to every sink.
  void notify(std::int32_t id) const {
    point<IPropertyNotifySink>()->fire([id](IPropertyNotifySink& sink) { ignore(sink.OnChanged(id)); });
  }
  void dropSinks() { (point<Events>()->clear(), ...); }

 private:
  std::tuple<Ref<ConnectionPoint<Events>>...> points_{make<ConnectionPoint<Events>>()...};
};

// Advises a sink on a source and remembers it; ends the advice on disconnect() or destruction.
class Advice {
 public:
  Advice() = default;
  Advice(Advice&& other) noexcept : point_(std::move(other.point_)), cookie_(other.cookie_) {}
  Advice& operator=(Advice&& other) noexcept {
    disconnect();
    point_ = std::move(other.point_);
    cookie_ = other.cookie_;
    return *this;
  }
  ~Advice() { disconnect(); }

  template <class Event>
  HRESULT connect(IUnknown* source, Event* sink) {
    disconnect();
    const Ref<IConnectionPointContainer> container = query<IConnectionPointContainer>(source);
    if (!container) return E_NOINTERFACE;
    Ref<IConnectionPoint> point;
    HRESULT status = container->FindConnectionPoint(Event::iid, &point);
    if (succeeded(status)) status = point->Advise(sink, &cookie_);
    if (succeeded(status)) point_ = std::move(point);
    return status;
  }
  void disconnect() noexcept {
    if (const Ref<IConnectionPoint> point = std::exchange(point_, nullptr)) ignore(point->Unadvise(cookie_));
  }
  explicit operator bool() const { return static_cast<bool>(point_); }

 private:
  Ref<IConnectionPoint> point_;
  std::uint32_t cookie_ = 0;
};

}  // namespace forgeyard
