#pragma once

#include <QString>

#include <cstdio>
#include <cstdlib>
#include <fuzzer/FuzzedDataProvider.h>

/// What the fuzz targets share. Each reads its text from the front of the input and small choices
/// from its end, so that any file of text is a seed.
namespace reelcrate::fuzz {

/// Ends the run: the fuzzer keeps the input.
inline void require(bool holds, const char* rule) {
    if (holds)
        return;
    std::fprintf(stderr, "Broken rule: %s\n", rule);
    std::abort();
}

/// Text as the program decodes it from a tool's output: no halves of surrogate pairs.
inline QString decodedText(FuzzedDataProvider& input) {
    const std::string bytes = input.ConsumeRemainingBytesAsString();
    return QString::fromUtf8(bytes.data(), static_cast<qsizetype>(bytes.size()));
}

/// Text as it is pasted, or stands escaped in JSON: private-use characters from U+E000 on become
/// lone halves of surrogate pairs, which UTF-8 cannot hold.
inline QString anyText(FuzzedDataProvider& input) {
    QString text = decodedText(input);
    for (QChar& c : text) {
        if (c.unicode() >= 0xE000 && c.unicode() < 0xE800)
            c = QChar(static_cast<char16_t>(c.unicode() - 0x800));
    }
    return text;
}

}  // namespace reelcrate::fuzz
