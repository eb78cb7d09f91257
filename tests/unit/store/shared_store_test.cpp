#include "store/shared_store.h"

#include <fstream>

#include <gtest/gtest.h>

#include "testkit/private_folders.h"

namespace kivo {
namespace {

class TheSharedStore : public testing::Test {
 protected:
  static SharedStore open() { return SharedStore::open(appGroup).value(); }

  testkit::PrivateFolders folders_;
};

TEST_F(TheSharedStore, IsInTheFolderOfItsAppGroup) {
  open();
  EXPECT_TRUE(std::filesystem::exists(folders_.dataHome() / "group.app.kivo.expenses" /
                                      "defaults.sqlite3"));
}

TEST_F(TheSharedStore, ReadsAnAbsentKeyAsAbsentOrZero) {
  const SharedStore store = open();
  EXPECT_EQ(store.readText(StoreKeys::userId), std::nullopt);
  EXPECT_EQ(store.readNonEmptyText(StoreKeys::userId), std::nullopt);
  EXPECT_EQ(store.readFloat(StoreKeys::smsQueueDrainLock), 0);
}

TEST_F(TheSharedStore, KeepsValuesForTheNextRun) {
  {
    SharedStore store = open();
    store.writeText(StoreKeys::pendingSmsQueueCount, "3");
    store.writeFloat(StoreKeys::smsQueueDrainLock, 1769850300.5);
    EXPECT_TRUE(store.synchronize());
  }
  const SharedStore next = open();
  EXPECT_EQ(next.readText(StoreKeys::pendingSmsQueueCount), "3");
  EXPECT_EQ(next.readFloat(StoreKeys::smsQueueDrainLock), 1769850300.5);
}

TEST_F(TheSharedStore, DistinguishesAnEmptyTextFromAnAbsentOne) {
  SharedStore store = open();
  store.writeText(StoreKeys::userId, "");
  EXPECT_EQ(store.readText(StoreKeys::userId), "");
  EXPECT_EQ(store.readNonEmptyText(StoreKeys::userId), std::nullopt);
}

TEST_F(TheSharedStore, KeepsEveryCharacterOfAText) {
  SharedStore store = open();
  store.writeText(StoreKeys::userId, " \t\n\u00a0ü💸 ");
  store.synchronize();
  EXPECT_EQ(open().readNonEmptyText(StoreKeys::userId), " \t\n\u00a0ü💸 ");
}

TEST_F(TheSharedStore, SeesAFlushOfAnotherHandleAtOnce) {
  const SharedStore reader = open();
  SharedStore writer = open();
  writer.writeText(StoreKeys::currency, "USD");
  EXPECT_EQ(reader.readText(StoreKeys::currency), std::nullopt);
  writer.synchronize();
  EXPECT_EQ(reader.readText(StoreKeys::currency), "USD");
}

TEST_F(TheSharedStore, KeepsKeysWithEmptyValues) {
  SharedStore store = open();
  store.writeText(StoreKeys::pendingSmsQueue, "[{}]");
  store.writeText(StoreKeys::pendingSmsQueue, "[]");
  store.synchronize();
  EXPECT_EQ(open().readText(StoreKeys::pendingSmsQueue), "[]");
}

TEST_F(TheSharedStore, DoesNotOpenWhenTheDataHomeIsAFile) {
  std::ofstream(folders_.dataHome()) << "";
  EXPECT_FALSE(SharedStore::open(appGroup).has_value());
}

}  // namespace
}  // namespace kivo
