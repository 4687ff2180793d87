#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/types.h>

#include <algorithm>
#include <csignal>
#include <memory>
#include <string>
#include <vector>

#include "platform/com/class_table.h"
#include "tests/platform/support/scratch.h"
#include "typelib/repository.h"
#include "typelib/vss_database.h"

namespace forgeyard::test {

enum class Transport { File, Server };
std::string nameOf(const testing::TestParamInfo<Transport>& transport);

// `svnserve` for one directory, on a free port of the loopback address. Ended with this object.
class Server {
 public:
  explicit Server(const std::string& directory, int port = 0);
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;
  ~Server() { stop(SIGKILL); }

  int port() const { return port_; }
  void signal(int number) const;
  void stop(int signal);

 private:
  int port_;
  pid_t id_ = -1;
};

struct Outcome {
  int exitCode = -1;
  std::string output;
};
// Runs a program without input; standard error goes into the output too.
Outcome run(const std::vector<std::string>& command);

// A repository with the users ann and bob (passwords "secret-ann", "secret-bob") in a directory of its own,
// and a srcsafe.ini for it.
class RepositoryTest : public testing::TestWithParam<Transport> {
 protected:
  RepositoryTest();
  ~RepositoryTest() override;

  static Ref<IVSSDatabase> newDatabase();
  // As that user; fails the test if it can't be opened.
  Ref<IVSSDatabase> open(const std::string& user = "ann") const;
  HRESULT tryOpen(IVSSDatabase* database, const std::string& user, const std::string& password) const;
  std::string url() const;
  void startServer();
  void writeIni(const std::string& text) const;
  // A hook of the repository that runs this shell text.
  void setHook(const std::string& name, const std::string& text) const;

  // The plain client as that user, with its configuration in the scratch directory.
  Outcome svn(const std::string& user, std::vector<std::string> arguments) const;

  // A local file of that user, and its path as the model spells it.
  std::string local(const std::string& name, const std::string& user = "ann") const;
  BString model(const std::string& name, const std::string& user = "ann") const;
  // Writes a local file and adds it to a folder of the database, checked in.
  void add(IVSSDatabase& database, const std::string& name, const std::string& contents,
           const BString& folder = u"$\\") const;

  ScratchDirectory scratch_;
  ScopedVariable home_{"HOME", scratch_ / "home"};
  ScopedVariable registry_{"FORGEYARD_REGISTRY", scratch_ / "registry"};
  std::string repository_ = scratch_ / "repository";
  std::unique_ptr<Server> server_;
};

// The item at a path; null when there is none.
Ref<IVSSItem> item(IVSSDatabase& database, const BString& spec, bool deleted = false);
std::int32_t version(IVSSDatabase& database, const BString& spec);
std::int32_t checkedOut(IVSSDatabase& database, const BString& spec);
std::string errorOf(IVSSDatabase& database);

}  // namespace forgeyard::test
