#include "hosts/console/services/main_frame.h"

#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <utility>

#include "hosts/console/base/report.h"

namespace forgeyard::console {

namespace {

bool canAsk() {
  return ::isatty(STDIN_FILENO) == 1 && ::isatty(STDERR_FILENO) == 1;
}

// For its life time Ctrl-C ends the program, as it does before anything has begun, also where stop signals
// are waited for otherwise.
class StopSignalsLetThrough {
 public:
  StopSignalsLetThrough() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&signals, signal);
    ::pthread_sigmask(SIG_UNBLOCK, &signals, &before_);
  }
  StopSignalsLetThrough(const StopSignalsLetThrough&) = delete;
  StopSignalsLetThrough& operator=(const StopSignalsLetThrough&) = delete;
  ~StopSignalsLetThrough() { ::pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

 private:
  sigset_t before_{};
};

// Whether the line that the user types begins with a y. The end of the input counts as no.
bool readYes() {
  const StopSignalsLetThrough interruptible;
  int first = EOF;
  for (int c = std::getchar(); c != EOF && c != '\n'; c = std::getchar()) {
    if (first == EOF && c != ' ') first = c;
  }
  return first == 'y' || first == 'Y';
}

}  // namespace

HRESULT MainFrame::GetWindow(WindowHandle* out) {
  *out = 1;
  return S_OK;
}

HRESULT MainFrame::GetActiveView(Ref<IUnknown>* out) {
  *out = activeView_;
  return activeView_ ? S_OK : E_FAIL;
}

HRESULT MainFrame::ShowMessage(const BString& text, const BString& title, MessageButtons buttons, MessageIcon,
                               MessageAnswer* answer) {
  return guard([&] {
    if (listener_) listener_(title, text);
    const std::string message = text.narrow();
    if (buttons == MessageButtons::Ok) {
      complain(title.narrow() + ": " + message);
      *answer = MessageAnswer::Ok;
      return;
    }
    const bool agreed = agrees(message, title.narrow());
    if (buttons == MessageButtons::YesNo) {
      *answer = agreed ? MessageAnswer::Yes : MessageAnswer::No;
    } else {
      *answer = agreed ? MessageAnswer::Ok : MessageAnswer::Cancel;
    }
  });
}

bool MainFrame::agrees(const std::string& question, const std::string& title) {
  if (yes_) {
    if (!quiet_) complain(title + ": " + question + " Yes (-y).");
    return true;
  }
  if (!canAsk()) {
    complain(title + ": " + question + " No: there is no terminal to ask on; -y answers with yes.");
    refused_ = true;
    return false;
  }
  complain(title + ": " + question + " [y/N] ", LineEnd::Open);
  return readYes();
}

HRESULT MainFrame::RunDialog(const BString& title, std::span<DialogField> fields, bool* ok) {
  return guard([&] {
    const auto texts = std::exchange(dialog_, std::nullopt);
    *ok = texts.has_value();
    if (!texts) return complain(title.narrow() + ": cancelled, since nothing was given to fill it in with.");
    for (std::size_t i = 0; i < std::min(fields.size(), texts->size()); ++i) fields[i].text = (*texts)[i];
  });
}

HRESULT MainFrame::ChooseFile(const BString& title, const BString&, const BString&, BString* path, bool* ok) {
  return guard([&] {
    const auto file = std::exchange(file_, std::nullopt);
    *ok = file.has_value();
    if (!file) return complain(title.narrow() + ": cancelled, since no file was named.");
    *path = *file;
  });
}

}  // namespace forgeyard::console
