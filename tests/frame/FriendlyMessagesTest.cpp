#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "orzcore/frame.h"
#include "support/FakeHost.h"

namespace {

class FriendlyMessages : public testing::Test {
 protected:
  // Returns the text of the box for an error. The record's own module has no strings.
  std::string Text(int error, const char* subject, const char* file = nullptr) {
    host_.boxes.clear();
    OZErrorInfo info(OZErrorInfo::kZero);
    info.mError = static_cast<OZError>(error);
    info.mLine = 120;
    info.mFile = file;
    info.mRelease = 1;
    OZErrorMgr manager;
    manager.MutexBegin();
    manager.FriendlyErrorMsg(&info, subject);
    EXPECT_TRUE(host_.boxes.empty());
    manager.MutexEnd();
    if (host_.boxes.empty()) {
      EXPECT_EQ(info.mError, error);
      EXPECT_EQ(info.mTextKind, 0);
      return "";
    }
    EXPECT_EQ(info.mError, eErrPlainText);
    EXPECT_EQ(host_.boxes[0].caption, "Morvane");
    EXPECT_EQ(host_.boxes[0].style, 0x30U);
    return host_.boxes[0].text;
  }

  FakeHost host_;
};

TEST_F(FriendlyMessages, SayWhatFailedAndWhatToDo) {
  EXPECT_EQ(Text(101, nullptr),
            "This operation could not be completed because the disk is full.\n\n"
            "Delete some files from the drive and try again.\n"
            "Line: 120  File:   Error Code: 101  Release: 1");
  EXPECT_EQ(
      Text(2, "Opening \"diary\"", "OZOFILE"),
      "Opening \"diary\" could not be completed because the specified file does not exist.\n\n"
      "Check the file name and try again.\n"
      "Line: 120  File: OZOFILE  Error Code: 2  Release: 1");
  for (const int silent : {0, 201}) EXPECT_EQ(Text(silent, "Nothing"), "");
}

TEST_F(FriendlyMessages, HaveAReasonForEveryError) {
  const struct {
    std::vector<int> errors;
    std::string reason;
  } kRows[] = {
      {{4}, "not enough file handles are available."},
      {{18}, "the root directory is full."},
      {{2}, "the specified file does not exist."},
      {{3}, "the specified path does not exist."},
      {{15}, "the specified drive does not exist."},
      {{14}, "of a hardware problem."},
      {{5}, "you do not have rights to the file or directory."},
      {{101}, "the disk is full."},
      {{107}, "we are having problems reading data."},
      {{108}, "we are having problems writing data."},
      {{113}, "we can't read this version of the file."},
      {{111}, "the system is running out of memory."},
      {{203, 205}, "something is in use by another program or user."},
      {{106}, "we could not create the specified file."},
      {{105}, "we could not open the specified file."},
      {{103}, "the requested file does not exist."},
      {{35}, "a file by that name already exists."},
      {{114, 208, 209, 210, 211, 212, 214}, "the data in a file has become corrupted."},
      {{207}, "the database is full."},
      {{102}, "you do not have rights to the database."},
      {{227}, "you did not provide the proper password."},
      {{202}, "the database is in use by another user."},
      {{110}, "your version of DOS is too old."},
      {{112}, "your version of Windows is too old."},
      {{217}, "the numbers generated are too big."},
      {{-1, 1, 109, 200, 206, 213, 215, 218, 219, 220, 221, 231, -5}, "of an internal error."}};
  for (const auto& row : kRows) {
    const std::string start = "X could not be completed because " + row.reason + "\n\n";
    for (const int error : row.errors) {
      const std::string text = Text(error, "X");
      EXPECT_EQ(text.substr(0, start.size()), start) << error;
      EXPECT_GT(text.size(), start.size() + 20) << "no advice for " << error;
      // After the longest advice the box has no room for the whole detail line.
      const std::string code = "Error Code: " + std::to_string(error);
      EXPECT_TRUE(text.size() == 255 || text.find(code) != text.npos) << error;
    }
  }
}

TEST_F(FriendlyMessages, AreCutWhereTheyDoNotFit) {
  const std::string long_word(1000, 'x');
  EXPECT_EQ(Text(101, long_word.c_str()), long_word.substr(0, 255));
  struct Manager : OZErrorMgr {
    using OZErrorMgr::mQueue;
  } manager;
  OZErrorInfo info(OZErrorInfo::kZero);
  info.mError = eErrDiskFull;
  manager.MutexBegin();
  manager.FriendlyErrorMsg(&info, long_word.c_str());
  EXPECT_EQ(manager.mQueue[0].mText.text, long_word.substr(0, 399));  // the box then shows 255
  const std::string text = Text(101, "X", long_word.c_str());
  EXPECT_EQ(text.substr(text.find("\nLine")), "\nLine: 120  File: " + std::string(81 - 18, 'x'));
}

}  // namespace
