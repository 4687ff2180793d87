#pragma once

#include <utility>

#include "model/core/project_core.h"

namespace forgeyard {

// The configurations of a project as a collection: a view that holds its project, made anew for each client.
class CConfigurations final : public ComObject<Dual<IConfigurations>> {
 public:
  explicit CConfigurations(Ref<ProjectCore> project) : project_(std::move(project)) {}

  HRESULT get_Item(const BString& name, Ref<IConfiguration>* out) override;
  HRESULT get_Count(std::int32_t* value) override;
  HRESULT get__NewEnum(Ref<IUnknown>* out) override;
  // Success also where nothing is deleted: the last one, a stranger, the active one during a build.
  HRESULT Delete(IConfiguration* configuration) override;
  // Names aren't tested here. Both references may be null.
  HRESULT New(const BString& name, IConfiguration* basedOn, Ref<IConfiguration>* out) override;

 private:
  Ref<IConfiguration> make(const BString& name, IConfiguration* basedOn) const;
  void add(IConfiguration& configuration, IConfiguration* basedOn);
  void refuseWhileBuilding() const;

  Ref<ProjectCore> project_;
};

}  // namespace forgeyard
