#include "server/directory.h"

#include <fstream>

#include <gmock/gmock.h>

#include "platform/linux/foundation/failure.h"
#include "testkit/private_folders.h"
#include "unit/server/opened_shelf.h"

namespace kivo::server {
namespace {

using linux_platform::Failure;
using testing::HasSubstr;
using testing::Not;

std::string bytesOf(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

class ADirectory : public testing::Test {
 protected:
  void addBook(const std::string& name) { directory_.addBook(name, money::CurrencyCode("EGP")); }
  // The sentence of the failure of `call`; empty when it succeeds.
  template <typename Call>
  static std::string failureOf(const Call& call) {
    try {
      call();
      return "";
    } catch (const Failure& failure) {
      return failure.what();
    }
  }

  testkit::PrivateFolders folders_;
  std::unique_ptr<Shelf> shelf_ = openedShelf();
  Directory directory_{*shelf_};
};

TEST_F(ADirectory, LetsADeviceReachItsPersonsBookAlone) {
  addBook("Family");
  addBook("Club");
  directory_.addPerson("Mona", "Family");
  directory_.addPerson("Ali", "Club");
  const std::string secret = directory_.addDevice("Mona", "phone");
  const auto access = directory_.access(secret);
  ASSERT_TRUE(access);
  EXPECT_EQ(access->book.name, "Family");
  EXPECT_EQ(access->person, "Mona");
  EXPECT_EQ(access->book.number, directory_.book("Family").number);
  EXPECT_NE(access->book.number, directory_.book("Club").number);
}

TEST_F(ADirectory, GivesEachDeviceASecretOf128Bits) {
  addBook("Family");
  directory_.addPerson("Mona", "Family");
  const std::string one = directory_.addDevice("Mona", "phone");
  const std::string other = directory_.addDevice("Mona", "tablet");
  EXPECT_EQ(one.size(), 32U);
  EXPECT_EQ(one.find_first_not_of("0123456789abcdef"), std::string::npos);
  EXPECT_NE(one, other);
}

TEST_F(ADirectory, KeepsNoSecret) {
  addBook("Family");
  directory_.addPerson("Mona", "Family");
  const std::string secret = directory_.addDevice("Mona", "phone");
  bool isReadAtAll = false;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folders_.home())) {
    if (!entry.is_regular_file()) continue;
    const std::string bytes = bytesOf(entry.path());
    isReadAtAll = isReadAtAll || bytes.find("Mona") != std::string::npos;
    EXPECT_THAT(bytes, Not(HasSubstr(secret)));
  }
  EXPECT_TRUE(isReadAtAll);
}

TEST_F(ADirectory, KnowsNoWrongEmptyOrRevokedSecret) {
  addBook("Family");
  directory_.addPerson("Mona", "Family");
  const std::string secret = directory_.addDevice("Mona", "phone");
  EXPECT_FALSE(directory_.access(""));
  EXPECT_FALSE(directory_.access(std::string(32, '0')));
  EXPECT_FALSE(directory_.access(secret.substr(1)));
  EXPECT_TRUE(directory_.access(secret));
  directory_.revokeDevice("phone", "");
  EXPECT_FALSE(directory_.access(secret));
}

TEST_F(ADirectory, SeesARevocationByAnotherProcessAtOnce) {
  addBook("Family");
  directory_.addPerson("Mona", "Family");
  const std::string secret = directory_.addDevice("Mona", "phone");
  ASSERT_TRUE(directory_.access(secret));
  const auto others = openedShelf();
  Directory(*others).revokeDevice("phone", "Mona");
  EXPECT_FALSE(directory_.access(secret));
}

TEST_F(ADirectory, RevokesNoDeviceThatSeveralPeopleHaveWithoutThePerson) {
  addBook("Family");
  directory_.addPerson("Mona", "Family");
  directory_.addPerson("Ali", "Family");
  const std::string monas = directory_.addDevice("Mona", "phone");
  const std::string alis = directory_.addDevice("Ali", "phone");
  EXPECT_EQ(failureOf([&] { directory_.revokeDevice("phone", ""); }),
            "several people have a device \"phone\": Ali, Mona; name one by --person");
  directory_.revokeDevice("phone", "ali");
  EXPECT_FALSE(directory_.access(alis));
  EXPECT_TRUE(directory_.access(monas));
}

TEST_F(ADirectory, RefusesANameThatIsTaken) {
  addBook("Family");
  directory_.addPerson("Mona", "Family");
  directory_.addDevice("Mona", "phone");
  EXPECT_EQ(failureOf([&] { addBook("family"); }), "there is a book \"family\" already");
  EXPECT_EQ(failureOf([&] { directory_.addPerson("MONA", "Family"); }),
            "there is a person \"MONA\" already");
  EXPECT_EQ(failureOf([&] { directory_.addDevice("Mona", "Phone"); }),
            "Mona has a device \"Phone\" already; revoke it first, or choose another name");
}

TEST_F(ADirectory, RefusesANameThatCannotBeShown) {
  for (const char* const name : {"", "-x", " x", "x ", "a\nb", "a\x1b[2Jb", "\u202egnp"}) {
    EXPECT_THAT(failureOf([&] { addBook(name); }), HasSubstr("needs a name")) << name;
  }
  EXPECT_THAT(failureOf([&] { addBook(std::string(41, 'a')); }), HasSubstr("needs a name"));
  EXPECT_TRUE(directory_.list().empty());
}

TEST_F(ADirectory, KeepsNoBookWhoseFolderCannotBeMade) {
  std::ofstream(folders_.dataHome() / "app.kivo.server" / "books") << "in the way";
  EXPECT_THAT(failureOf([&] { addBook("Family"); }), HasSubstr("cannot be made"));
  EXPECT_TRUE(directory_.list().empty());
}

TEST_F(ADirectory, SaysWhatIsMissing) {
  EXPECT_EQ(failureOf([&] { (void)directory_.book("Famly"); }),
            "there is no book \"Famly\"; kivo-server list shows all");
  EXPECT_EQ(failureOf([&] { directory_.addPerson("Mona", "Famly"); }),
            "there is no book \"Famly\"; kivo-server list shows all");
  EXPECT_EQ(failureOf([&] { directory_.addDevice("Mona", "phone"); }),
            "there is no person \"Mona\"; kivo-server list shows all");
  EXPECT_EQ(failureOf([&] { directory_.revokeDevice("phone", ""); }),
            "there is no device \"phone\"; kivo-server list shows all");
}

TEST_F(ADirectory, ListsBooksPeopleAndDevicesByName) {
  addBook("Family");
  addBook("Club");
  directory_.addPerson("Mona", "Family");
  directory_.addPerson("Ali", "Family");
  directory_.addDevice("Mona", "phone");
  const auto books = directory_.list();
  ASSERT_EQ(books.size(), 2U);
  EXPECT_EQ(books[0].name, "Club");
  EXPECT_TRUE(books[0].people.empty());
  ASSERT_EQ(books[1].people.size(), 2U);
  EXPECT_EQ(books[1].people[0].name, "Ali");
  ASSERT_EQ(books[1].people[1].devices.size(), 1U);
  EXPECT_EQ(books[1].people[1].devices[0].name, "phone");
}

TEST_F(ADirectory, RemovesAPersonOnlyIfTheBookIsErased) {
  addBook("Family");
  directory_.addPerson("Mona", "Family");
  const std::string secret = directory_.addDevice("Mona", "phone");
  EXPECT_THROW(
      directory_.removePerson("Mona", [](const Access&) { throw Failure("the disk is full"); }),
      Failure);
  EXPECT_FALSE(directory_.access(secret));  // no message may come while it is erased
  ASSERT_EQ(directory_.list().front().people.size(), 1U);
  std::string erased;
  directory_.removePerson("mona", [&](const Access& access) { erased = access.person; });
  EXPECT_EQ(erased, "Mona");
  EXPECT_EQ(directory_.list().front().people.size(), 0U);
}

TEST_F(ADirectory, KeepsThePublicAddress) {
  EXPECT_EQ(directory_.publicUrl(), "");
  directory_.keepPublicUrl("https://kivo.example");
  const auto others = openedShelf();
  EXPECT_EQ(Directory(*others).publicUrl(), "https://kivo.example");
}

}  // namespace
}  // namespace kivo::server
