#include "tools/login_environment.h"

#include "tools/shell_quote.h"

#include <QList>

namespace reelcrate {

QString loginEnvironmentCommand(const QByteArray& mark) {
    // A profile may leave "env" anywhere, or make it another command.
    const QString word = shellQuoted(QString::fromLatin1(mark));
    return QStringLiteral("printf '\\0%s\\0' ") + word +
           QStringLiteral("; /usr/bin/env -0; printf '%s\\0' ") + word;
}

std::optional<QProcessEnvironment> loginEnvironmentFrom(const QByteArray& output,
                                                        const QByteArray& mark) {
    const QList<QByteArray> entries = output.split('\0');
    const qsizetype begin = entries.indexOf(mark);
    const qsizetype end = entries.indexOf(mark, begin + 1);
    if (begin < 0 || end < 0)
        return std::nullopt;
    QProcessEnvironment environment;
    for (const QByteArray& entry : entries.mid(begin + 1, end - begin - 1)) {
        const qsizetype equals = entry.indexOf('=', 1);
        if (equals > 0)
            environment.insert(QString::fromLocal8Bit(entry.first(equals)),
                               QString::fromLocal8Bit(entry.sliced(equals + 1)));
    }
    // Of the reading shell, not of the user: the command's own shell sets them anew.
    environment.remove(QStringLiteral("_"));
    const QString level = QStringLiteral("SHLVL");
    environment.insert(level, qEnvironmentVariable("SHLVL", QStringLiteral("0")));
    return environment;
}

}  // namespace reelcrate
