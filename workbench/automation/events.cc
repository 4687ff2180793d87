#include "workbench/automation/events.h"

#include <array>

#include "platform/text/fold.h"
#include "typelib/buildtool.h"
#include "typelib/configuration.h"
#include "workbench/automation/late_bound.h"
#include "workbench/base/failure.h"
#include "workbench/base/nearest.h"

namespace forgeyard::workbench {

namespace {

Variant objectOf(IDispatch* object) {
  return object ? Variant(Ref<IDispatch>(object)) : Variant::null();
}

enum class BuildEvent : std::uint8_t { Start, End };

class BuildSink final : public ComObject<IBuildToolE> {
 public:
  BuildSink(BuildEvent wanted, EventHandler handler) : wanted_(wanted), handler_(std::move(handler)) {}

  HRESULT OnBuildStart(e_task task, std::int32_t* cancel) override {
    if (wanted_ != BuildEvent::Start) return S_OK;
    const Variant argument(static_cast<std::int32_t>(task));
    bool refused = false;
    ignore(handler_(std::span(&argument, 1)).toBool(&refused));
    if (refused) *cancel = 1;
    return S_OK;
  }
  HRESULT OnBuildEnd() override {
    if (wanted_ == BuildEvent::End) handler_({});
    return S_OK;
  }

 private:
  BuildEvent wanted_;
  EventHandler handler_;
};

class PropertySink final : public ComObject<IPropertyNotifySink> {
 public:
  // The description outlives the object that it describes.
  PropertySink(const TypeInfo* type, EventHandler handler) : type_(type), handler_(std::move(handler)) {}

  HRESULT OnChanged(std::int32_t id) override {
    const Member* member = type_ ? type_->find(id) : nullptr;
    const std::array arguments{Variant(BString::fromNarrow(member ? member->name : "")), Variant(id)};
    handler_(arguments);
    return S_OK;
  }
  HRESULT OnRequestEdit(std::int32_t) override { return S_OK; }

 private:
  const TypeInfo* type_;
  EventHandler handler_;
};

enum class ConfigurationEvent : std::uint8_t { New, Deleted };

class ProjectSink final : public ComObject<IProjectE> {
 public:
  ProjectSink(ConfigurationEvent wanted, EventHandler handler)
      : wanted_(wanted), handler_(std::move(handler)) {}

  HRESULT OnNewConfiguration(IConfiguration* created, IConfiguration* basedOn) override {
    const std::array arguments{objectOf(created), objectOf(basedOn)};
    if (wanted_ == ConfigurationEvent::New) handler_(arguments);
    return S_OK;
  }
  HRESULT OnDeletedConfiguration(IConfiguration* old) override {
    const Variant argument = objectOf(old);
    if (wanted_ == ConfigurationEvent::Deleted) handler_(std::span(&argument, 1));
    return S_OK;
  }

 private:
  ConfigurationEvent wanted_;
  EventHandler handler_;
};

struct EventKind {
  const char* name;
  Guid source;
  HRESULT (*connect)(IUnknown* object, EventHandler handler, Advice& advice);
};

template <class Event, class Sink, auto... Wanted>
HRESULT connectSink(IUnknown* object, EventHandler handler, Advice& advice) {
  return advice.connect<Event>(object, make<Sink>(Wanted..., std::move(handler)).get());
}

HRESULT connectProperties(IUnknown* object, EventHandler handler, Advice& advice) {
  const TypeInfo* type = nullptr;
  if (const Ref<IDispatch> face = query<IDispatch>(object)) ignore(face->GetTypeInfo(&type));
  return advice.connect<IPropertyNotifySink>(object, make<PropertySink>(type, std::move(handler)).get());
}

constexpr std::array kEvents{
    EventKind{"OnBuildStart", IBuildToolE::iid, connectSink<IBuildToolE, BuildSink, BuildEvent::Start>},
    EventKind{"OnBuildEnd", IBuildToolE::iid, connectSink<IBuildToolE, BuildSink, BuildEvent::End>},
    EventKind{"OnChanged", IPropertyNotifySink::iid, connectProperties},
    EventKind{"OnNewConfiguration", IProjectE::iid,
              connectSink<IProjectE, ProjectSink, ConfigurationEvent::New>},
    EventKind{"OnDeletedConfiguration", IProjectE::iid,
              connectSink<IProjectE, ProjectSink, ConfigurationEvent::Deleted>},
};

bool fires(IUnknown* object, const EventKind& kind) {
  const Ref<IConnectionPointContainer> points = query<IConnectionPointContainer>(object);
  Ref<IConnectionPoint> point;
  return points && succeeded(points->FindConnectionPoint(kind.source, &point));
}

}  // namespace

std::vector<std::string> eventNames(IUnknown* object) {
  std::vector<std::string> names;
  for (const EventKind& kind : kEvents) {
    if (fires(object, kind)) names.emplace_back(kind.name);
  }
  return names;
}

Advice subscribe(IUnknown* object, std::string_view event, EventHandler handler) {
  const std::string what = typeNameOf(object) + "." + std::string(event);
  for (const EventKind& kind : kEvents) {
    if (!equalFoldedAscii(std::string_view(kind.name), event) || !fires(object, kind)) continue;
    Advice advice;
    const HRESULT status = kind.connect(object, std::move(handler), advice);
    if (failed(status)) throw MemberError(status, what, describe(status));
    return advice;
  }
  throw MemberError(CONNECT_E_NOCONNECTION, what,
                    "there is no such event." + suggestion(event, eventNames(object), "events"));
}

}  // namespace forgeyard::workbench
