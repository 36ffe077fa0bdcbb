#pragma once

#include <QByteArray>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QString>
#include <QTextStream>

#include <cstdlib>
#include <ctime>

/// What the benchmarks read clocks and the kernel's figures with, and how they tell what came of
/// it: one JSON object on standard output. A failure ends the program, with a word on standard
/// error.
namespace reelcrate {

/// Seconds.
inline double now(clockid_t clock) {
    constexpr double nanosecond = 1e-9;
    timespec time{};
    ::clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * nanosecond;
}

/// What a file of /proc says in the line of this field, in bytes; 0 where it does not.
inline double bytesIn(const QString& path, const QByteArray& field) {
    constexpr double kibibyte = 1024;
    QFile status(path);
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    const QList<QByteArray> lines = status.readAll().split('\n');
    for (const QByteArray& line : lines) {
        if (line.startsWith(field + ':'))
            return line.mid(field.size() + 1).chopped(2).trimmed().toDouble() * kibibyte;
    }
    return 0;
}

inline void report(const QJsonObject& measured) {
    QTextStream(stdout) << QString::fromUtf8(
        QJsonDocument(measured).toJson(QJsonDocument::Compact));
}

[[noreturn]] inline void fail(const QString& text) {
    QTextStream(stderr) << text << '\n';
    std::exit(EXIT_FAILURE);
}

}  // namespace reelcrate
