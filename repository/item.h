#pragma once

#include <optional>
#include <string>

#include "platform/com/object.h"
#include "repository/deleted_items.h"
#include "repository/items_reader.h"
#include "typelib/vss_database.h"

namespace forgeyard::repository {

class Database;
class IncomingFile;

// An item of a database: a path, with what is known of it. Apartment thread only.
class Item final : public ComObject<Dual<IVSSItem>> {
 public:
  Item(Database* database, std::string path, bool folder);
  Item(Database* database, std::string path, const DeletedItem& deleted);

  HRESULT get_Spec(BString* value) override;
  HRESULT get_Deleted(bool* value) override;
  HRESULT put_Deleted(bool value) override;
  HRESULT get_VersionNumber(std::int32_t* value) override;
  HRESULT get_IsCheckedOut(std::int32_t* value) override;
  HRESULT get_LocalSpec(BString* value) override;
  HRESULT put_LocalSpec(const BString& value) override;
  HRESULT get_Items(Ref<IVSSItems>* out) override;

  HRESULT Get(const BString& local, std::int32_t flags) override;
  HRESULT Checkout(const BString& comment, const BString& local, std::int32_t flags) override;
  HRESULT Checkin(const BString& comment, const BString& local, std::int32_t flags) override;
  HRESULT UndoCheckout(const BString& local, std::int32_t flags) override;
  HRESULT Add(const BString& local, const BString& comment, std::int32_t flags, Ref<IVSSItem>* item) override;
  HRESULT NewSubproject(const BString& name, const BString& comment, Ref<IVSSItem>* item) override;
  HRESULT Destroy() override;

 private:
  // The file that a local path means: the path itself, or for an empty one the item's own LocalSpec.
  std::string localFile(const BString& local) const;
  void requireLive() const;
  FileFacts fetch(IncomingFile& incoming) const;
  void remove(bool forEver);
  void recover();
  void destroyDeleted() const;

  Ref<Database> database_;
  std::string path_;
  bool folder_ = false;
  std::optional<svn_revnum_t> deletedAfter_;  // the newest revision that has the item; none while it is live
};

}  // namespace forgeyard::repository
