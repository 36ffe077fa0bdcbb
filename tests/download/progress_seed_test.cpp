#include "download/progress_seed.h"

#include "support/rows.h"

#include <gtest/gtest.h>

namespace reelcrate {
namespace {

DownloadItem row(SourceType source, const char* title) {
    DownloadItem item = makeRow(source, QString::fromUtf8(title));
    item.id = QUuid::fromString(QStringLiteral("0f8fad5b-d9cb-469f-a165-70867728950e"));
    return item;
}

TEST(ProgressSeed, IsFixedForRowTitleAndSalt) {
    // Reference values of the hash over "0F8FAD5B-D9CB-469F-A165-70867728950E-TITLE-SALT".
    EXPECT_EQ(progressSeed(row(SourceType::link, ""), 7), 0.8214);
    EXPECT_EQ(progressSeed(row(SourceType::link, "Caf\u00E9 \U0001F3B5"), 23), 0.632);
    EXPECT_EQ(progressSeed(row(SourceType::link, "Caf\u00E9 \U0001F3B5"), 29), 0.843);
}

TEST(ProgressSeed, SpreadsOverRows) {
    double lowest = 1;
    double highest = 0;
    for (int i = 0; i < 200; ++i) {
        const double seed = progressSeed(DownloadItem(), 11);
        lowest = std::min(lowest, seed);
        highest = std::max(highest, seed);
    }
    EXPECT_GE(lowest, 0);
    EXPECT_LT(lowest, 0.2);
    EXPECT_GT(highest, 0.8);
    EXPECT_LE(highest, 0.9999);
}

TEST(PreparationProgress, IsSlowerForSongsToBeSearched) {
    const auto direct =
        preparationProgressProfile(row(SourceType::facebook, "Caf\u00E9 \U0001F3B5"));
    EXPECT_DOUBLE_EQ(direct.target, 0.16 + 0.10 * 0.632);
    EXPECT_DOUBLE_EQ(direct.durationSeconds, 18 + 28 * 0.843);
    const auto searched =
        preparationProgressProfile(row(SourceType::spotify, "Caf\u00E9 \U0001F3B5"));
    EXPECT_DOUBLE_EQ(searched.target, 0.30 + 0.12 * 0.6261);
    EXPECT_DOUBLE_EQ(searched.durationSeconds, 75 + 70 * 0.6995);
}

}  // namespace
}  // namespace reelcrate
