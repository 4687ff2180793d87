#include "hosts/console/base/report.h"

#include <cstdio>
#include <string>

namespace forgeyard::console {

namespace {

Reporter currentReporter = nullptr;

void toStandardError(std::string_view message, LineEnd end) {
  std::string text = "forgeyard: ";
  for (const char c : message) {
    text += c;
    if (c == '\n') text += "  ";
  }
  if (end == LineEnd::Closed) text += '\n';
  // In one piece, so that messages of several processes don't mix.
  std::fwrite(text.data(), 1, text.size(), stderr);
}

void report(ReportKind kind, std::string_view message, LineEnd end) {
  while (message.ends_with('\n')) message.remove_suffix(1);
  if (!currentReporter || !currentReporter(kind, message)) toStandardError(message, end);
}

}  // namespace

void complain(std::string_view message, LineEnd end) {
  report(end == LineEnd::Open ? ReportKind::Question : ReportKind::Message, message, end);
}

bool complainOfAll(const std::vector<std::string>& messages) {
  for (const std::string& message : messages) complain(message);
  return !messages.empty();
}

void complainOfFailure(std::string_view message) {
  report(ReportKind::Error, message, LineEnd::Closed);
}

void setReporter(Reporter reporter) {
  currentReporter = reporter;
}

}  // namespace forgeyard::console
