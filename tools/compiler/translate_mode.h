#pragma once

#include "typelib/settings.h"

namespace forgeyard {

// What a compiler takes and makes in one mode of translation.
struct TranslateMode {
  const char16_t* option;
  const char16_t* input;   // patterns
  const char16_t* output;  // suffix
};

inline constexpr TranslateMode kToObject{u"-c", u".c;.i;.ii;.m;.cc;.cxx;.cpp;.C;.s;.S", u".obj"};
inline constexpr TranslateMode kToAssembler{u"-S", u".c;.i;.ii;.m;.cc;.cxx;.cpp;.C", u".s"};

// The mode of the settings. Any number but 0 stops at assembler source.
const TranslateMode& translateModeOf(ICcSettings& settings);

// Writes Input and Output of a compiler as they follow from its TranslateMode. Throws StatusError.
void updateCompilerFiles(ICcSettings& settings);

}  // namespace forgeyard
