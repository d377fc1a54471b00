#include "sampling/linux/kept_open_file.h"

#include <gtest/gtest.h>
#include <sys/mman.h>

#include <cstdio>
#include <vector>

namespace quillmark {
namespace {

TEST(KeptOpenFile, ReadsAProcFileLongerThanOneReadToItsEnd) {
  // Alternating protections keep the kernel from merging neighbours, so /proc/self/maps gets one
  // line per mapping: many pages, while the kernel hands out about one page per read.
  std::vector<void*> mappings;
  for (int i = 0; i < 300; ++i) {
    void* at = mmap(nullptr, 4096, i % 2 ? PROT_READ : PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(at, MAP_FAILED);
    mappings.push_back(at);
  }
  KeptOpenFile maps("/proc/self/maps");
  for (int round = 0; round < 2; ++round) {  // the second read starts over at offset 0
    const auto text = maps.read();
    ASSERT_TRUE(text);
    EXPECT_GT(text->size(), 3u * 4096);
    EXPECT_EQ(text->back(), '\n');
    for (void* at : mappings) {
      char start[32];
      std::snprintf(start, sizeof start, "%lx-", reinterpret_cast<unsigned long>(at));
      ASSERT_NE(text->find(start), std::string_view::npos) << start << " missing in round " << round;
    }
  }
  for (void* at : mappings) munmap(at, 4096);
}

}  // namespace
}  // namespace quillmark
