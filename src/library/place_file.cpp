#include "library/place_file.h"

#include <QByteArray>
#include <QFile>
#include <QFileInfo>
#include <QUuid>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace reelcrate {

namespace {

using Outcome = Placement::Outcome;

/// The errno of a failure, or 0.
int renameWithoutReplacing(const char* from, const char* to) {
#if defined(__linux__)
    const int result = ::renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE);
#elif defined(__APPLE__)
    const int result = ::renamex_np(from, to, RENAME_EXCL);
#else
    const int result = -1;
    errno = EINVAL;
#endif
    return result == 0 ? 0 : errno;
}

int linkAndUnlink(const char* from, const char* to) {
    if (::link(from, to) != 0)
        return errno;
    ::unlink(from);
    return 0;
}

/// For drives that know neither: an empty file holds the name until the song takes it.
int reserveAndRename(const char* from, const char* to) {
    const int reserved = ::open(to, O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0666);
    if (reserved < 0)
        return errno;
    ::close(reserved);
    if (::rename(from, to) == 0)
        return 0;
    const int error = errno;
    ::unlink(to);
    return error;
}

bool isNotKnownToTheDrive(int error) {
    return error == EINVAL || error == ENOSYS || error == EPERM || error == EOPNOTSUPP ||
           error == EMLINK;
}

QString systemText(int error) {
    return error == 0 ? QString() : QString::fromLocal8Bit(std::strerror(error));
}

}  // namespace

QString writeThrough(const QString& path) {
    const int file = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (file < 0)
        return systemText(errno);
    const int error = ::fsync(file) == 0 ? 0 : errno;
    ::close(file);
    return systemText(error == EINVAL || error == EROFS ? 0 : error);
}

Placement placeFile(const QString& from, const QString& to) {
    const QByteArray source = QFile::encodeName(from);
    const QByteArray target = QFile::encodeName(to);
    int error = renameWithoutReplacing(source.constData(), target.constData());
    if (isNotKnownToTheDrive(error))
        error = linkAndUnlink(source.constData(), target.constData());
    if (isNotKnownToTheDrive(error))
        error = reserveAndRename(source.constData(), target.constData());
    if (error == 0)
        return {};
    if (error == EEXIST)
        return {Outcome::taken, {}};
    return {Outcome::failed, systemText(error)};
}

QString temporaryBeside(const QString& path, const QString& kind, const QString& extension) {
    return QFileInfo(path).absolutePath() + QStringLiteral("/.") + kind + u'-' +
           QUuid::createUuid().toString(QUuid::WithoutBraces) + u'.' + extension;
}

QString replaceFile(const QString& from, const QString& to) {
    const int result =
        ::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData());
    return systemText(result == 0 ? 0 : errno);
}

}  // namespace reelcrate
