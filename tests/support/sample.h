#pragma once

#include <QFile>
#include <QString>

#include <gtest/gtest.h>

/// The text of a file in tests/data: what a tool once printed.
inline QString sample(const char* name) {
    QFile file(QStringLiteral(TESTS_DIRECTORY "/data/") + QString::fromUtf8(name));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name;
    return QString::fromUtf8(file.readAll());
}
