#include "tests/repository/repository_fixture.h"

namespace forgeyard::test {
namespace {

class Names : public RepositoryTest {};
INSTANTIATE_TEST_SUITE_P(, Names, testing::Values(Transport::File, Transport::Server), nameOf);

TEST_P(Names, HostileNamesGoThereAndBack) {
  const Ref<IVSSDatabase> database = open();
  Ref<IVSSItem> folder;
  ASSERT_EQ(item(*database, u"$\\")->NewSubproject(u"50% of @#é", u"", &folder), S_OK) << errorOf(*database);
  for (const char* name :
       {"a b.c", "at@5", "@", "100%.c", "%41", "#1.c", "größe.c", "日本.c", "q?.c", "-m", "a&b;c.c"}) {
    SCOPED_TRACE(name);
    add(*database, name, name, u"$\\50% of @#é");
    const BString spec = BString::fromNarrow(std::string("$\\50% of @#é\\") + name);
    EXPECT_EQ(version(*database, spec), 1);
    const Ref<IVSSItem> file = item(*database, spec);
    ASSERT_NE(file, nullptr) << errorOf(*database);
    ASSERT_EQ(file->Checkout(u"é \"x\"", model(name), VSSFLAG_REPREPLACE), S_OK) << errorOf(*database);
    ASSERT_EQ(file->Checkin(u"a\r\nb\x01", model(name), 0), S_OK) << errorOf(*database);
    ASSERT_EQ(file->put_Deleted(true), S_OK) << errorOf(*database);
    const Ref<IVSSItem> deleted = item(*database, spec, true);
    ASSERT_NE(deleted, nullptr) << errorOf(*database);
    ASSERT_EQ(deleted->put_Deleted(false), S_OK) << errorOf(*database);
    EXPECT_EQ(version(*database, spec), 3);
  }
}

TEST_P(Names, WhatNoRepositoryCanHoldIsRefused) {
  const Ref<IVSSDatabase> database = open();
  const Ref<IVSSItem> root = item(*database, u"$\\");
  for (const BString& name : {BString(u".."), BString(u"."), BString(u"a\nb"), BString(u""), BString(u"a\\b"),
                              BString(u"a/b"), BString::fromNarrow("bad\xFF")}) {
    Ref<IVSSItem> made;
    EXPECT_TRUE(failed(root->NewSubproject(name, u"", &made))) << name.narrow();
    EXPECT_EQ(made, nullptr);
  }
  for (const BString& spec : {BString(u"$\\..\\a"), BString(u"$\\a\x01"), BString::fromNarrow("$\\\xFF")})
    EXPECT_EQ(item(*database, spec), nullptr) << spec.narrow();
}

TEST_P(Names, SpellingsOfOnePath) {
  const Ref<IVSSDatabase> database = open();
  Ref<IVSSItem> folder;
  ASSERT_EQ(item(*database, u"$\\")->NewSubproject(u"src", u"", &folder), S_OK);
  for (const char16_t* spec : {u"$\\src", u"$/src", u"$\\src\\", u"$//src", u"$\\\\src//", u"anything\\src"})
    EXPECT_NE(item(*database, spec), nullptr) << BString(spec).narrow();
  EXPECT_EQ(item(*database, u"$\\SRC"), nullptr) << "case counts";
}

}  // namespace
}  // namespace forgeyard::test
