#pragma once

#include <array>
#include <string_view>

#include "workbench/diagnostics/diagnostic.h"

// The lines by which tools tell faults, as tables: what GNU compilers, assemblers and linkers print, and the
// programs around them. diagnostic.cc tries them on lines.
namespace forgeyard::workbench::diagnostic_forms {

using View = std::u16string_view;

struct Word {
  View text;
  Severity severity;
};

// What stands before the colon in front of a message. The longer of two that begin alike comes first.
inline constexpr std::array kWords{
    Word{u"fatal error", Severity::Error},
    Word{u"internal compiler error", Severity::Error},
    Word{u"error", Severity::Error},
    Word{u"Fatal error", Severity::Error},
    Word{u"Internal error", Severity::Error},
    Word{u"Error", Severity::Error},
    Word{u"ERROR", Severity::Error},
    Word{u"warning", Severity::Warning},
    Word{u"Warning", Severity::Warning},
    Word{u"WARNING", Severity::Warning},
    Word{u"note", Severity::Note},
    Word{u"NOTE", Severity::Note},
    Word{u"Info", Severity::Note},
    Word{u"sorry, unimplemented", Severity::Error},
};

// Programs by the end of their names, which may have a path and the name of a machine in front.
inline constexpr std::array<View, 18> kPrograms{
    u"gcc", u"g++",    u"cc",      u"c++",  u"cpp",         u"cc1",   u"cc1plus", u"collect2", u"as",
    u"ld",  u"ld.bfd", u"ld.gold", u"lto1", u"lto-wrapper", u"clang", u"clang++", u"ar",       u"make"};
// Those of them that say nothing as long as all is well, and the programs around the tools.
inline constexpr std::array<View, 12> kSilentPrograms{u"as",      u"ld",     u"ld.bfd",   u"ld.gold",
                                                      u"objcopy", u"strip",  u"ranlib",   u"TideSpawn",
                                                      u"gnu-cc",  u"gnu-as", u"TRAMLINK", u"collect2"};

// A form of a line. In a pattern a blank stands for one or more, and
//   %s a word of kWords      %l, %c numbers of line and column
//   %f a file                %b a file without a blank in its name     %k a linker script
//   %j an object that a source was made to, which is named behind it
//   %p a program             %q a program that is silent else
//   %o an offset in a section, "(.text+0x5)"
//   %t the message, to the end               %* anything
//   %m where the message begins if not at %t
// The first form that fits a line says what it is; the severity is that of %s where the form has it.
struct Form {
  View pattern;
  Severity severity = Severity::Error;
  bool consequence = false;
  bool ignored = false;
};

constexpr Form plain(View pattern) {
  return {pattern};
}
constexpr Form note(View pattern) {
  return {pattern, Severity::Note};
}
constexpr Form consequence(View pattern) {
  return {pattern, Severity::Error, true};
}
constexpr Form nothing(View pattern) {
  return {pattern, Severity::Note, false, true};
}

inline constexpr std::array kForms{
    // Compilers, assemblers and what make reads
    note(u"In file included from %f:%l:%c%*"),
    note(u"In file included from %f:%l%*"),
    note(u" from %f:%l:%c%*"),
    note(u" from %f:%l%*"),
    note(u"%f:%l:%c: %mrequired from %t"),
    plain(u"%q: %f:%l: %s: %t"),
    plain(u"%f:%l:%c: %s: %t"),
    plain(u"%f:%l: %s: %t"),
    plain(u"%f:%l: *** %t"),
    plain(u"%f: %s: %mend of file %t"),
    // What ends a run behind its real faults
    consequence(u"%p: error: ld returned %l exit status%*"),
    consequence(u"%q: final link failed%*"),
    consequence(u"%q: failed to set dynamic section sizes%*"),
    consequence(u"%p: *** %t"),
    consequence(u"%p[%l]: *** %t"),
    // Linkers. The function is told by the line behind as well.
    nothing(u"%q: %f: in function %t"),
    nothing(u"%b: in function %t"),
    nothing(u"%q: skipping incompatible %t"),
    nothing(u"%q: use the --help option %t"),
    nothing(u"%q: total time in %t"),
    nothing(u"%q: data size %t"),
    nothing(u"%q:%f: file format not recognized; treating as linker script"),
    plain(u"%p: %s: %t"),
    plain(u"%q: %s: %t"),
    plain(u"%q: %b: %s: %t"),
    plain(u"%q: %f:%o: %s: %t"),
    plain(u"%f:%o: %s: %t"),
    plain(u"%q: %b:%o: %t"),
    plain(u"%q: %j:%f:%l: %t"),
    plain(u"%q: %f:%l: %t"),
    plain(u"%q: %f:%o: %t"),
    plain(u"%q:%f:%l: %t"),
    plain(u"%q: %b: %t"),
    plain(u"%q: %t"),
    plain(u"%f:%o: %mundefined reference to %t"),
    plain(u"%f:%l: %mundefined reference to %t"),
    plain(u"%f:%o: %mmultiple definition of %t"),
    plain(u"%f:%l: %mmultiple definition of %t"),
    plain(u"%f:%o: %mmore undefined references to %t"),
    plain(u"%f:%o: %mrelocation truncated to fit%t"),
    plain(u"%k:%l: %t"),
    // Anything else that tells a severity
    plain(u"%b: %s: %t"),
    plain(u"%s: %t"),
};

}  // namespace forgeyard::workbench::diagnostic_forms
