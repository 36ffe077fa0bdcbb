#include "library/key_index.h"

#include <algorithm>
#include <utility>

namespace reelcrate {

KeyIndex::KeyIndex(std::vector<QString> keys) : m_keys(std::move(keys)) {
    indexHolders();
    fileUnderRarest();
}

KeyIndex::Gram KeyIndex::gramAt(QStringView text, qsizetype at) {
    Gram gram;
    std::copy_n(text.utf16() + at, shortest, gram.units.begin());
    return gram;
}

void KeyIndex::indexHolders() {
    std::vector<std::pair<Gram, Position>> held;
    for (std::size_t position = 0; position < m_keys.size(); ++position) {
        const QString& key = m_keys[position];
        for (qsizetype at = 0; at + shortest <= key.size(); ++at)
            held.emplace_back(gramAt(key, at), static_cast<Position>(position));
    }
    std::sort(held.begin(), held.end());
    held.erase(std::unique(held.begin(), held.end()), held.end());

    m_holders.reserve(held.size());
    for (auto begin = held.cbegin(); begin != held.cend();) {
        const std::size_t first = m_holders.size();
        const Gram& gram = begin->first;
        for (; begin != held.cend() && begin->first == gram; ++begin)
            m_holders.push_back(begin->second);
        m_holdersOfGram.insert(gram, {.begin = first, .size = m_holders.size() - first});
    }
}

void KeyIndex::fileUnderRarest() {
    for (std::size_t position = 0; position < m_keys.size(); ++position) {
        const QString& key = m_keys[position];
        Gram rarest{};
        std::size_t fewest = m_keys.size() + 1;
        for (qsizetype at = 0; at + shortest <= key.size(); ++at) {
            const Gram gram = gramAt(key, at);
            const std::size_t holders = m_holdersOfGram.value(gram).size;
            if (holders < fewest) {
                fewest = holders;
                rarest = gram;
            }
        }
        m_filed[rarest].push_back(static_cast<Position>(position));
    }
}

std::optional<std::size_t> KeyIndex::firstContaining(const QString& text) const {
    Range candidates{.begin = 0, .size = m_holders.size() + 1};
    for (qsizetype at = 0; at + shortest <= text.size(); ++at) {
        const Range holders = m_holdersOfGram.value(gramAt(text, at));
        if (holders.size < candidates.size)
            candidates = holders;
        if (candidates.size == 0)
            return std::nullopt;
    }
    if (candidates.size > m_holders.size())
        return std::nullopt;
    for (std::size_t i = candidates.begin; i < candidates.begin + candidates.size; ++i) {
        if (m_keys[m_holders[i]].contains(text))
            return m_holders[i];
    }
    return std::nullopt;
}

std::optional<std::size_t> KeyIndex::firstContainedIn(const QString& text) const {
    std::size_t first = m_keys.size();
    for (qsizetype at = 0; at + shortest <= text.size(); ++at) {
        const auto filed = m_filed.constFind(gramAt(text, at));
        if (filed == m_filed.cend())
            continue;
        for (const Position position : *filed) {
            if (position >= first)
                break;
            if (text.contains(m_keys[position]))
                first = position;
        }
    }
    return first < m_keys.size() ? std::optional(first) : std::nullopt;
}

}  // namespace reelcrate
