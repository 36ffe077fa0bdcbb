#include "tools/login_environment.h"

#include "tools/shell_quote.h"

#include <QList>
#include <QRegularExpression>

namespace reelcrate {

namespace {

/// A variable with any bytes, as a line of a shell; empty when a shell knows no such name.
QString exportOf(const QByteArray& name, const QByteArray& value) {
    static const QRegularExpression identifier(QStringLiteral("^[A-Za-z_][A-Za-z0-9_]*$"));
    const QString text = QString::fromLatin1(name);
    if (!identifier.match(text).hasMatch())
        return {};
    QString line = QStringLiteral("export ") + text + QStringLiteral("=$'");
    for (const char byte : value)
        line += QStringLiteral("\\%1").arg(static_cast<uchar>(byte), 3, 8, QChar(u'0'));
    return line + QStringLiteral("'; ");
}

}  // namespace

QString loginEnvironmentCommand(const QByteArray& mark) {
    // A profile may leave "env" anywhere, or make it another command.
    const QString word = shellQuoted(QString::fromLatin1(mark));
    return QStringLiteral("printf '\\0%s\\0' ") + word +
           QStringLiteral("; /usr/bin/env -0; printf '%s\\0' ") + word;
}

std::optional<LoginEnvironment> loginEnvironmentFrom(const QByteArray& output,
                                                     const QByteArray& mark) {
    const QList<QByteArray> entries = output.split('\0');
    const qsizetype begin = entries.indexOf(mark);
    const qsizetype end = entries.indexOf(mark, begin + 1);
    if (begin < 0 || end < 0)
        return std::nullopt;
    LoginEnvironment login;
    QProcessEnvironment& environment = login.variables;
    for (const QByteArray& entry : entries.mid(begin + 1, end - begin - 1)) {
        const qsizetype equals = entry.indexOf('=', 1);
        if (equals <= 0)
            continue;
        const QByteArray name = entry.first(equals);
        const QByteArray value = entry.sliced(equals + 1);
        if (value.isValidUtf8())
            environment.insert(QString::fromUtf8(name), QString::fromUtf8(value));
        else
            login.exports += exportOf(name, value);
    }
    // Of the reading shell, not of the user: the command's own shell sets them anew.
    environment.remove(QStringLiteral("_"));
    const QString level = QStringLiteral("SHLVL");
    environment.insert(level, qEnvironmentVariable("SHLVL", QStringLiteral("0")));
    return login;
}

}  // namespace reelcrate
