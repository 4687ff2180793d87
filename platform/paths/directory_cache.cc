#include "platform/paths/directory_cache.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <memory>

#include "platform/text/fold.h"
#include "platform/text/narrow.h"

namespace forgeyard {
namespace {

constexpr char32_t kNoBreakSpace = 0xA0;

char32_t hashedForm(char32_t c) {
  return c == kNoBreakSpace ? U' ' : foldCharacter(c);
}

// Equal for all names that may stand for one another.
std::size_t foldedHash(std::string_view name) {
  std::uint64_t hash = 0xCBF29CE484222325u;
  for (std::size_t at = 0; at < name.size();) {
    const DecodedCharacter next = decodeCharacter(name, at);
    hash = (hash ^ hashedForm(next.codePoint)) * 0x100000001B3u;
    at += next.length;
  }
  return hash;
}

// Blanks match no-break spaces one way only: a name on disk with a no-break space in it isn't meant by a
// blank.
bool standsFor(std::string_view wanted, std::string_view onDisk) {
  std::size_t left = 0;
  std::size_t right = 0;
  while (left < wanted.size() && right < onDisk.size()) {
    const DecodedCharacter a = decodeCharacter(wanted, left);
    const DecodedCharacter b = decodeCharacter(onDisk, right);
    const bool blank = a.codePoint == kNoBreakSpace && b.codePoint == U' ';
    if (!blank && foldCharacter(a.codePoint) != foldCharacter(b.codePoint)) return false;
    left += a.length;
    right += b.length;
  }
  return left == wanted.size() && right == onDisk.size();
}

// A change right after the listing could leave the directory's time as it is, since that moves in steps: of
// some milliseconds, or of up to two seconds on file systems that keep whole seconds.
bool isOldEnough(std::int64_t seconds, std::int64_t nanoseconds) {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  const std::int64_t age = (now.tv_sec - seconds) * 1000 + (now.tv_nsec - nanoseconds) / 1'000'000;
  return age > (nanoseconds == 0 ? 2500 : 50);
}

struct CloseDirectory {
  void operator()(DIR* directory) const noexcept { closedir(directory); }
};

}  // namespace

std::optional<DirectoryCache::Stamp> DirectoryCache::stampOf(const std::string& directory) {
  struct stat status {};
  if (stat(directory.c_str(), &status) != 0 || !S_ISDIR(status.st_mode)) return std::nullopt;
  return Stamp{status.st_dev, status.st_ino, status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
}

std::optional<std::string> DirectoryCache::find(const std::string& directory, std::string_view name) {
  const Listing* listing = current(directory);
  if (!listing) return std::nullopt;
  const std::size_t hash = foldedHash(name);
  const std::string* best = nullptr;
  auto entry = std::lower_bound(listing->byHash.begin(), listing->byHash.end(),
                                std::pair<std::size_t, std::size_t>(hash, 0));
  for (; entry != listing->byHash.end() && entry->first == hash; ++entry) {
    const std::string& candidate = listing->names[entry->second];
    if (candidate == name) return candidate;
    if ((!best || candidate < *best) && standsFor(name, candidate)) best = &candidate;
  }
  return best ? std::optional(*best) : std::nullopt;
}

const DirectoryCache::Listing* DirectoryCache::current(const std::string& directory) {
  const std::optional<Stamp> stamp = stampOf(directory);
  const auto known = byDirectory_.find(directory);
  if (known != byDirectory_.end()) {
    const auto listing = known->second;
    if (stamp && listing->settled && listing->stamp == *stamp) {
      recent_.splice(recent_.begin(), recent_, listing);
      return &recent_.front();
    }
    forget(listing);
  }
  std::optional<Listing> listing;
  if (stamp) listing = read(directory, *stamp);
  if (!listing) return nullptr;
  keep(std::move(*listing));
  return &recent_.front();
}

// The stamp is older than the listing, so that a change in between makes the listing outdated and not wrong.
std::optional<DirectoryCache::Listing> DirectoryCache::read(const std::string& directory,
                                                            const Stamp& stamp) {
  const std::unique_ptr<DIR, CloseDirectory> stream(opendir(directory.c_str()));
  if (!stream) return std::nullopt;
  ++listings_;
  Listing listing;
  listing.directory = directory;
  listing.stamp = stamp;
  listing.settled = isOldEnough(stamp.seconds, stamp.nanoseconds);
  while (const dirent* entry = readdir(stream.get())) {
    listing.byHash.emplace_back(foldedHash(entry->d_name), listing.names.size());
    listing.names.emplace_back(entry->d_name);
  }
  std::sort(listing.byHash.begin(), listing.byHash.end());
  return listing;
}

void DirectoryCache::keep(Listing listing) {
  cost_ += listing.cost();
  recent_.push_front(std::move(listing));
  byDirectory_.emplace(recent_.front().directory, recent_.begin());
  while (cost_ > maximumNames_ && recent_.size() > 1) forget(std::prev(recent_.end()));
}

void DirectoryCache::forget(std::list<Listing>::iterator listing) {
  cost_ -= listing->cost();
  byDirectory_.erase(listing->directory);
  recent_.erase(listing);
}

}  // namespace forgeyard
