#include "ui/window/dropped_text.h"

#include "base/text.h"
#include "queue/line_ornaments.h"
#include "queue/links.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace reelcrate {

namespace {

bool isOfKind(const QUrl& file, const QStringList& kinds) {
    return file.isLocalFile() && kinds.contains(QFileInfo(file.toLocalFile()).suffix().toLower());
}

/// Whether a file is of a kind that people keep links in.
bool holdsLinks(const QUrl& file) {
    static const QStringList kinds{QStringLiteral("txt"), QStringLiteral("csv"),
                                   QStringLiteral("m3u"), QStringLiteral("webloc"),
                                   QStringLiteral("url")};
    return isOfKind(file, kinds);
}

/// Whether a file is of a kind that people write songs into.
bool mayNameSongs(const QUrl& file) {
    static const QStringList kinds{QStringLiteral("txt"), QStringLiteral("csv")};
    return isOfKind(file, kinds);
}

bool isWebAddress(const QUrl& url) {
    return url.scheme() == QStringLiteral("http") || url.scheme() == QStringLiteral("https");
}

qsizetype linesWithoutLinks(const QString& text) {
    const QStringList lines = text.split(u'\n');
    return std::count_if(lines.begin(), lines.end(), [](const QString& line) {
        return hasWords(line) && extractLinks(line).isEmpty();
    });
}

/// The file's beginning, with what encloses an address in a markup made space.
QString textOf(const QUrl& fileUrl) {
    constexpr qint64 most = 1 << 20;
    QFile file(fileUrl.toLocalFile());
    // Not a pipe, which might never end.
    if (!QFileInfo(file).isFile() || !file.open(QIODevice::ReadOnly))
        return {};
    QString text = QString::fromUtf8(file.read(most));
    for (const QChar enclosing : {u'<', u'>', u'"', u','})
        text.replace(enclosing, u' ');
    return text.replace(QStringLiteral("&amp;"), QStringLiteral("&"));
}

}  // namespace

bool takesDrop(const QList<QUrl>& urls, const QString& text) {
    const bool hasLink = std::any_of(urls.begin(), urls.end(), [](const QUrl& url) {
        return isWebAddress(url) || holdsLinks(url);
    });
    return hasLink || (urls.isEmpty() && !extractLinks(text).isEmpty());
}

DroppedText droppedText(const QList<QUrl>& urls, const QString& text) {
    DroppedText dropped;
    QStringList links;
    for (const QUrl& url : urls) {
        if (isWebAddress(url))
            links.append(QString::fromLatin1(url.toEncoded()));  // since a link ends at a space
        if (!holdsLinks(url))
            continue;
        const QString inside = textOf(url);
        if (mayNameSongs(url) && extractLinks(inside).isEmpty()) {
            dropped.lists.append(url.toLocalFile());
            continue;
        }
        links.append(inside);
        if (mayNameSongs(url))
            dropped.linesLeftOut += linesWithoutLinks(inside);
    }
    if (!links.isEmpty())
        dropped.links = links.join(u'\n');
    else if (dropped.lists.isEmpty())
        dropped.links = text;
    return dropped;
}

QString leftOutRemark(qsizetype lines) {
    return QStringLiteral(
               "Of what was dropped the links were taken, and %1 line%2 without one "
               "left out. \"Paste Song List\" reads songs.")
        .arg(lines)
        .arg(pluralSuffix(lines));
}

}  // namespace reelcrate
