#include "menubar/status_text.h"

#include <gtest/gtest.h>

#include "settings/l10n.h"

namespace quillmark {
namespace {

// The shipped tables, with the language fixed by the test rather than by the machine.
class LocalizedStatusTextTest : public ::testing::Test {
 protected:
  L10n& in(AppLanguage language) {
    l10n.language.set(language);
    return l10n;
  }
  MemoryDefaultsStore store;
  L10n l10n{store, QM_RESOURCES_DIR, {"en"}};
  const CPUSample cpu{12.4, {}};
  const MemorySample memory{1000, 500, 100, 30, 0, 0};
  const NetSample net{14'200, 2'345'678};
};

TEST_F(LocalizedStatusTextTest, EnglishTextAndRates) {
  EXPECT_EQ(statusText(cpu, memory, net, false, in(AppLanguage::en)), "CPU 12% MEM 63%");
  EXPECT_EQ(statusText(cpu, memory, net, true, in(AppLanguage::en)), "CPU 12% MEM 63%  \u219314K \u21912.3M");
}

TEST_F(LocalizedStatusTextTest, FollowsTheChosenLanguageButRatesKeepTheirPoint) {
  const std::string german = statusText(cpu, memory, net, true, in(AppLanguage::de));
  EXPECT_NE(german, statusText(cpu, memory, net, true, in(AppLanguage::en)));
  EXPECT_NE(german.find("12"), std::string::npos);
  EXPECT_NE(german.find("63"), std::string::npos);
  EXPECT_NE(german.find("\u21912.3M"), std::string::npos);
}

}  // namespace
}  // namespace quillmark
