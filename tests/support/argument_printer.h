#pragma once

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>

#include <random>

/// A stand-in for a tool, that tells how a command line called it.
namespace reelcrate {

struct Invocation {
    QString searchPath;
    QStringList arguments;
};

class ArgumentPrinter {
public:
    explicit ArgumentPrinter(const QString& name) : m_path(m_folder.filePath(name)) {
        QFile script(m_path);
        if (script.open(QIODevice::WriteOnly))
            script.write("#!/bin/bash\nprintf '%s\\0' \"$PATH\" \"$@\"\n");
        script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }

    QString path() const { return m_path; }
    QString folder() const { return m_folder.path(); }

    /// Runs the line in an empty folder, whose content afterwards is `leftBehind`.
    Invocation run(const QString& line) {
        const QTemporaryDir empty;
        QProcess shell;
        shell.setWorkingDirectory(empty.path());
        shell.start(QStringLiteral("/bin/bash"), {QStringLiteral("-c"), line});
        shell.waitForFinished();
        leftBehind = QDir(empty.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
        QStringList words = QString::fromUtf8(shell.readAllStandardOutput()).split(QChar(u'\0'));
        words.removeLast();
        return words.isEmpty() ? Invocation() : Invocation{words.takeFirst(), words};
    }

    QStringList leftBehind;

private:
    QTemporaryDir m_folder;
    QString m_path;
};

/// What a shell could take for its own, line breaks and other controls, and a few of everything
/// else; lone surrogates, which no encoding has, among them.
inline QString randomText(std::mt19937& random) {
    static const QString special =
        QStringLiteral("'\"\\$`!*?[]{}()<>|&;#~=%^-+ \t\n\r\x01\x1b\x7f");
    const auto below = [&random](unsigned bound) { return random() % bound; };
    QString text;
    for (unsigned length = below(24); length > 0; --length) {
        if (below(3) > 0)
            text +=
                special.at(static_cast<qsizetype>(below(static_cast<unsigned>(special.size()))));
        else
            text += QChar(static_cast<char16_t>(below(0x10000)));
    }
    return text;
}

}  // namespace reelcrate
