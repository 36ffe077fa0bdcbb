#include "library/pcm_stream.h"

#include <QtEndian>

namespace reelcrate {

namespace {

constexpr qsizetype shortestHeader = 24;
constexpr quint32 longestHeader = 1 << 20;  // it holds the song's tags
constexpr quint32 highestRate = 1 << 20;
constexpr quint32 mostChannels = 64;
constexpr quint32 sixteenBits = 3;

quint32 headerField(const QByteArray& bytes, qsizetype index) {
    return qFromBigEndian<quint32>(bytes.constData() + 4 * index);
}

}  // namespace

void PcmStream::add(const QByteArray& bytes) {
    if (m_refused)
        return;
    m_rest += bytes;
    if (!m_meter && !readHeader())
        return;
    const qsizetype whole = m_rest.size() - m_rest.size() % m_frameBytes;
    m_samples.resize(static_cast<size_t>(whole / 2));
    qFromBigEndian<qint16>(m_rest.constData(), whole / 2, m_samples.data());
    m_rest.remove(0, whole);
    m_meter->add(m_samples);
    if (m_loudnessMeter)
        m_loudnessMeter->add(m_samples);
    m_print.add(m_samples);
}

/// True once the header is there whole, and taken off the rest.
bool PcmStream::readHeader() {
    if (m_rest.size() < shortestHeader)
        return false;
    const quint32 length = headerField(m_rest, 1);
    const quint32 rate = headerField(m_rest, 4);
    const quint32 channels = headerField(m_rest, 5);
    m_refused = !m_rest.startsWith(".snd") || length < shortestHeader || length > longestHeader ||
                headerField(m_rest, 3) != sixteenBits || rate == 0 || rate > highestRate ||
                channels == 0 || channels > mostChannels;
    if (m_refused || m_rest.size() < static_cast<qsizetype>(length))
        return false;
    m_rest.remove(0, static_cast<qsizetype>(length));
    m_frameBytes = 2 * static_cast<qsizetype>(channels);
    m_meter.emplace(static_cast<int>(rate), static_cast<int>(channels));
    if (m_loudness == MeasureLoudness::yes)
        m_loudnessMeter.emplace(static_cast<int>(rate), static_cast<int>(channels));
    return true;
}

}  // namespace reelcrate
