#include "app/status/status_popup.hpp"

#include "app/status/back_and_forth_animation.hpp"

#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QProgressBar>
#include <QVBoxLayout>

namespace perchftp::app {

namespace {

constexpr int kSwimEachWayMs = 900;
constexpr qreal kSwimReach = 32;
constexpr int kIconSide = 40;

class PopupFrame : public QWidget {
public:
    explicit PopupFrame(QWidget* parent)
        : QWidget(parent, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint)
    {
        setAttribute(Qt::WA_TranslucentBackground);
        setAttribute(Qt::WA_ShowWithoutActivating);
        setAttribute(Qt::WA_QuitOnClose, false);
        setObjectName(QStringLiteral("statusPopupWindow"));
        setFixedSize(380, 172);
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        QPainterPath path;
        path.addRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), 14, 14);
        painter.fillPath(path, QColor(0x20, 0x22, 0x26, 0xf2));
        painter.setPen(QPen(QColor(255, 255, 255, 40), 1));
        painter.drawPath(path);
    }
};

QLabel* taggedLabel(QWidget* parent, int tag, QString const& text, int pointSize, bool bold)
{
    auto* label = new QLabel(text, parent);
    label->setProperty("tag", tag);
    label->setAlignment(Qt::AlignCenter);
    label->setWordWrap(true);
    QFont font = label->font();
    font.setPointSize(pointSize);
    font.setBold(bold);
    label->setFont(font);
    return label;
}

} // namespace

int widgetTag(QObject const* object)
{
    return object ? object->property("tag").toInt() : 0;
}

PerchSwimmingIcon::PerchSwimmingIcon(QIcon icon, QWidget* parent)
    : QWidget(parent)
    , icon_(std::move(icon))
{
    setProperty("tag", kPopupIconTag);
    setFixedHeight(kIconSide);
    setMinimumWidth(kIconSide + 2 * static_cast<int>(kSwimReach));
}

void PerchSwimmingIcon::startSwimming()
{
    stopSwimming();
    swim_ = startBackAndForth(this, "swimOffset", -kSwimReach, kSwimReach, kSwimEachWayMs, QString::fromLatin1(kSwimName));
}

void PerchSwimmingIcon::stopSwimming()
{
    if (swim_) {
        swim_->stop();
        delete swim_;
    }
}

void PerchSwimmingIcon::setSwimOffset(qreal offset)
{
    swimOffset_ = offset;
    update();
}

void PerchSwimmingIcon::paintEvent(QPaintEvent*)
{
    if (icon_.isNull()) {
        return;
    }
    QPainter painter(this);
    QPointF const centre(width() / 2.0 + swimOffset_, height() / 2.0);
    QRect const target(static_cast<int>(centre.x() - kIconSide / 2.0), static_cast<int>(centre.y() - kIconSide / 2.0),
        kIconSide, kIconSide);
    icon_.paint(&painter, target);
}

QWidget* createConnectionPopupWindow(QIcon const& icon, QString const& title, QWidget* parent)
{
    auto* window = new PopupFrame(parent);
    window->setWindowTitle(title);
    auto* layout = new QVBoxLayout(window);
    layout->setContentsMargins(22, 16, 22, 18);
    layout->setSpacing(8);

    auto* swimmer = new PerchSwimmingIcon(icon, window);
    layout->addWidget(swimmer);
    layout->addWidget(taggedLabel(window, kPopupTitleTag, QStringLiteral("Connecting..."), 12, true));
    auto* message = taggedLabel(window, kPopupMessageTag, QStringLiteral("Preparing session..."), 10, false);
    message->setTextInteractionFlags(Qt::NoTextInteraction);
    layout->addWidget(message);
    auto* progress = new QProgressBar(window);
    progress->setTextVisible(false);
    progress->setFixedHeight(8);
    layout->addWidget(progress);
    return window;
}

} // namespace perchftp::app
