// The intrusive list, compared with that of Boost.
#include <boost/intrusive/list.hpp>

#include "Bench.h"
#include "orzcore/foundation.h"

namespace orzcore::bench {
namespace {

constexpr int kNodes = 1000;  // as many as the fastest cache holds

// The two lists under the same names.
class OurList {
 public:
  struct Node : IRNode {
    int number;
  };

  OurList() { list_.Initialize(); }
  void AddHead(Node& node) { list_.AddToHead(&node); }
  void AddTail(Node& node) { list_.AddToTail(&node); }
  Node* RemoveHead() { return static_cast<Node*>(list_.RemoveFromHead()); }
  Node* RemoveTail() { return static_cast<Node*>(list_.RemoveFromTail()); }

  template <typename Visit>
  void Walk(Visit visit) {
    list_.Rewind();
    while (IRNode* const node = list_.Next()) visit(static_cast<Node*>(node)->number);
  }

 private:
  IRLinkedList list_;
};

namespace bi = boost::intrusive;

template <bi::link_mode_type kMode>
class BoostList {
 public:
  struct Node : bi::list_base_hook<bi::link_mode<kMode>> {
    int number;
  };

  ~BoostList() { list_.clear(); }
  void AddHead(Node& node) { list_.push_front(node); }
  void AddTail(Node& node) { list_.push_back(node); }

  Node* RemoveHead() {
    if (list_.empty()) return nullptr;
    Node& node = list_.front();
    list_.pop_front();
    return &node;
  }

  Node* RemoveTail() {
    if (list_.empty()) return nullptr;
    Node& node = list_.back();
    list_.pop_back();
    return &node;
  }

  template <typename Visit>
  void Walk(Visit visit) {
    for (const Node& node : list_) visit(node.number);
  }

 private:
  bi::list<Node, bi::constant_time_size<false>> list_;
};

constexpr auto kStack = [](auto& list, auto& nodes, auto visit) {
  for (auto& node : nodes) list.AddHead(node);
  while (auto* const node = list.RemoveHead()) visit(node->number);
};

constexpr auto kStackAtTail = [](auto& list, auto& nodes, auto visit) {
  for (auto& node : nodes) list.AddTail(node);
  while (auto* const node = list.RemoveTail()) visit(node->number);
};

constexpr auto kQueue = [](auto& list, auto& nodes, auto visit) {
  for (auto& node : nodes) list.AddTail(node);
  while (auto* const node = list.RemoveHead()) visit(node->number);
};

// On the list that the row begins with.
constexpr auto kWalk = [](auto& list, auto& /*nodes*/, auto visit) { list.Walk(visit); };

// `work` visits the nodes in ascending order, or in descending order.
template <typename List, typename Work>
void AddRow(const std::string& row, const std::string& who, Work work, bool is_filled,
            bool is_ascending) {
  Register(row, who, [=](benchmark::State& state) {
    std::vector<typename List::Node> nodes(kNodes);
    for (int number = 0; auto& node : nodes) node.number = number++;
    List list;
    if (is_filled) {
      for (auto& node : nodes) list.AddTail(node);
    }
    int next = is_ascending ? 0 : kNodes - 1;
    bool is_in_order = true;
    work(list, nodes, [&](int number) {
      is_in_order = is_in_order && number == next;
      next += is_ascending ? 1 : -1;
    });
    if (!is_in_order || next != (is_ascending ? kNodes : -1)) state.SkipWithError("another order");
    for (auto _ : state) {
      unsigned sum = 0;
      work(list, nodes, [&](int number) { sum += static_cast<unsigned>(number); });
      benchmark::DoNotOptimize(sum);
      benchmark::ClobberMemory();
    }
  });
}

template <typename Work>
void AddRows(const std::string& row, Work work, bool is_filled, bool is_ascending) {
  AddRow<OurList>(row, "ours", work, is_filled, is_ascending);
  // Boost's default links are cleared at a removal, as ours are; the others are not.
  AddRow<BoostList<bi::safe_link>>(row, "boost", work, is_filled, is_ascending);
  AddRow<BoostList<bi::normal_link>>(row, "boost, normal_link", work, is_filled, is_ascending);
}

}  // namespace

void AddLists() {
  AddRows("list of 1000, add and remove at the head", kStack, false, false);
  AddRows("list of 1000, add and remove at the tail", kStackAtTail, false, false);
  AddRows("list of 1000, add at the tail, remove at the head", kQueue, false, true);
  AddRows("list of 1000, walk", kWalk, true, true);
}

}  // namespace orzcore::bench
