#pragma once

#include <QObject>
#include <QString>

/// The log of the current download run, without a limit. Main thread.
namespace reelcrate {

class RunLog : public QObject {
    Q_OBJECT

public:
    const QString& text() const { return m_text; }

    void clear() {
        m_text.clear();
        Q_EMIT cleared();
    }

    /// A text that does not end with a line feed gets one.
    void append(const QString& text) {
        const QString lines = text.endsWith(u'\n') ? text : text + u'\n';
        m_text += lines;
        Q_EMIT appended(lines);
    }

Q_SIGNALS:
    void cleared();
    void appended(const QString& text);

private:
    QString m_text;
};

}  // namespace reelcrate
