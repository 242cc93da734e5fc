#include "engine/judge/reason_words.h"

#include <set>
#include <string>

#include <gtest/gtest.h>

namespace vorlane::judge {
namespace {

TEST(WordsOf, GivesEachReasonANameOfItsOwn) {
  std::set<std::string> names;
  constexpr auto kLast = static_cast<int32_t>(Reason::kNoBar);
  for (int32_t code = 0; code <= kLast; ++code) {
    names.insert(WordsOf(static_cast<Reason>(code)).name);
  }
  EXPECT_EQ(names.size(), static_cast<size_t>(kLast) + 1);
  EXPECT_STREQ(WordsOf(Reason::kNoBar).name, "no-bar");
  EXPECT_STREQ(WordsOf(Reason::kPrintOffPaper).unit, "degrees");
  EXPECT_STREQ(WordsOf(static_cast<Reason>(kLast + 1)).name, "none");
}

}  // namespace
}  // namespace vorlane::judge
