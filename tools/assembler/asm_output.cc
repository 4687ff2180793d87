#include "tools/assembler/asm_output.h"

#include "tools/settings/value_of.h"

namespace forgeyard {

void updateAssemblerOutput(IAsmSettings& settings) {
  std::u16string output = u".obj";
  if (valueOf(settings, &IAsmSettings::get_CreateSymbolFile)) output += u";.sym";
  if (valueOf(settings, &IAsmSettings::get_CreateListingFile)) output += u";.lst";
  check(settings.put_Output(output));
}

}  // namespace forgeyard
