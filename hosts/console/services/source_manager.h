#pragma once

#include "platform/com/object.h"
#include "typelib/host.h"

namespace forgeyard::console {

// The source manager of a host without editors: there is nothing to save. The token stands for that.
class SourceManager final : public ComObject<ISourceManager> {
 public:
  HRESULT Reserved() override { return S_OK; }
  HRESULT SaveAll(Ref<IUnknown>* token) override {
    return guard([&] { *token = make<Token>(); });
  }

 private:
  class Token final : public ComObject<IUnknown> {};
};

}  // namespace forgeyard::console
