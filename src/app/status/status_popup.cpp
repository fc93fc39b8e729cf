#include "app/status/status_popup.hpp"

#include "app/status/back_and_forth_animation.hpp"

#include <QEvent>
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

constexpr QSize kCardSize(380, 172);
constexpr int kShadowReach = 14;
constexpr int kShadowDrop = 3;
constexpr qreal kCornerRadius = 14;

// Floating inside its parent's window it paints its own soft shadow in a margin around the
// card and follows the parent's size to stay centred; as a window of its own it is the card.
class PopupFrame : public QWidget {
public:
    explicit PopupFrame(QWidget* parent)
        : QWidget(parent, parent ? Qt::Widget : Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint)
        , shadowReach_(parent ? kShadowReach : 0)
    {
        setAttribute(Qt::WA_TranslucentBackground);
        setAttribute(Qt::WA_ShowWithoutActivating);
        setAttribute(Qt::WA_QuitOnClose, false);
        setFocusPolicy(Qt::NoFocus);
        setObjectName(QStringLiteral("statusPopupWindow"));
        setFixedSize(kCardSize + QSize(2 * shadowReach_, 2 * shadowReach_));
        if (parent) {
            parent->installEventFilter(this);
        }
    }

    int shadowReach() const { return shadowReach_; }

    void centreInParent()
    {
        if (QWidget* host = parentWidget()) {
            move((host->width() - width()) / 2, (host->height() - height()) / 2);
            raise();
        }
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (watched == parentWidget() && event->type() == QEvent::Resize) {
            centreInParent();
        }
        return false;
    }

    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        QRectF const card = QRectF(rect()).adjusted(shadowReach_, shadowReach_, -shadowReach_, -shadowReach_);
        painter.setPen(Qt::NoPen);
        for (int ring = shadowReach_; ring > 0; --ring) {
            int const alpha = 4 + 3 * (shadowReach_ - ring) / 2;
            painter.setBrush(QColor(0, 0, 0, alpha));
            QRectF const spread = card.adjusted(-ring, -ring + kShadowDrop, ring, ring + kShadowDrop);
            painter.drawRoundedRect(spread, kCornerRadius + ring, kCornerRadius + ring);
        }
        QPainterPath path;
        path.addRoundedRect(card.adjusted(1, 1, -1, -1), kCornerRadius, kCornerRadius);
        painter.fillPath(path, QColor(0x20, 0x22, 0x26, 0xf2));
        painter.setPen(QPen(QColor(255, 255, 255, 40), 1));
        painter.drawPath(path);
    }

private:
    int shadowReach_;
};

QLabel* taggedLabel(QWidget* parent, int tag, QString const& text, int pointSize, bool bold)
{
    auto* label = new QLabel(text, parent);
    label->setProperty("tag", tag);
    // File names and server words are shown as they are, never as markup.
    label->setTextFormat(Qt::PlainText);
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
    int const reach = window->shadowReach();
    layout->setContentsMargins(22 + reach, 16 + reach, 22 + reach, 18 + reach);
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
    window->centreInParent();
    return window;
}

} // namespace perchftp::app
