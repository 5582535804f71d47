#include "vncserver.h"

#include <algorithm>
#include <cstring>
#include <rfb/rfb.h>
#include <stdexcept>
#include <utility>
namespace panel {

namespace {

constexpr int workMs = 10;
constexpr int viewerPatienceMs = 3000; // with a viewer that neither takes nor gives what is due
constexpr int leftButton = 1;
constexpr int bitsOfColour = 8;
constexpr int colours = 3;
constexpr int bytesOfPixel = 4;

// The smallest rectangle with all that differs; null if nothing does.
QRect changedPart(const QImage& before, const QImage& after) {
    int top = 0;
    int bottom = after.height() - 1;
    const auto lineBytes = static_cast<std::size_t>(after.width()) * bytesOfPixel;
    const auto same = [&](int y) {
        return std::memcmp(before.constScanLine(y), after.constScanLine(y), lineBytes) == 0;
    };
    while (top <= bottom && same(top)) {
        ++top;
    }
    while (bottom > top && same(bottom)) {
        --bottom;
    }
    return {0, top, after.width(), bottom - top + 1};
}

} // namespace

// The library calls back with this at hand.
struct VncServer::Screen {
    VncServer& server;
    QImage picture; // what the viewers see
    QByteArray password;
    char* passwords[2] = {nullptr, nullptr};
    rfbScreenInfoPtr info;

    Screen(VncServer& owner, QByteArray title, const QImage& first);
    ~Screen();
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;

    static Screen& of(rfbClientPtr viewer) {
        return *static_cast<Screen*>(viewer->screen->screenData);
    }
    static void pointed(int buttons, int x, int y, rfbClientPtr viewer) {
        of(viewer).server.point(viewer, (buttons & leftButton) != 0, {x, y});
        rfbDefaultPtrAddEvent(buttons, x, y, viewer);
    }
    static void left(rfbClientPtr viewer) { of(viewer).server.gone(viewer); }
    static rfbNewClientAction came(rfbClientPtr viewer) {
        viewer->clientGoneHook = left;
        return RFB_CLIENT_ACCEPT;
    }

private:
    const QByteArray m_title;
};

VncServer::Screen::Screen(VncServer& owner, QByteArray title, const QImage& first)
    : server(owner), picture(first.convertToFormat(QImage::Format_RGB32)),
      m_title(std::move(title)) {
    rfbLogEnable(FALSE); // what matters is said by ourselves
    info = rfbGetScreen(nullptr, nullptr, picture.width(), picture.height(), bitsOfColour, colours,
                        bytesOfPixel);
    if (info == nullptr) {
        throw std::runtime_error("no memory for a VNC server");
    }
    // As QImage's Format_RGB32.
    info->serverFormat.redShift = 16;
    info->serverFormat.greenShift = 8;
    info->serverFormat.blueShift = 0;
    info->frameBuffer = reinterpret_cast<char*>(picture.bits());
    info->desktopName = m_title.constData();
    info->screenData = this;
    info->cursor = nullptr; // the panel has none
    info->alwaysShared = TRUE;
    info->maxClientWait = viewerPatienceMs;
    info->ptrAddEvent = pointed;
    info->newClientHook = came;
    // It gets its connections from us, and listens on no port of its own.
    info->port = 0;
    info->ipv6port = 0;
    info->autoPort = FALSE;
    rfbInitServer(info);
}

VncServer::Screen::~Screen() {
    rfbShutdownServer(info, TRUE);
    rfbScreenCleanup(info);
}

VncServer::VncServer(const QString& title, const QImage& first, Look look)
    : m_look(std::move(look)), m_screen(std::make_unique<Screen>(*this, title.toUtf8(), first)),
      m_timer(this) {
    m_timer.setInterval(workMs);
    connect(&m_timer, &QTimer::timeout, this, &VncServer::work);
}

VncServer::~VncServer() = default;

bool VncServer::isAvailable() {
    return true;
}

void VncServer::setPassword(const QByteArray& password) {
    m_screen->password = password;
    m_screen->passwords[0] = m_screen->password.data();
    m_screen->info->authPasswdData = password.isEmpty() ? nullptr : m_screen->passwords;
    m_screen->info->passwordCheck = password.isEmpty() ? nullptr : rfbCheckPasswordByList;
}

void VncServer::incomingConnection(qintptr socket) {
    if (rfbNewClient(m_screen->info, static_cast<int>(socket)) == nullptr) {
        return; // it has closed the connection
    }
    ++m_viewers;
    m_timer.start();
}

// Somebody looks on: what they have sent, and what there is to see.
void VncServer::work() {
    if (const auto picture = m_look()) {
        show(*picture);
    }
    rfbProcessEvents(m_screen->info, 0);
    if (m_viewers == 0) {
        m_timer.stop();
    }
}

void VncServer::show(const QImage& picture) {
    const QRect changed = changedPart(m_screen->picture, picture);
    if (changed.isEmpty()) {
        return;
    }
    std::memcpy(m_screen->picture.bits(), picture.constBits(),
                static_cast<std::size_t>(picture.sizeInBytes()));
    rfbMarkRectAsModified(m_screen->info, changed.left(), changed.top(), changed.right() + 1,
                          changed.bottom() + 1);
}

// There is one finger: while a viewer's is down, those of others do not count.
void VncServer::point(const void* viewer, bool down, QPoint pixel) {
    if (m_finger != nullptr && m_finger != viewer) {
        return;
    }
    const QRect inside = m_screen->picture.rect();
    if (down) {
        m_finger = viewer;
        emit touched(
            {std::clamp(pixel.x(), 0, inside.right()), std::clamp(pixel.y(), 0, inside.bottom())});
    } else if (m_finger != nullptr) {
        m_finger = nullptr;
        emit released();
    }
}

void VncServer::gone(const void* viewer) {
    if (m_finger == viewer) {
        m_finger = nullptr;
        emit released();
    }
    --m_viewers;
}

} // namespace panel
