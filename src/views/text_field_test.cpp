#include "views/text_field.h"

#include <gtest/gtest.h>

namespace quillmark {
namespace {

struct Field {
  std::vector<std::string> changes;
  std::string clipboard;
  TextField field{Theme::glass(), "Search", [this](const std::string& s) { changes.push_back(s); }};
  Field() {
    field.copied = [this](const std::string& s) { clipboard = s; };
  }
};

TEST(TextFieldTest, EditsWholeCharacters) {
  Field f;
  f.field.onText({"añ日", false});
  f.field.onKey({Key::left});
  f.field.onKey({Key::backspace});  // removes ñ (two bytes), not half of it
  EXPECT_EQ(f.field.text(), "a日");
  f.field.onKey({Key::home});
  f.field.onKey({Key::deleteForward});
  EXPECT_EQ(f.field.text(), "日");
  f.field.onKey({Key::end});
  f.field.onKey({Key::left, true});  // shift selects 日
  EXPECT_EQ(f.field.selectedText(), "日");
  f.field.onText({"x", false});  // typing replaces the selection
  EXPECT_EQ(f.field.text(), "x");
  EXPECT_EQ(f.changes.size(), 4u);
}

TEST(TextFieldTest, ClipboardCompositionAndEscape) {
  Field f;
  f.field.onText({"web", false});
  f.field.onKey({Key::selectAll});
  f.field.onKey({Key::cut});
  EXPECT_EQ(f.clipboard, "web");
  EXPECT_EQ(f.field.text(), "");
  f.field.onKey({Key::paste, false, "two\nlines"});
  EXPECT_EQ(f.field.text(), "two lines");
  // Provisional text is shown but not committed; committing inserts it at the cursor.
  const auto before = f.changes.size();
  f.field.onText({"に", true});
  EXPECT_EQ(f.field.composing(), "に");
  EXPECT_EQ(f.changes.size(), before);
  f.field.onText({"日", false});
  EXPECT_EQ(f.field.text(), "two lines日");
  EXPECT_TRUE(f.field.onKey({Key::escape}));
  EXPECT_EQ(f.field.text(), "");
  EXPECT_FALSE(f.field.onKey({Key::escape}));  // an empty field lets Escape close the panel
}

}  // namespace
}  // namespace quillmark
