#include "queue/list_text.h"

#include <QFile>
#include <QFileInfo>
#include <QStringDecoder>

#include <algorithm>
#include <array>
#include <utility>

namespace reelcrate {

namespace {

ListText failed(const QString& failure) {
    return {.text = {}, .remark = {}, .failure = failure};
}

ListText tooLarge() {
    return failed(QStringLiteral("is larger than 1 MB, which no list of songs is."));
}

bool isStrange(QChar c) {
    constexpr QStringView usual = u"\t\n\v\f\r";
    return c.category() == QChar::Other_Control && c.unicode() < 0x20 && !usual.contains(c);
}

/// Pictures and packed documents have control characters everywhere, a text has at most a few that
/// slipped in. Two kinds of documents look like texts.
bool isText(const QString& text) {
    constexpr std::array documents{u"%PDF-", u"{\\rtf"};
    constexpr qsizetype oneIn = 100;
    const bool isDocument = std::any_of(documents.begin(), documents.end(),
                                        [&](const auto* start) { return text.startsWith(start); });
    const auto strange = std::count_if(text.begin(), text.end(), isStrange);
    return !isDocument && !text.contains(QChar(u'\0')) && strange * oneIn <= text.size();
}

ListText decoded(const QByteArray& bytes) {
    if (const auto marked = QStringConverter::encodingForData(bytes))
        return {.text = QStringDecoder(*marked)(bytes), .remark = {}, .failure = {}};
    QStringDecoder utf8(QStringConverter::Utf8);
    QString text = utf8(bytes);
    if (!utf8.hasError())
        return {.text = text, .remark = {}, .failure = {}};
    // Not every toolkit is built with it; Latin-1 is the same but for quotation marks and dashes.
    QStringDecoder western("windows-1252");
    text = western.isValid() ? QString(western(bytes)) : QString::fromLatin1(bytes);
    return {.text = text,
            .remark = QStringLiteral("It is no UTF-8 and was read as Windows-1252: if letters look "
                                     "wrong, save it as UTF-8."),
            .failure = {}};
}

}  // namespace

ListText textOfList(const QByteArray& bytes) {
    if (bytes.size() > largestList)
        return tooLarge();
    const ListText list = decoded(bytes);
    ListText checked = textOfList(list.text);
    checked.remark = list.remark;
    return checked;
}

ListText textOfList(QString text) {
    if (text.size() > largestList)
        return tooLarge();
    if (!isText(text))
        return failed(QStringLiteral("is no text: save a table as CSV, a document as plain text."));
    if (text.trimmed().isEmpty())
        return failed(QStringLiteral("is empty."));
    // Half a character, as a careless copy leaves it, would match no pattern.
    if (!text.isValidUtf16()) {
        const QList<uint> scalars = text.toUcs4();
        text = QString::fromUcs4(reinterpret_cast<const char32_t*>(scalars.constData()),
                                 scalars.size());
    }
    return {.text = std::move(text), .remark = {}, .failure = {}};
}

ListText textOfListFile(const QString& path) {
    QFile file(path);
    if (QFileInfo(file).exists() && !QFileInfo(file).isFile())
        return failed(QStringLiteral("is no file."));
    if (!file.open(QIODevice::ReadOnly))
        return failed(QStringLiteral("cannot be read: ") + file.errorString());
    const QByteArray bytes = file.read(largestList + 1);
    if (file.error() != QFile::NoError)
        return failed(QStringLiteral("cannot be read: ") + file.errorString());
    return textOfList(bytes);
}

}  // namespace reelcrate
