#include "fuzz.h"
#include "resolve/media_probe_output.h"

#include <algorithm>

using namespace reelcrate;
using namespace reelcrate::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzedDataProvider input(data, size);
    const QString output = decodedText(input);

    const QString link = QStringLiteral("http://the.link/");
    if (const auto info = mediaInfoFromOutput(output, link)) {
        const QString& page = info->resolvedURL;
        require(page.startsWith(u"http://", Qt::CaseInsensitive) ||
                    page.startsWith(u"https://", Qt::CaseInsensitive),
                "a page is a web address");
        require(std::none_of(page.begin(), page.end(), [](QChar c) { return c.isSpace(); }),
                "a page holds no white space");
        require(!info->title.isEmpty(), "what was read has a title");
        for (const QString& field : {info->title, info->duration, info->thumbnailURL})
            require(!field.contains(u'\n') && !field.contains(u'\r'), "a field is one line");
    }
    for (const PlaylistEntry& entry : playlistEntriesFromOutput(output)) {
        require(entry.url.startsWith(u"http"), "an entry's address is no option and no file");
        require(!entry.title.isEmpty() && entry.title == entry.title.trimmed(),
                "an entry has a title");
        require(entry.source == SourceType::youtube, "a playlist is the video site's");
    }
    return 0;
}
