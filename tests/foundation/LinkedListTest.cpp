#include <gtest/gtest.h>

#include <list>
#include <random>
#include <string>
#include <vector>

#include "orzcore/foundation.h"

namespace {

struct Node : IRNode {
  explicit Node(char letter = '?') : name(letter) {}
  bool IsCleared() const { return mNext == nullptr && mPrev == nullptr; }
  char name;
};

struct List : IRLinkedList {
  List() { Initialize(); }
  bool IsReset() const { return mCurrent == this; }
  bool IsEmptyRing() const { return mNext == this && mPrev == this; }

  // The names forward, after a check that the way back is the same.
  std::string Names() {
    std::string forward;
    std::string backward;
    Rewind();
    while (IRNode* node = Next()) forward += static_cast<Node*>(node)->name;
    Rewind();
    while (IRNode* node = Prev()) backward += static_cast<Node*>(node)->name;
    EXPECT_EQ(forward, std::string(backward.rbegin(), backward.rend()));
    Rewind();
    return forward;
  }
};

class LinkedList : public testing::Test {
 protected:
  void Fill(List& list, std::size_t first, std::size_t count) {
    for (std::size_t i = first; i < first + count; ++i) list.AddToTail(&nodes_[i]);
  }
  Node nodes_[6] = {Node('A'), Node('B'), Node('C'), Node('D'), Node('E'), Node('F')};
  List list_;
  List other_;
};

TEST_F(LinkedList, IsWalkedByACursorThatStaysAtTheEnds) {
  EXPECT_EQ(list_.Next(), nullptr);
  EXPECT_EQ(list_.Prev(), nullptr);
  Fill(list_, 0, 3);
  Node* const a = &nodes_[0];
  Node* const b = &nodes_[1];
  Node* const c = &nodes_[2];
  for (const Node* expected : {a, b, c, static_cast<Node*>(nullptr), static_cast<Node*>(nullptr)}) {
    EXPECT_EQ(list_.Next(), expected);
  }
  for (const Node* expected : {b, a, static_cast<Node*>(nullptr)}) {
    EXPECT_EQ(list_.Prev(), expected);
  }
  EXPECT_EQ(list_.Next(), b);
  list_.Rewind();
  EXPECT_EQ(list_.Prev(), c);
}

TEST_F(LinkedList, AddsAndRemovesAtBothEnds) {
  EXPECT_EQ(list_.RemoveFromHead(), nullptr);
  EXPECT_EQ(list_.RemoveFromTail(), nullptr);
  EXPECT_EQ(list_.RemoveItem(&nodes_[0]), nullptr);
  list_.AddToHead(&nodes_[0]);
  list_.AddToHead(&nodes_[1]);
  list_.AddToTail(&nodes_[2]);
  EXPECT_EQ(list_.Names(), "BAC");
  EXPECT_EQ(list_.RemoveFromHead(), &nodes_[1]);
  EXPECT_TRUE(nodes_[1].IsCleared());
  EXPECT_EQ(list_.RemoveFromTail(), &nodes_[2]);
  EXPECT_EQ(list_.RemoveFromTail(), &nodes_[0]);
  EXPECT_TRUE(nodes_[0].IsCleared());
  EXPECT_TRUE(list_.IsEmptyRing());
}

TEST_F(LinkedList, RemovesAnItemAndLeavesItsLinks) {
  Fill(list_, 0, 3);
  Fill(other_, 3, 2);
  EXPECT_EQ(list_.RemoveItem(&nodes_[4]), nullptr);
  EXPECT_EQ(list_.Names() + '|' + other_.Names(), "ABC|DE");
  EXPECT_EQ(list_.RemoveItem(&nodes_[1]), &nodes_[1]);
  EXPECT_FALSE(nodes_[1].IsCleared());
  EXPECT_EQ(list_.Names(), "AC");
}

TEST_F(LinkedList, ResetsItsCursorWithEveryChange) {
  const auto resets = [this](auto&& change) {
    list_.Initialize();
    other_.Initialize();
    Fill(list_, 0, 3);
    list_.Next();
    change();
    return list_.IsReset();
  };
  EXPECT_TRUE(resets([&] { list_.AddToHead(&nodes_[5]); }));
  EXPECT_TRUE(resets([&] { list_.AddToTail(&nodes_[5]); }));
  EXPECT_TRUE(resets([&] { list_.RemoveFromHead(); }));
  EXPECT_TRUE(resets([&] { list_.RemoveFromTail(); }));
  EXPECT_TRUE(resets([&] { list_.RemoveItem(&nodes_[0]); }));
  EXPECT_TRUE(resets([&] { list_.RemoveItem(&nodes_[5]); }));
  EXPECT_TRUE(resets([&] { list_.MergeLists(&other_); }));
  EXPECT_TRUE(resets([&] { list_.SplitList(&other_, 9); }));
  EXPECT_TRUE(resets([&] { list_.Initialize(); }));
  // But not the cursor of the other list.
  EXPECT_TRUE(resets([&] {
    Fill(other_, 3, 2);
    other_.Next();
    list_.MergeLists(&other_);
  }));
  EXPECT_FALSE(other_.IsReset());
}

TEST_F(LinkedList, Merges) {
  Fill(other_, 0, 2);
  Fill(list_, 2, 2);
  list_.MergeLists(&other_);
  EXPECT_EQ(list_.Names(), "CDAB");
  EXPECT_TRUE(other_.IsEmptyRing());
  list_.MergeLists(&other_);
  EXPECT_EQ(list_.Names(), "CDAB");
  other_.MergeLists(&list_);
  EXPECT_EQ(other_.Names(), "CDAB");
  EXPECT_TRUE(list_.IsEmptyRing());
}

TEST_F(LinkedList, Splits) {
  const struct {
    std::size_t size;
    unsigned count;
    OZError error;
    const char* moved;
    const char* left;
  } kCases[] = {
      {3, 0, eErrNone, "A", "BC"},
      {3, 1, eErrNone, "A", "BC"},
      {3, 2, eErrNone, "AB", "C"},
      {3, 3, eErrNone, "ABC", ""},
      {3, 4, eErrInvalidArgument, "", "ABC"},
      {3, 4000000000U, eErrInvalidArgument, "", "ABC"},
      {1, 1, eErrNone, "A", ""},
      {0, 0, eErrNone, "", ""},
      {0, 1, eErrInvalidArgument, "", ""},
  };
  for (const auto& c : kCases) {
    list_.Initialize();
    other_.Initialize();
    Fill(list_, 0, c.size);
    EXPECT_EQ(list_.SplitList(&other_, c.count), c.error) << c.size << ' ' << c.count;
    EXPECT_EQ(other_.Names(), c.moved) << c.size << ' ' << c.count;
    EXPECT_EQ(list_.Names(), c.left) << c.size << ' ' << c.count;
  }
  list_.Initialize();
  other_.Initialize();
  Fill(list_, 0, 2);
  Fill(other_, 2, 1);
  EXPECT_EQ(list_.SplitList(&other_, 0), eErrInvalidArgument);
  EXPECT_EQ(list_.Names() + '|' + other_.Names(), "AB|C");
}

TEST_F(LinkedList, AgreesWithAPlainListOverManyOperations) {
  std::vector<Node> nodes(64);
  std::list<Node*> plain;
  std::vector<Node*> idle;
  for (Node& node : nodes) idle.push_back(&node);
  std::minstd_rand random(1);
  for (int i = 0; i < 20000; ++i) {
    const bool add = plain.empty() || (!idle.empty() && random() % 2 == 0);
    const bool head = random() % 2 == 0;
    if (add) {
      Node* const node = idle.back();
      idle.pop_back();
      head ? list_.AddToHead(node) : list_.AddToTail(node);
      plain.insert(head ? plain.begin() : plain.end(), node);
      continue;
    }
    auto place = head ? plain.begin() : std::prev(plain.end());
    IRNode* removed = nullptr;
    if (random() % 3 == 0) {
      place = std::next(plain.begin(), static_cast<long>(random() % plain.size()));
      removed = list_.RemoveItem(*place);
    } else {
      removed = head ? list_.RemoveFromHead() : list_.RemoveFromTail();
    }
    ASSERT_EQ(removed, *place);
    idle.push_back(*place);
    plain.erase(place);
    IRNode* walked = list_.Next();
    for (Node* expected : plain) {
      ASSERT_EQ(walked, expected);
      walked = list_.Next();
    }
    ASSERT_EQ(walked, nullptr);
  }
}

}  // namespace
