#pragma once

#include <cstdint>
#include <string_view>

namespace forgeyard::console {

// Which lines of a build are shown under -q: what tools print, and what tells of a failure. Left out are the
// module's own lines of a build that goes well: separators, project and component headers, commands,
// "Exit Code: 0 (0x0).", "All outputs up to date." and results that are OK. The command of a tool that prints
// something or fails is shown ahead of its first line, so that the line can be placed.
class QuietFilter {
 public:
  enum class Verdict : std::uint8_t {
    Show,
    Hold,  // a command: kept, to be shown ahead of the next line that is shown
    Drop,
    Forget,  // as Drop, and what is kept is dropped too
  };

  Verdict judge(std::u16string_view line);

 private:
  // Where the next line stands: outside of a tool's run, at its command, or behind that.
  enum class Place : std::uint8_t { Between, Command, Tool };

  Verdict judgeOwnLine(std::u16string_view line);

  Place place_ = Place::Between;
};

}  // namespace forgeyard::console
