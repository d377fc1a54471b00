#include "processes/process_visual_cache.h"

#include <gtest/gtest.h>

#include <vector>

namespace quillmark {
namespace {

// Names each lookup after the order it came in, so a stale entry shows.
class CountingSource final : public VisualSource {
 public:
  ProcessVisual lookup(std::int32_t pid, std::string_view fallbackName) override {
    asked.push_back(pid);
    return {std::string(fallbackName) + "#" + std::to_string(asked.size()), std::nullopt};
  }
  std::vector<std::int32_t> asked;
};

TEST(ProcessVisualCacheTest, OneLookupPerProcessAndAReusedPidIsLookedUpAfresh) {
  CountingSource source;
  ProcessVisualCache cache(source);
  EXPECT_EQ(cache.lookup(42, 1000, "Editor").name, "Editor#1");
  EXPECT_EQ(cache.lookup(42, 1000, "Editor").name, "Editor#1");
  // Another program started under the same pid between two snapshots: not the editor's icon.
  EXPECT_EQ(cache.lookup(42, 2000, "Shell").name, "Shell#2");
  EXPECT_EQ(cache.lookup(7, 1000, "Other").name, "Other#3");
  cache.prune(PidSet{7});
  EXPECT_EQ(cache.size(), 1u);
  EXPECT_EQ(source.asked, (std::vector<std::int32_t>{42, 42, 7}));
}

}  // namespace
}  // namespace quillmark
