#pragma once

#include <QQuickAsyncImageProvider>
#include <QSize>
#include <QString>
#include <QThread>

#include <chrono>

/// Loads the thumbnails of the queue's rows for the window. Addresses and pictures are anybody's:
/// only the web is asked, and what it sends is bounded in size, time and decoding. Requests come
/// from any thread; downloads run on a thread of the provider's own, decoding in a small pool, and
/// a response finishes on the thread that asked for it. Failure arrives as the response's error
/// text, in which there is no word of the server's. The provider outlives its responses; an engine
/// that it is added to sees to that.
namespace reelcrate {

class ThumbnailFetcher;

struct ThumbnailLimits {
    qint64 body = qint64{8} * 1024 * 1024;       ///< bytes of a picture's file
    std::chrono::milliseconds transfer{20'000};  ///< from the request to the last byte
    qint64 pixels = 25'000'000;                  ///< that a picture may claim to have
    int decodedMegabytes = 64;  ///< of one picture, for every image that the program reads
    int atATime = 6;            ///< downloads and decodings under way
};

class ThumbnailProvider : public QQuickAsyncImageProvider {
public:
    /// What the provider is called in image addresses.
    static QString name() { return QStringLiteral("thumbnails"); }

    /// The source for an Image that shows the thumbnail; empty when the address is not of the web.
    static QString source(const QString& thumbnailURL);

    explicit ThumbnailProvider(const ThumbnailLimits& limits = {});
    ~ThumbnailProvider() override;
    Q_DISABLE_COPY_MOVE(ThumbnailProvider)

    /// The picture fills `requestedSize`, or twice a row's box when there is none, cut to its
    /// centre and rounded at the corners.
    QQuickImageResponse* requestImageResponse(const QString& id,
                                              const QSize& requestedSize) override;

private:
    QThread m_thread;
    ThumbnailFetcher* m_fetcher;  // lives and dies in the thread
};

}  // namespace reelcrate
