#include "desktop/file_manager.h"

#include "private_bus.h"
#include "support/printers.h"

namespace reelcrate {
namespace {

class FileManagerTest : public BusTest {
protected:
    std::function<bool(const QUrl&)> opener() {
        return [this](const QUrl& url) {
            opened.append(QString::fromLatin1(url.toEncoded()));
            return true;
        };
    }

    const QString path = QStringLiteral("/music/50% off #1/Café del Mar.mp3");
    const QStringList folder{QStringLiteral("file:///music/50%25%20off%20%231")};
    QStringList opened;
};

class StandInFileManager : public StandIn {
public:
    StandInFileManager(const QDBusConnection& bus, Answer answer)
        : StandIn(bus, QStringLiteral("org.freedesktop.FileManager1"),
                  QStringLiteral("/org/freedesktop/FileManager1"), std::move(answer)) {}
};

TEST_F(FileManagerTest, PointsAtTheFile) {
    const StandInFileManager service(desktop, [](const auto& call) { return call.createReply(); });
    FileManager files(client, opener());
    files.showFile(path);
    const QVariantList arguments = service.arguments(1, QStringLiteral("ShowItems"));
    EXPECT_EQ(service.calls.back().signature(), QStringLiteral("ass"));
    EXPECT_EQ(arguments.value(0).toStringList(),
              QStringList(folder.constFirst() + QStringLiteral("/Caf%C3%A9%20del%20Mar.mp3")));
    EXPECT_EQ(arguments.value(1).toString(), QString());
    settle();
    EXPECT_EQ(opened, QStringList());
}

TEST_F(FileManagerTest, OpensTheFolderWhenTheFileManagerIsAbsentOrRefusesOrStaysSilent) {
    FileManager files(client, opener());
    const auto showAndWait = [&] {
        opened.clear();
        files.showFile(path);
        EXPECT_TRUE(waitUntil([this] { return !opened.isEmpty(); }));
        EXPECT_EQ(opened, folder);
    };
    showAndWait();
    for (const StandIn::Answer& answer : {StandIn::Answer(refusal), StandIn::Answer()}) {
        const StandInFileManager service(desktop, answer);
        showAndWait();
    }
}

TEST_F(FileManagerTest, OpensTheFolderWhenThereIsNoBus) {
    FileManager files(absentBus(), opener());
    files.showFile(path);
    files.openFolder(QStringLiteral("/music/50% off #1"));
    EXPECT_EQ(opened, folder + folder);
}

}  // namespace
}  // namespace reelcrate
