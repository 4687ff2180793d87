#include "spawner/report.h"

#include <string.h>
#include <sys/wait.h>

#include "spawner/kernel.h"

namespace forgeyard {

void report(Line& line) noexcept {
  line.add('\n');
  const char* rest = line.text();
  unsigned long left = line.size();
  while (left > 0) {
    const long written = kernel::write(STDERR_FILENO, rest, left);
    if (written == -EINTR) continue;
    if (written <= 0) return;
    rest += written;
    left -= static_cast<unsigned long>(written);
  }
}

void reportCannotStart(const char* name, const char* why) noexcept {
  Line line;
  line.add("TideSpawn: cannot start \"").add(name).add("\": ").add(why);
  report(line);
}

void reportSignal(const char* name, int waitStatus) noexcept {
  const int signal = WTERMSIG(waitStatus);
  // Unlike strsignal they look at no locale.
  const char* const description = ::sigdescr_np(signal);
  Line line;
  line.add("TideSpawn: \"").add(name).add("\" was killed by signal ");
  line.addNumber(static_cast<unsigned long>(signal));
  line.add(" (").add(description ? description : "unknown").add(')');
  if (WCOREDUMP(waitStatus)) line.add(", core dumped");
  report(line);
}

const char* errorText(int error) noexcept {
  const char* const text = ::strerrordesc_np(error);
  return text ? text : "unknown error";
}

}  // namespace forgeyard
