// Checks the tables of docs/guide/foundation.md, which show what each operation does.
#include <gtest/gtest.h>

#include <map>
#include <string>

#include "orzcore/foundation.h"
#include "support/PageTables.h"

namespace {

struct Node : IRNode {
  using IRNode::IsLinked;
  using IRNode::Unlink;
  bool IsCleared() const { return mNext == nullptr && mPrev == nullptr; }
};

struct List : IRLinkedList {
  List() : IRLinkedList(kEmpty) {}
  using IRLinkedList::IsLinked;
  using IRLinkedList::mCurrent;
};

// The lists of a row, and the nodes, each at its name.
struct Lists {
  List list, other;
  Node nodes['z'] = {};
  std::string returned;

  Node& At(char name) { return nodes[int{name}]; }
  void Return(IRNode* node, bool is_cleared = false) {
    auto* const it = static_cast<Node*>(node);
    returned = it != nullptr ? std::string(1, static_cast<char>(it - nodes)) : "null";
    EXPECT_EQ(it != nullptr && it->IsCleared(), it != nullptr && is_cleared);
  }
  void Split(unsigned count) { returned = std::to_string(list.SplitList(&other, count)); }

  // Adds the nodes of a cell. The cursor is at the node in brackets.
  void Fill(List& filled, const std::string& cell) {
    for (const char name : cell) {
      if (name >= 'a') filled.AddToTail(&At(name));
    }
    const std::size_t bracket = cell.find('[');
    while (bracket < cell.size() && filled.mCurrent != &At(cell[bracket + 1])) filled.Next();
  }

  // Returns what a cell has for a list.
  std::string CellOf(List& shown) {
    EXPECT_TRUE(shown.IsLinked());
    const IRNode* const cursor = shown.mCurrent;
    std::string cell;
    shown.Rewind();
    while (IRNode* const node = shown.Next()) {
      EXPECT_TRUE(static_cast<Node*>(node)->IsLinked());
      Return(node);
      if (!cell.empty()) cell += ' ';
      cell += node == cursor ? '[' + returned + ']' : returned;
    }
    EXPECT_TRUE(!cell.empty() || cursor == &shown);
    return cell;
  }
};

const std::map<std::string, void (*)(Lists&)> kOperations = {
    {"list.Next()", [](Lists& it) { it.Return(it.list.Next()); }},
    {"list.Prev()", [](Lists& it) { it.Return(it.list.Prev()); }},
    {"list.Initialize()", [](Lists& it) { it.list.Initialize(); }},
    {"list.AddToHead(&x)", [](Lists& it) { it.list.AddToHead(&it.At('x')); }},
    {"list.AddToTail(&x)", [](Lists& it) { it.list.AddToTail(&it.At('x')); }},
    {"list.RemoveFromHead()", [](Lists& it) { it.Return(it.list.RemoveFromHead(), true); }},
    {"list.RemoveFromTail()", [](Lists& it) { it.Return(it.list.RemoveFromTail(), true); }},
    {"list.RemoveItem(&b)", [](Lists& it) { it.Return(it.list.RemoveItem(&it.At('b'))); }},
    {"b.Unlink()", [](Lists& it) { it.At('b').Unlink(); }},
    {"list.MergeLists(&other)", [](Lists& it) { it.list.MergeLists(&it.other); }},
    {"list.SplitList(&other, 0)", [](Lists& it) { it.Split(0); }},
    {"list.SplitList(&other, 1)", [](Lists& it) { it.Split(1); }},
    {"list.SplitList(&other, 2)", [](Lists& it) { it.Split(2); }},
};

TEST(LinkedList, DoesWhatThePageShows) {
  for (const PageTable& table : TablesOf("guide/foundation.md")) {
    for (const PageRow& row : table.rows) {
      SCOPED_TRACE(row.place);
      std::vector<std::string> cells = row.cells;
      cells.resize(6);  // the table of operations on one list has four columns
      const auto operation = kOperations.find(CodeIn(cells[0]).at(0));
      ASSERT_NE(operation, kOperations.end()) << cells[0];
      Lists it;
      it.Fill(it.list, cells[1]);
      it.Fill(it.other, cells[4]);
      operation->second(it);
      EXPECT_EQ(it.returned, cells[2]);
      EXPECT_EQ(it.CellOf(it.list), cells[3]);
      EXPECT_EQ(it.CellOf(it.other), cells[5]);
    }
  }
}

}  // namespace
