#include "support/music.h"

#include "tools/shell_quote.h"

#include <gtest/gtest.h>

namespace reelcrate {

CommandResult Music::ffmpeg(const QString& words) {
    return shell.runShellApart(QStringLiteral("cd ") + shellQuoted(m_folder.path()) +
                                   QStringLiteral(" && ffmpeg -v error -nostdin -y ") + words,
                               100);
}

QString Music::make(const QString& name, const QString& words) {
    const CommandResult result = ffmpeg(words + u' ' + shellQuoted(path(name)));
    EXPECT_EQ(result.status, 0) << words.toStdString() << result.errors.toStdString();
    return path(name);
}

qint64 Music::bytesFrom(const QString& words) {
    qint64 count = 0;
    shell.runShellBytes(QStringLiteral("cd ") + shellQuoted(m_folder.path()) +
                            QStringLiteral(" && ffmpeg -v error -nostdin ") + words,
                        100, [&count](const QByteArray& bytes) { count += bytes.size(); });
    return count;
}

}  // namespace reelcrate
