#include "base/text.h"
#include "download/output_parsing.h"
#include "download/output_reader.h"
#include "fuzz.h"

#include <algorithm>

using namespace reelcrate;
using namespace reelcrate::fuzz;

namespace {

bool holdsLineBreak(const QString& text) {
    return text.contains(u'\n') || text.contains(u'\r');
}

void check(const DownloadItem& row, const RealProgress& real) {
    require(real.progress >= row.progress, "progress never goes back");
    require(real.progress <= std::max(row.progress, 0.90), "the rest is not the download's");
}

void check(const DownloadItem&, const StageBegun& stage) {
    require(stage.target > 0 && stage.target < 1, "a crawl's target is a fraction");
    require(stage.durationSeconds > 0 && stage.durationSeconds <= 120, "a crawl has its time");
    require(!stage.detail.isEmpty(), "a stage has a text");
}

void check(const DownloadItem&, const DetailOnly& text) {
    require(!text.detail.isEmpty(), "a detail is a text");
    require(!holdsLineBreak(text.detail), "a detail is one line");
    require(!hasAtLeastCharacters(text.detail, 121), "a detail is short");
}

void check(const DownloadItem&, std::monostate) {}

/// What the piece does to the row is done to it.
void show(DownloadItem& row, DownloadMode mode, const QString& piece) {
    const OutputEffect effect = outputEffect(row, mode, piece);
    std::visit([&row](const auto& known) { check(row, known); }, effect);
    if (const auto* real = std::get_if<RealProgress>(&effect))
        row.progress = real->progress;
}

/// A piece of about this length that does not end inside a character.
QString wholeCharacters(const QString& output, qsizetype at, qsizetype length) {
    const bool cutsPair =
        at + length < output.size() && output.at(at + length - 1).isHighSurrogate();
    return output.mid(at, cutsPair ? length + 1 : length);
}

bool saysTheSame(const OutputReader& a, const OutputReader& b) {
    return a.complaints() == b.complaints() && a.foundNothing() == b.foundNothing() &&
           a.conversionFailed() == b.conversionFailed() &&
           a.onlyCoversFailed() == b.onlyCoversFailed() && a.cannotResume() == b.cannotResume();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzedDataProvider input(data, size);
    DownloadItem row;
    row.id = QUuid();
    row.source = input.PickValueInArray({SourceType::youtube, SourceType::spotify});
    row.progress = input.ConsumeProbability<double>();
    const DownloadMode mode = input.PickValueInArray({DownloadMode::audio, DownloadMode::video});
    const QString output = decodedText(input) + u'\n';

    OutputReader whole;
    whole.read(output);
    OutputReader reader;
    FuzzedDataProvider cuts(data, size);
    for (qsizetype at = 0; at < output.size();) {
        const QString piece = wholeCharacters(output, at, cuts.ConsumeIntegralInRange(1, 60));
        at += piece.size();
        reader.read(piece);
        if (!piece.trimmed().isEmpty())
            show(row, mode, piece.trimmed());
    }
    require(saysTheSame(whole, reader), "what a line says is found wherever the output is cut");
    return 0;
}
