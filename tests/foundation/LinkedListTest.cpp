#include <gtest/gtest.h>

#include <algorithm>
#include <list>
#include <random>
#include <utility>
#include <vector>

#include "orzcore/foundation.h"

namespace {

struct Node : IRNode {
  using IRNode::IsLinked;
  using IRNode::Unlink;
  bool IsCleared() const { return mNext == nullptr && mPrev == nullptr; }
};

struct List : IRLinkedList {
  List() { Initialize(); }
  bool IsReset() const { return mCurrent == this; }

  std::vector<IRNode*> Nodes(IRNode* (IRLinkedList::*step)()) {
    std::vector<IRNode*> nodes;
    Rewind();
    while (IRNode* const node = (this->*step)()) nodes.push_back(node);
    return nodes;
  }
};

using Plain = std::list<IRNode*>;

TEST(LinkedList, TheCursorStopsAtTheFirstAndTheLastNode) {
  List list;
  EXPECT_EQ(list.Next(), nullptr);
  EXPECT_EQ(list.Prev(), nullptr);
  Node a, b, c;
  for (Node* node : {&a, &b, &c}) list.AddToTail(node);
  const std::pair<char, Node*> kSteps[] = {{'+', &a},      {'+', &b}, {'+', &c}, {'+', nullptr},
                                           {'+', nullptr}, {'-', &b}, {'-', &a}, {'-', nullptr},
                                           {'+', &b},      {'r', &c}};
  for (const auto& [step, node] : kSteps) {
    if (step == 'r') list.Rewind();
    EXPECT_EQ(step == '+' ? list.Next() : list.Prev(), node);
  }
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
    List& list = lists[one];
    List& other = lists[1 - one];
    Plain& items = plain[one];
    Plain& others = plain[1 - one];
    for (List& each : lists) {
      each.Rewind();
      each.Next();
    }
    const bool other_is_reset = other.IsReset();
    const auto action = random() / 7 % 8;
    SCOPED_TRACE(testing::Message() << "action " << action << " on " << items.size() << " nodes");
    const bool at_head = action % 2 == 0;
    if (action < 2 && !idle.empty()) {
      at_head ? list.AddToHead(idle.front()) : list.AddToTail(idle.front());
      items.splice(at_head ? items.begin() : items.end(), idle, idle.begin());
    } else if (action < 4) {
      const auto place = at_head || items.empty() ? items.begin() : std::prev(items.end());
      IRNode* const removed = at_head ? list.RemoveFromHead() : list.RemoveFromTail();
      ASSERT_EQ(removed, items.empty() ? nullptr : *place);
      if (removed == nullptr) continue;
      ASSERT_TRUE(static_cast<Node*>(removed)->IsCleared());
      idle.splice(idle.end(), items, place);
    } else if (action == 4) {
      Node& node = nodes[random() / 7 % nodes.size()];
      const auto place = std::find(items.begin(), items.end(), &node);
      const bool is_there = place != items.end();
      if (is_there && i % 2 == 0) {
        ASSERT_TRUE(node.IsLinked());
        list.Rewind();
        node.Unlink();
      } else {
        ASSERT_EQ(list.RemoveItem(&node), is_there ? &node : nullptr);
      }
      if (is_there) {
        ASSERT_FALSE(node.IsCleared());
        ASSERT_FALSE(node.IsLinked());
        idle.splice(idle.end(), items, place);
      }
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
    } else if (random() / 7 % 4 == 0) {
      list.Initialize();
      idle.splice(idle.end(), items);
    } else {
      continue;
    }
    ASSERT_TRUE(list.IsReset());
    ASSERT_EQ(other.IsReset(), other_is_reset);
    for (const std::size_t k : {0U, 1U}) {
      const std::vector<IRNode*> expected(plain[k].begin(), plain[k].end());
      ASSERT_EQ(lists[k].Nodes(&IRLinkedList::Next), expected);
      const std::vector<IRNode*> backward(expected.rbegin(), expected.rend());
      ASSERT_EQ(lists[k].Nodes(&IRLinkedList::Prev), backward);
    }
  }
}

}  // namespace
