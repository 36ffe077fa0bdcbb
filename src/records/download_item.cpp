#include "records/download_item.h"

#include <QRandomGenerator>

#include <array>
#include <bit>

namespace reelcrate {

// The processor's own random numbers, which QUuid::createUuid() takes, cost more on some machines
// than all the rest of a link's way into the queue.
QUuid newRowId() {
    constexpr quint8 randomVersion = 0x40;
    constexpr quint8 standardVariant = 0x80;
    std::array<quint32, 4> words{};
    QRandomGenerator::global()->generate(words.begin(), words.end());
    auto bytes = std::bit_cast<std::array<quint8, 16>>(words);
    bytes[6] = (bytes[6] & 0x0fU) | randomVersion;
    bytes[8] = (bytes[8] & 0x3fU) | standardVariant;
    return QUuid::fromRfc4122(QByteArrayView(bytes));
}

QString idText(const QUuid& id) {
    return id.toString(QUuid::WithoutBraces).toUpper();
}

}  // namespace reelcrate
