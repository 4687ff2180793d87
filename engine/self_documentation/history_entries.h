#pragma once

#include <map>
#include <vector>

#include "platform/com/object.h"
#include "typelib/self_documenting.h"

namespace forgeyard {

// Rows of a history with their version, as automation sees them: in the order of the table and, beside that,
// by key. Never changes. Main thread only.
class CEntries final : public ComObject<Dual<IEntries>> {
 public:
  struct Row {
    BString key;
    BString text;
    std::int32_t version = 0;
  };

  explicit CEntries(std::vector<Row> rows);

  // IEntries
  HRESULT get_Item(const Variant& index, Ref<IEntry>* out) override;
  HRESULT get_Count(std::int32_t* value) override;
  HRESULT get__NewEnum(Ref<IUnknown>* out) override;
  HRESULT get_Keys(Ref<ISimpleCollection>* out) override;
  HRESULT EntriesWithKey(const BString& key, Ref<IEntries>* out) override;

 private:
  std::vector<Row> rows_;
  std::map<BString, std::vector<Row>> byKey_;
};

}  // namespace forgeyard
