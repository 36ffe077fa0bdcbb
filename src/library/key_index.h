#pragma once

#include <QHash>
#include <QString>
#include <QStringView>

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

/// Finds among many texts the first that contains another, or that another contains, without a look
/// at each of them. Immutable once made, then for any thread; no failures.
///
/// Every run of six UTF-16 units ("gram") is known with the texts that hold it. Of a text that is
/// looked for only the holders of its rarest gram are compared. The other way round, each text is
/// filed under the rarest of its own grams, which a text that contains it must hold too.
namespace reelcrate {

class KeyIndex {
public:
    /// What is indexed and what is looked for takes at least this many UTF-16 units.
    static constexpr qsizetype shortest = 6;

    explicit KeyIndex(std::vector<QString> keys);

    /// The position of the first key that contains the text.
    std::optional<std::size_t> firstContaining(const QString& text) const;

    /// The position of the first key that the text contains.
    std::optional<std::size_t> firstContainedIn(const QString& text) const;

private:
    using Position = std::uint32_t;

    struct Gram {
        std::array<char16_t, shortest> units;

        friend bool operator==(const Gram&, const Gram&) = default;
        friend bool operator<(const Gram& a, const Gram& b) { return a.units < b.units; }
        friend std::size_t qHash(const Gram& gram, std::size_t seed) {
            return qHashBits(gram.units.data(), sizeof(gram.units), seed);
        }
    };

    /// A part of m_holders, ascending.
    struct Range {
        std::size_t begin = 0;
        std::size_t size = 0;
    };

    static Gram gramAt(QStringView text, qsizetype at);
    void indexHolders();
    void fileUnderRarest();

    std::vector<QString> m_keys;
    std::vector<Position> m_holders;
    QHash<Gram, Range> m_holdersOfGram;
    QHash<Gram, std::vector<Position>> m_filed;
};

}  // namespace reelcrate
