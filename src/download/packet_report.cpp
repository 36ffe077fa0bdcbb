#include "download/packet_report.h"

#include "library/finished_files.h"
#include "library/video_measure.h"
#include "tools/shell_quote.h"

#include <QDir>
#include <QFile>

namespace reelcrate {

namespace {

const QString extension = QStringLiteral(".packets");

QStringList reports(const QString& folder) {
    return QDir(folder).entryList({u'*' + extension}, QDir::Files | QDir::Hidden, QDir::Name);
}

}  // namespace

QString packetReportOption() {
    // The downloader puts ffmpeg on the search path for what it runs, and the file's name in the
    // place of the fields.
    return QStringLiteral(" --use-postprocessor ") +
           shellQuoted(QStringLiteral("Exec:exec_cmd=ffmpeg -hide_banner -nostats -nostdin "
                                      "-loglevel level+info -i %(filepath)q ") +
                       QString::fromUtf16(packetReading) + QStringLiteral(" >%(filepath)q") +
                       extension + QStringLiteral(" 2>&1 || :"));
}

QStringList reportedNames(const QString& folder) {
    QStringList names;
    for (const QString& report : reports(folder))
        names.append(nameWithoutExtension(report.chopped(extension.size())));
    return names;
}

std::optional<BrokenOff> firstBrokenOff(const QString& folder) {
    for (const QString& report : reports(folder)) {
        QFile file(QDir(folder).filePath(report));
        if (!file.open(QIODevice::ReadOnly))
            continue;
        const VideoMeasure measure = readPackets(QString::fromUtf8(file.readAll()));
        if (const auto reason = whyBrokenOff(measure))
            return BrokenOff{report.chopped(extension.size()) + QStringLiteral(": ") + *reason,
                             measure.headerSeconds};
    }
    return std::nullopt;
}

}  // namespace reelcrate
