#include "fuzz.h"
#include "resolve/media_probe_output.h"

#include <algorithm>

using namespace reelcrate;
using namespace reelcrate::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzedDataProvider input(data, size);
    const QString output = decodedText(input);

    const QString link = QStringLiteral("http://the.link/");
    for (const QString& each : {output, QStringLiteral("RCR_MEDIA:") + output}) {
        const ProbedMedia found = mediaFromOutput(each);
        require(found.counted >= found.media.size(), "what is there is counted");
        for (const MediaInfo& info : found.media) {
            const QString& page = info.resolvedURL;
            require(page.isEmpty() || page.startsWith(u"http://", Qt::CaseInsensitive) ||
                        page.startsWith(u"https://", Qt::CaseInsensitive),
                    "a page is a web address");
            require(std::none_of(page.begin(), page.end(), [](QChar c) { return c.isSpace(); }),
                    "a page holds no white space");
            require(!info.title.contains(u'\n') && !info.title.contains(u'\r'),
                    "a title is one line");
        }
    }
    for (const SourceType source : {SourceType::youtube, SourceType::link}) {
        for (const PlaylistEntry& entry : listingFromOutput(output, link, source).entries) {
            require(entry.url.startsWith(u"http"), "an entry's address is no option and no file");
            require(
                (!entry.isRead || !entry.title.isEmpty()) && entry.title == entry.title.trimmed(),
                "what is read has a title");
        }
    }
    return 0;
}
