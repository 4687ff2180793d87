#include "workbench/import/compiler_options.h"

#include <algorithm>
#include <array>

namespace forgeyard::workbench {

namespace {

using Role = OptionRole;
using Value = OptionValue;

// The first that fits counts; with a value that may be joined, a longer name comes before its beginning.
constexpr std::array kForms{
    OptionForm{"-c", Value::None, Role::Dropped},
    OptionForm{"-o", Value::Both, Role::Dropped},
    OptionForm{"-MD", Value::None, Role::Dropped},
    OptionForm{"-MMD", Value::None, Role::Dropped},
    OptionForm{"-MP", Value::None, Role::Dropped},
    OptionForm{"-MF", Value::Both, Role::Dropped},
    OptionForm{"-MT", Value::Both, Role::Dropped},
    OptionForm{"-MQ", Value::Both, Role::Dropped},
    OptionForm{"-fdiagnostics-color", Value::None, Role::Dropped},
    OptionForm{"-fdiagnostics-color=", Value::Joined, Role::Dropped},
    OptionForm{"-fcolor-diagnostics", Value::None, Role::Dropped},
    OptionForm{"-Wl,", Value::Joined, Role::Dropped},
    OptionForm{"-Wp,", Value::Joined, Role::Preprocessor},
    OptionForm{"-Wa,", Value::Joined, Role::Assembler},
    OptionForm{"-isystem", Value::Both, Role::Path},
    OptionForm{"-iquote", Value::Both, Role::Path},
    OptionForm{"-idirafter", Value::Both, Role::Path},
    OptionForm{"-isysroot", Value::Both, Role::Path},
    OptionForm{"-include", Value::Both, Role::Path},
    OptionForm{"-imacros", Value::Both, Role::Path},
    OptionForm{"--sysroot=", Value::Joined, Role::Path},
    OptionForm{"--sysroot", Value::Apart, Role::Path},
    OptionForm{"-specs=", Value::Joined, Role::Path},
    OptionForm{"-B", Value::Both, Role::Path},
    OptionForm{"-I", Value::Both, Role::Include},
    OptionForm{"-D", Value::Both, Role::Define},
    OptionForm{"-U", Value::Both, Role::Undefine},
    OptionForm{"-L", Value::Both, Role::Dropped},
    OptionForm{"-l", Value::Both, Role::Dropped},
    OptionForm{"-Xlinker", Value::Apart, Role::Dropped},
    OptionForm{"-Xpreprocessor", Value::Apart, Role::Kept},
    OptionForm{"-Xassembler", Value::Apart, Role::Kept},
    OptionForm{"-Xclang", Value::Apart, Role::Kept},
    OptionForm{"--param", Value::Apart, Role::Kept},
    OptionForm{"-x", Value::Both, Role::Kept},
    OptionForm{"-arch", Value::Apart, Role::Kept},
    OptionForm{"-target", Value::Apart, Role::Kept},
    OptionForm{"-G", Value::Apart, Role::Kept},
    OptionForm{"-A", Value::Apart, Role::Kept},
    OptionForm{"-O", Value::Joined, Role::Optimisation},
    OptionForm{"-O", Value::None, Role::Optimisation},
    OptionForm{"-f", Value::Joined, Role::Feature},
    OptionForm{"-m", Value::Joined, Role::Machine},
    OptionForm{"-g", Value::None, Role::Debug},
    OptionForm{"-g0", Value::None, Role::Debug},
    OptionForm{"-W", Value::Joined, Role::Warning},
    OptionForm{"-w", Value::None, Role::Warning},
};

// Which of them a link needs too: by their beginnings.
constexpr std::array<std::string_view, 11> kLinkToo{"-pthread",  "-fsanitize=", "-fopenmp", "-flto",
                                                    "-fprofile", "--coverage",  "-pg",      "-m32",
                                                    "-m64",      "-mx32",       "--sysroot"};

}  // namespace

const OptionForm* formOfOption(const std::string& word) {
  const auto fits = [&](const OptionForm& form) {
    if (word == form.name) return form.value != Value::Joined;
    return word.starts_with(form.name) && (form.value == Value::Joined || form.value == Value::Both);
  };
  const auto found = std::find_if(kForms.begin(), kForms.end(), fits);
  return found == kForms.end() ? nullptr : &*found;
}

bool isForLinkToo(const std::string& word) {
  return std::any_of(kLinkToo.begin(), kLinkToo.end(),
                     [&](std::string_view option) { return word.starts_with(option); });
}

}  // namespace forgeyard::workbench
