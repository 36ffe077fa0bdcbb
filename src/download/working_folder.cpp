#include "download/working_folder.h"

#include "download/fetched_files.h"
#include "library/finished_files.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSysInfo>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace reelcrate {

namespace {

constexpr QLatin1String lockName{"lock"};
constexpr QLatin1String formatsName{"formats"};
constexpr qint64 abandonedAfterDays = 3;
constexpr qint64 idleSeconds = 600;
constexpr int mostTries = 5;

// Of what downloads end with and of what they are converted from.
constexpr std::array mediaExtensions{"mp3", "m4a", "aac",  "flac", "wav", "aiff", "aif", "opus",
                                     "ogg", "oga", "webm", "mp4",  "mkv", "mov",  "m4v", "flv",
                                     "ts",  "3gp", "avi",  "mka",  "wma", "wmv",  "mpg", "weba"};

QString systemText(int error) {
    return QString::fromLocal8Bit(std::strerror(error));
}

QString workFolder(const QString& eventFolder) {
    return eventFolder + u'/' + workFolderName;
}

bool isMedia(const QString& name) {
    return std::any_of(mediaExtensions.begin(), mediaExtensions.end(), [&](const char* extension) {
        return hasExtension(name, QString::fromLatin1(extension));
    });
}

/// A piece of a transfer.
bool isPart(const QString& name) {
    return name.endsWith(u".part") || name.endsWith(u".ytdl") || name.contains(u".part-Frag");
}

/// What is written beside a file before it takes its place. A title may begin with a dot, too.
bool isTemporary(const QString& name) {
    static const QRegularExpression own(QStringLiteral("^\\.(trim|mp4|gain)-[0-9A-Fa-f-]{36}\\."));
    return own.match(name).hasMatch() || nameWithoutExtension(name).endsWith(u".temp") ||
           nameWithoutExtension(name).endsWith(u".orig");
}

/// "Title [id].f137.mp4": the picture or the sound alone, before they are merged.
bool isUnmerged(const QString& name) {
    static const QRegularExpression form(QStringLiteral("\\]\\.f[^.\\]]+\\.[^.]+$"));
    return form.match(name).hasMatch();
}

/// Whether a piece is of a stream in fragments, whose state ("NAME.ytdl") lies beside its beginning
/// ("NAME.part"). The downloader, which fetches several side by side, notes there how many have
/// come, not which: gone on with, the stream would lack those in its middle that had not.
bool isOfFragments(const QString& name, const QStringList& names) {
    const QString stem = name.left(name.lastIndexOf(u'.'));
    return isPart(name) &&
           (name.contains(u".part-Frag") || names.contains(stem + QStringLiteral(".ytdl")));
}

QString finalExtension(DownloadMode mode) {
    return byMode(mode, QStringLiteral("mp3"), QStringLiteral("mp4"));
}

/// Under its final name a file is whole, unless it is what a tool converts or merges into.
bool isResumable(const QString& name, DownloadMode mode) {
    if (isPart(name) || name == lockName || name == formatsName)
        return true;
    if (!isMedia(name) || isTemporary(name))
        return false;
    return isUnmerged(name) || !hasExtension(name, finalExtension(mode));
}

}  // namespace

WorkingFolder::WorkingFolder(const QString& eventFolder, const QString& name)
    : m_path(workFolder(QFileInfo(eventFolder).absoluteFilePath()) + u'/' + name) {}

WorkingFolder::~WorkingFolder() {
    release();
}

void WorkingFolder::release() {
    m_lockFile.reset();
    if (m_descriptor >= 0)
        ::close(m_descriptor);
    m_descriptor = -1;
}

