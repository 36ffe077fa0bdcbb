#include "ui/queue/thumbnail_provider.h"

#include "support/machine.h"

#include <QBuffer>
#include <QImage>
#include <QPainter>
#include <QPointer>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickTextureFactory>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QUrl>

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <vector>

namespace reelcrate {
namespace {

using namespace std::chrono_literals;

using Response = std::unique_ptr<QQuickImageResponse>;

constexpr QSize box{116, 88};

/// What an engine hands to the provider for a source.
QString idIn(const QString& source) {
    return QUrl(source).toString(QUrl::RemoveScheme | QUrl::RemoveAuthority).mid(1);
}

/// Red, with a green square as wide as the picture is high at its centre.
QByteArray picture(const QSize& size, const char* format) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::red);
    QRect square(0, 0, size.height(), size.height());
    square.moveCenter(image.rect().center());
    QPainter(&image).fillRect(square, Qt::green);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    image.save(&buffer, format);
    return bytes;
}

/// The beginning of a PNG of 40000 by 40000 pixels.
constexpr const char* claimingPNG =
    "89504e470d0a1a0a0000000d4948445200009c4000009c4008020000"
    "00de6e99520000100049444154";

/// A web site that answers by path, and not at all at a path that it has no answer for.
class ThumbnailProviderTest : public testing::Test {
protected:
    ThumbnailProviderTest() {
        server.listen(QHostAddress::LocalHost);
        QObject::connect(&server, &QTcpServer::newConnection, [this] {
            QTcpSocket* socket = server.nextPendingConnection();
            ++open;
            QObject::connect(socket, &QTcpSocket::disconnected, [this] { --open; });
            QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket] {
                const QByteArray path = socket->readAll().split(' ').at(1);
                asked << QString::fromUtf8(path);
                const auto found = answers.find(path.split('?').first());
                if (found != answers.end())
                    answer(socket, found->second);
            });
        });
    }

    /// Heads may say that the connection is held, or that the body is endless.
    static void answer(QTcpSocket* socket, const QByteArray& bytes) {
        if (bytes.contains("X: endless")) {
            QObject::connect(socket, &QTcpSocket::bytesWritten, socket, [socket] {
                if (socket->bytesToWrite() == 0)
                    socket->write("10000\r\n" + QByteArray(0x10000, ' ') + "\r\n");
            });
        }
        socket->write(bytes);
        if (!bytes.contains("X: "))
            socket->disconnectFromHost();
    }

    void serve(const QByteArray& path, const QByteArray& body,
               const QByteArray& head = "200 OK\r\n") {
        answers[path] = "HTTP/1.1 " + head + "\r\n" + body;
    }

    QString address(const char* path) const {
        return QStringLiteral("http://127.0.0.1:%1%2")
            .arg(server.serverPort())
            .arg(QString::fromUtf8(path));
    }

    Response requested(const QString& id, const QSize& size = {}) {
        return Response(provider->requestImageResponse(id, size));
    }

    /// The response of the site's path, finished.
    Response loaded(const char* path, const QSize& size = {}) {
        Response response = requested(idIn(ThumbnailProvider::source(address(path))), size);
        finish(*response);
        return response;
    }

    static void finish(QQuickImageResponse& response) {
        QSignalSpy finished(&response, &QQuickImageResponse::finished);
        EXPECT_TRUE(waitUntil([&] { return !finished.isEmpty(); }));
    }

    static QImage imageOf(const QQuickImageResponse& response) {
        const std::unique_ptr<QQuickTextureFactory> factory(response.textureFactory());
        return factory ? factory->image() : QImage();
    }

    static std::string textOf(const Response& response) {
        EXPECT_EQ(response->textureFactory(), nullptr);
        return response->errorString().toStdString();
    }

    void provide(const ThumbnailLimits& limits) {
        provider = std::make_unique<ThumbnailProvider>(limits);
    }

    QTcpServer server;
    std::map<QByteArray, QByteArray> answers;
    QStringList asked;
    int open = 0;
    std::unique_ptr<ThumbnailProvider> provider = std::make_unique<ThumbnailProvider>();
};

TEST(ThumbnailProvider, SourceTakesWebAddressesOnly) {
    for (const char* address :
         {"http://a.example/b.jpg", "https://a.example/?q=a b&c=%20%2F#f%23",
          "https://\u00e4.example/\u3042/%E3%81%82?\u00e9", "HTTPS://u:p@a.example:81//b//../c"}) {
        const QString source = ThumbnailProvider::source(QString::fromUtf8(address));
        EXPECT_EQ(QUrl(source).toString(), source);
        const QByteArray decoded =
            QByteArray::fromBase64(idIn(source).toLatin1(), QByteArray::Base64UrlEncoding);
        EXPECT_EQ(QUrl::fromEncoded(decoded), QUrl(QString::fromUtf8(address))) << address;
    }
    for (const char* address :
         {"", " ", "a.example/b.jpg", "http:", "http:///b.jpg", "//a.example/b", "http://a b/c",
          "file:///etc/passwd", "file://a.example/b", "qrc:/b.png", "data:image/png;base64,AAAA",
          "ftp://a.example/b", "image://thumbnails/b", "javascript:b"})
        EXPECT_EQ(ThumbnailProvider::source(QString::fromUtf8(address)), QString()) << address;
}

