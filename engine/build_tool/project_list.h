#pragma once

#include "engine/build_tool/build_tool.h"

namespace forgeyard {

// The collection view of the build tool's projects: made anew for each get, it holds no data of its own.
class CProjects final : public ComObject<Dual<IProjects>> {
 public:
  explicit CProjects(CBuildTool* tool) : tool_(tool) {}

  HRESULT get_Item(const Variant& index, Ref<IProject>* out) override;
  HRESULT Add(IProject* project) override;
  HRESULT get_Count(std::int32_t* value) override;
  HRESULT get__NewEnum(Ref<IUnknown>* out) override;
  HRESULT Delete(IProject* project) override;
  HRESULT New(Ref<IProject>* out) override;

 private:
  Ref<CBuildTool> tool_;
};

}  // namespace forgeyard
