#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <list>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace forgeyard {

// The names in directories, searched without regard to case. A listing is kept for as long as the directory's
// identity and change time stay the same, so that a name that is not there costs one look at the directory
// and no listing. Bounded: the listings used longest ago go first. Used by one thread at a time.
class DirectoryCache {
 public:
  static constexpr std::size_t kDefaultNames = 200'000;

  // `maximumNames`: of all listings together; a single directory may hold more.
  explicit DirectoryCache(std::size_t maximumNames = kDefaultNames) : maximumNames_(maximumNames) {}
  DirectoryCache(const DirectoryCache&) = delete;
  DirectoryCache& operator=(const DirectoryCache&) = delete;

  // The name in `directory` that is `name`, or is it but for case, with a no-break space in `name` also
  // standing for a blank; of several such the first in byte order. Nothing if there is none or the directory
  // can't be read.
  std::optional<std::string> find(const std::string& directory, std::string_view name);

  // How often a directory has been read, for tests and measurements.
  std::size_t listings() const noexcept { return listings_; }

 private:
  struct Stamp {
    dev_t device = 0;
    ino_t inode = 0;
    std::int64_t seconds = 0;
    std::int64_t nanoseconds = 0;
    friend bool operator==(const Stamp&, const Stamp&) = default;
  };
  struct Listing {
    std::string directory;
    Stamp stamp;
    bool settled = false;  // any change since it was read shows in the stamp
    std::vector<std::string> names;
    std::vector<std::pair<std::size_t, std::size_t>>
        byHash;  // hash of the folded name, index in names; sorted

    std::size_t cost() const noexcept { return names.size() + 1; }
  };

  const Listing* current(const std::string& directory);
  static std::optional<Stamp> stampOf(const std::string& directory);
  std::optional<Listing> read(const std::string& directory, const Stamp& stamp);
  void keep(Listing listing);
  void forget(std::list<Listing>::iterator listing);

  std::size_t maximumNames_;
  std::size_t cost_ = 0;
  std::size_t listings_ = 0;
  std::list<Listing> recent_;  // used last first
  std::unordered_map<std::string_view, std::list<Listing>::iterator> byDirectory_;
};

}  // namespace forgeyard
