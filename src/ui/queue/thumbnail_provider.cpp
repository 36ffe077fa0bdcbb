#include "ui/queue/thumbnail_provider.h"

#include <QBrush>
#include <QBuffer>
#include <QCoreApplication>
#include <QEvent>
#include <QImage>
#include <QImageReader>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QPainter>
#include <QThreadPool>
#include <QTimer>
#include <QUrl>

#include <algorithm>
#include <map>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace reelcrate {

namespace {

constexpr QSize box{58, 44};  // of a row, logical pixels
constexpr double boxRadius = 7;
constexpr int decodingThreads = 2;
constexpr int mostRedirects = 8;
constexpr int mostScans = 100;  // of a progressive JPEG, which has about ten

// The threads wake each other by an empty event; what is handed over waits under a lock.
constexpr QEvent::Type wake = QEvent::User;

constexpr QByteArrayView startOfScan("\xFF\xDA");

struct Outcome {
    QImage image;
    QString error;
};

Outcome failure(const QString& error) {
    return {{}, error};
}

bool isOfTheWeb(const QUrl& address) {
    return address.isValid() && !address.host().isEmpty() &&
           (address.scheme() == QStringLiteral("https") ||
            address.scheme() == QStringLiteral("http"));
}

// Base64 passes through QML unchanged, which normalises the escapes of an address.
constexpr auto encoding = QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals;

QUrl addressOf(const QString& id) {
    return QUrl::fromEncoded(QByteArray::fromBase64(id.toLatin1(), encoding), QUrl::StrictMode);
}

QSize pictureSize(const QSize& requested) {
    return requested.isEmpty() ? box * 2 : requested.boundedTo(box * 4);
}

/// The largest part of a picture that has the shape of `shape`, at its centre.
QRect centre(const QSize& picture, const QSize& shape) {
    QRect part({}, shape.scaled(picture, Qt::KeepAspectRatio).expandedTo({1, 1}));
    part.moveTopLeft(
        {(picture.width() - part.width()) / 2, (picture.height() - part.height()) / 2});
    return part;
}

QImage rounded(const QImage& picture) {
    QImage image(picture.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    const double radius = boxRadius * std::min(1.0 * image.width() / box.width(),
                                               1.0 * image.height() / box.height());
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QBrush(picture));
    painter.drawRoundedRect(image.rect(), radius, radius);
    return image;
}

Outcome decoded(QByteArray body, const QSize& size, qint64 mostPixels) {
    QBuffer buffer(&body);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    // No vector drawings, which may name files of this machine, and no rarities.
    const QByteArray format = reader.format();
    if (format != "jpeg" && format != "png" && format != "webp" && format != "gif")
        return failure(QStringLiteral("The thumbnail is not a picture."));
    // Each scan passes over the whole picture and may be a few bytes short: thousands would keep
    // the thread busy for hours.
    if (format == "jpeg" && body.count(startOfScan) > mostScans)
        return failure(QStringLiteral("The thumbnail has too many scans."));
    const QSize stated = reader.size();
    if (stated.isEmpty() || qint64{stated.width()} * stated.height() > mostPixels)
        return failure(QStringLiteral("The thumbnail has too many pixels."));
    // Cut before it is scaled: a thin picture, scaled as a whole, would become a huge one.
    reader.setClipRect(centre(stated, size));
    reader.setScaledSize(size);
    const QImage picture = reader.read();
    if (picture.isNull())
        return failure(QStringLiteral("The thumbnail is damaged."));
    return {rounded(picture), {}};
}

/// One thumbnail on its way, shared by the response that waits for it and by those who work on it.
class ThumbnailJob {
public:
    ThumbnailJob(QObject& response, const QUrl& address, const QSize& size)
        : address(address), size(size), m_response(&response) {}

    const QUrl address;
    const QSize size;

