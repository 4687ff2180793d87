#pragma once

#include "engine/self_documentation/self_documenting.h"
#include "platform/com/object.h"
#include "platform/com/weak_ref.h"
#include "platform/storage/records/persist.h"
#include "platform/storage/records/record_fields.h"
#include "typelib/connection.h"
#include "typelib/project.h"

namespace forgeyard {

// The output of one component feeds another. Owned by the project's connections; holds both ends until Close
// and keeps the project weakly. Main thread only.
class CConnection final : public ComObject<Dual<IConnection>, IPersistStream, SelfDocumenting> {
 public:
  CConnection() = default;
  explicit CConnection(WeakRef<IProject> project) : project_(std::move(project)) {}

  // IConnection
  HRESULT get_From(Ref<IComponent>* out) override;
  HRESULT get_To(Ref<IComponent>* out) override;
  HRESULT Init(IComponent* from, IComponent* to) override;
  HRESULT Close() override;

  // IPersistStream. Load looks the ends up in the project by their ids and connects them untested.
  HRESULT GetClassID(Guid* out) override;
  HRESULT IsDirty() override;
  HRESULT Load(IStream* stream) override;
  HRESULT Save(IStream* stream, bool clearDirty) override;

  // Its record: the ids of both ends.
  static void describe(RecordFields& fields, std::int32_t& from, std::int32_t& to);

  // Borrowed; null before Init and after Close.
  IComponent* from() const { return from_.get(); }
  IComponent* to() const { return to_.get(); }
  // Their identities, which say whether two references are to one component. They stay when the ends go.
  IUnknown* fromIdentity() const { return fromIdentity_; }
  IUnknown* toIdentity() const { return toIdentity_; }

  // What is derived from the ends of connections is valid for one generation: each connection that gets or
  // loses its ends begins another. One count for the module.
  static std::uint64_t generation();

 private:
  const History& history() const override;
  void setEnds(Ref<IComponent> from, Ref<IComponent> to);

  WeakRef<IProject> project_;
  Ref<IComponent> from_;
  Ref<IComponent> to_;
  IUnknown* fromIdentity_ = nullptr;
  IUnknown* toIdentity_ = nullptr;
  bool changed_ = true;
};

}  // namespace forgeyard
