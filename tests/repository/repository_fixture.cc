#include "tests/repository/repository_fixture.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <thread>

#include "tests/support/places.h"

namespace forgeyard::test {

namespace {

namespace fs = std::filesystem;

sockaddr_in loopback(int port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  return address;
}

int freePort() {
  const int socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address = loopback(0);
  socklen_t size = sizeof address;
  if (::bind(socket, reinterpret_cast<sockaddr*>(&address), size) != 0 ||
      ::getsockname(socket, reinterpret_cast<sockaddr*>(&address), &size) != 0)
    throw std::runtime_error("no free port");
  ::close(socket);
  return ntohs(address.sin_port);
}

bool answers(int port) {
  const int socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const sockaddr_in address = loopback(port);
  const bool connected = ::connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
  ::close(socket);
  return connected;
}

// Ends with this process, whatever becomes of it.
pid_t start(std::vector<std::string> command, int output) {
  std::vector<char*> argv;
  for (std::string& word : command) argv.push_back(word.data());
  argv.push_back(nullptr);
  const pid_t child = ::fork();
  if (child != 0) return child;
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  ::dup2(::open("/dev/null", O_RDONLY), STDIN_FILENO);
  if (output >= 0) {
    ::dup2(output, STDOUT_FILENO);
    ::dup2(output, STDERR_FILENO);
  }
  ::execvp(argv[0], argv.data());
  ::_exit(127);
}

}  // namespace

std::string nameOf(const testing::TestParamInfo<Transport>& transport) {
  return transport.param == Transport::File ? "File" : "Server";
}

Server::Server(const std::string& directory, int port) : port_(port ? port : freePort()) {
  id_ = start({"svnserve", "--daemon", "--foreground", "--threads", "--listen-host", "127.0.0.1",
               "--listen-port", std::to_string(port_), "--root", directory},
              -1);
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  while (!answers(port_)) {
    if (std::chrono::steady_clock::now() > end) throw std::runtime_error("svnserve doesn't answer");
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
}

void Server::signal(int number) const {
  ::kill(id_, number);
}

void Server::stop(int number) {
  if (id_ < 0) return;
  ::kill(id_, number);
  ::waitpid(id_, nullptr, 0);
  id_ = -1;
}

Outcome run(const std::vector<std::string>& command) {
  int ends[2];
  if (::pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  const pid_t child = start(command, ends[1]);
  ::close(ends[1]);
  Outcome outcome;
  char buffer[4096];
  for (ssize_t count = 0; (count = ::read(ends[0], buffer, sizeof buffer)) > 0;)
    outcome.output.append(buffer, static_cast<std::size_t>(count));
  ::close(ends[0]);
  int status = 0;
  ::waitpid(child, &status, 0);
  outcome.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  return outcome;
}

RepositoryTest::RepositoryTest() {
  addClassModule(CLSID_VSSDatabase, places::programs() + "/ForgeyardRepository.so");
  for (const char* name : {"home", "ann", "bob", "svn"}) fs::create_directory(scratch_ / name);
  const auto made = newDatabase().as<IRepositoryAdministration>()->create(repository_);
  if (failed(made)) throw std::runtime_error("no repository");
  writeFile(repository_ + "/conf/svnserve.conf",
            "[general]\nanon-access = none\nauth-access = write\npassword-db = passwd\nrealm = test\n");
  writeFile(repository_ + "/conf/passwd", "[users]\nann = secret-ann\nbob = secret-bob\n");
  startServer();
  writeIni("url = " + url() + "\nlimit = 5\n");
}

RepositoryTest::~RepositoryTest() {
  EXPECT_TRUE(fs::is_empty(scratch_ / "home")) << "something was written into the user's home";
  const Outcome verified = run({"svnadmin", "verify", "-q", repository_});
  EXPECT_EQ(verified.exitCode, 0) << verified.output;
}

void RepositoryTest::startServer() {
  if (GetParam() == Transport::Server)
    server_ = std::make_unique<Server>(scratch_.path(), server_ ? server_->port() : 0);
}

std::string RepositoryTest::url() const {
  return server_ ? "svn://127.0.0.1:" + std::to_string(server_->port()) + "/repository"
                 : "file://" + repository_;
}

void RepositoryTest::writeIni(const std::string& text) const {
  writeFile(scratch_ / "srcsafe.ini", text);
}

void RepositoryTest::setHook(const std::string& name, const std::string& text) const {
  const std::string file = repository_ + "/hooks/" + name;
  writeFile(file, "#!/bin/sh\n" + text + "\n");
  fs::permissions(file, fs::perms::owner_all);
}

Ref<IVSSDatabase> RepositoryTest::newDatabase() {
  return createInstance<IVSSDatabase>(CLSID_VSSDatabase);
}

HRESULT RepositoryTest::tryOpen(IVSSDatabase* database, const std::string& user,
                                const std::string& password) const {
  return database->Open(BString::fromNarrow(model("").narrow() + "..\\srcsafe.ini"),
                        BString::fromNarrow(user), BString::fromNarrow(password));
}

Ref<IVSSDatabase> RepositoryTest::open(const std::string& user) const {
  const Ref<IVSSDatabase> database = newDatabase();
  EXPECT_EQ(tryOpen(database.get(), user, "secret-" + user), S_OK) << errorOf(*database);
  return database;
}

Outcome RepositoryTest::svn(const std::string& user, std::vector<std::string> arguments) const {
  const std::vector<std::string> all{"svn",          "--non-interactive", "--no-auth-cache",
                                     "--config-dir", scratch_ / "svn",    "--username",
                                     user,           "--password",        "secret-" + user};
  arguments.insert(arguments.begin(), all.begin(), all.end());
  return run(arguments);
}

std::string RepositoryTest::local(const std::string& name, const std::string& user) const {
  return scratch_ / (user + "/" + name);
}

BString RepositoryTest::model(const std::string& name, const std::string& user) const {
  std::string path = local(name, user);
  std::replace(path.begin(), path.end(), '/', '\\');
  return BString::fromNarrow(path);
}

void RepositoryTest::add(IVSSDatabase& database, const std::string& name, const std::string& contents,
                         const BString& folder) const {
  writeFile(local(name), contents);
  Ref<IVSSItem> added;
  EXPECT_EQ(item(database, folder)->Add(model(name), u"", VSSFLAG_KEEPNO, &added), S_OK) << errorOf(database);
}

Ref<IVSSItem> item(IVSSDatabase& database, const BString& spec, bool deleted) {
  Ref<IVSSItem> found;
  ignore(database.get_VSSItem(spec, deleted, &found));
  return found;
}

std::int32_t version(IVSSDatabase& database, const BString& spec) {
  std::int32_t number = -1;
  const Ref<IVSSItem> found = item(database, spec);
  if (found) {
    EXPECT_EQ(found->get_VersionNumber(&number), S_OK) << errorOf(database);
  }
  return number;
}

std::int32_t checkedOut(IVSSDatabase& database, const BString& spec) {
  std::int32_t state = -1;
  const Ref<IVSSItem> found = item(database, spec);
  if (found) {
    EXPECT_EQ(found->get_IsCheckedOut(&state), S_OK) << errorOf(database);
  }
  return state;
}

std::string errorOf(IVSSDatabase& database) {
  return query<IRepositoryErrors>(&database)->lastError();
}

}  // namespace forgeyard::test
