#include "app/status/connect_button.hpp"

#include "app/status/back_and_forth_animation.hpp"

#include <QPainter>
#include <QPainterPath>
#include <QStyleOptionButton>
#include <QStylePainter>

namespace perchftp::app {

namespace {

constexpr qreal kBorderWidth = 1.5;
constexpr qreal kCornerRadius = 8.0;
constexpr int kPulseEachWayMs = 850;

} // namespace

PerchConnectButton::PerchConnectButton(QString const& title, QWidget* parent)
    : QPushButton(title, parent)
{
    setAttribute(Qt::WA_Hover);
    setMinimumHeight(30);
}

void PerchConnectButton::setPrimaryColor(QColor const& color)
{
    primaryColor_ = color;
    update();
}

void PerchConnectButton::restartPulse(QColor const& color)
{
    if (pulse_) {
        pulse_->stop();
        delete pulse_;
    }
    pulseColor_ = color;
    pulse_ = startBackAndForth(this, "borderAlpha", 0.35, 0.95, kPulseEachWayMs, QString::fromLatin1(kPulseName));
}

void PerchConnectButton::setBorderAlpha(qreal alpha)
{
    borderAlpha_ = alpha;
    update();
}

void PerchConnectButton::paintEvent(QPaintEvent*)
{
    QStylePainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QRectF const frame = QRectF(rect()).adjusted(kBorderWidth, kBorderWidth, -kBorderWidth, -kBorderWidth);
    QPainterPath path;
    path.addRoundedRect(frame, kCornerRadius, kCornerRadius);

    QColor fill = primaryColor_.isValid() ? primaryColor_ : palette().color(QPalette::Button);
    fill.setAlphaF(isEnabled() ? (isDown() ? 0.55 : (underMouse() ? 0.42 : 0.32)) : 0.15);
    painter.fillPath(path, fill);

    QColor border = pulseColor_.isValid() ? pulseColor_ : fill;
    border.setAlphaF(borderAlpha_);
    painter.setPen(QPen(border, kBorderWidth));
    painter.drawPath(path);

    QStyleOptionButton option;
    initStyleOption(&option);
    option.palette.setColor(QPalette::ButtonText, Qt::white);
    painter.drawControl(QStyle::CE_PushButtonLabel, option);
}

} // namespace perchftp::app
