#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace forgeyard {

// Between the backslash paths of the model and the paths of this system:
//   `\home\u\p`    `/home/u/p`
//   `src\a.c`      `src/a.c`
//   `X:\p`         what the table of drives says for X, then `/p`; `Z:` is `/` unless the table says
//   otherwise
// A slash in a model path is a separator too. A value object: copy it freely, change it before it is shared.
class HostPaths {
 public:
  HostPaths();

  // `letter` in either case; `hostDirectory` is absolute. False, with nothing changed, if either is not so.
  // An empty directory takes the drive out of the table.
  bool mapDrive(char letter, std::string_view hostDirectory);
  // Takes the drive in the form "C:", as the registry names it.
  bool mapDrive(std::string_view name, std::string_view hostDirectory);
  // The directory of a drive; nothing if the drive is not in the table.
  std::optional<std::string> drive(char letter) const;

  // The host's spelling of a model path. Nothing for a path that can name no file here: a drive that is not
  // in the table, a network share, a text with a null character or no text at all. No file is looked at.
  std::optional<std::string> toHost(std::string_view modelPath) const;

  enum class Spelling {
    Plain,  // `\home\u\p` always: the one spelling of every file
    Drive,  // with the drive whose directory covers the most of the path; plain if only `/` covers it
  };
  // The model's spelling of a host path. Nothing for a host path that has a backslash in it, which the model
  // can't spell, with the reason in `error` if that is given; nothing for an empty path.
  std::optional<std::string> toModel(std::string_view hostPath, std::string* error = nullptr,
                                     Spelling spelling = Spelling::Plain) const;

 private:
  std::string withDrive(std::string_view hostPath) const;

  std::array<std::optional<std::string>, 26> drives_;  // by letter; "" is the root
};

}  // namespace forgeyard
