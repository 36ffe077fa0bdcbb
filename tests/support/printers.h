#pragma once

#include <QString>
#include <QStringList>

#include <ostream>

// How GoogleTest shows Qt's texts when a comparison fails.

inline void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}

inline void PrintTo(const QStringList& texts, std::ostream* out) {
    *out << "[\"" << texts.join(QStringLiteral("\", \"")).toStdString() << "\"]";
}