TEST_F(ThumbnailProviderTest, PicturesFillTheBoxAndAreRounded) {
    serve("/a%20b", picture({320, 180}, "png"));
    serve("/wide.png", picture({1200, 100}, "png"));
    serve("/wide.jpg", picture({1200, 100}, "jpeg"));
    serve("/wide.webp", picture({1200, 100}, "webp"));
    serve("/small.png", picture({4, 2}, "png"));
    serve("/thin.png", picture({1, 200'000}, "png"));
    serve("/moved", "", "302 Found\r\nLocation: /wide.png\r\n");
    for (const char* path : {"/a b?c=%23#d", "/wide.png", "/wide.jpg", "/wide.webp", "/small.png",
                             "/thin.png", "/moved"}) {
        const QImage image = imageOf(*loaded(path));
        ASSERT_EQ(image.size(), box) << path;
        EXPECT_GT(image.pixelColor(58, 44).green(), 250) << path;
        EXPECT_EQ(image.pixelColor(0, 0).alpha(), 0) << path;
        EXPECT_EQ(image.pixelColor(58, 0).alpha(), 255) << path;
    }
    EXPECT_EQ(asked.first(), QStringLiteral("/a%20b?c=%23"));
    // The middle of a wide picture: its green square, with a little red on either side.
    const QImage image = imageOf(*loaded("/wide.png"));
    EXPECT_GT(image.pixelColor(8, 44).red(), 250);
    EXPECT_GT(image.pixelColor(20, 44).green(), 250);
}

TEST_F(ThumbnailProviderTest, SizeIsTheRequestedOneWithinBounds) {
    serve("/a", picture({640, 360}, "png"));
    EXPECT_EQ(imageOf(*loaded("/a", {58, 44})).size(), QSize(58, 44));
    EXPECT_EQ(imageOf(*loaded("/a", {58, 0})).size(), box);
    EXPECT_EQ(imageOf(*loaded("/a", {40'000, 40'000})).size(), box * 2);
}

TEST_F(ThumbnailProviderTest, WhatIsNoPictureOrTooMuchIsRefused) {
    provide({.body = 100'000, .transfer = 1min, .pixels = 1'000'000});
    const QByteArray png = picture({320, 180}, "png");
    const QByteArray jpeg = picture({320, 180}, "jpeg");
    const QByteArray spaces(1'000'000, ' ');
    const QByteArray packed = "Content-Encoding: deflate\r\n";
    const QByteArray ok = "200 OK\r\n";
    const auto unloaded = "The thumbnail could not be loaded.";
    const auto unreadable = "The thumbnail is not a picture.";
    const auto manyPixels = "The thumbnail has too many pixels.";
    const struct {
        QByteArray head;
        QByteArray body;
        const char* error;
    } cases[] = {
        {ok, "", unreadable},
        {ok, "<html>", unreadable},
        {ok, R"(<svg xmlns="http://www.w3.org/2000/svg" width="9" height="9"/>)", unreadable},
        {ok, png.left(100), "The thumbnail is damaged."},
        {ok, QByteArray::fromHex(claimingPNG), manyPixels},
        {ok, picture({1000, 1001}, "png"), manyPixels},
        {ok, jpeg + QByteArray("\xFF\xDA").repeated(200), "The thumbnail has too many scans."},
        {ok, png + spaces, unloaded},
        {ok + packed, qCompress(png).mid(4), ""},
        {ok + packed, qCompress(png + spaces).mid(4), unloaded},
        {ok + "Content-Length: 100001\r\nX: held\r\n", png, unloaded},
        {ok + "X: endless\r\n", png, unloaded},
        {ok + "Transfer-Encoding: chunked\r\nX: endless\r\n", "", unloaded},
        {"404 \x1b[31mNot Found\r\n", png, unloaded},
    };
    for (const auto& [head, body, error] : cases) {
        serve("/a", body, head);
        const Response response = loaded("/a");
        EXPECT_EQ(response->errorString().toStdString(), error) << head.constData();
        EXPECT_EQ(imageOf(*response).isNull(), *error != 0) << head.constData();
    }
    EXPECT_TRUE(waitUntil([this] { return open == 0; }));
}

TEST_F(ThumbnailProviderTest, TimeIsLimited) {
    provide({.transfer = 300ms});
    serve("/started", "a", "200 OK\r\nX: held\r\n");
    EXPECT_EQ(textOf(loaded("/started")), "The thumbnail could not be loaded.");
    EXPECT_EQ(textOf(loaded("/never")), "The thumbnail could not be loaded.");
    EXPECT_TRUE(waitUntil([this] { return open == 0; }));
}

TEST_F(ThumbnailProviderTest, StaysOnTheWeb) {
    QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("a.png"));
    ASSERT_TRUE(writeFile(file, picture({320, 180}, "png")));
    const QByteArray local = QUrl::fromLocalFile(file).toEncoded();
    for (const QByteArray& target : {local, QByteArray("data:image/png;base64,AAAA"),
                                     QByteArray("qrc:/a.png"), QByteArray("/moved")}) {
        serve("/moved", "", "302 Found\r\nLocation: " + target + "\r\n");
        EXPECT_EQ(textOf(loaded("/moved")), "The thumbnail could not be loaded.")
            << target.constData();
    }
    // Whatever asks, besides the sources that the provider makes.
    for (const QByteArray& id :
         {local.toBase64(QByteArray::Base64UrlEncoding), local, QByteArray(), QByteArray("%$")}) {
        const Response response = requested(QString::fromLatin1(id));
        finish(*response);
        EXPECT_EQ(textOf(response), "The thumbnail is not on the web.") << id.constData();
    }
}

TEST_F(ThumbnailProviderTest, CancelledOnesFinishOnceAndMakeRoom) {
    provide({.atATime = 2});
    serve("/a", picture({320, 180}, "png"));
    const auto idOf = [this](const char* path) {
        return idIn(ThumbnailProvider::source(address(path)));
    };
    Response first = requested(idOf("/never-1"));
    Response second = requested(idOf("/never-2"));
    ASSERT_TRUE(waitUntil([this] { return asked.size() == 2; }));
    const Response oldest = requested(idOf("/a?oldest"));
    Response waiting = requested(idOf("/a?cancelled"));
    const Response newest = requested(idOf("/a?newest"));

    QSignalSpy waitingFinished(waiting.get(), &QQuickImageResponse::finished);
    waiting->cancel();
    waiting->cancel();
    EXPECT_EQ(waitingFinished.size(), 1);
    EXPECT_EQ(textOf(waiting), "The thumbnail is no longer wanted.");
    QSignalSpy finished(first.get(), &QQuickImageResponse::finished);
    first->cancel();
    finish(*oldest);
    EXPECT_EQ(asked.mid(2),
              QStringList({QStringLiteral("/a?newest"), QStringLiteral("/a?oldest")}));
    EXPECT_EQ(imageOf(*oldest).size(), box);
    EXPECT_EQ(finished.size(), 1);
    EXPECT_EQ(waitingFinished.size(), 1);

    second.reset();  // its download ends with it
    EXPECT_TRUE(waitUntil([this] { return open == 0; }));
}

TEST_F(ThumbnailProviderTest, ManyComeAndGo) {
    serve("/a", picture({320, 180}, "jpeg"));
    const QString id = idIn(ThumbnailProvider::source(address("/a")));
    std::vector<Response> responses;
    for (int count = 0; count < 300; ++count) {
        responses.push_back(requested(id));
        if (count % 3 == 1)
            responses[count / 2]->cancel();
        if (count % 3 == 2)
            responses[count / 3].reset();
        if (count % 10 == 0)
            QCoreApplication::processEvents();
    }
    const Response last = requested(id);
    finish(*last);
    responses.clear();
    EXPECT_EQ(imageOf(*last).size(), box);
}

TEST_F(ThumbnailProviderTest, ServesTheImagesOfAnEngine) {
    serve("/a", picture({320, 180}, "png"));
    auto engine = std::make_unique<QQmlEngine>();
    const QPointer<ThumbnailProvider> added = provider.release();
    engine->addImageProvider(ThumbnailProvider::name(), added);
    QQmlComponent component(engine.get());
    component.setData("import QtQuick\nImage { asynchronous: true }", {});
    const auto imageOf = [&](const char* path) {
        const QVariant source = ThumbnailProvider::source(address(path));
        return std::unique_ptr<QObject>(
            component.createWithInitialProperties({{QStringLiteral("source"), source}}));
    };

    const auto image = imageOf("/a");
    ASSERT_TRUE(image) << component.errorString().toStdString();
    EXPECT_TRUE(waitUntil([&] { return image->property("progress").toDouble() == 1; }));
    EXPECT_EQ(image->property("implicitWidth").toInt(), box.width());
    EXPECT_EQ(image->property("implicitHeight").toInt(), box.height());

    auto scrolledAway = imageOf("/never-1");
    EXPECT_TRUE(waitUntil([this] { return open == 1; }));
    scrolledAway.reset();
    EXPECT_TRUE(waitUntil([this] { return open == 0; }));

    const auto pending = imageOf("/never-2");
    EXPECT_TRUE(waitUntil([this] { return open == 1; }));
    engine.reset();
    EXPECT_TRUE(waitUntil([&] { return !added && open == 0; }));
}

}  // namespace
}  // namespace reelcrate
