#pragma once

#include "animation.h"
#include "overlay.h"

#include <memory>
#include <utility>

namespace controller {

// The animations under way: one on the panel, one that moves a vertex, one that marks touches.
class Animations {
public:
    // Each replaces the one of its kind.
    void setOverlay(std::unique_ptr<Overlay> overlay) { m_overlay = std::move(overlay); }
    void setScreenSaver(std::unique_ptr<Animation> saver) { m_screenSaver = std::move(saver); }
    void setSketch(std::unique_ptr<Animation> sketch) { m_sketch = std::move(sketch); }

    void stop();
    void frameEnded();
    // Whether an animation decides what the panel shows.
    bool decidePicture() const { return m_overlay != nullptr; }

private:
    std::unique_ptr<Overlay> m_overlay;
    std::unique_ptr<Animation> m_screenSaver;
    std::unique_ptr<Animation> m_sketch;
};

} // namespace controller
