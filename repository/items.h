#pragma once

#include <string>
#include <utility>
#include <vector>

#include "platform/com/object.h"
#include "typelib/vss_database.h"

namespace forgeyard::repository {

class Database;

// The children of a folder, read when the collection is made. Apartment thread only.
class Items final : public ComObject<Dual<IVSSItems>> {
 public:
  // Throws RepositoryError.
  Items(Database* database, const std::string& folder);

  HRESULT get_Item(const Variant& index, Ref<IVSSItem>* out) override;
  HRESULT get_Count(std::int32_t* value) override;
  HRESULT get__NewEnum(Ref<IUnknown>* out) override;

 private:
  Ref<IVSSItem> item(std::size_t position) const;
  std::size_t positionOf(const Variant& index) const;

  Ref<Database> database_;
  std::string folder_;
  std::vector<std::pair<std::string, bool>> children_;  // name, and whether it is a folder
};

}  // namespace forgeyard::repository
