#pragma once

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

namespace quillmark::testing {

// A folder under the system's temporary directory that tests fill with a fake /proc or /sys and
// pass to a reader as its root. Removed with everything in it when the tree goes away.
class TempTree {
 public:
  TempTree() {
    std::string pattern = (std::filesystem::temp_directory_path() / "quillmark-tree-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) std::abort();
    root_ = pattern;
  }
  ~TempTree() {
    std::error_code ignored;
    std::filesystem::remove_all(root_, ignored);
  }
  TempTree(const TempTree&) = delete;
  TempTree& operator=(const TempTree&) = delete;

  [[nodiscard]] const std::string& root() const { return root_; }
  [[nodiscard]] std::string path(std::string_view relative) const {
    return root_ + "/" + std::string(relative);
  }

  // Writes in place (same inode), as the kernel's files change under a reader that keeps them open.
  void write(std::string_view relative, std::string_view content) const {
    const std::filesystem::path file = path(relative);
    std::filesystem::create_directories(file.parent_path());
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    out << content;
  }

  void makeDirectory(std::string_view relative) const { std::filesystem::create_directories(path(relative)); }

  void symlink(std::string_view target, std::string_view relative) const {
    const std::filesystem::path link = path(relative);
    std::filesystem::create_directories(link.parent_path());
    std::filesystem::create_symlink(std::string(target), link);
  }

  void remove(std::string_view relative) const { std::filesystem::remove_all(path(relative)); }

 private:
  std::string root_;
};

}  // namespace quillmark::testing
