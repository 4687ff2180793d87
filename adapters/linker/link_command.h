#pragma once

#include <string>
#include <vector>

#include "adapters/common/host_spelling.h"

namespace forgeyard {

enum class LinkFormat { Executable, Binary, SRecords };

// A command of the linker component, taken apart. Paths are host paths.
struct LinkCommand {
  LinkFormat format = LinkFormat::Executable;
  bool zeroBss = false;                  // /z
  bool crossReferences = false;          // /m
  bool warnCommon = false;               // /wm
  std::string globalPointer;             // /gp; empty: where the layout puts it
  std::string relocations;               // /rmips=; empty: not wanted
  std::vector<std::string> symbols;      // /e, NAME=VALUE
  std::vector<std::string> directories;  // /l
  std::vector<std::string> options;      // those of the GNU linker
  std::string script;
  std::string output;
  std::string symbolFile;  // empty: not wanted
  std::string mapFile;     // likewise
  std::string error;       // what is wrong with the command; the rest is then not to be used
};

// `words` is what stands behind the program's own name: switches, then
// @SCRIPT,OUTPUT[,SYMBOLS[,MAP]].
LinkCommand readLinkCommand(const std::vector<std::string>& words, HostSpelling& spelling);

}  // namespace forgeyard
