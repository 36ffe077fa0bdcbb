#include "queue/links.h"

#include "fuzz.h"

#include <algorithm>

using namespace reelcrate;
using namespace reelcrate::fuzz;

namespace {

void checkLink(const QString& link) {
    const bool isWeb = link.startsWith(u"http://") || link.startsWith(u"https://");
    require(isWeb, "a link is a web address");
    require(std::none_of(link.begin(), link.end(), [](QChar c) { return c.isSpace(); }),
            "a link holds no white space");
    require(!QStringView(u".,);]}>\"'").contains(link.back()),
            "a link does not end in punctuation");
    require(link.isValidUtf16(), "a link is whole characters");
    if (!link.endsWith(u"://"))
        require(extractLinks(link) == QStringList(link), "a link is found in itself");

    const SourceType source = classifySource(link);
    const bool isList = playlistLike(link, source);
    require(source == SourceType::youtube ? isList == isYouTubePlaylistLink(link)
                                          : !isList || source == SourceType::spotify,
            "playlists are of two sources");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzedDataProvider input(data, size);
    const auto cut = input.ConsumeIntegralInRange<qsizetype>(0, static_cast<qsizetype>(size));
    const QString text = anyText(input);
    const QString first = text.first(std::min(cut, text.size()));
    const QString second = text.sliced(first.size());

    const QStringList links = extractLinks(first + u'\n' + second);
    require(links == extractLinks(first) + extractLinks(second),
            "a line's links do not depend on the other lines");
    for (const QString& link : links)
        checkLink(link);

    // These two take any text.
    isYouTubePlaylistLink(first);
    require(first.isEmpty() || !videoID(first).isNull(), "an identifier is a text");
    return 0;
}
