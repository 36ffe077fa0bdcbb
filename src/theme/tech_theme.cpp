#include "theme/tech_theme.h"

namespace reelcrate {

SurfaceShadow TechTheme::techShadow(SurfaceDepth::Value depth) {
    switch (depth) {
        case SurfaceDepth::Low:
            return {reelcrate::black(0.18), 8, 4};
        case SurfaceDepth::Medium:
            return {reelcrate::black(0.28), 14, 9};
        case SurfaceDepth::High:
            break;
    }
    return {reelcrate::black(0.38), 20, 14};
}

SurfaceShadow TechTheme::queueShadow(SurfaceDepth::Value depth) {
    switch (depth) {
        case SurfaceDepth::Low:
            return {reelcrate::black(0.14), 7, 3};
        case SurfaceDepth::Medium:
            return {reelcrate::black(0.22), 12, 7};
        case SurfaceDepth::High:
            break;
    }
    return {reelcrate::black(0.32), 18, 11};
}

void TechTheme::setAnimated(bool animated) {
    if (m_animated == animated)
        return;
    m_animated = animated;
    Q_EMIT animatedChanged();
}

void TechTheme::setKeyboardLeads(bool leads) {
    if (m_keyboardLeads == leads)
        return;
    m_keyboardLeads = leads;
    Q_EMIT keyboardLeadsChanged();
}

}  // namespace reelcrate
