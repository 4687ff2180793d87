#pragma once

#include <vector>

#include "model/connections/connection_graph.h"

namespace forgeyard {

class ProjectCore;

// The connections of a project, in order of creation. Lives as long as its project and knows it until
// detach(). Main thread only.
class CConnections final : public ComObject<Dual<IConnections>, IPersistStream> {
 public:
  explicit CConnections(ProjectCore& project) : project_(&project) {}

  // IConnections
  HRESULT get_Item(IComponent* lhs, Ref<IConnection>* out) override;
  HRESULT get_Count(std::int32_t* value) override;
  HRESULT get__NewEnum(Ref<IUnknown>* out) override;
  HRESULT Delete(IConnection* connection) override;
  HRESULT New(IComponent* rhs, IComponent* lhs, Ref<IConnection>* out) override;
  HRESULT Close() override;

  // IPersistStream
  HRESULT GetClassID(Guid* out) override;
  HRESULT IsDirty() override;
  HRESULT Load(IStream* stream) override;
  HRESULT Save(IStream* stream, bool clearDirty) override;

  // The project goes.
  void detach() { project_ = nullptr; }
  // Whether the component is the source end of a connection.
  bool feedsAnother(IComponent* component);
  // Whether the component is on a circle of connections or downstream of one. Only a file from elsewhere can
  // bring one in.
  bool fedByCircle(IComponent* component);
  // Deletes every connection with the component at either end.
  void deleteAllOf(IUnknown* component);

 private:
  WeakRef<IProject> weakProject() const;
  // Up to date.
  ConnectionGraph& graph();
  void changed();

  ProjectCore* project_;
  std::vector<Ref<CConnection>> list_;
  ConnectionGraph graph_;
  bool changed_ = false;
};

}  // namespace forgeyard
