#include "tests/hosts/console/console_sandbox.h"

namespace forgeyard::console {

void ConsoleSandbox::makeProject() const {
  must({"new", "p.nqp"});
  must({"folder", "add", "src", "--filter", "c"});
  must({"folder", "add", "inc", "--filter", "h"});
  must({"component", "add", "cc", "cc"});
  must({"component", "add", "cmdline", "link"});
  must({"connect", "src", "cc"});
  must({"connect", "cc", "link"});
  must({"config", "add", "Small", "--from", "Default"});
}

std::map<std::string, std::filesystem::file_time_type> ConsoleSandbox::everything() const {
  std::map<std::string, std::filesystem::file_time_type> files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(path("..")))
    files.emplace(entry.path(), entry.last_write_time());
  return files;
}

std::string ConsoleSandbox::refused(Lines arguments) const {
  const std::string before = exists("p.nqp") ? content("p.nqp") : "";
  std::string line;
  for (const std::string& word : arguments) line += word + " ";
  const Outcome outcome = forgeyard(std::move(arguments));
  EXPECT_EQ(outcome.exitCode, 2) << line << outcome.output << outcome.errors;
  EXPECT_EQ(outcome.output, "") << line;
  EXPECT_TRUE(outcome.errors.starts_with("forgeyard: ")) << line << outcome.errors;
  EXPECT_EQ(exists("p.nqp") ? content("p.nqp") : "", before) << line;
  return outcome.errors;
}

}  // namespace forgeyard::console
