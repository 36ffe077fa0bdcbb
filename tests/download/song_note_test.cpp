#include "download/song_note.h"

#include <gtest/gtest.h>

namespace reelcrate {
namespace {

TEST(SongNote, TellsWhatIsRemarkable) {
    const struct {
        bool isUncertain;
        double downloaded;
        const char* listed;
        const char* note;
        bool breaksOff = false;
    } cases[] = {
        {false, 225, "3:45", ""},
        {false, 231.7, "3:45", ""},  // three hundredths
        {false, 231.8, "3:45", "7 s longer than listed"},
        {false, 65, "1:00", ""},  // five seconds
        {false, 65.4, "1:00", "5 s longer than listed"},
        {false, 54.5, "1:00", "6 s shorter than listed"},
        {false, 295, "3:45", "1:10 longer than listed"},
        {false, 119.6, "1:00", "1:00 longer than listed"},
        {false, 60, "1:03:45", "1:02:45 shorter than listed"},
        {false, 100, "", ""},
        {false, 0, "3:45", ""},
        {true, 225, "3:45", "Best match is uncertain"},
        {true, 100, "", "Best match is uncertain"},
        {true, 213, "3:45", "Best match is uncertain; 12 s shorter than listed"},
        {false, 213, "3:45", "12 s shorter than listed", true},
        {false, 213, "", "Source ends early", true},
    };
    for (const auto& [isUncertain, downloaded, listed, note, breaksOff] : cases)
        EXPECT_EQ(songNote({isUncertain, downloaded, QString::fromLatin1(listed), breaksOff}),
                  QString::fromLatin1(note))
            << downloaded << " of " << listed;
}

}  // namespace
}  // namespace reelcrate
