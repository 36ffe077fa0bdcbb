#include "download/output_parsing.h"

#include "download/progress_seed.h"
#include "support/rows.h"
#include "support/texts.h"

namespace reelcrate {
namespace {

constexpr DownloadMode audio = DownloadMode::audio;
constexpr DownloadMode video = DownloadMode::video;

DownloadItem row(SourceType source = SourceType::youtube) {
    return makeRow(source, text("A Song"));
}

OutputEffect effect(const char* piece, DownloadMode mode = audio,
                    const DownloadItem& item = row()) {
    return outputEffect(item, mode, text(piece));
}

TEST(OutputEffect, PercentagesRaiseTheRow) {
    struct Case {
        const char* piece;
        double audioProgress;
        double videoProgress;
    };
    const Case cases[] = {
        {"RCR_PROGRESS:  42.3%", 0.46 + 0.38 * 0.423, 0.38 + 0.52 * 0.423},
        {"rcr_progress:0%", 0.46, 0.38},
        {"RCR_PROGRESS:100.0%", 0.84, 0.90},
        {"RCR_PROGRESS: 250 %", 0.84, 0.90},
        {"[download]  50.0% of 3MiB at 1MiB/s", 0.65, 0.64},
        {"RCR_PROGRESS: 50.0%\nRCR_PROGRESS: 90.0%\n[ExtractAudio] Destination: /x", 0.65, 0.64},
        {"[download] 10%\nRCR_PROGRESS: 50.0%", 0.65, 0.64},
        {"RCR_PROGRESS: N/A%\nRCR_PROGRESS: 50.0%", 0.65, 0.64},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.piece);
        const OutputEffect song = effect(c.piece, audio);
        const OutputEffect film = effect(c.piece, video);
        ASSERT_TRUE(std::holds_alternative<RealProgress>(song));
        ASSERT_TRUE(std::holds_alternative<RealProgress>(film));
        EXPECT_DOUBLE_EQ(std::get<RealProgress>(song).progress, c.audioProgress);
        EXPECT_DOUBLE_EQ(std::get<RealProgress>(film).progress, c.videoProgress);
        EXPECT_EQ(std::get<RealProgress>(song).detail, text("Downloading Song"));
        EXPECT_EQ(std::get<RealProgress>(film).detail, text("Downloading Video"));
    }
    DownloadItem further = row();
    further.progress = 0.7;
    EXPECT_EQ(effect("RCR_PROGRESS: 1%", audio, further),
              OutputEffect(RealProgress{0.7, text("Downloading Song")}));
}

TEST(OutputEffect, MarkersWithoutANumberChangeNothing) {
    EXPECT_EQ(effect("RCR_PROGRESS:  N/A%"), OutputEffect());
    EXPECT_EQ(effect("rcr_progress: N/A%\r\nRCR_PROGRESS: .5%"), OutputEffect());
    EXPECT_EQ(effect("RCR_PROGRESS: N/A%\n[Metadata] Adding\nRCR_PROGRESS: N/A%"),
              OutputEffect(StageBegun{text("Saving MP3"), 0.89, 2}));
    EXPECT_EQ(effect("hello\n\nRCR_PROGRESS: N/A%"), OutputEffect(DetailOnly{text("hello")}));
    EXPECT_EQ(effect("[Exec] Executing command: ln -f 'Searching [Metadata]'"), OutputEffect());
}

TEST(OutputEffect, LaterStagesAreFixed) {
    const StageBegun extracted{text("Saving MP3"), 0.86, 5};
    const StageBegun merged{text("Saving MP4"), 0.92, 5};
    const StageBegun existing{text("Using Existing Download"), 0.82, 1};
    const StageBegun taggedSong{text("Saving MP3"), 0.89, 2};
    const StageBegun taggedFilm{text("Saving MP4"), 0.94, 2};
    const std::tuple<const char*, StageBegun, StageBegun> cases[] = {
        {"[ExtractAudio] Not converting audio x", extracted, extracted},
        {"[EmbedThumbnail] x", {text("Saving MP3"), 0.88, 2}, {text("Saving MP4"), 0.92, 2}},
        {"[Metadata] Adding metadata to \"x\"", taggedSong, taggedFilm},
        {"Deleting original x\n[Metadata] y", taggedSong, taggedFilm},
        {"[Merger] Merging formats into \"x\"", merged, merged},
        {"[VideoRemuxer] Remuxing", merged, merged},
        {"Deleting original file x (pass -k to keep)",
         {text("Examining Song to Trim"), 0.90, 1.5},
         {text("Saving MP4"), 0.96, 1.5}},
        {"[download] x HAS ALREADY been downloaded", existing, existing},
    };
    for (const auto& [piece, song, film] : cases) {
        SCOPED_TRACE(piece);
        EXPECT_EQ(effect(piece, audio), OutputEffect(song));
        EXPECT_EQ(effect(piece, video), OutputEffect(film));
    }
}

TEST(OutputEffect, EarlyStagesDifferFromRowToRow) {
    const DownloadItem direct = row();
    const DownloadItem song = row(SourceType::spotify);
    const auto seed = [&](int salt) { return progressSeed(direct, salt); };
    const auto songSeed = [&](int salt) { return progressSeed(song, salt); };
    const PreparationProgressProfile start = preparationProgressProfile(direct);
    const PreparationProgressProfile songStart = preparationProgressProfile(song);

    const QString preparing = text("Preparing Song for Download");
    const StageBegun source{preparing, std::min(start.target + 0.04 * (1 + seed(41)), 0.34),
                            12 + 22 * seed(43)};
    const StageBegun songSource{preparing,
                                std::min(songStart.target + 0.03 * (1 + songSeed(31)), 0.45),
                                24 + 38 * songSeed(37)};
    const StageBegun search{preparing, songStart.target, songStart.durationSeconds};
    const StageBegun transfer{text("Downloading Song"), 0.35 + 0.08 * seed(53), 8 + 14 * seed(59)};
    const StageBegun songTransfer{text("Downloading Song"), 0.43 + 0.05 * songSeed(47),
                                  8 + 14 * songSeed(59)};

    EXPECT_EQ(effect("[youtube] x: Downloading webpage", audio, direct), OutputEffect(source));
    EXPECT_EQ(effect("[generic] Extracting URL: http://x", audio, direct), OutputEffect(source));
    EXPECT_EQ(effect("[youtube] x: Downloading webpage", audio, song), OutputEffect(songSource));
    EXPECT_EQ(effect("[youtube] Extracting URL: http://x", audio, song), OutputEffect(search));
    EXPECT_EQ(effect("[youtube:search] query", audio, song), OutputEffect(search));
    EXPECT_EQ(effect("[download] Destination: /x", audio, direct), OutputEffect(transfer));
    EXPECT_EQ(effect("[ExtractAudio] Destination: /x", audio, direct), OutputEffect(transfer));
    EXPECT_EQ(effect("[download] Destination: /x", audio, song), OutputEffect(songTransfer));
    // The words of an earlier stage win, wherever they stand.
    EXPECT_EQ(effect("[download] Destination: /x\nextracting", audio, direct),
              OutputEffect(source));
    EXPECT_EQ(effect("[download] search", audio, direct),
              OutputEffect(DetailOnly{text("[download] search")}));
}

TEST(DownloadDetail, TellsTheLastLine) {
    const auto ofSong = [](const QString& piece) { return downloadDetail(piece, audio); };
    const auto ofFilm = [](const QString& piece) { return downloadDetail(piece, video); };
    expectTexts(ofSong, {{"a\nb\r\n \r", "b"},
                         {" \r\n ", ""},
                         {"a\u2028b", "a\u2028b"},
                         {"x\n[download] Destination: y", "Downloading Song"},
                         {"[Metadata] x\nplain", "plain"},
                         {"[Metadata] x", "Saving MP3"},
                         {"[metadata] x", "[metadata] x"},
                         {"[Merger] x", "Saving MP4"},
                         {"Deleting original x", "Examining Song to Trim"}});
    expectTexts(ofFilm, {{"[download] Destination: y", "Downloading Video"},
                         {"[ExtractAudio] x", "Saving MP3"},
                         {"[EmbedThumbnail] x", "Saving MP4"},
                         {"Deleting original x", "Saving MP4"}});
    for (const QString& character : {text("x"), text("\U0001F469\u200D\U0001F3A4")}) {
        EXPECT_EQ(ofSong(character.repeated(120)), character.repeated(120));
        EXPECT_EQ(ofSong(character.repeated(121)), character.repeated(117) + text("..."));
    }
}

}  // namespace
}  // namespace reelcrate
