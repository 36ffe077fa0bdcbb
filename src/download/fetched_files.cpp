#include "download/fetched_files.h"

#include "library/finished_files.h"
#include "tools/shell_quote.h"

#include <QDir>
#include <QFileInfo>

namespace reelcrate {

namespace {

const QString extension = QStringLiteral(".fetched");

QStringList keptIn(const QString& folder) {
    return QDir(folder).entryList({u'*' + extension}, QDir::Files | QDir::Hidden, QDir::Name);
}

QString nameOf(const QString& kept) {
    return nameWithoutExtension(kept.chopped(extension.size()));
}

}  // namespace

QString keepFetchedOption() {
    // The downloader puts the file's name, quoted, in the place of the field.
    const QString file = QStringLiteral("%(filepath)q");
    const QString kept = file + extension;
    return QStringLiteral(" --use-postprocessor ") +
           shellQuoted(QStringLiteral("Exec:exec_cmd=ln -f %1 %2 2>/dev/null || cp %1 %2 || "
                                      "rm -f %2 || :")
                           .arg(file, kept));
}

QStringList fetchedNames(const QString& folder) {
    QStringList names;
    for (const QString& kept : keptIn(folder))
        names.append(nameOf(kept));
    return names;
}

QString fetchedFor(const QString& file) {
    const QDir folder = QFileInfo(file).dir();
    const QString name = nameWithoutExtension(QFileInfo(file).fileName());
    for (const QString& kept : keptIn(folder.path())) {
        if (nameOf(kept) == name)
            return folder.filePath(kept);
    }
    return {};
}

}  // namespace reelcrate
