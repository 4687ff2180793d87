#pragma once

#include <utility>

#include "model/folders/folder.h"

namespace forgeyard {

// The files of a folder as a collection: a view that holds its folder, made anew for each client.
class CSourceFiles final : public ComObject<Dual<ISourceFiles>> {
 public:
  explicit CSourceFiles(Ref<CFolder> folder) : folder_(std::move(folder)) {}

  HRESULT get_Item(const Variant& index, Ref<ISourceFile>* out) override;
  HRESULT Add(ISourceFile* file) override;
  HRESULT get_Count(std::int32_t* value) override;
  HRESULT get__NewEnum(Ref<IUnknown>* out) override;
  HRESULT Delete(ISourceFile* file) override;
  HRESULT New(Ref<ISourceFile>* out) override;
  HRESULT AddMulti(IEnumUnknown* files) override;
  HRESULT RemoveMulti(IEnumUnknown* files) override;

 private:
  Ref<CFolder> folder_;
};

}  // namespace forgeyard
