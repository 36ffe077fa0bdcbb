#include "support/sample.h"

#include <QFile>

#include <gtest/gtest.h>

QString sample(const char* name) {
    QFile file(QStringLiteral(TESTS_DIRECTORY "/data/") + QString::fromUtf8(name));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name;
    return QString::fromUtf8(file.readAll());
}
