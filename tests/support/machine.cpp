#include "support/machine.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTest>
#include <QThread>

namespace reelcrate {

namespace {

constexpr int tooLongMs = 20'000;

}  // namespace

bool waitUntil(const std::function<bool()>& condition) {
    return QTest::qWaitFor(condition, tooLongMs);
}

bool pollUntil(const std::function<bool()>& condition) {
    const QDeadlineTimer end(tooLongMs);
    while (!condition()) {
        if (end.hasExpired())
            return false;
        QThread::msleep(10);
    }
    return true;
}

bool writeFile(const QString& path, const QByteArray& content) {
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

QByteArray readFile(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QByteArray silentMp3(int frames) {
    // 128 kbit/s at 44,100 Hz: 417 bytes with the four of the header.
    return QByteArray("\xff\xfb\x90\x00", 4).append(413, '\0').repeated(frames);
}

Machine::Machine() : m_formerHome(qgetenv("HOME")) {
    qputenv("HOME", QFile::encodeName(m_folder.path()));  // whose login profile is nobody's
    QDir().mkpath(toolFolder());
}

Machine::~Machine() {
    qputenv("HOME", m_formerHome);
}

ToolPlaces Machine::places() const {
    ToolPlaces places;
    places.home = m_folder.path();
    places.appSupport = path(QStringLiteral("share"));
    return places;
}

QString Machine::toolFolder() const {
    return path(QStringLiteral("share/Reelcrate/Tools/bin"));
}

void Machine::install(const QString& tool) {
    installScript(tool, readFile(QStringLiteral(TESTS_DIRECTORY "/fakes/") + tool));
}

void Machine::installScript(const QString& tool, const QByteArray& script) {
    const QString path = toolFolder() + u'/' + tool;
    QFile::remove(path);  // it may be a link to the machine's own tool, which is not to be written
    writeFile(path, script);
    QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

void Machine::linkConverter() {
    for (const char* tool : {"ffmpeg", "ffprobe"}) {
        const QString name = QString::fromLatin1(tool);
        QFile::link(QStandardPaths::findExecutable(name), toolFolder() + u'/' + name);
    }
}

void Machine::installSong(double tone) {
    const QString sound =
        QStringLiteral("sine=frequency=440:duration=%1,adelay=500:all=1,apad=pad_dur=0.5")
            .arg(tone);
    const QString path = toolFolder() + QStringLiteral("/song.mp3");
    QProcess::execute(QStandardPaths::findExecutable(QStringLiteral("ffmpeg")),
                      {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-nostdin"),
                       QStringLiteral("-y"), QStringLiteral("-f"), QStringLiteral("lavfi"),
                       QStringLiteral("-i"), sound, path});
}

QStringList Machine::calls() const {
    const QByteArray calls = readFile(toolFolder() + QStringLiteral("/calls"));
    return QString::fromUtf8(calls).split(u'\n', Qt::SkipEmptyParts);
}

void Machine::tell(const QString& file, const QByteArray& content) {
    writeFile(toolFolder() + u'/' + file, content);
}

}  // namespace reelcrate
