// Tests the entry function by a static object that uses the library before `main`. The test is
// linked once with the shared library and once with the static one.
#include <gtest/gtest.h>

#include <string>

#include "orzcore/frame.h"
#include "support/FakeHost.h"

namespace {

std::string FallbackCaption() {
  FakeHost host;
  OZErrorInfo info(OZErrorInfo::kZero);
  OZErrorMgr::AlertUserNow(&info, "text", nullptr, OZErrorMgr::kWarning);
  return host.boxes.at(0).caption.value_or("(none)");
}

const std::string gEarlyCaption = FallbackCaption();

TEST(LibraryEntry, HasRunBeforeStaticObjects) { EXPECT_EQ(gEarlyCaption, "Morvane"); }

TEST(LibraryEntry, TakesTheHandleOnlyWhenTheLibraryIsLoaded) {
  int other_module = 0;
  for (const unsigned reason : {0U, 2U, 3U, 4U, 1000U}) {
    EXPECT_EQ(OZLibraryEntry(&other_module, reason, nullptr), 1) << reason;
    EXPECT_EQ(OZStringTable::Find(&other_module, 2), nullptr) << reason;
    EXPECT_EQ(FallbackCaption(), "Morvane") << reason;
  }
  EXPECT_EQ(OZLibraryEntry(&other_module, 1, nullptr), 1);
  EXPECT_EQ(FallbackCaption(), "Morvane");
  const auto find = [&](unsigned id) { return OZStringTable::Find(&other_module, id); };
  EXPECT_STREQ(find(1), "Disk full.  Delete unnecessary files, then press retry.");
  EXPECT_STREQ(find(3), "Illegal File Handle.");
  EXPECT_STREQ(find(4), "DOS version 3.3 or higher required.");
  EXPECT_STREQ(find(5), "Illegal Lock Type.");
  EXPECT_STREQ(find(6), "Cannot access file because it is being used.");
}

}  // namespace
