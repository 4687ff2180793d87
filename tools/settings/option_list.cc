#include "tools/settings/option_list.h"

#include "platform/text/split.h"

namespace forgeyard {

void ExpandOptionPair(const OptionPair& option, std::u16string& command) {
  forEachInList(std::u16string_view(option.value), [&](std::u16string_view piece) {
    const bool quote = piece.find(u' ') != piece.npos && !piece.starts_with(u'"') && !piece.ends_with(u'"');
    command += option.prefix;
    if (quote) command += u'"';
    command += piece;
    if (quote) command += u'"';
    command += u' ';
  });
}

}  // namespace forgeyard
