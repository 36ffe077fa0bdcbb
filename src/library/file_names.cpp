#include "library/file_names.h"

#include "base/text.h"

#include <QDir>
#include <QRegularExpression>

namespace reelcrate {

namespace {

constexpr qsizetype longestStem = 140;      // characters
constexpr qsizetype longestFileStem = 180;  // bytes
constexpr qsizetype longestFileName = 255;  // bytes

bool beginsVariable(QStringView text, qsizetype at) {
    if (text.at(at) != u'$' || at + 1 == text.size())
        return false;
    const QChar next = text.at(at + 1);
    return next.isLetter() || next == u'_' || next == u'{';
}

QString withoutVariables(QString text) {
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (beginsVariable(text, i))
            text[i] = u'-';
    }
    return text;
}

}  // namespace

QString safeOutputStem(const QString& title) {
    const QString stem = withHyphensForUnsafeCharacters(title).simplified();
    return stem.isEmpty() ? QStringLiteral("Spotify Match") : firstCharacters(stem, longestStem);
}

QString spotifyFileStem(const QString& title) {
    return firstBytes(withoutVariables(safeOutputStem(title)), longestFileStem);
}

QString visibleFileName(const QString& fileName) {
    static const QRegularExpression hidingDots(QStringLiteral("^[.\\s]+(?=.)"));
    QString name = fileName;
    return name.remove(hidingDots);
}

QString numberedFileName(const QString& fileName, int number) {
    // The identifier in brackets by which the song is found again stays behind the title.
    static const QRegularExpression form(
        QStringLiteral(R"(^(.*?)((?: \[[^\[\]]*\])?(?:\.[^.]*)?)$)"),
        QRegularExpression::DotMatchesEverythingOption);
    const QRegularExpressionMatch parts = form.match(fileName);
    const QString end = QStringLiteral(" (%1)").arg(number) + parts.captured(2);
    return firstBytes(parts.captured(1), longestFileName - end.toUtf8().size()) + end;
}

QString sanitizedFolderName(const QString& eventName, const QString& defaultName) {
    const QString name = eventName.trimmed();
    return withHyphensForUnsafeCharacters(name.isEmpty() ? defaultName : name);
}

QString eventFolderName(const QString& eventName, const QString& defaultName) {
    const QString name = sanitizedFolderName(eventName, defaultName);
    if (name == u"." || name == u"..")
        return QString(name.size(), u'-');
    return withoutVariables(name);
}

QString eventFolderPath(const QString& outputFolder, const QString& eventName,
                        const QString& defaultName) {
    return QDir(outputFolder).filePath(eventFolderName(eventName, defaultName));
}

bool holdsShellVariable(const QString& path) {
    for (qsizetype i = 0; i < path.size(); ++i) {
        if (beginsVariable(path, i))
            return true;
    }
    return false;
}

}  // namespace reelcrate
