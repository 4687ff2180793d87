#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/com/object.h"
#include "repository/connection.h"
#include "repository/deleted_items.h"
#include "repository/item_states.h"
#include "typelib/repository.h"
#include "typelib/vss_database.h"

namespace forgeyard::repository {

// The class VSSDatabase: a connection to one repository with what is known of it. Its items hold references
// to it. Apartment thread only.
class Database final : public ComObject<Dual<IVSSDatabase>, IRepositoryErrors, IRepositoryBatch,
                                        IRepositoryHistory, IRepositoryAdministration> {
 public:
  HRESULT Open(const BString& srcSafeIni, const BString& userName, const BString& password) override;
  HRESULT get_SrcSafeIni(BString* value) override;
  HRESULT get_VSSItem(const BString& spec, bool deleted, Ref<IVSSItem>* out) override;

  const std::string& lastError() const override { return lastError_; }

  HRESULT BeginBatch(const BString& spec) override;
  HRESULT EndBatch() override;

  HRESULT versions(const BString& spec, std::vector<RepositoryVersion>* out) override;
  HRESULT locks(const BString& spec, std::vector<RepositoryLock>* out) override;
  HRESULT contents(const BString& spec, std::size_t limit, std::string* out) override;

  HRESULT create(const std::string& directory) override;
  HRESULT describe(std::string* address, std::string* user, std::int64_t* newestRevision) override;
  HRESULT tryWriting(const BString& spec, std::vector<std::string>* steps) override;

  // Throws RepositoryError while no database is open.
  Connection& connection();
  ItemStates& states() { return *states_; }
  DeletedItems& deletedItems() { return deleted_; }
  // The local files of items, by relative path.
  std::map<std::string, BString>& localSpecs() { return localSpecs_; }

  // The body of an operation of the database or of an item: turns what it throws into a status, and keeps the
  // message as the last error.
  template <class Body>
  HRESULT attempt(Body&& body) {
    return guard([&] {
      try {
        body();
      } catch (const RepositoryError& error) {
        lastError_ = error.what();
        throw StatusError(E_FAIL);
      } catch (const StatusError&) {
        throw;
      } catch (const std::exception& error) {
        lastError_ = error.what();
        throw;
      }
    });
  }

 private:
  void open(const std::string& iniFile, Logon logon);

  BString srcSafeIni_;
  std::unique_ptr<Connection> connection_;
  std::unique_ptr<ItemStates> states_;
  DeletedItems deleted_;
  std::map<std::string, BString> localSpecs_;
  std::string lastError_;
};

}  // namespace forgeyard::repository
