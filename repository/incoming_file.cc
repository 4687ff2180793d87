#include "repository/incoming_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "repository/svn_error.h"

namespace forgeyard::repository {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kMemoryLimit = std::size_t{1} << 20;
constexpr mode_t kWriteBits = S_IWUSR | S_IWGRP | S_IWOTH;

[[noreturn]] void fail(const std::string& file, const char* what, int code) {
  throw RepositoryError(file + " " + what + ": " + std::generic_category().message(code));
}

// Read from the system's files: to ask for it by umask() would change it for other threads.
mode_t currentMask() {
  static const mode_t mask = [] {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
      if (word == "Umask:" && status >> word) return static_cast<mode_t>(std::stoul(word, nullptr, 8));
    }
    return static_cast<mode_t>(022);
  }();
  return mask;
}

mode_t modeOf(bool writable, bool executable) {
  const mode_t all = (writable ? 0666 : 0444) | (executable ? 0111 : 0);
  return all & ~currentMask();
}

// What a symbolic link leads to, so that the link stays.
std::string resolved(const std::string& file) {
  std::error_code error;
  if (!fs::is_symlink(fs::symlink_status(file, error))) return file;
  const fs::path target = fs::weakly_canonical(file, error);
  return error ? file : target.string();
}

}  // namespace

IncomingFile::IncomingFile(const std::string& target) : target_(resolved(target)) {
  const std::size_t slash = target_.rfind('/') + 1;
  beside_ = target_.substr(0, slash) + ".forgeyard-" + std::to_string(::getpid()) + "~";
}

IncomingFile::~IncomingFile() {
  if (file_) ::unlink(beside_.c_str());
}

void IncomingFile::restart() {
  memory_.clear();
  if (!file_) return;
  ::unlink(beside_.c_str());
  file_.reset();
}

void IncomingFile::append(std::string_view bytes) {
  if (!file_ && memory_.size() + bytes.size() <= kMemoryLimit) {
    memory_.append(bytes);
    return;
  }
  if (!file_) spill();
  writeOut(bytes);
}

// A file of this name can only be the rest of a process that was killed.
void IncomingFile::spill() {
  std::error_code ignored;
  fs::create_directories(fs::path(target_).parent_path(), ignored);
  ::unlink(beside_.c_str());
  file_.reset(::open(beside_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
  if (!file_) fail(target_, "can't be written", errno);
  writeOut(memory_);
  memory_.clear();
}

void IncomingFile::writeOut(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(file_.get(), bytes.data(), bytes.size());
    if (count < 0 && errno != EINTR) fail(target_, "can't be written", errno);
    if (count > 0) bytes.remove_prefix(static_cast<std::size_t>(count));
  }
}

bool IncomingFile::targetHasContents() const {
  const Descriptor present(::open(target_.c_str(), O_RDONLY | O_CLOEXEC));
  struct stat status {};
  if (!present || ::fstat(present.get(), &status) != 0 || !S_ISREG(status.st_mode)) return false;
  struct stat incoming {};
  if (file_ && ::fstat(file_.get(), &incoming) != 0) return false;
  const off_t size = file_ ? incoming.st_size : static_cast<off_t>(memory_.size());
  if (status.st_size != size) return false;
  std::array<char, 65536> ours{};
  std::array<char, 65536> theirs{};
  for (off_t at = 0; at < size;) {
    const ssize_t count = ::pread(present.get(), theirs.data(), theirs.size(), at);
    if (count <= 0) return false;
    const auto length = static_cast<std::size_t>(count);
    if (file_ && ::pread(file_.get(), ours.data(), length, at) != count) return false;
    const char* const expected = file_ ? ours.data() : memory_.data() + at;
    if (!std::equal(theirs.data(), theirs.data() + length, expected)) return false;
    at += count;
  }
  return true;
}

void IncomingFile::requireReplaceable() {
  struct stat status {};
  if (::stat(target_.c_str(), &status) != 0 || !(status.st_mode & S_IWUSR) || targetHasContents()) return;
  throw RepositoryError(target_ + " is writable, so it may hold changes, and isn't replaced");
}

void IncomingFile::replace(bool writable, bool executable) {
  const mode_t mode = modeOf(writable, executable);
  if (targetHasContents()) {
    if (::chmod(target_.c_str(), mode) != 0) fail(target_, "can't be changed", errno);
    return;
  }
  if (!file_) spill();
  if (::fchmod(file_.get(), mode) != 0 || ::rename(beside_.c_str(), target_.c_str()) != 0)
    fail(target_, "can't be replaced", errno);
  file_.reset();
}

void setWritable(const std::string& file, bool writable) {
  struct stat status {};
  if (::stat(file.c_str(), &status) != 0) return;
  const mode_t mode = (status.st_mode & 07777 & ~kWriteBits) | (writable ? kWriteBits & ~currentMask() : 0);
  if (::chmod(file.c_str(), mode) != 0) fail(file, "can't be changed", errno);
}

}  // namespace forgeyard::repository
