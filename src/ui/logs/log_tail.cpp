#include "ui/logs/log_tail.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QRegularExpression>
#include <QSaveFile>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>

#include <chrono>
#include <utility>

namespace reelcrate {

namespace {

using namespace std::chrono_literals;

constexpr auto renewalPause = 100ms;
constexpr qsizetype mostCharacters = qsizetype{128} << 10;

}  // namespace

LogTail::LogTail(std::function<QString()> wholeText, QObject* parent)
    : QObject(parent), m_wholeText(std::move(wholeText)) {
    m_renewal.setSingleShot(true);
    m_renewal.setInterval(renewalPause);
    connect(&m_renewal, &QTimer::timeout, this, &LogTail::show);
}

void LogTail::setDocument(QQuickTextDocument* document) {
    if (m_document == document)
        return;
    m_document = document;
    if (m_document) {
        m_document->textDocument()->setUndoRedoEnabled(false);
        m_document->textDocument()->setMaximumBlockCount(mostLines);
        m_isOutdated = true;
        show();
    }
    Q_EMIT documentChanged();
}

void LogTail::append(const QString& text) {
    setEmpty(false);
    if (!m_document)
        return;
    if (m_pending.size() + text.size() > mostCharacters)
        m_isOutdated = true;
    if (m_isOutdated)
        m_pending.clear();
    else
        m_pending += text;
    if (!m_renewal.isActive())
        m_renewal.start();
}

void LogTail::clear() {
    setEmpty(true);
    m_isOutdated = true;
    if (m_document)
        show();
}

void LogTail::setEmpty(bool empty) {
    if (m_isEmpty == empty)
        return;
    m_isEmpty = empty;
    Q_EMIT isEmptyChanged();
}

QString LogTail::shownEnd(const QString& text) {
    // What only tells the program how far a download is would crowd out the rest.
    static const QRegularExpression progress(
        QStringLiteral("^(?:\\d+/\\d+ )?[ \\t]*RCR_PROGRESS:.*(?:\\n|$)"),
        QRegularExpression::MultilineOption);
    QString end = text.right(mostCharacters);
    end.remove(progress);
    end.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    qsizetype length = 0;
    for (qsizetype i = 0; i < end.size(); ++i) {
        length = end.at(i) == u'\n' || end.at(i) == u'\r' ? 0 : length + 1;
        if (length <= longestLine)
            continue;
        end.insert(i, u'\n');
        length = 0;
    }
    return end;
}

void LogTail::show() {
    if (!m_document)
        return;
    QTextDocument* shownText = m_document->textDocument();
    if (std::exchange(m_isOutdated, false)) {
        m_pending.clear();
        shownText->setPlainText(shownEnd(m_wholeText()));
    } else {
        QTextCursor cursor(shownText);
        cursor.movePosition(QTextCursor::End);
        if (cursor.block().length() > longestLine)
            cursor.insertBlock();
        cursor.insertText(shownEnd(std::exchange(m_pending, {})));
    }
    Q_EMIT shown();
}

void LogTail::copyAll() const {
    QGuiApplication::clipboard()->setText(m_wholeText());
}

bool LogTail::save(const QUrl& file) const {
    QSaveFile output(file.toLocalFile());
    return output.open(QIODevice::WriteOnly) && output.write(m_wholeText().toUtf8()) >= 0 &&
           output.commit();
}

}  // namespace reelcrate