    /// Tells the response how the job ended; only the first end counts.
    void settle(const Outcome& outcome) {
        const std::lock_guard lock(m_mutex);
        if (!m_response)
            return;
        m_outcome = outcome;
        QCoreApplication::postEvent(std::exchange(m_response, nullptr), new QEvent(wake));
    }

    bool isSettled() const {
        const std::lock_guard lock(m_mutex);
        return !m_response;
    }

    Outcome outcome() const {
        const std::lock_guard lock(m_mutex);
        return m_outcome;
    }

private:
    mutable std::mutex m_mutex;
    QObject* m_response;  // none once the job is settled
    Outcome m_outcome;
};

using JobPointer = std::shared_ptr<ThumbnailJob>;

}  // namespace

/// Works on the jobs, the newest first: those are of the rows in view.
class ThumbnailFetcher : public QObject {
public:
    explicit ThumbnailFetcher(const ThumbnailLimits& limits) : m_limits(limits) {
        m_decoding.setMaxThreadCount(decodingThreads);
    }

    /// Any thread.
    void add(const JobPointer& job) {
        const std::lock_guard lock(m_mutex);
        m_waiting.push_back(job);
        wakeUp();
    }

    /// Any thread. For a job that is settled.
    void drop(const JobPointer& job) {
        const std::lock_guard lock(m_mutex);
        std::erase(m_waiting, job);
        wakeUp();
    }

    bool event(QEvent* event) override {
        if (event->type() != wake)
            return QObject::event(event);
        abortSettled();
        while (const JobPointer job = takeNewest())
            download(job);
        return true;
    }

private:
    void wakeUp() { QCoreApplication::postEvent(this, new QEvent(wake)); }

    JobPointer takeNewest() {
        const std::lock_guard lock(m_mutex);
        if (m_waiting.empty() || m_underWay >= m_limits.atATime)
            return nullptr;
        ++m_underWay;
        JobPointer job = std::move(m_waiting.back());
        m_waiting.pop_back();
        return job;
    }

    /// Any thread.
    void release() {
        const std::lock_guard lock(m_mutex);
        --m_underWay;
        wakeUp();
    }

    void abortSettled() {
        std::vector<QNetworkReply*> unwanted;  // a reply leaves the map as it is aborted
        for (const auto& [reply, job] : m_downloads) {
            if (job->isSettled())
                unwanted.push_back(reply);
        }
        for (QNetworkReply* reply : unwanted)
            reply->abort();
    }

    void download(const JobPointer& job) {
        QNetworkRequest request(job->address);
        request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                             QNetworkRequest::NoLessSafeRedirectPolicy);
        request.setMaximumRedirectsAllowed(mostRedirects);
        request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
        request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
        QNetworkReply* reply = m_network.get(request);
        m_downloads.emplace(reply, job);
        bound(reply);
        connect(reply, &QNetworkReply::finished, this, [this, reply] { finishDownload(reply); });
    }

    void bound(QNetworkReply* reply) const {
        // Over the whole request: a server that sends a byte now and then is too late as well.
        auto* limit = new QTimer(reply);
        limit->setSingleShot(true);
        connect(limit, &QTimer::timeout, reply, &QNetworkReply::abort);
        limit->start(m_limits.transfer);

        const auto refuseLarge = [reply, most = m_limits.body] {
            const auto stated = reply->header(QNetworkRequest::ContentLengthHeader).toLongLong();
            if (std::max(stated, reply->bytesAvailable()) > most)
                reply->abort();
        };
        connect(reply, &QNetworkReply::metaDataChanged, reply, refuseLarge);
        connect(reply, &QNetworkReply::readyRead, reply, refuseLarge);
    }

    void finishDownload(QNetworkReply* reply) {
        const JobPointer job = m_downloads.extract(reply).mapped();
        reply->deleteLater();
        if (reply->error() != QNetworkReply::NoError) {
            job->settle(failure(QStringLiteral("The thumbnail could not be loaded.")));
            release();
            return;
        }
        {
            const std::lock_guard lock(m_mutex);
            m_downloaded.push_back({job, reply->readAll()});
        }
        m_decoding.start([this] { decodeNext(); });
    }

    /// A thread of the pool.
    void decodeNext() {
        const auto [job, body] = takeDownloaded();
        if (!job->isSettled())
            job->settle(decoded(body, job->size, m_limits.pixels));
        release();
    }

    std::pair<JobPointer, QByteArray> takeDownloaded() {
        const std::lock_guard lock(m_mutex);
        auto newest = std::move(m_downloaded.back());
        m_downloaded.pop_back();
        return newest;
    }

    const ThumbnailLimits m_limits;
    std::mutex m_mutex;
    // Under the mutex.
    std::vector<JobPointer> m_waiting;
    std::vector<std::pair<JobPointer, QByteArray>> m_downloaded;
    int m_underWay = 0;
    // Of the fetcher's thread.
    std::map<QNetworkReply*, JobPointer> m_downloads;
    QNetworkAccessManager m_network{this};  // a child, to move to the thread along with the fetcher
    QThreadPool m_decoding;  // the last: as it goes, it waits for its tasks, which use the rest
};

