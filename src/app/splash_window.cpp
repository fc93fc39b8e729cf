#include "app/splash_window.hpp"

#include <QApplication>
#include <QGridLayout>
#include <QGuiApplication>
#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QPropertyAnimation>
#include <QScreen>
#include <QStyle>
#include <QVBoxLayout>

namespace perchftp::app {

namespace {

QSize const kCardSize(420, 240);

// Wayland gives a client no say over where its top-levels go, so a window there can't centre
// itself; an X11 window can.
bool windowSystemPlacesWindows()
{
    return QGuiApplication::platformName().startsWith(QStringLiteral("wayland"));
}

} // namespace

PerchSplashCard::PerchSplashCard(QIcon const& icon, QWidget* parent)
    : QWidget(parent)
{
    setObjectName(QStringLiteral("splashCard"));
    setFixedSize(kCardSize);

    QIcon const shown = icon.isNull() ? QApplication::style()->standardIcon(QStyle::SP_ComputerIcon) : icon;
    auto* iconLabel = new QLabel;
    iconLabel->setObjectName(QStringLiteral("splashIcon"));
    iconLabel->setFixedSize(82, 82);
    iconLabel->setPixmap(shown.pixmap(82, 82));

    auto* caption = new QLabel(QStringLiteral("Modern FTP/SFTP client"));
    caption->setObjectName(QStringLiteral("splashCaption"));
    caption->setAlignment(Qt::AlignCenter);
    QFont font = caption->font();
    font.setPointSize(13);
    caption->setFont(font);

    auto* spinner = new PerchBusySpinner;

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(24, 30, 24, 30);
    layout->setSpacing(14);
    layout->addWidget(iconLabel, 0, Qt::AlignHCenter);
    layout->addWidget(caption);
    layout->addWidget(spinner, 0, Qt::AlignHCenter);
}

void PerchSplashCard::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath path;
    path.addRoundedRect(QRectF(rect()), 16, 16);
    QColor background = QColor::fromRgbF(0.09f, 0.09f, 0.09f);
    background.setAlphaF(0.9f);
    painter.fillPath(path, background);
}

PerchSplashWindow::PerchSplashWindow(QIcon const& icon)
    : QWidget(nullptr, Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::SplashScreen)
    , card_(new PerchSplashCard(icon))
{
    setObjectName(QStringLiteral("splashWindow"));
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_QuitOnClose, false);
    auto* layout = new QGridLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(card_, 0, 0, Qt::AlignCenter);
    resize(kCardSize);
}

void PerchSplashWindow::showCentred()
{
    if (windowSystemPlacesWindows()) {
        // A maximised window fills the work area on every desktop, so the card at its centre is
        // where a centred window would be; clicks pass through the clear rest.
        setWindowFlag(Qt::WindowTransparentForInput);
        showMaximized();
    } else {
        setFixedSize(kCardSize);
        if (QScreen* screen = this->screen()) {
            QRect frame = frameGeometry();
            frame.moveCenter(screen->availableGeometry().center());
            move(frame.topLeft());
        }
        show();
    }
    raise();
}

PerchBusySpinner::PerchBusySpinner(QWidget* parent)
    : QWidget(parent)
{
    setObjectName(QStringLiteral("splashSpinner"));
    setFixedSize(20, 20);
    auto* turn = new QPropertyAnimation(this, "angle", this);
    turn->setStartValue(0);
    turn->setEndValue(360);
    turn->setDuration(900);
    turn->setLoopCount(-1);
    turn->start();
}

void PerchBusySpinner::setAngle(int angle)
{
    angle_ = angle;
    update();
}

void PerchBusySpinner::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QRectF const ring = QRectF(rect()).adjusted(2, 2, -2, -2);
    painter.setPen(QPen(QColor(255, 255, 255, 45), 2.5));
    painter.drawEllipse(ring);
    painter.setPen(QPen(QColor(235, 238, 242), 2.5, Qt::SolidLine, Qt::RoundCap));
    painter.drawArc(ring, (90 - angle_) * 16, -100 * 16);
}

} // namespace perchftp::app
