#pragma once

#include <cstddef>
#include <forward_list>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/registry/registry_keys.h"
#include "platform/registry/registry_line.h"

namespace forgeyard {

class Registry;

// What went wrong with the registry file: a whole sentence with the file and the reason in it.
struct RegistryError {
  std::string message;
  int code = 0;  // errno
};

// One open key of a Registry; valid as long as that and its content. Names compare without regard to case.
class RegistryKey {
 public:
  // The text of a value; the unnamed one for an empty name. Nothing if the key has no such value.
  std::optional<std::string> value(std::string_view name = {}) const;
  // In the order of the file, as spelled there; the unnamed value is "".
  std::vector<std::string> valueNames() const;
  // The names one step down, in the order of the file.
  std::vector<std::string> subkeys() const;

 private:
  friend class Registry;
  RegistryKey(const Registry& registry, std::string path) : registry_(&registry), path_(std::move(path)) {}

  const Registry* registry_;
  std::string path_;
};

// The user's registry as it was when it was read: one small UTF-8 text file that is meant to be edited by
// hand.
//
//   ; a comment, kept as it stands
//   [HKEY_CURRENT_USER\Software\Korvel]
//   @=the unnamed value
//   Home=\home\u\forgeyard
//
// Blanks around a name and a text don't count. %20 %09 %0A %0D %00 %25 %3D %3B %40 %5B %5D stand for the
// character with that number, which is written so only where it would be taken for something else; any other
// percent sign is itself. A line that is none of these is kept and ignored, and values behind a damaged
// section line belong to no key. Of two values with one name the last counts; sections with one name are one
// key.
//
// Keys are named below HKEY_CURRENT_USER, or in full beginning with "HKEY_". A key exists if the file has a
// section for it or for a key below it. A Registry is moved, not copied, and keys become invalid with that.
class Registry {
 public:
  Registry() = default;
  Registry(Registry&&) noexcept = default;
  Registry& operator=(Registry&&) noexcept = default;

  // $FORGEYARD_REGISTRY, else $XDG_CONFIG_HOME/forgeyard/registry, else ~/.config/forgeyard/registry. Empty
  // if the environment names none of them.
  static std::string defaultFile();

  // Any text is a registry; see above for what is ignored.
  static Registry parse(std::string_view text);

  // Reads the file in one piece. A file that doesn't exist is an empty registry and no error. On any other
  // failure the registry is empty and `error`, if given, says why.
  static Registry load(const std::string& file, std::optional<RegistryError>* error = nullptr);

  // Changes the file: takes the lock, reads, lets `change` work, and puts the new content in the file's place
  // in one step, so that a reader finds the old or the new one, whole, and of two writers neither loses
  // anything. Unchanged content writes nothing. Makes missing directories. `change` runs with the lock held;
  // if it throws nothing is written. Waits for other writers.
  static std::optional<RegistryError> update(const std::string& file,
                                             const std::function<void(Registry&)>& change);

  // Nothing if there is no such key.
  std::optional<RegistryKey> open(std::string_view key) const;

  // Short for opening the key and reading the value.
  std::optional<std::string> value(std::string_view key, std::string_view name) const;

  // Each keeps the place of what is there already and adds what is new at the end of its key or of the file.
  void createKey(std::string_view key);
  void setValue(std::string_view key, std::string_view name, std::string_view text);
  // False if there is nothing to remove.
  bool removeValue(std::string_view key, std::string_view name);
  // With all keys below it.
  bool removeKey(std::string_view key);

  // The content of the file.
  std::string text() const;

 private:
  friend class RegistryKey;

  void addText(std::string_view text);
  RegistryLine makeLine(std::string text);
  const RegistryLine* findValue(std::string_view fullKey, std::string_view name) const;
  std::optional<std::size_t> placeForValue(std::string_view fullKey) const;
  void insert(std::size_t place, std::string text);
  template <class Visit>
  void forEachValue(std::string_view fullKey, Visit&& visit) const;

  std::forward_list<std::string> storage_;  // the file's text and every line made since
  std::vector<RegistryLine> lines_;         // point into storage_
  std::string lineEnd_ = "\n";
};

}  // namespace forgeyard
