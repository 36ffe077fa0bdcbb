#include "support/machine.h"
#include "support/printers.h"
#include "update/update_manifest.h"
#include "update/update_scan.h"

#include <QTcpServer>
#include <QTcpSocket>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace reelcrate {
namespace {

using namespace std::chrono_literals;

constexpr const char* current =
    R"({"latest_version": "4.8", "latest_build": 48, "release_notes": []})";

QString messageOf(const char* json) {
    const auto manifest = AppUpdateManifest::decode(json);
    return manifest ? judgeUpdate(*manifest, QStringLiteral("4.8"), 48).message
                    : QStringLiteral("undecodable");
}

TEST(UpdateManifest, IsJudgedByItsBuild) {
    const struct {
        const char* json;
        const char* message;
    } cases[] = {
        {current, "You are up to date: v4.8 build 48."},
        {R"({"latest_version": "9", "latest_build": 48.0, "release_date": "",
             "release_notes": [" ", "\n"]})",
         "You are up to date: v4.8 build 48. Released ."},
        {R"({"latest_version": "4.7", "latest_build": 47, "release_date": "x",
             "release_notes": ["n"], "download_url": "x"})",
         "This test build is newer than the website notes: v4.8 build 48. Website latest is v4.7 "
         "build 47."},
        {R"({"latest_version": "4.9", "latest_build": 52, "release_date": "2026-07-04",
             "release_notes": [" one ", "", "two", "three"], "download_url": "https://x"})",
         "Update available: v4.9 build 52. Released 2026-07-04. Notes: one two Open your purchase "
         "download link to install it."},
        {R"({"latest_version": "4.9", "latest_build": 52, "release_date": null,
             "release_notes": [], "download_url": ""})",
         "Update available: v4.9 build 52. Open your purchase email/download page to install it."},
        {R"({"latest_version": "4.9", "latest_build": "52", "release_notes": []})", "undecodable"},
        {R"({"latest_version": "4.9", "latest_build": 52.5, "release_notes": []})", "undecodable"},
        {R"({"latest_version": "4.9", "latest_build": true, "release_notes": []})", "undecodable"},
        {R"({"latest_version": 4.9, "latest_build": 52, "release_notes": []})", "undecodable"},
        {R"({"latest_version": "4.9", "latest_build": 52})", "undecodable"},
        {R"({"latest_version": "4.9", "latest_build": 52, "release_notes": [1]})", "undecodable"},
        {R"({"latest_version": "4.9", "latest_build": 52, "release_notes": [],
             "download_url": 7})",
         "undecodable"},
        {R"({"latest_version": "4.9", "latest_build": 999999999999999999999, "release_notes": []})",
         "undecodable"},
        {R"({"latest_version": "999999999999999999999", "latest_build": 48, "release_notes": [],
             "download_url": "file:///etc/passwd"})",
         "You are up to date: v4.8 build 48."},
        {R"({"latest_version": "4.9", "latest_build": 52, "release_notes": ["`touch x`"],
             "download_url": "javascript:alert"})",
         "Update available: v4.9 build 52. Notes: `touch x` Open your purchase download link to "
         "install it."},
        {"[]", "undecodable"},
        {"<html>", "undecodable"},
    };
    for (const auto& [json, message] : cases)
        EXPECT_EQ(messageOf(json), QString::fromUtf8(message)) << json;
}

