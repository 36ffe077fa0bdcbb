#pragma once

#include <QObject>
#include <QPointer>
#include <QQuickTextDocument>
#include <QString>
#include <QTimer>
#include <QUrl>
#include <QtQml/qqmlregistration.h>

#include <functional>

/// Shows the end of a growing log in a text area: a bounded number of lines, renewed a few times a
/// second however fast the log grows, and not at all while nobody looks. Main thread.
namespace reelcrate {

class LogTail : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the program")

    /// Of the text area that shows the log; null while none does.
    Q_PROPERTY(QQuickTextDocument* document READ document WRITE setDocument NOTIFY documentChanged)
    Q_PROPERTY(bool isEmpty READ isEmpty NOTIFY isEmptyChanged)

public:
    static constexpr int mostLines = 2000;
    /// In UTF-16 units: a text area that is to wrap a longer line without a break takes seconds.
    static constexpr int longestLine = 1000;

    /// `wholeText` gives the log as it is now.
    explicit LogTail(std::function<QString()> wholeText, QObject* parent = nullptr);

    QQuickTextDocument* document() const { return m_document; }
    void setDocument(QQuickTextDocument* document);
    bool isEmpty() const { return m_isEmpty; }

    void append(const QString& text);
    void clear();

    /// The whole log, to the clipboard or into a file. False when the file cannot be written.
    Q_INVOKABLE void copyAll() const;
    Q_INVOKABLE bool save(const QUrl& file) const;

    /// The end of a text as it is shown: whole lines where they are short enough. Pure.
    static QString shownEnd(const QString& text);

Q_SIGNALS:
    void documentChanged();
    void isEmptyChanged();
    /// The shown text has been renewed.
    void shown();

private:
    void show();
    void setEmpty(bool empty);

    std::function<QString()> m_wholeText;
    QPointer<QQuickTextDocument> m_document;
    QString m_pending;  ///< what has come since the text area was last renewed
    QTimer m_renewal;
    bool m_isEmpty = true;
    bool m_isOutdated = false;  ///< more has come than can be appended
};

}  // namespace reelcrate
