#include "Platform/X11/Overlays/RetiredWindows.h"

#include <algorithm>
#include <utility>

void RetiredWindows::add(std::unique_ptr<NativeOverlayWindow> window,
                         std::shared_ptr<const SurfaceContent> content) {
    if (window->isMapped()) m_new.push_back({std::move(window), std::move(content)});
}

std::unique_ptr<NativeOverlayWindow> RetiredWindows::take(const QRect& rect,
                                                          const SurfaceContent& content,
                                                          const OverlayVisual& visual) {
    const auto found = std::find_if(m_new.begin(), m_new.end(), [&](const Entry& entry) {
        return entry.window->rect() == rect && &entry.window->visual() == &visual &&
               entry.content && content.looksLike(*entry.content);
    });
    if (found == m_new.end()) return nullptr;
    auto window = std::move(found->window);
    m_new.erase(found);
    return window;
}

void RetiredWindows::settle(const QList<QRect>& successors, bool isCompositing) {
    auto lingering = std::make_unique<Lingering>();
    for (Entry& entry : std::exchange(m_new, {})) {
        QList<QRect> common;
        for (const QRect& successor : successors) {
            const QRect overlap = successor & entry.window->rect();
            if (!overlap.isEmpty())
                common.append(overlap.translated(-entry.window->rect().topLeft()));
        }
        if (!isCompositing || common.isEmpty()) continue;
        entry.window->setBoundingAreas(common);
        entry.window->setInputPassThrough(true);
        lingering->windows.push_back(std::move(entry.window));
    }
    if (lingering->windows.empty()) return;
    lingering->end = m_scheduler.after(longestAppearance, [this, ended = lingering.get()] {
        std::erase_if(m_lingering, [&](const auto& each) { return each.get() == ended; });
    });
    m_lingering.push_back(std::move(lingering));
}

void RetiredWindows::clear() {
    m_new.clear();
    m_lingering.clear();
}
