#pragma once

#include "platform/com/object.h"
#include "typelib/configuration.h"

namespace forgeyard::test {

// A configuration of which nothing is implemented, for tests that need only some members, and further
// interfaces.
template <class... Others>
class StubConfiguration : public ComObject<Dual<IConfiguration>, Others...> {
 public:
  HRESULT get_Name(BString*) override { return E_NOTIMPL; }
  HRESULT put_Name(const BString&) override { return E_NOTIMPL; }
  HRESULT get_OutputDirectory(BString*) override { return E_NOTIMPL; }
  HRESULT put_OutputDirectory(const BString&) override { return E_NOTIMPL; }
  HRESULT get_IntermediateDirectory(BString*) override { return E_NOTIMPL; }
  HRESULT put_IntermediateDirectory(const BString&) override { return E_NOTIMPL; }
  HRESULT BeforeSettings() override { return E_NOTIMPL; }
  HRESULT AfterSettings(std::int32_t) override { return E_NOTIMPL; }
  HRESULT get_UpdateFileDependencies(std::int32_t*) override { return E_NOTIMPL; }
  HRESULT put_UpdateFileDependencies(std::int32_t) override { return E_NOTIMPL; }
  HRESULT get_BuildDirty(std::int32_t*) override { return E_NOTIMPL; }
  HRESULT put_BuildDirty(std::int32_t) override { return E_NOTIMPL; }
  HRESULT put_Project(IProject*) override { return E_NOTIMPL; }
};

}  // namespace forgeyard::test
