#include "tools/compiler/translate_mode.h"

#include "tools/settings/value_of.h"

namespace forgeyard {

const TranslateMode& translateModeOf(ICcSettings& settings) {
  return valueOf(settings, &ICcSettings::get_TranslateMode) == 0 ? kToObject : kToAssembler;
}

void updateCompilerFiles(ICcSettings& settings) {
  const TranslateMode& mode = translateModeOf(settings);
  check(settings.put_Input(mode.input));
  check(settings.put_Output(mode.output));
}

}  // namespace forgeyard
