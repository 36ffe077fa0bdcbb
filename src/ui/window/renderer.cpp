#include "ui/window/renderer.h"

#include <QDir>
#include <QFileInfo>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QQuickWindow>

#include <algorithm>
#include <array>

namespace reelcrate {

namespace {

using namespace Qt::StringLiterals;

// Of Mesa, of browsers' stand-in for a graphics card, and of a virtual machine without one.
constexpr std::array softwareNames{"llvmpipe"_L1, "softpipe"_L1,    "swrast"_L1,
                                   "software"_L1, "swiftshader"_L1, "basic render"_L1};

/// To look for one costs nothing. To ask OpenGL where there is none would load a compiler of a
/// hundred megabytes.
bool hasGraphicsDevice() {
    const QDir devices(QStringLiteral("/dev/dri"));
    const bool hasRenderNode =
        !devices.entryList({QStringLiteral("renderD*")}, QDir::System).isEmpty();
    return hasRenderNode || QFileInfo::exists(QStringLiteral("/dev/nvidiactl")) ||
           QFileInfo::exists(QStringLiteral("/dev/dxg"));
}

/// Empty where there is no OpenGL.
QString rendererOfOpenGL() {
    QOffscreenSurface surface;
    surface.create();
    QOpenGLContext context;
    if (!context.create() || !context.makeCurrent(&surface))
        return {};
    const auto* name = reinterpret_cast<const char*>(context.functions()->glGetString(GL_RENDERER));
    context.doneCurrent();
    return QString::fromLatin1(name);
}

}  // namespace

bool rendersOnProcessor(const QString& rendererName) {
    return rendererName.isEmpty() ||
           std::any_of(softwareNames.begin(), softwareNames.end(), [&](QLatin1String name) {
               return rendererName.contains(name, Qt::CaseInsensitive);
           });
}

void chooseRenderer() {
    const bool isChosen = qEnvironmentVariableIsSet("QT_QUICK_BACKEND") ||
                          qEnvironmentVariableIsSet("QSG_RHI_BACKEND");
    if (isChosen)
        return;
#ifdef Q_OS_LINUX
    if (!hasGraphicsDevice() || rendersOnProcessor(rendererOfOpenGL()))
        QQuickWindow::setSceneGraphBackend(QStringLiteral("software"));
#endif
}

}  // namespace reelcrate