/// A web site with one answer for everybody.
class UpdateScanTest : public testing::Test {
protected:
    UpdateScanTest() {
        QObject::connect(&server, &QTcpServer::newConnection, [this] {
            QTcpSocket* socket = server.nextPendingConnection();
            ++requests;
            QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket] {
                request += socket->readAll();
                socket->write(answer);
                if (!answer.isEmpty())
                    socket->disconnectFromHost();
            });
        });
        QObject::connect(&scan, &UpdateScan::finished,
                         [this](const UpdateOutcome& o) { outcome = o; });
    }

    UpdateOutcome scanned(const QByteArray& head, const QByteArray& body) {
        answer = "HTTP/1.1 " + head + "\r\nContent-Length: " + QByteArray::number(body.size()) +
                 "\r\n\r\n" + body;
        return scanned();
    }

    UpdateOutcome scanned() {
        outcome = {};
        scan.scanForUpdate();
        EXPECT_TRUE(scan.isScanningForUpdate());
        EXPECT_EQ(scan.updateMessage(),
                  QStringLiteral("Checking 127.0.0.1 for Reelcrate updates..."));
        EXPECT_TRUE(waitUntil([this] { return !scan.isScanningForUpdate(); }));
        EXPECT_EQ(scan.updateMessage(), outcome.message);
        return outcome;
    }

    QTcpServer server;
    QByteArray answer;
    QByteArray request;
    int requests = 0;
    UpdateOutcome outcome;
    UpdateScan scan{QStringLiteral("4.8"), 48, [this] {
                        server.listen(QHostAddress::LocalHost);
                        return UpdateScanSetup{
                            QStringLiteral("http://127.0.0.1:%1/x").arg(server.serverPort()),
                            300ms};
                    }()};
};

TEST_F(UpdateScanTest, EveryAnswerHasItsOutcome) {
    EXPECT_EQ(scanned("200 OK", current).title, QStringLiteral("Reelcrate is current"));
    EXPECT_TRUE(outcome.wasChecked);
    EXPECT_EQ(scanned("404 Not Found", "nothing"), updateNotesRefused(404));
    EXPECT_EQ(scanned("304 Not Modified", ""), updateNotesRefused(304));
    EXPECT_EQ(scanned("200 OK", "<html>"), updateNotesUnreadable());
    EXPECT_EQ(scanned("200 OK", QByteArray(current) + QByteArray(2 << 20, ' ')),
              updateNotesUnreadable());
    const QByteArray packed = qCompress(QByteArray(current) + QByteArray(64 << 20, ' ')).mid(4);
    EXPECT_FALSE(scanned("200 OK\r\nContent-Encoding: deflate", packed).wasChecked);
    EXPECT_EQ(scanned("200 OK", QByteArray(1 << 19, '[')), updateNotesUnreadable());
    EXPECT_EQ(scanned("302 Found\r\nLocation: http://127.0.0.1/", ""),
              updateCheckFailed(QStringLiteral("The website redirects to an insecure address.")));
    EXPECT_EQ(scanned("302 Found\r\nLocation: https://127.0.0.1:9/", "").title,
              QStringLiteral("Update scan failed"))
        << "nobody listens there";
    EXPECT_EQ(scanned("404 Not Found", QByteArray(2 << 20, ' ')), updateNotesRefused(404));
    answer.clear();  // and no answer at all
    EXPECT_EQ(scanned().message,
              QStringLiteral("Could not check updates. Connect to Wi-Fi or internet and try again. "
                             "The request timed out."));
    server.close();
    EXPECT_EQ(scanned().title, QStringLiteral("Update scan failed"));
    EXPECT_FALSE(outcome.wasChecked);
}

TEST_F(UpdateScanTest, SaysNothingOfTheUser) {
    scanned("200 OK", current);
    EXPECT_THAT(request.toLower().split('\n'), testing::Contains("accept-language: en\r"));
    EXPECT_THAT(request.toLower().toStdString(), testing::Not(testing::HasSubstr("cookie")));
}

TEST_F(UpdateScanTest, AsksOnceAtATime) {
    scan.scanForUpdate();
    scanned("200 OK", current);
    EXPECT_EQ(requests, 1);
}

TEST(UpdateScan, WithoutAnAddressItSaysSo) {
    UpdateScan scan(QStringLiteral("4.8"), 48, {QStringLiteral("https:///x"), 1s});
    scan.scanForUpdate();
    EXPECT_FALSE(scan.isScanningForUpdate());
    EXPECT_EQ(scan.updateMessage(), QStringLiteral("Update scan is not configured yet."));
}

}  // namespace
}  // namespace reelcrate
