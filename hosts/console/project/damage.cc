#include "hosts/console/project/damage.h"

#include "hosts/console/base/failure.h"
#include "hosts/console/base/report.h"

namespace forgeyard::console {

bool reportOmissions(IProject& project, const ProjectFile& file) {
  const Ref<IProjectReport> report = query<IProjectReport>(&project);
  if (!report) return false;
  for (const LoadOmission& omission : report->omissions())
    complain(file.host + ": " + omission.what + " was left out: " + omission.why + ".");
  return !report->omissions().empty();
}

void requireConsent(Session& session, const ProjectFile& file, const std::string& question) {
  MessageAnswer answer = MessageAnswer::No;
  check(session.host().frame().ShowMessage(
      BString::fromNarrow("A part of the file could not be read, see above. " + question), u"Damaged project",
      MessageButtons::YesNo, MessageIcon::Exclamation, &answer));
  if (answer != MessageAnswer::Yes) throw Failure(file.host + " was left as it is.");
}

}  // namespace forgeyard::console
