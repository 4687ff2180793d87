#include "tools/command_line/cmd_line.h"

#include <optional>
#include <string>

#include "tools/command_line/command_check.h"

namespace forgeyard {

namespace {

std::u16string joined(const StringSet& names, std::u16string_view separator) {
  std::u16string text;
  for (const BString& name : names.list()) {
    if (&name != &names.list().front()) text += separator;
    text += name.view();
  }
  return text;
}

}  // namespace

std::pair<BString, BString> CCmdLine::newDialogTexts() const {
  return {u"New Command Line", u"&Name of the new command line component:"};
}

bool CCmdLine::gathersOnce() {
  return valueOf(*toolSettings(), &ICmdLineSettings::get_RunOnce) != 0;
}

void CCmdLine::DoBuild(e_btr* status) {
  writeHeader();
  if (!commandReady()) {
    *status = E_BTR_ERROR;
    return;
  }
  *status = gathersOnce() ? BuildOnce() : buildEachFile([](const BString&) {});
  clearBuildDirty(*status);
}

bool CCmdLine::ValidateCommand() {
  const BString command = valueOf(*toolSettings(), &ICmdLineSettings::get_Command);
  const std::optional<BString> fault = commandFault(command, gathersOnce(), macros());
  if (!fault) return true;
  say(BString::concat(u"ERROR: ", *fault, u" Use \"Project, Settings\" to correct."));
  if (!command.empty()) say(BString::concat(u"Command Line: ", command));
  return false;
}

BString CCmdLine::BuildOnceCommand() {
  const Ref<ICmdLineSettings> settings = toolSettings();
  BString separator = valueOf(*settings, &ICmdLineSettings::get_FileSeparator);
  if (separator.empty()) separator = u" ";
  macros().set(Macro::FileFullPathList, joined(inputFiles(), separator));
  macros().set(Macro::OutFileFullPathList, joined(outputFiles(), separator));
  return macros().expand(valueOf(*settings, &ICmdLineSettings::get_Command));
}

}  // namespace forgeyard
