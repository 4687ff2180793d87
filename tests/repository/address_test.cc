#include "tests/repository/repository_fixture.h"

namespace forgeyard::test {
namespace {

using testing::HasSubstr;
using testing::Not;

class Address : public RepositoryTest {
 protected:
  std::string refusal(const std::string& user = "ann", const std::string& password = "secret-ann") const {
    const Ref<IVSSDatabase> database = newDatabase();
    EXPECT_TRUE(failed(tryOpen(database.get(), user, password)));
    return errorOf(*database);
  }
};
INSTANTIATE_TEST_SUITE_P(, Address, testing::Values(Transport::File, Transport::Server), nameOf);

TEST_P(Address, FilesThatNameNoRepository) {
  struct Row {
    const char* text;
    const char* words;
  };
  for (const Row& row :
       {Row{"", "neither a line \"url"}, Row{"url =", "its url is empty"},
        Row{"url = ftp://host/", "begins with none of"}, Row{"; url = svn://host/\n[x]\n", "neither"},
        Row{"folder = repository\nurl = svn://h/", "more than one"},
        Row{"folder = repository\nlimit = 0", "not a number of seconds"}, Row{"folder = missing", "missing"},
        Row{"folder = .", "file://"}}) {
    SCOPED_TRACE(row.text);
    writeIni(row.text);
    EXPECT_THAT(refusal(), HasSubstr(row.words));
  }
  std::filesystem::remove(scratch_ / "srcsafe.ini");
  EXPECT_THAT(refusal(), HasSubstr("doesn't exist"));
}

TEST_P(Address, FolderBesideTheFile) {
  writeIni("\xEF\xBB\xBF; a comment\r\n Folder =  repository \r\nother = 1\r\n");
  std::string address, user;
  std::int64_t revision = -1;
  const Ref<IVSSDatabase> database = open("ann");
  ASSERT_EQ(database.as<IRepositoryAdministration>()->describe(&address, &user, &revision), S_OK);
  EXPECT_EQ(address, "file://" + repository_);
  EXPECT_EQ(user, "ann");
  EXPECT_EQ(revision, 0);
  BString ini;
  ASSERT_EQ(database->get_SrcSafeIni(&ini), S_OK);
  EXPECT_THAT(ini.narrow(), HasSubstr("\\srcsafe.ini"));
}

TEST_P(Address, LogonsOfAServer) {
  if (GetParam() == Transport::File) return;
  const std::string wrong = refusal("ann", "wrong");
  EXPECT_THAT(wrong, Not(HasSubstr("wrong")));
  EXPECT_THAT(wrong, HasSubstr("Password incorrect"));
  EXPECT_THAT(refusal("", ""), HasSubstr("asks for a user name"));
  server_->stop(SIGTERM);
  EXPECT_THAT(refusal(), HasSubstr("127.0.0.1"));
}

TEST_P(Address, DefaultDatabaseOfTheRegistry) {
  const Ref<IVSSDatabase> database = newDatabase();
  EXPECT_TRUE(failed(database->Open(u"", u"ann", u"secret-ann")));
  EXPECT_THAT(errorOf(*database), HasSubstr("no default database"));
  writeFile(scratch_ / "registry",
            "[HKEY_CURRENT_USER\\Software\\Korvel\\Forgeyard\\Source Control]\nDatabase=" +
                model("").narrow() + "..\\srcsafe.ini\n");
  EXPECT_EQ(database->Open(BString(), u"ann", u"secret-ann"), S_OK) << errorOf(*database);
}

TEST_P(Address, RightsCanBeTried) {
  std::vector<std::string> steps;
  const Ref<IVSSDatabase> database = open();
  ASSERT_EQ(database.as<IRepositoryAdministration>()->tryWriting(u"$\\", &steps), S_OK) << errorOf(*database);
  EXPECT_EQ(steps.size(), 3u);
  Ref<IVSSItems> items;
  std::int32_t count = -1;
  ASSERT_EQ(item(*database, u"$\\")->get_Items(&items), S_OK);
  ASSERT_EQ(items->get_Count(&count), S_OK);
  EXPECT_EQ(count, 0);
}

}  // namespace
}  // namespace forgeyard::test
