#include "console/check_text.h"

#include "base/duration_text.h"
#include "base/text.h"
#include "console/row_text.h"

#include <QJsonArray>

#include <cmath>

namespace reelcrate {

namespace {

using Finding = CheckedFile::Finding;
using Fault = EventFile::Fault;
using Kind = EventFile::Kind;

constexpr int statusColumns = 17;
constexpr int lengthColumns = 8;

QString lengthText(double seconds) {
    const QString text = formatDuration(seconds);
    return text.isEmpty() ? QStringLiteral("0:00") : text;
}

/// With the tenths where whole seconds would tell one length twice.
QString lengthsText(const QString& form, double first, double second) {
    if (lengthText(first) != lengthText(second))
        return form.arg(lengthText(first), lengthText(second));
    return form.arg(QString::number(first, 'f', 1) + QStringLiteral(" s"),
                    QString::number(second, 'f', 1) + QStringLiteral(" s"));
}

QString withDetail(const QString& text, const QString& detail) {
    return detail.isEmpty() ? text : text + QStringLiteral(": ") + detail;
}

QString faultText(Fault fault) {
    switch (fault) {
        case Fault::hidden:
            return QStringLiteral("Hidden: its name begins with a dot");
        case Fault::foreignName:
            return QStringLiteral("Its name is written in another encoding, and cannot be read");
        case Fault::linkToNowhere:
            return QStringLiteral("A link to a file that is not there");
        case Fault::linkedFolder:
            return QStringLiteral("A link to another folder, which was not looked into");
        case Fault::unreadable:
            return QStringLiteral("A folder that cannot be read");
        case Fault::noRegularFile:
            return QStringLiteral("No file that can be opened");
    }
    return {};
}

QString kindText(Kind kind) {
    switch (kind) {
        case Kind::song:
            return QStringLiteral("song");
        case Kind::video:
            return QStringLiteral("video");
        case Kind::playlist:
            return QStringLiteral("playlist");
        case Kind::halfDownload:
            return QStringLiteral("half download");
        case Kind::foreign:
            break;
    }
    return QStringLiteral("foreign");
}

QString statusText(const CheckedFile& file) {
    if (file.finding)
        return QStringLiteral("Needs Attention");
    if (file.isPlayable())
        return QStringLiteral("OK");
    return file.file.kind == Kind::playlist ? QStringLiteral("Playlist")
                                            : QStringLiteral("Foreign file");
}

/// What is remarkable about a song that is well; empty for most.
QString loudnessText(const CheckedFile& file) {
    if (!file.offMedian || file.finding)
        return {};
    return QStringLiteral("%1 LU %2 than most")
        .arg(std::abs(*file.offMedian), 0, 'f', 1)
        .arg(*file.offMedian > 0 ? QStringLiteral("louder") : QStringLiteral("quieter"));
}

QString lineOf(const CheckedFile& file) {
    const QString length = file.isPlayable() ? lengthText(file.seconds) : QString();
    const QString remark = findingText(file) + loudnessText(file);
    return statusText(file).leftJustified(statusColumns) + length.rightJustified(lengthColumns) +
           QStringLiteral("  ") + printable(file.file.name) +
           (remark.isEmpty() ? QString() : QStringLiteral(" - ") + printable(remark)) + u'\n';
}

QString sumText(const CheckTotals& totals) {
    QString text = QStringLiteral("%1 song").arg(totals.songs) + pluralSuffix(totals.songs) +
                   QStringLiteral(", ") + lengthText(totals.seconds) + QStringLiteral(" in all");
    if (totals.foreign > 0)
        text +=
            QStringLiteral("; %1 foreign file").arg(totals.foreign) + pluralSuffix(totals.foreign);
    if (totals.isAllWell())
        return text + QStringLiteral("; all is well");
    if (totals.needAttention == 0)
        return text;
    return text + QStringLiteral("; %1 need").arg(totals.needAttention) +
           (totals.needAttention == 1 ? QStringLiteral("s") : QString()) +
           QStringLiteral(" attention");
}

QJsonObject jsonOf(const CheckedFile& file) {
    QJsonObject object{{QStringLiteral("file"), file.file.name},
                       {QStringLiteral("kind"), kindText(file.file.kind)},
                       {QStringLiteral("needsAttention"), file.finding.has_value()},
                       {QStringLiteral("finding"), findingText(file)}};
    if (file.isPlayable())
        object.insert(QStringLiteral("seconds"), std::round(file.seconds * 1000) / 1000);
    if (file.lufs)
        object.insert(QStringLiteral("lufs"), std::round(*file.lufs * 100) / 100);
    if (file.offMedian)
        object.insert(QStringLiteral("offMedian"), std::round(*file.offMedian * 100) / 100);
    return object;
}

}  // namespace

QString findingText(const CheckedFile& file) {
    if (!file.finding)
        return {};
    const double header = file.headerSeconds.value_or(0);
    switch (*file.finding) {
        case Finding::fault:
            return faultText(file.file.fault.value_or(Fault::noRegularFile));
        case Finding::empty:
            return QStringLiteral("Empty file");
        case Finding::undecodable:
            return withDetail(QStringLiteral("Does not decode"), file.detail);
        case Finding::breaksOff:
            return withDetail(QStringLiteral("Breaks off after %1").arg(lengthText(file.seconds)),
                              file.detail);
        case Finding::cutOff:
            return lengthsText(QStringLiteral("Cut off: %1 of the %2 that its header tells"),
                               file.seconds, header);
        case Finding::longer:
            return lengthsText(QStringLiteral("Longer than its header tells: %1 instead of %2"),
                               file.seconds, header);
        case Finding::tooShort:
            return QStringLiteral("Only %1 s long").arg(file.seconds, 0, 'f', 2);
        case Finding::silent:
            return QStringLiteral("No sound");
        case Finding::doubled:
            return QStringLiteral("The same recording as ") + file.detail;
        case Finding::halfDownload:
            return QStringLiteral("Half a download");
    }
    return {};
}

QString checkTable(const QList<CheckedFile>& files) {
    QString well;
    QString attention;
    for (const CheckedFile& file : files)
        (file.finding ? attention : well) += lineOf(file);
    return well + attention + sumText(totalsOf(files)) + u'\n';
}

QJsonObject checkAsJson(const QString& folder, const QList<CheckedFile>& files) {
    QJsonArray array;
    for (const CheckedFile& file : files)
        array.append(jsonOf(file));
    const CheckTotals totals = totalsOf(files);
    return {{QStringLiteral("folder"), folder},
            {QStringLiteral("songs"), totals.songs},
            {QStringLiteral("seconds"), std::round(totals.seconds * 1000) / 1000},
            {QStringLiteral("needAttention"), totals.needAttention},
            {QStringLiteral("foreign"), totals.foreign},
            {QStringLiteral("files"), array}};
}

QString checkProgressLine(qsizetype done, qsizetype all, int columns) {
    constexpr int barColumns = 20;
    const auto filled = all > 0 ? static_cast<int>(done * barColumns / all) : 0;
    return fitted(QStringLiteral("[%1%2] %3 of %4 songs")
                      .arg(QString(filled, u'#'), QString(barColumns - filled, u'-'))
                      .arg(done)
                      .arg(all),
                  columns);
}

}  // namespace reelcrate
