#include "download/claimed_files.h"

#include "support/printers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

namespace reelcrate {
namespace {

using testing::UnorderedElementsAre;

TEST(ClaimedFiles, AreThoseOfAllWhoWereThereAtTheSameTime) {
    const QString x = QStringLiteral("/x");
    const QString y = QStringLiteral("/y");
    const QString z = QStringLiteral("/z");
    ClaimedFiles files;
    std::optional<FileClaim> first(files);
    first->add(x);
    FileClaim second(files);
    second.add(y);
    second.add(y);
    EXPECT_THAT(first->ofOthers(), UnorderedElementsAre(y));
    first.reset();
    const FileClaim third(files);
    {
        FileClaim fourth(files);
        fourth.add(z);
    }
    EXPECT_THAT(second.ofOthers(), UnorderedElementsAre(x, z));
    EXPECT_THAT(third.ofOthers(), UnorderedElementsAre(y, z));
}

TEST(RelatedFiles, AreTheFinishedOneAndThoseOnTheWay) {
    const struct {
        const char* destination;
        QStringList related;
    } cases[] = {
        {"/x.y/A v. B [c.d].m4a",
         {QStringLiteral("/x.y/A v. B [c.d].m4a"), QStringLiteral("/x.y/A v. B [c.d].mp3"),
          QStringLiteral("/x.y/A v. B [c.d].temp.mp3"), QStringLiteral("/x.y/A v. B [c.d].webp")}},
        {"/x/a [b].f137-1.mp4",
         {QStringLiteral("/x/a [b].mp4"), QStringLiteral("/x/a [b].temp.mp4"),
          QStringLiteral("/x/a [b].f137-1.mp4")}},
    };
    for (const auto& [destination, related] : cases) {
        const QStringList files = relatedFiles(QString::fromLatin1(destination));
        for (const QString& each : related)
            EXPECT_TRUE(files.contains(each)) << each.toStdString();
    }
    EXPECT_FALSE(
        relatedFiles(QStringLiteral("/x/a [f.fb].mp3")).contains(QStringLiteral("/x/a [f.mp3")));
}

}  // namespace
}  // namespace reelcrate
