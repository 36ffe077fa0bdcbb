#include "download/progress_seed.h"

#include <cstdint>

namespace reelcrate {

double progressSeed(const DownloadItem& item, int salt) {
    const QString key = idText(item.id) + u'-' + item.title + u'-' + QString::number(salt);
    std::uint64_t hash = 0x14650fb0739d0383;
    for (const char byte : key.toUtf8())
        hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001b3;
    return static_cast<double>(hash % 10000) / 10000;
}

PreparationProgressProfile preparationProgressProfile(const DownloadItem& item) {
    // A song that has to be searched for takes long before it is downloaded.
    if (isSearchedFor(item.source)) {
        return {.target = 0.30 + 0.12 * progressSeed(item, 11),
                .durationSeconds = 75 + 70 * progressSeed(item, 17)};
    }
    return {.target = 0.16 + 0.10 * progressSeed(item, 23),
            .durationSeconds = 18 + 28 * progressSeed(item, 29)};
}

}  // namespace reelcrate
