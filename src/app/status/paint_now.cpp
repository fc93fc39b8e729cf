#include "app/status/paint_now.hpp"

#include <QBackingStore>
#include <QGuiApplication>
#include <QPainter>
#include <QRegion>
#include <QWidget>
#include <QtGui/qguiapplication_platform.h>
#include <qpa/qplatformnativeinterface.h>

#include <wayland-client-core.h>
#include <xcb/xcb.h>

namespace perchftp::app {

namespace {

// Both connections keep requests in a buffer that only the event loop empties.
void sendPaintingToDisplay()
{
    if (!qGuiApp) {
        return;
    }
    auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (xcb_connection_t* connection = x11 ? x11->connection() : nullptr) {
        xcb_flush(connection);
        return;
    }
    // Qt 6.4 names the Wayland display only through its platform interface.
    if (QGuiApplication::platformName().startsWith(QLatin1String("wayland"))) {
        QPlatformNativeInterface* native = QGuiApplication::platformNativeInterface();
        auto* display = native ? static_cast<wl_display*>(native->nativeResourceForIntegration("wl_display")) : nullptr;
        if (display) {
            wl_display_flush(display);
        }
    }
}

} // namespace

void paintWindowAreaNow(QWidget* window, QRect const& area)
{
    if (!window || !window->isWindow() || !window->isVisible()) {
        return;
    }
    QBackingStore* store = window->backingStore();
    QRegion const region = QRegion(area).intersected(window->rect());
    // Before the window's first expose the store has no buffer yet; the expose paints it anyway.
    if (!store || store->size().isEmpty() || region.isEmpty()) {
        return;
    }
    store->beginPaint(region);
    if (QPaintDevice* device = store->paintDevice()) {
        QPainter painter(device);
        window->render(&painter, region.boundingRect().topLeft(), region,
            QWidget::DrawWindowBackground | QWidget::DrawChildren);
    }
    store->endPaint();
    store->flush(region);
    sendPaintingToDisplay();
}

} // namespace perchftp::app
