#include "base/duration_text.h"

#include "support/texts.h"

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
    expectTexts([](const QString& seconds) { return formatDuration(seconds.toDouble()); },
                {{"0.4", "0:00"},
                 {"59.4", "0:59"},
                 {"59.5", "1:00"},
                 {"3599", "59:59"},
                 {"3599.5", "1:00:00"},
                 {"36061", "10:01:01"},
                 {"0", ""},
                 {"-1", ""},
                 {"inf", ""},
                 {"nan", ""},
                 {"9.3e18", ""}});
}

}  // namespace
}  // namespace reelcrate
