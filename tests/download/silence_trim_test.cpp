#include "download/silence_trim.h"

#include "support/machine.h"
#include "support/printers.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>

namespace reelcrate {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

QString put(const QString& path, std::chrono::minutes age) {
    QDir().mkpath(path.left(path.lastIndexOf(u'/')));
    writeFile(path, "sound");
    fs::last_write_time(path.toStdString(), fs::file_time_type::clock::now() - age);
    return path;
}

TEST(ForgottenTrims, AreRemovedWhenOldAndOfTheTrimsOwnName) {
    const QTemporaryDir folder;
    const QString trim = QStringLiteral(".trim-0F8FAD5B-D9CB-469F-A165-70867728950E.mp3");
    const QString gone = put(folder.filePath(trim), 11min);
    const QString target = put(folder.filePath(QStringLiteral("song [x].mp3")), 11min);
    QStringList stay{target};
    for (const char* name : {
             "sub/.trim-0F8FAD5B-D9CB-469F-A165-70867728950E.mp3",
             ".trim-0f8fad5b-d9cb-469f-a165-70867728950e.mp3",
             ".trim-0F8FAD5B-D9CB-469F-A165-70867728950E.mp3.mp3",
             ".trim-0F8FAD5BD9CB469FA16570867728950E.mp3",
             "x.trim-0F8FAD5B-D9CB-469F-A165-70867728950E.mp3",
             ".trim-song.mp3",
             ".trim-0F8FAD5B-D9CB-469F-A165-70867728950E.mp3.part",
         })
        stay.append(put(folder.filePath(QString::fromLatin1(name)), 11min));
    stay.append(put(folder.filePath(QString(trim).replace(u'0', u'1')), 9min));
    stay.append(folder.filePath(QString(trim).replace(u'0', u'2')));
    QFile::link(target, stay.last());

    removeForgottenTrims(folder.path());
    EXPECT_FALSE(QFile::exists(gone));
    for (const QString& path : stay)
        EXPECT_TRUE(QFile::exists(path)) << path.toStdString();
    removeForgottenTrims(folder.filePath(QStringLiteral("none")));
}

}  // namespace
}  // namespace reelcrate
