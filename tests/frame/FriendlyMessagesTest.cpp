#include <gtest/gtest.h>

#include <regex>
#include <string>

#include "orzcore/frame.h"
#include "support/PageTables.h"

namespace {

struct Manager : OZErrorMgr {
  using OZErrorMgr::mQueue;
};

// Returns the message for an error, as a bracket holds it back. It is empty if there is none.
std::string Message(int error, const char* subject, const char* file = nullptr) {
  OZErrorInfo info(OZErrorInfo::kZero);
  info.mError = static_cast<OZError>(error);
  info.mLine = 120;
  info.mFile = file;
  info.mRelease = 1;
  Manager manager;
  manager.MutexBegin();
  manager.FriendlyErrorMsg(&info, subject);
  const OZErrorInfo& alert = manager.mQueue[0];
  EXPECT_EQ(info.mError, alert.mTextKind == 0 ? error : eErrPlainText);
  if (alert.mTextKind == 0) return "";
  EXPECT_STREQ(alert.mCaption.text, "Morvane");
  EXPECT_EQ(alert.mBoxFlags, 0x30);
  return alert.mText.text;
}

TEST(FriendlyMessages, AreThoseOfThePage) {
  const std::regex number(R"(\((-?\d+)\))");
  for (const PageRow& row :
       RowsUnder("guide/frame.md", {"Errors", "... could not be completed because", "Advice"})) {
    const std::string& errors = row.cells[0];
    for (std::sregex_iterator it(errors.begin(), errors.end(), number), end; it != end; ++it) {
      const std::string error = it->str(1);
      EXPECT_EQ(Message(std::stoi(error), "X"),
                "X could not be completed because " + row.cells[1] + "\n\n" + row.cells[2] +
                    "\nLine: 120  File:   Error Code: " + error + "  Release: 1")
          << row.place;
    }
  }
  for (const int silent : {0, 201}) EXPECT_EQ(Message(silent, "X"), "") << silent;
}

TEST(FriendlyMessages, AreCutWhereTheyDoNotFit) {
  const std::string word(1000, 'x');
  EXPECT_EQ(Message(101, word.c_str()), word.substr(0, 399));
  EXPECT_EQ(Message(101, nullptr, word.c_str()),
            "This operation could not be completed because the disk is full.\n\nDelete some files "
            "from the drive and try again.\nLine: 120  File: " +
                word.substr(0, 81 - 18));
}

}  // namespace
