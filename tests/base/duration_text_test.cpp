#include "base/duration_text.h"

#include <gtest/gtest.h>

#include <cmath>

namespace reelcrate {
namespace {

TEST(SecondsOfDuration, ReadsWhatIsShown) {
    const std::pair<const char*, std::optional<double>> cases[] = {
        {"3:45", 225.0},        {"0:09", 9.0}, {"1:02:03", 3723.0}, {"75:00", 4500.0},
        {" 3:45.5 ", 225.5},    {"", {}},      {"NA", {}},          {"45", {}},
        {"3:75", {}},           {"0:00", {}},  {"3:4", {}},         {"1:2:03", {}},
        {"3:45 (approx.)", {}}, {"-3:45", {}},
    };
    for (const auto& [text, seconds] : cases)
        EXPECT_EQ(secondsOfDuration(QString::fromUtf8(text)), seconds) << text;
}

TEST(FormatDuration, RoundsAndGroups) {
    const std::pair<double, const char*> cases[] = {
        {0.4, "0:00"},       {59.4, "0:59"},      {59.5, "1:00"}, {3599, "59:59"},
        {3599.5, "1:00:00"}, {36061, "10:01:01"}, {0, ""},        {-1, ""},
        {INFINITY, ""},      {NAN, ""},           {9.3e18, ""},
    };
    for (const auto& [seconds, text] : cases)
        EXPECT_EQ(formatDuration(seconds), QString::fromLatin1(text)) << seconds;
}

}  // namespace
}  // namespace reelcrate
