// Tests the entry function by a static object that uses the library before `main`. The test is
// linked once with the shared library and once with the static one.
#include <gtest/gtest.h>

#include <string>

#include "orzcore/foundation.h"
#include "orzcore/frame.h"
#include "support/FakeHost.h"

namespace {

std::string FallbackCaption() {
  FakeHost host;
  OZErrorInfo info(OZErrorInfo::kZero);
  OZErrorMgr::AlertUserNow(&info, "text", nullptr, OZErrorMgr::kWarning);
  return host.boxes.at(0).caption.value_or("(none)");
}

struct Node : IRNode {};

constinit IRLinkedList gList(IRLinkedList::kEmpty);

struct EarlyUser {
  EarlyUser() { gList.AddToTail(&node); }
  std::string caption = FallbackCaption();
  Node node;
};

const EarlyUser gEarlyUser;

TEST(LibraryEntry, HasRunBeforeStaticObjects) {
  EXPECT_EQ(gEarlyUser.caption, "Morvane");
  gList.Rewind();
  EXPECT_EQ(gList.Next(), &gEarlyUser.node);
}

TEST(LibraryEntry, TakesTheHandleOnlyWhenTheLibraryIsLoaded) {
  int other_module = 0;
  for (const unsigned reason : {0U, 2U, 3U, 4U, 1000U}) {
    EXPECT_EQ(OZLibraryEntry(&other_module, reason, nullptr), 1) << reason;
    EXPECT_EQ(OZStringTable::Find(&other_module, 2), nullptr) << reason;
    EXPECT_EQ(FallbackCaption(), "Morvane") << reason;
  }
  EXPECT_EQ(OZLibraryEntry(&other_module, 1, nullptr), 1);
  EXPECT_STREQ(OZStringTable::Find(&other_module, 6),
               "Cannot access file because it is being used.");
  EXPECT_EQ(FallbackCaption(), "Morvane");
}

}  // namespace
