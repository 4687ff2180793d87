#include "adapters/common/whole_file.h"

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <unistd.h>

namespace forgeyard {
namespace {

int writeNew(const std::string& file, std::string_view content, int flags) {
  const int fd = ::open(file.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | flags, 0666);
  if (fd < 0) return errno;
  int error = writeAll(fd, content);
  if (::close(fd) != 0 && error == 0) error = errno;
  if (error != 0) ::unlink(file.c_str());
  return error;
}

}  // namespace

int writeAll(int fd, std::string_view content) {
  while (!content.empty()) {
    const ssize_t written = ::write(fd, content.data(), content.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return errno;
    content.remove_prefix(static_cast<std::size_t>(written));
  }
  return 0;
}

std::optional<std::string> readWholeFile(const std::string& file) {
  const int fd = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return std::nullopt;
  std::string content;
  char bytes[16384];
  ssize_t size = 0;
  while ((size = ::read(fd, bytes, sizeof bytes)) > 0 || (size < 0 && errno == EINTR)) {
    if (size > 0) content.append(bytes, static_cast<std::size_t>(size));
  }
  const int error = errno;
  ::close(fd);
  if (size == 0) return content;
  errno = error;
  return std::nullopt;
}

std::string readBeginning(const std::string& file, std::size_t size) {
  const int fd = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return {};
  std::string content(size, '\0');
  const ssize_t got = ::read(fd, content.data(), size);
  ::close(fd);
  content.resize(got < 0 ? 0 : static_cast<std::size_t>(got));
  return content;
}

int writeWholeFile(const std::string& file, std::string_view content) {
  return writeNew(file, content, O_TRUNC);
}

int replaceFile(const std::string& file, std::string_view content) {
  const std::string directory = file.substr(0, file.rfind('/') + 1);
  const std::string temporary = directory + ".forgeyard-" + std::to_string(::getpid());
  ::unlink(temporary.c_str());  // left by a process of the same number that was killed
  const int error = writeNew(temporary, content, O_EXCL);
  if (error != 0) return error;
  if (::rename(temporary.c_str(), file.c_str()) == 0) return 0;
  const int renameError = errno;
  ::unlink(temporary.c_str());
  return renameError;
}

}  // namespace forgeyard
