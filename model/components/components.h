#pragma once

#include <utility>

#include "model/core/project_core.h"

namespace forgeyard {

// The components of a project as a collection: a view that holds its project, made anew for each client.
class CComponents final : public ComObject<Dual<IComponents>> {
 public:
  explicit CComponents(Ref<ProjectCore> project) : project_(std::move(project)) {}

  HRESULT get_Count(std::int32_t* value) override;
  // General failure for a project that isn't loaded.
  HRESULT Add(IDispatch* component) override;
  HRESULT get_Item(const Variant& id, Ref<IDispatch>* out) override;
  HRESULT get__NewEnum(Ref<IUnknown>* out) override;
  // Takes it off the list and no more: IProject::DeleteComponent removes a component with all it has.
  HRESULT Delete(IDispatch* component) override;
  HRESULT New(IDispatch* component) override;

 private:
  void add(IComponent& component);
  void makeElement(IComponent& component, const BString& element);

  Ref<ProjectCore> project_;
};

}  // namespace forgeyard
