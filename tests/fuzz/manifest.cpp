#include "fuzz.h"
#include "update/update_manifest.h"

using namespace reelcrate;
using namespace reelcrate::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const auto manifest = AppUpdateManifest::decode(
        QByteArray(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)));
    if (!manifest)
        return 0;
    const QString own = QStringLiteral("4.8");
    const qint64 build = manifest->latestBuild;

    const UpdateOutcome outcome = judgeUpdate(*manifest, own, 48);
    require(outcome.wasChecked, "a judgement is a check");
    const QLatin1String beginning(build < 48    ? "This test build is newer"
                                  : build == 48 ? "You are up to date"
                                                : "Update available");
    require(outcome.message.startsWith(beginning), "builds alone are compared");
    require(outcome.message.contains(QString::number(build)), "the build is told as it is");

    AppUpdateManifest elsewhere = *manifest;
    if (elsewhere.downloadURL && !elsewhere.downloadURL->isEmpty())
        elsewhere.downloadURL = QStringLiteral("file:///etc/passwd");
    require(judgeUpdate(elsewhere, own, 48) == outcome, "the address is neither shown nor opened");
    return 0;
}