/// Makes the folder, if need be, and opens it.
bool WorkingFolder::open() {
    // The event folder is made by the run alone: where a drive was pulled out, nothing is made.
    for (const QString& folder : {QFileInfo(m_path).path(), m_path}) {
        if (::mkdir(QFile::encodeName(folder).constData(), 0777) != 0 && errno != EEXIST) {
            m_failure = systemText(errno);
            return false;
        }
    }
    m_descriptor =
        ::open(QFile::encodeName(m_path).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (m_descriptor < 0)
        m_failure = systemText(errno);
    return m_descriptor >= 0;
}

/// Whether the path still leads to the open folder: the one who had it may just have removed it.
bool WorkingFolder::isStillThere() const {
    struct stat opened = {};
    struct stat named = {};
    return ::fstat(m_descriptor, &opened) == 0 &&
           ::stat(QFile::encodeName(m_path).constData(), &named) == 0 &&
           opened.st_ino == named.st_ino && opened.st_dev == named.st_dev;
}

WorkingFolder::Lock WorkingFolder::lock() {
    for (int attempt = 0; attempt < mostTries; ++attempt) {
        release();
        if (!open())
            continue;
        // The children hold this lock with the program, so that none is at work here any more when
        // it is free. Where a drive does not know such locks, the file alone decides.
        const bool isFree = ::flock(m_descriptor, LOCK_EX | LOCK_NB) == 0;
        if (!isFree && errno == EWOULDBLOCK) {
            release();
            return Lock::inUse;
        }
        if (!isStillThere())
            continue;
        const Lock result = lockFile(isFree);
        if (result != Lock::failed)
            return result;
    }
    release();
    return Lock::failed;
}

/// `nobodyOfThisMachine`: the system says that no process of this machine holds the folder.
WorkingFolder::Lock WorkingFolder::lockFile(bool nobodyOfThisMachine) {
    const QString path = m_path + u'/' + lockName;
    m_lockFile = std::make_unique<QLockFile>(path);
    m_lockFile->setStaleLockTime(0);
    if (m_lockFile->tryLock(0))
        return Lock::held;
    if (m_lockFile->error() != QLockFile::LockFailedError) {
        m_failure = QStringLiteral("The folder cannot be written to.");
        return Lock::failed;
    }
    // Its program was killed, and the number that stands in the file is another process's by now.
    // Or it was another machine's, or this one's under another name, and nothing goes on here any
    // more.
    qint64 process = 0;
    QString host;
    QString program;
    m_lockFile->getLockInfo(&process, &host, &program);
    if (nobodyOfThisMachine && (host == QSysInfo::machineHostName() || isIdle()) &&
        QFile::remove(path) && m_lockFile->tryLock(0))
        return Lock::held;
    release();
    return Lock::inUse;
}

/// Whether nothing in the folder was written to lately, as whoever downloads or converts does.
bool WorkingFolder::isIdle() const {
    const QDateTime limit = QDateTime::currentDateTime().addSecs(-idleSeconds);
    const auto files = QDir(m_path).entryInfoList(QDir::Files | QDir::Hidden);
    return std::all_of(files.begin(), files.end(),
                       [&](const QFileInfo& file) { return file.lastModified() < limit; });
}

void WorkingFolder::keepResumable(DownloadMode mode) const {
    const QDir folder(m_path);
    const QStringList names = folder.entryList(QDir::Files | QDir::Hidden | QDir::System);
    const auto stays = [&](const QString& name) {
        return isResumable(name, mode) && !isOfFragments(name, names);
    };
    for (const QString& name : names) {
        if (!stays(name))
            QFile::remove(folder.filePath(name));
    }
}

QString WorkingFolder::textAmongFragments() const {
    constexpr qint64 looked = 200;  // bytes; where a piece is encrypted, not even ten are text
    const QDir folder(m_path);
    for (const QString& name : folder.entryList(QDir::Files | QDir::Hidden)) {
        QFile file(folder.filePath(name));
        if (!name.contains(u".part-Frag") || !file.open(QIODevice::ReadOnly))
            continue;
        const QByteArray bytes = file.read(looked).trimmed();
        const bool isText = std::all_of(bytes.begin(), bytes.end(), [](char byte) {
            return static_cast<unsigned char>(byte) >= ' ' || byte == '\n' || byte == '\r' ||
                   byte == '\t';
        });
        if (isText && (bytes.startsWith('<') || bytes.startsWith('{')))
            return name;
    }
    return {};
}

QStringList WorkingFolder::fetchedMedia() const {
    const QDir folder(m_path);
    QStringList paths;
    for (const QString& name : folder.entryList(QDir::Files | QDir::Hidden | QDir::NoSymLinks)) {
        if (isMedia(name) && !isTemporary(name))
            paths.append(folder.filePath(name));
    }
    return paths;
}

void WorkingFolder::removeParts() const {
    const QDir folder(m_path);
    for (const QString& name : folder.entryList(QDir::Files | QDir::Hidden)) {
        if (isPart(name))
            QFile::remove(folder.filePath(name));
    }
}

void WorkingFolder::noteFormats(const QString& formats) const {
    QFile file(QDir(m_path).filePath(formatsName));
    if (file.open(QIODevice::WriteOnly))
        file.write(formats.toUtf8());
}

QString WorkingFolder::formatsOfParts() const {
    const QDir folder(m_path);
    const QStringList names = folder.entryList(QDir::Files | QDir::Hidden);
    QFile file(folder.filePath(formatsName));
    const bool anyPart = std::any_of(names.begin(), names.end(), isPart);
    return anyPart && file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll())
                                                     : QString();
}

