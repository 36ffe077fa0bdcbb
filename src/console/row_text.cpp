#include "console/row_text.h"

#include "records/progress_text.h"

#include <QJsonObject>

#include <cmath>
#include <cwchar>

namespace reelcrate {

namespace {

constexpr int statusColumns = 16;
constexpr int barColumns = 20;

/// Marks and overrides of the writing direction, by which a title could turn a whole line around.
bool turnsDirection(QChar c) {
    const char16_t unit = c.unicode();
    return unit == 0x200E || unit == 0x200F || (unit >= 0x202A && unit <= 0x202E) ||
           (unit >= 0x2066 && unit <= 0x2069);
}

/// How many columns a terminal gives the character; those that the system does not know are mostly
/// new pictures, which take two.
int columnsOf(char32_t character) {
    const int columns = ::wcwidth(static_cast<wchar_t>(character));
    return columns < 0 ? 2 : columns;
}

}  // namespace

QString printable(QString text) {
    for (QChar& c : text) {
        if (c.category() == QChar::Other_Control || c.category() == QChar::Separator_Line ||
            c.category() == QChar::Separator_Paragraph || turnsDirection(c))
            c = u' ';
    }
    return text;
}

QString fitted(const QString& text, int columns) {
    QString fitting;
    for (const char32_t character : text.toUcs4()) {
        columns -= columnsOf(character);
        if (columns < 0)
            break;
        fitting += QString::fromUcs4(&character, 1);
    }
    return fitting;
}

QString headline(const DownloadItem& row) {
    return row.title.isEmpty() ? row.url : row.title;
}

QString statusLine(const DownloadItem& row) {
    return rawValue(row.status).leftJustified(statusColumns) +
           printable(headline(row) + QStringLiteral(" - ") + row.detail);
}

QString progressLine(const DownloadItem& row, int columns) {
    const int done = static_cast<int>(std::lround(progressBarValue(row.progress) * barColumns));
    const QString bar = QString(done, u'#') + QString(barColumns - done, u'-');
    const QString line =
        QStringLiteral("[%1] %2  ").arg(bar).arg(progressPercentage(row.progress), 4) + row.detail +
        QStringLiteral("  ") + headline(row);
    return fitted(printable(line), columns);
}

QJsonArray queueAsJson(const QList<DownloadItem>& rows) {
    QJsonArray array;
    for (const DownloadItem& row : rows) {
        array.append(QJsonObject{
            {QStringLiteral("id"), idText(row.id)},
            {QStringLiteral("url"), row.url},
            {QStringLiteral("source"), rawValue(row.source)},
            {QStringLiteral("status"), rawValue(row.status)},
            {QStringLiteral("detail"), row.detail},
            {QStringLiteral("outputPath"), row.outputPath},
            {QStringLiteral("title"), row.title},
            {QStringLiteral("duration"), row.duration},
            {QStringLiteral("thumbnailURL"), row.thumbnailURL},
            {QStringLiteral("isResolvingInfo"), row.isResolvingInfo},
            {QStringLiteral("progress"), row.progress},
            {QStringLiteral("hasRealProgress"), row.hasRealProgress},
            {QStringLiteral("cause"), row.cause ? word(*row.cause) : QString()},
            {QStringLiteral("note"), row.note},
        });
    }
    return array;
}

}  // namespace reelcrate
