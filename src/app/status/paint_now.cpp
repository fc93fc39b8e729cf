#include "app/status/paint_now.hpp"

#include <QBackingStore>
#include <QGuiApplication>
#include <QPainter>
#include <QRegion>
#include <QWidget>
#include <QtGui/qguiapplication_platform.h>

#include <xcb/xcb.h>

namespace perchftp::app {

namespace {

void sendPaintingToDisplay()
{
    auto* x11 = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    if (xcb_connection_t* connection = x11 ? x11->connection() : nullptr) {
        xcb_flush(connection);
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
    if (!store || region.isEmpty()) {
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
