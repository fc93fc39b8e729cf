#include "app/status/connection_light.hpp"

#include "app/status/system_colours.hpp"

#include <QPainter>

namespace perchftp::app {

PerchConnectionLight::PerchConnectionLight(QWidget* parent)
    : QWidget(parent)
    , color_(systemRedColor())
{
    setFixedSize(10, 10);
}

void PerchConnectionLight::setColor(QColor const& color)
{
    color_ = color;
    update();
}

void PerchConnectionLight::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color_);
    painter.drawEllipse(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5));
}

} // namespace perchftp::app
