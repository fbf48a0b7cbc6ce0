// How the cost grows with the number of objects.
#include <deque>
#include <fstream>

#include "Bench.h"
#include "BenchFiles.h"
#include "Machine.h"
#include "orzcore/file.h"

namespace bench {
namespace {

constexpr int kSizes[] = {10, 1000, 100000};

struct Node : IRNode {};

// The newest first, which is quick.
void DropAll(std::deque<OZFile>* files) {
  while (!files->empty()) files->pop_back();
}

void AddRemoveItem() {
  for (const int size : kSizes) {
    const auto add = [size](const char* row, auto find, auto put_back) {
      Register(row, std::to_string(size), [=](benchmark::State& state) {
        std::vector<Node> nodes(static_cast<std::size_t>(size));
        IRLinkedList list(IRLinkedList::kEmpty);
        for (Node& node : nodes) list.AddToTail(&node);
        Node& node = find(nodes);
        for (auto _ : state) {
          benchmark::DoNotOptimize(list.RemoveItem(&node));
          put_back(list, node);
        }
      });
    };
    add(
        "RemoveItem of the first of n nodes", [](auto& nodes) -> Node& { return nodes.front(); },
        [](IRLinkedList& list, Node& node) { list.AddToHead(&node); });
    add(
        "RemoveItem of the last of n nodes", [](auto& nodes) -> Node& { return nodes.back(); },
        [](IRLinkedList& list, Node& node) { list.AddToTail(&node); });
  }
}

void AddFileObjects() {
  for (const int size : kSizes) {
    const auto count = static_cast<std::size_t>(size);
    Register("make and destroy an OZFile beside n", std::to_string(size),
             [=](benchmark::State& state) {
               std::deque<OZFile> files(count);
               for (auto _ : state) {
                 const OZFile file;
                 benchmark::DoNotOptimize(&file);
               }
               DropAll(&files);
             });
    Register("destroy the oldest of n OZFile, make a new one", std::to_string(size),
             [=](benchmark::State& state) {
               std::deque<OZFile> files(count);
               for (auto _ : state) {
                 files.pop_front();
                 files.emplace_back();
               }
               DropAll(&files);
             });
  }
}

// Files that are marked, though nothing was written, so that the disk does not count. The others
// are closed.
void AddFlushAll() {
  constexpr int kMarked = 10;
  for (const int size : kSizes) {
    Register("FlushAllFiles, 10 of n files marked", std::to_string(size),
             [=](benchmark::State& state) {
               std::deque<OZFile> files(static_cast<std::size_t>(size));
               std::vector<OZFile*> marked;
               bool is_done = true;
               for (int i = 0; i < kMarked; ++i) {
                 const std::string path = FileDirectory() + "/marked" + std::to_string(i);
                 std::ofstream(path) << path;
                 marked.push_back(&files[static_cast<std::size_t>(i * (size / kMarked))]);
                 is_done = is_done && marked.back()->OpenFile(path.c_str(), 0) == eErrNone;
               }
               for (auto _ : state) {
                 for (OZFile* const file : marked) file->SetNeedsFlushing();
                 is_done = is_done && OZFile::FlushAllFiles() == eErrNone;
               }
               if (!is_done) state.SkipWithError("a call failed");
               DropAll(&files);
             });
  }
}

// A text follows the settings of the user, which are those of the environment.
void AddEnvironments() {
  for (const int variables : {10, 100, 1000}) {
    Register("write a date, n variables in the environment", std::to_string(variables),
             [=](benchmark::State& state) {
               SetEnvironment(variables);
               const un_date_time date = un_date_time::Of(2024, 3, 15);
               char text[16];
               for (auto _ : state) {
                 OZDate::FormatDate(&date, text, sizeof(text), 3);
                 benchmark::DoNotOptimize(text);
               }
               SetEnvironment(kVariables);
             });
  }
}

}  // namespace

void AddGrowths() {
  AddEnvironments();
  AddRemoveItem();
  AddFileObjects();
  AddFlushAll();
}

}  // namespace bench