void WorkingFolder::empty() const {
    const QDir folder(m_path);
    for (const QFileInfo& file : folder.entryInfoList(QDir::AllEntries | QDir::Hidden |
                                                      QDir::System | QDir::NoDotAndDotDot)) {
        if (file.isDir() && !file.isSymLink())
            QDir(file.filePath()).removeRecursively();
        else if (file.fileName() != lockName)
            QFile::remove(file.filePath());
    }
}

QStringList WorkingFolder::finishedFiles(DownloadMode mode) const {
    const QDir folder(m_path);
    QStringList names = folder.entryList(QDir::Files | QDir::Hidden | QDir::NoSymLinks, QDir::Name);
    names.removeIf([](const QString& name) {
        return !isMedia(name) || isTemporary(name) || isUnmerged(name);
    });
    // An earlier start under a title that has changed since may have left a whole film.
    if (const QStringList ofThisRun = fetchedNames(m_path); !ofThisRun.isEmpty()) {
        names.removeIf(
            [&](const QString& name) { return !ofThisRun.contains(nameWithoutExtension(name)); });
    }
    const QString last = finalExtension(mode);
    // Of what was converted the source may still be there, from an earlier start under a title that
    // has changed since.
    const bool anySong = mode == DownloadMode::audio &&
                         std::any_of(names.begin(), names.end(),
                                     [&](const QString& name) { return hasExtension(name, last); });
    QStringList paths;
    for (const QString& name : std::as_const(names)) {
        const QString converted = nameWithoutExtension(name) + u'.' + last;
        const bool isConverted =
            !hasExtension(name, last) && (anySong || names.contains(converted));
        const bool isKind = mode == DownloadMode::video || hasFinishedExtension(name, mode);
        if (isKind && !isConverted)
            paths.append(folder.filePath(name));
    }
    return paths;
}

QString WorkingFolder::unconvertedSource() const {
    const QDir folder(m_path);
    for (const QString& name :
         folder.entryList(QDir::Files | QDir::Hidden | QDir::NoSymLinks, QDir::Name)) {
        if (isMedia(name) && isResumable(name, DownloadMode::audio))
            return folder.filePath(name);
    }
    return {};
}

bool WorkingFolder::takesMore() const {
    constexpr std::uintmax_t leastRoom = 262'144;  // bytes: less than any song
    const QByteArray path = QFile::encodeName(m_path);
    std::error_code error;
    const auto space = std::filesystem::space(path.toStdString(), error);
    return !error && space.available >= leastRoom && ::access(path.constData(), W_OK) == 0;
}

void WorkingFolder::remove() {
    if (m_descriptor < 0)
        return;
    empty();
    m_lockFile.reset();
    // Fails where another program has just locked the folder in turn, which is right.
    ::rmdir(QFile::encodeName(m_path).constData());
    release();
}

void removeAbandonedWork(const QString& eventFolder) {
    const QDir folder(workFolder(eventFolder));
    const QDateTime limit = QDateTime::currentDateTime().addDays(-abandonedAfterDays);
    for (const QFileInfo& each : folder.entryInfoList(QDir::Dirs | QDir::Hidden |
                                                      QDir::NoDotAndDotDot | QDir::NoSymLinks)) {
        const auto files = QDir(each.filePath()).entryInfoList(QDir::Files | QDir::Hidden);
        const bool isOld = each.lastModified() < limit &&
                           std::all_of(files.begin(), files.end(), [&](const QFileInfo& file) {
                               return file.lastModified() < limit;
                           });
        if (!isOld)
            continue;
        WorkingFolder abandoned(eventFolder, each.fileName());
        if (abandoned.lock() == WorkingFolder::Lock::held)
            abandoned.remove();
    }
    removeWorkFolderIfEmpty(eventFolder);
}

void removeWorkFolderIfEmpty(const QString& eventFolder) {
    ::rmdir(QFile::encodeName(workFolder(eventFolder)).constData());
}

}  // namespace reelcrate
