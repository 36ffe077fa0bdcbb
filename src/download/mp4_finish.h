#pragma once

#include "library/video_measure.h"

#include <QString>

namespace reelcrate {

class SongMeasurer;

struct Mp4Result {
    QString path;
    QString reason;
};

class Mp4Finisher {
public:
    Mp4Finisher(ShellRunner& shell, const ToolDiscovery& discovery)
        : m_measurer(shell, discovery) {}
    Mp4Result finish(const QString& path) const {
        const auto reason = whyNoWholeVideo(m_measurer.measure(path));
        return reason ? Mp4Result{{}, *reason} : Mp4Result{path, {}};
    }

private:
    VideoMeasurer m_measurer;
};

}  // namespace reelcrate