namespace {

class ThumbnailResponse : public QQuickImageResponse {
public:
    ThumbnailResponse(ThumbnailFetcher& fetcher, const QUrl& address, const QSize& size)
        : m_fetcher(fetcher), m_job(std::make_shared<ThumbnailJob>(*this, address, size)) {
        if (isOfTheWeb(address))
            m_fetcher.add(m_job);
        else
            m_job->settle(failure(QStringLiteral("The thumbnail is not on the web.")));
    }

    ~ThumbnailResponse() override { abandon(); }
    Q_DISABLE_COPY_MOVE(ThumbnailResponse)

    QQuickTextureFactory* textureFactory() const override {
        return QQuickTextureFactory::textureFactoryForImage(m_outcome.image);
    }

    QString errorString() const override { return m_outcome.error; }

    /// Finishes at once: an engine that is going away cancels what is left and handles no event
    /// after that, and a response that never finishes is never deleted, nor is the provider.
    void cancel() override {
        abandon();
        finish();
    }

    bool event(QEvent* event) override {
        if (event->type() != wake)
            return QQuickImageResponse::event(event);
        finish();
        return true;
    }

private:
    void abandon() {
        m_job->settle(failure(QStringLiteral("The thumbnail is no longer wanted.")));
        m_fetcher.drop(m_job);
    }

    void finish() {
        if (m_hasFinished)
            return;
        m_hasFinished = true;
        m_outcome = m_job->outcome();
        Q_EMIT finished();
    }

    ThumbnailFetcher& m_fetcher;
    const JobPointer m_job;
    Outcome m_outcome;
    bool m_hasFinished = false;
};

}  // namespace

QString ThumbnailProvider::source(const QString& thumbnailURL) {
    const QUrl address(thumbnailURL);
    if (!isOfTheWeb(address))
        return {};
    return QStringLiteral("image://%1/%2")
        .arg(name(), QString::fromLatin1(address.toEncoded().toBase64(encoding)));
}

ThumbnailProvider::ThumbnailProvider(const ThumbnailLimits& limits)
    : m_fetcher(new ThumbnailFetcher(limits)) {
    QImageReader::setAllocationLimit(limits.decodedMegabytes);
    m_fetcher->moveToThread(&m_thread);
    QObject::connect(&m_thread, &QThread::finished, m_fetcher, &QObject::deleteLater);
    m_thread.start();
}

ThumbnailProvider::~ThumbnailProvider() {
    m_thread.quit();
    m_thread.wait();
}

QQuickImageResponse* ThumbnailProvider::requestImageResponse(const QString& id,
                                                             const QSize& requestedSize) {
    return new ThumbnailResponse(*m_fetcher, addressOf(id), pictureSize(requestedSize));
}

}  // namespace reelcrate
