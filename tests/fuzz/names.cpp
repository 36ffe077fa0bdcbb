#include "base/text.h"
#include "fuzz.h"
#include "library/file_names.h"

using namespace reelcrate;
using namespace reelcrate::fuzz;

namespace {

void checkName(const QString& name) {
    require(!name.isEmpty(), "a name is not empty");
    require(!name.contains(u'/'), "a name is no path");
    require(!name.contains(u'%'), "a name holds no field of a template");
    require(!name.contains(QChar(u'\0')), "a name holds what a path can hold");
    require(!holdsShellVariable(name), "a name holds no variable");
}

void checkTitle(const QString& title) {
    const QString stem = spotifyFileStem(title);
    checkName(stem);
    require(stem.toUtf8().size() <= 180, "a stem leaves room in a name");
    require(!hasAtLeastCharacters(stem, 141), "a stem is short");
    for (const QChar lineBreak : QStringView(u"\n\r\v\f\u0085\u2028\u2029"))
        require(!stem.contains(lineBreak), "a stem is one line");
}

void checkEvent(const QString& event) {
    const QString name = eventFolderName(event, QStringLiteral("Today"));
    checkName(name);
    require(name != u"." && name != u"..", "an event's folder is below the output folder");
    require(eventFolderPath(QStringLiteral("/music"), event, QStringLiteral("Today")) ==
                QStringLiteral("/music/") + name,
            "an event's folder is in the output folder");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzedDataProvider input(data, size);
    const auto bytes = input.ConsumeIntegralInRange<qsizetype>(0, 255);
    const QString text = anyText(input);
    checkTitle(text);
    checkEvent(text);

    const QString beginning = firstBytes(text, bytes);
    require(text.startsWith(beginning), "a beginning is one");
    require(beginning.toUtf8().size() <= bytes, "a beginning is as short as asked");
    require(hasAtLeastCharacters(text, characterCount(text)), "characters are counted alike");
    return 0;
}
