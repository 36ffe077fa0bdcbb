#pragma once

#include <QByteArray>

#include <cstdio>

/// Text for a standard stream of the program.
namespace reelcrate {

/// At once, whatever the stream is. Any thread.
inline void print(std::FILE* stream, const QByteArray& bytes) {
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stream);
    std::fflush(stream);
}

}  // namespace reelcrate
