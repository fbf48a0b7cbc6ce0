// How the cost grows with the number of objects.
#include <deque>
#include <fstream>

#include "Bench.h"
#include "orzcore/file.h"

namespace orzcore::bench {
namespace {

struct Node : IRNode {};

std::size_t SizeOf(const benchmark::State& state) {
  return static_cast<std::size_t>(state.range(0));
}

// The newest first, which is quick.
void DropAll(std::deque<OZFile>* files) {
  while (!files->empty()) files->pop_back();
}

// Puts the node back where `put` puts it, which is where `find` finds it.
template <typename Find, typename Put>
auto RemoveItem(Find find, Put put) {
  return [=](benchmark::State& state) {
    std::vector<Node> nodes(SizeOf(state));
    IRLinkedList list(IRLinkedList::kEmpty);
    for (Node& node : nodes) list.AddToTail(&node);
    Node& node = find(nodes);
    for (auto _ : state) {
      benchmark::DoNotOptimize(list.RemoveItem(&node));
      put(list, node);
    }
  };
}

void MakeFileObject(benchmark::State& state) {
  std::deque<OZFile> files(SizeOf(state));
  for (auto _ : state) {
    const OZFile file;
    benchmark::DoNotOptimize(&file);
  }
  DropAll(&files);
}

void ReplaceOldestFileObject(benchmark::State& state) {
  std::deque<OZFile> files(SizeOf(state));
  for (auto _ : state) {
    files.pop_front();
    files.emplace_back();
  }
  DropAll(&files);
}

// The files are marked though nothing was written, so that the disk does not count. The others are
// closed.
void FlushAll(benchmark::State& state) {
  constexpr std::size_t kMarked = 10;
  std::deque<OZFile> files(SizeOf(state));
  std::vector<OZFile*> marked;
  bool is_done = true;
  for (std::size_t i = 0; i < kMarked; ++i) {
    const std::string path = FileDirectory() + "/marked" + std::to_string(i);
    std::ofstream(path) << path;
    marked.push_back(&files[i * (files.size() / kMarked)]);
    is_done = is_done && marked.back()->OpenFile(path.c_str(), 0) == eErrNone;
  }
  for (auto _ : state) {
    for (OZFile* const file : marked) file->SetNeedsFlushing();
    is_done = is_done && OZFile::FlushAllFiles() == eErrNone;
  }
  if (!is_done) state.SkipWithError("a call failed");
  DropAll(&files);
}

}  // namespace

void AddGrowths() {
  const auto add = [](const char* work, auto function) {
    Register(work, "ours", function)->ArgsProduct({{10, 1000, 100000}});
  };
  add("RemoveItem of the first of n nodes",
      RemoveItem([](auto& nodes) -> Node& { return nodes.front(); },
                 [](IRLinkedList& list, Node& node) { list.AddToHead(&node); }));
  add("RemoveItem of the last of n nodes",
      RemoveItem([](auto& nodes) -> Node& { return nodes.back(); },
                 [](IRLinkedList& list, Node& node) { list.AddToTail(&node); }));
  add("make and destroy an OZFile beside n", MakeFileObject);
  add("destroy the oldest of n OZFile, make a new one", ReplaceOldestFileObject);
  add("FlushAllFiles, 10 of n files marked", FlushAll);
}

}  // namespace orzcore::bench
