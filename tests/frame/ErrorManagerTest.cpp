#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "orzcore/frame.h"
#include "support/FakeHost.h"

namespace {

constexpr unsigned short kFlags = OZErrorMgr::kWarning;
constexpr char kCompany[] = "Morvane";

// The strings of an application.
constexpr OZString kStrings[] = {{10, "from the application"}, {11, "its caption"}, {12, ""}};

class ErrorManager : public testing::Test {
 protected:
  ErrorManager() : strings_(kStrings, 3) {
    strings_.Register(this);
    info_.mInstance = this;
  }
  ~ErrorManager() override { strings_.Unregister(); }

  std::vector<std::string> Texts() const {
    std::vector<std::string> texts;
    for (const Box& box : host_.boxes) texts.push_back(box.text);
    return texts;
  }

  FakeHost host_;
  OZStringTable strings_;
  OZErrorInfo info_{OZErrorInfo::kZero};
};

TEST_F(ErrorManager, ShowsEachKindOfAlert) {
  EXPECT_EQ(OZErrorMgr::AlertUserNow(&info_, "text", "caption", 0x30), 0);
  EXPECT_EQ(info_.mTextKind, eTextOfCaller);
  EXPECT_EQ(info_.mBoxFlags, 0x30);
  OZErrorMgr::AlertUserNow(&info_, "no caption", nullptr, 0x1234);
  OZErrorMgr::AlertUserNow(&info_, "empty caption", "", kFlags);
  OZErrorMgr::AlertUserNow(&info_, nullptr, "null text", kFlags);
  OZErrorMgr::AlertUserNow(&info_, 10, 11, kFlags);
  EXPECT_EQ(info_.mTextKind, eTextResource);
  EXPECT_EQ(info_.mText.id, 10);
  OZErrorMgr::AlertUserNow(&info_, 99, 0, kFlags);  // no such string: the box is empty
  info_.mTextKind = 0;
  OZErrorMgr::AlertUserNow(&info_, kFlags);
  OZErrorMgr::AlertUserNow(&info_, std::string(300, 'x').c_str(), std::string(300, 'y').c_str(), 0);

  const Box boxes[] = {{"text", "caption", 0x30, &host_},
                       {"no caption", kCompany, 0x1234, &host_},
                       {"empty caption", kCompany, kFlags, &host_},
                       {"", "null text", kFlags, &host_},
                       {"from the application", "its caption", kFlags, &host_},
                       {"", kCompany, kFlags, &host_},
                       {"", kCompany, kFlags, &host_},
                       {std::string(255, 'x'), std::string(255, 'y'), 0, &host_}};
  ASSERT_EQ(host_.boxes.size(), std::size(boxes));
  for (std::size_t i = 0; i < std::size(boxes); ++i) {
    EXPECT_EQ(host_.boxes[i].text, boxes[i].text) << i;
    EXPECT_EQ(host_.boxes[i].caption, boxes[i].caption) << i;
    EXPECT_EQ(host_.boxes[i].style, boxes[i].style) << i;
    EXPECT_EQ(host_.boxes[i].owner, boxes[i].owner) << i;
  }
}

TEST_F(ErrorManager, ReturnsTheAnswerOfTheUser) {
  OZErrorMgr manager;
  for (int button = -1; button < 9; ++button) {  // 2 cancels, 7 says no
    const int result = button == 2 ? 2 : button == 7 ? 1 : 0;
    host_.answer = button;
    EXPECT_EQ(OZErrorMgr::AlertUserNow(&info_, "text", nullptr, kFlags), result) << button;
    EXPECT_EQ(OZErrorMgr::AlertUserNow(&info_, 10, 11, kFlags), result) << button;
    EXPECT_EQ(manager.AlertUser(&info_, "text", nullptr, kFlags), result) << button;
  }
  OZErrorMgr::BeepUserNow(0xFFFF);
  EXPECT_EQ(host_.beeps, std::vector<unsigned>{0xFFFF});
}

TEST_F(ErrorManager, HoldsFiveAlertsBackAndShowsTheNewestFirst) {
  OZErrorMgr manager;
  host_.answer = 2;
  manager.MutexEnd();  // without a `MutexBegin` it does nothing
  manager.MutexBegin();
  manager.MutexBegin();
  for (int i = 1; i <= 6; ++i) {
    std::string text = std::string(300, static_cast<char>('0' + i));
    const unsigned short flags = i == 6 ? 0x11 : kFlags;
    EXPECT_EQ(manager.AlertUser(&info_, text.c_str(), i == 1 ? nullptr : "caption", flags), 0);
    EXPECT_EQ(info_.mBoxFlags, kFlags);  // a dropped alert does not change them
    EXPECT_EQ(info_.mError, eErrPlainText);
    text.assign(text.size(), '#');  // the manager has a copy
  }
  manager.MutexEnd();
  EXPECT_TRUE(host_.boxes.empty());
  manager.MutexEnd();
  ASSERT_EQ(host_.boxes.size(), 5U);
  for (std::size_t i = 0; i < 5; ++i) {
    EXPECT_EQ(host_.boxes[i].text, std::string(255, static_cast<char>('5' - i)));
    EXPECT_EQ(host_.boxes[i].caption, i == 4 ? kCompany : "caption");
  }
  manager.MutexBegin();  // the slots can be used again
  manager.AlertUser(&info_, nullptr, "again", kFlags);
  manager.MutexEnd();
  EXPECT_EQ(host_.boxes.back().text, "");
  EXPECT_EQ(host_.boxes.back().caption, "again");
}

TEST_F(ErrorManager, LooksStringsUpWhenItShowsThem) {
  OZErrorMgr manager;
  manager.MutexBegin();
  info_.mTextKind = eTextResource;
  info_.mText.id = 10;
  info_.mCaption.id = 12;  // an empty string is no caption
  manager.AlertUser(&info_, 0x1234);
  info_.mInstance = nullptr;
  info_.mText.id = 11;
  info_.mTextKind = 17;  // neither a text nor an id
  manager.AlertUser(&info_, kFlags);
  manager.MutexEnd();
  ASSERT_EQ(Texts(), (std::vector<std::string>{"", "from the application"}));
  EXPECT_EQ(host_.boxes[1].caption, kCompany);
  EXPECT_EQ(host_.boxes[1].style, 0x1234U);
}

TEST_F(ErrorManager, ShowsAnAlertFromInsideABoxDirectly) {
  OZErrorMgr manager;
  int opened = 0;
  host_.while_box_is_open = [&] {
    if (++opened != 1) return;
    OZErrorInfo inner(OZErrorInfo::kZero);
    manager.AlertUser(&inner, "inside", nullptr, kFlags);
    manager.MutexBegin();  // the next alert takes a free slot
    manager.AlertUser(&inner, "held back inside", nullptr, kFlags);
    manager.MutexEnd();
  };
  manager.MutexBegin();
  manager.AlertUser(&info_, "first", nullptr, kFlags);
  manager.AlertUser(&info_, "second", nullptr, kFlags);
  manager.MutexEnd();
  EXPECT_EQ(Texts(), (std::vector<std::string>{"second", "inside", "held back inside", "first"}));
}

TEST_F(ErrorManager, TheDepthDoesNotOverflow) {
  OZErrorMgr manager;
  for (int i = 0; i < 70000; ++i) manager.MutexBegin();
  manager.AlertUser(&info_, "held back", nullptr, kFlags);
  for (int i = 0; i < 65534; ++i) manager.MutexEnd();
  EXPECT_TRUE(host_.boxes.empty());
  manager.MutexEnd();
  EXPECT_EQ(host_.boxes.size(), 1U);
}

TEST_F(ErrorManager, FindsStringsByModuleAndId) {
  char buffer[40] = "";
  EXPECT_EQ(info_.LoadStringA(10, buffer, sizeof(buffer)), 0);
  EXPECT_STREQ(buffer, "from the application");
  for (const short id : {short{0}, short{7}, short{12}, short{-1}}) {
    char zeros[4] = "";
    EXPECT_EQ(info_.LoadStringA(id, zeros, sizeof(zeros)), -1) << id;
    EXPECT_STREQ(zeros, "") << id;
  }
  EXPECT_EQ(info_.LoadStringA(10, buffer, 5), 0);
  EXPECT_STREQ(buffer, "from");
  EXPECT_EQ(info_.LoadStringA(10, buffer, 0), -1);
  EXPECT_EQ(info_.LoadStringA(10, buffer, 1), -1);  // no room for a character

  constexpr OZString kNewer[] = {{10, "newer"}};
  OZStringTable newer(kNewer, 1);
  newer.Register(this);
  newer.Register(this);
  EXPECT_STREQ(OZStringTable::Find(this, 10), "newer");
  EXPECT_STREQ(OZStringTable::Find(this, 11), "its caption");
  newer.Register(&newer);
  EXPECT_STREQ(OZStringTable::Find(this, 10), "from the application");
  EXPECT_STREQ(OZStringTable::Find(&newer, 10), "newer");
  newer.Unregister();
  newer.Unregister();
  EXPECT_EQ(OZStringTable::Find(&newer, 10), nullptr);
}

}  // namespace
