#include <gtest/gtest.h>

#include <algorithm>
#include <list>
#include <random>
#include <vector>

#include "orzcore/foundation.h"

namespace {

using Plain = std::list<IRNode*>;

struct Node : IRNode {
  using IRNode::IsLinked;
  using IRNode::Unlink;
  bool IsCleared() const { return mNext == nullptr && mPrev == nullptr; }
};

struct List : IRLinkedList {
  List() { Initialize(); }
  bool IsReset() const { return mCurrent == this; }

  Plain Nodes(IRNode* (IRLinkedList::*step)()) {
    Plain nodes;
    Rewind();
    while (IRNode* const node = (this->*step)()) nodes.push_back(node);
    return nodes;
  }
};

TEST(LinkedList, TheCursorStopsAtTheFirstAndTheLastNode) {
  List list;
  Node a, b;
  EXPECT_EQ(list.Next(), nullptr);
  EXPECT_EQ(list.Prev(), nullptr);
  for (Node* node : {&a, &b}) list.AddToTail(node);
  for (IRNode* node : {&a, &b}) EXPECT_EQ(list.Next(), node);
  for (int i = 0; i < 2; ++i) EXPECT_EQ(list.Next(), nullptr);
  EXPECT_EQ(list.Prev(), &a);
  EXPECT_EQ(list.Prev(), nullptr);
  EXPECT_EQ(list.Next(), &b);
}

// Changes two lists and two std::lists in the same way. `idle` has the nodes that are on no list.
TEST(LinkedList, AgreesWithAPlainListOverManyOperations) {
  std::vector<Node> nodes(12);
  List lists[2];
  Plain plain[2], idle;
  for (Node& node : nodes) idle.push_back(&node);
  std::minstd_rand random(1);
  for (int i = 0; i < 50000; ++i) {
    const std::size_t one = random() / 7 % 2;
    List &list = lists[one], &other = lists[1 - one];
    Plain &items = plain[one], &others = plain[1 - one];
    for (List& each : lists) {
      each.Rewind();
      each.Next();
    }
    const bool other_is_reset = other.IsReset();
    const auto action = random() / 7 % 29 / 4;  // 7 is rare, since it empties a list
    SCOPED_TRACE(testing::Message() << "action " << action << " on " << items.size() << " nodes");
    const bool at_head = action % 2 == 0;
    if (action < 2 && !idle.empty()) {
      at_head ? list.AddToHead(idle.front()) : list.AddToTail(idle.front());
      items.splice(at_head ? items.begin() : items.end(), idle, idle.begin());
    } else if (action < 4) {
      IRNode* const removed = at_head ? list.RemoveFromHead() : list.RemoveFromTail();
      ASSERT_EQ(removed, items.empty() ? nullptr : at_head ? items.front() : items.back());
      if (removed == nullptr) continue;
      ASSERT_TRUE(static_cast<Node*>(removed)->IsCleared());
      idle.splice(idle.end(), items, at_head ? items.begin() : std::prev(items.end()));
    } else if (action == 4) {
      Node& node = nodes[random() / 7 % nodes.size()];
      const auto place = std::find(items.begin(), items.end(), &node);
      const bool is_there = place != items.end();
      if (is_there && i % 2 == 0) {
        list.Rewind();
        node.Unlink();
      } else {
        ASSERT_EQ(list.RemoveItem(&node), is_there ? &node : nullptr);
      }
      if (!is_there) continue;
      ASSERT_FALSE(node.IsCleared());
      ASSERT_FALSE(node.IsLinked());
      idle.splice(idle.end(), items, place);
    } else if (action == 5) {
      list.MergeLists(&other);
      items.splice(items.end(), others);
    } else if (action == 6) {
      const auto count = static_cast<unsigned>(random() / 7 % 8);
      const std::size_t moved = std::min<std::size_t>(items.size(), count == 0 ? 1 : count);
      const bool can = others.empty() && moved >= count;
      ASSERT_EQ(list.SplitList(&other, count), can ? eErrNone : eErrInvalidArgument) << count;
      const auto end = std::next(items.begin(), static_cast<std::ptrdiff_t>(can ? moved : 0));
      others.splice(others.end(), items, items.begin(), end);
    } else {
      list.Initialize();
      idle.splice(idle.end(), items);
    }
    ASSERT_TRUE(list.IsReset());
    ASSERT_EQ(other.IsReset(), other_is_reset);
    for (const std::size_t k : {0U, 1U}) {
      ASSERT_EQ(lists[k].Nodes(&IRLinkedList::Next), plain[k]);
      ASSERT_EQ(lists[k].Nodes(&IRLinkedList::Prev), Plain(plain[k].rbegin(), plain[k].rend()));
      for (IRNode* node : plain[k]) ASSERT_TRUE(static_cast<Node*>(node)->IsLinked());
    }
  }
}

}  // namespace
