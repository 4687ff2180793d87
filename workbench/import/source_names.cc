#include "workbench/import/source_names.h"

#include <algorithm>
#include <array>

namespace forgeyard::workbench {

namespace {

struct Extension {
  std::string_view text;
  FileKind kind;
  bool cxx;
};
constexpr std::array kExtensions{
    Extension{".c", FileKind::Compiled, false},  Extension{".cc", FileKind::Compiled, true},
    Extension{".cpp", FileKind::Compiled, true}, Extension{".cxx", FileKind::Compiled, true},
    Extension{".c++", FileKind::Compiled, true}, Extension{".C", FileKind::Compiled, true},
    Extension{".S", FileKind::Compiled, false},  Extension{".s", FileKind::Assembled, false},
    Extension{".h", FileKind::Header, false},    Extension{".hh", FileKind::Header, false},
    Extension{".hpp", FileKind::Header, false},  Extension{".hxx", FileKind::Header, false},
    Extension{".h++", FileKind::Header, false},  Extension{".H", FileKind::Header, false},
    Extension{".inl", FileKind::Header, false},  Extension{".tcc", FileKind::Header, false},
    Extension{".ipp", FileKind::Header, false},
};

const Extension* knownExtension(std::string_view path) {
  const std::string_view text = fileExtension(path);
  const auto found = std::find_if(kExtensions.begin(), kExtensions.end(),
                                  [&](const Extension& known) { return known.text == text; });
  return found == kExtensions.end() ? nullptr : &*found;
}

bool isControl(char c) {
  return static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
}

}  // namespace

std::string_view fileName(std::string_view path) {
  return path.substr(path.rfind('/') + 1);
}

std::string_view fileExtension(std::string_view path) {
  const std::string_view name = fileName(path);
  const std::size_t dot = name.rfind('.');
  return dot == name.npos ? std::string_view() : name.substr(dot);
}

std::string_view fileStem(std::string_view path) {
  const std::string_view name = fileName(path);
  return name.substr(0, name.size() - fileExtension(name).size());
}

std::string_view directoryName(std::string_view path) {
  const std::size_t slash = path.rfind('/');
  return slash == path.npos ? std::string_view() : path.substr(0, slash);
}

FileKind kindOfFile(std::string_view path) {
  const Extension* known = knownExtension(path);
  return known ? known->kind : FileKind::Other;
}

bool isCxx(std::string_view path) {
  const Extension* known = knownExtension(path);
  return known && known->cxx;
}

std::optional<std::string> unusableBecause(std::string_view path, FileKind kind) {
  if (path.find('\\') != path.npos) return "a backslash separates directories in a project";
  if (kind == FileKind::Header) return std::nullopt;
  if (path.find('"') != path.npos || std::any_of(path.begin(), path.end(), isControl))
    return "a command can't carry a quote, a tab or a line end in a name";
  if (path.find("  ") != path.npos || path.find(" /") != path.npos || path.find("/ ") != path.npos)
    return "a command can't carry a name that begins or ends with a blank or has two in a row";
  if (path.find("$(") != path.npos) return "\"$(\" begins a macro in a command";
  if (kind == FileKind::Assembled && path.find(',') != path.npos)
    return "a comma ends a name in an assembler's command";
  return std::nullopt;
}

}  // namespace forgeyard::workbench
