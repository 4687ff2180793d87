#include "repository/items.h"

#include <algorithm>

#include "platform/com/enumerators.h"
#include "repository/database.h"
#include "repository/item.h"
#include "repository/item_path.h"
#include "repository/items_reader.h"

namespace forgeyard::repository {

Items::Items(Database* database, const std::string& folder) : database_(database), folder_(folder) {
  for (const auto& [name, node] : childrenOf(database->connection(), folder))
    children_.emplace_back(name, node.folder);
}

Ref<IVSSItem> Items::item(std::size_t position) const {
  const auto& [name, folder] = children_[position];
  return make<Item>(database_.get(), joined(folder_, name), folder);
}

std::size_t Items::positionOf(const Variant& index) const {
  if (const auto* name = index.get<BString>()) {
    const auto found = std::lower_bound(children_.begin(), children_.end(), std::pair(name->narrow(), false));
    if (found == children_.end() || found->first != name->narrow())
      throw RepositoryError(specOf(folder_) + " has no item " + name->narrow());
    return static_cast<std::size_t>(found - children_.begin());
  }
  std::int32_t number = 0;
  check(index.toInt32(&number));
  if (number < 1 || static_cast<std::size_t>(number) > children_.size())
    throw RepositoryError(specOf(folder_) + " has no item " + std::to_string(number));
  return static_cast<std::size_t>(number) - 1;
}

HRESULT Items::get_Item(const Variant& index, Ref<IVSSItem>* out) {
  *out = nullptr;
  return database_->attempt([&] { *out = item(positionOf(index)); });
}

HRESULT Items::get_Count(std::int32_t* value) {
  *value = static_cast<std::int32_t>(children_.size());
  return S_OK;
}

HRESULT Items::get__NewEnum(Ref<IUnknown>* out) {
  *out = nullptr;
  return guard([&] {
    std::vector<Variant> values;
    for (std::size_t at = 0; at < children_.size(); ++at) values.emplace_back(Ref<IDispatch>(item(at)));
    *out = make<ListEnumerator<IEnumVARIANT>>(std::move(values));
  });
}

}  // namespace forgeyard::repository
