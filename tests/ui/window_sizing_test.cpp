#include "ui/window/window_sizing.h"

#include "support/printers.h"

#include <gtest/gtest.h>

namespace reelcrate {
namespace {

TEST(WindowSizingTest, FillsItsScreensHeightAndStaysOnIt) {
    const QSizeF minimum(1080, 620);
    const std::optional<QRectF> none;
    const struct {
        const char* what;
        QRectF frame;
        std::optional<QRectF> visible;
        ReadableWindow expected;
    } cases[] = {
        {"small screen",
         {100, 50, 600, 400},
         {{0, 0, 1280, 800}},
         {minimum, {{40, 30, 1240, 770}}}},
        {"large screen, wide window",
         {300, 0, 1600, 900},
         {{0, 25, 2560, 1415}},
         {minimum, {{300, 25, 1600, 1385}}}},
        {"large screen, narrow window",
         {300, 40, 1200, 900},
         {{0, 25, 2560, 1415}},
         {minimum, {{300, 40, 1440, 1385}}}},
        {"top edge stays",
         {10, 30, 1440, 900},
         {{0, 0, 2560, 1440}},
         {minimum, {{10, 30, 1440, 1410}}}},
        {"hangs out below and right",
         {2000, 1000, 1440, 900},
         {{0, 0, 2560, 1440}},
         {minimum, {{1120, 30, 1440, 1410}}}},
        {"hangs out above and left",
         {-50, -50, 1440, 900},
         {{0, 0, 2560, 1440}},
         {minimum, {{0, 0, 1440, 1410}}}},
        {"wider than the screen",
         {0, 0, 3000, 900},
         {{0, 0, 1920, 1080}},
         {minimum, {{0, 0, 1880, 1050}}}},
        {"screen smaller than the least",
         {0, 0, 800, 500},
         {{0, 0, 900, 600}},
         {{980, 620}, {{0, -20, 980, 620}}}},
        {"second screen",
         {2000, 100, 1200, 800},
         {{1920, 0, 1600, 900}},
         {minimum, {{2000, 30, 1440, 870}}}},
        {"large enough", {5, 5, 1440.5, 869}, {{0, 0, 1600, 900}}, {minimum, none}},
        {"no screen", {5, 5, 800, 600}, none, {minimum, {{5, 5, 1400, 1010}}}},
    };
    for (const auto& [what, frame, visible, expected] : cases) {
        const ReadableWindow window = readableWindow(frame, visible);
        EXPECT_EQ(window.minimumSize, expected.minimumSize) << what;
        ASSERT_EQ(window.frame.has_value(), expected.frame.has_value()) << what;
        if (window.frame) {
            EXPECT_EQ(*window.frame, *expected.frame)
                << what << " " << window.frame->x() << " " << window.frame->y() << " "
                << window.frame->width() << " " << window.frame->height();
        }
    }
}

}  // namespace
}  // namespace reelcrate
