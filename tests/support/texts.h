#pragma once

#include "support/printers.h"

#include <QString>

#include <gtest/gtest.h>

#include <initializer_list>
#include <utility>

inline QString text(const char* utf8) {
    return QString::fromUtf8(utf8);
}

/// Expects of `function` that it makes of each first text the second.
template <typename Function>
void expectTexts(Function function,
                 std::initializer_list<std::pair<const char*, const char*>> cases) {
    for (const auto& [given, expected] : cases) {
        SCOPED_TRACE(given);
        EXPECT_EQ(function(text(given)), text(expected));
    }
}
