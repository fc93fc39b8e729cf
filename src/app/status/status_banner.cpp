#include "app/status/status_banner.hpp"

#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPainterPath>

namespace perchftp::app {

namespace {

struct BannerColours {
    QColor fill;
    QColor border;
    QColor text;
};

BannerColours coloursFor(bool isError)
{
    if (isError) {
        return {QColor(0x4a, 0x1f, 0x22), QColor(0xc9, 0x4b, 0x4b), QColor(0xff, 0xd7, 0xd5)};
    }
    return {QColor(0x1f, 0x33, 0x2a), QColor(0x3f, 0x9a, 0x6a), QColor(0xd9, 0xf5, 0xe5)};
}

} // namespace

PerchStatusBanner::PerchStatusBanner(QWidget* parent)
    : QFrame(parent)
    , label_(new QLabel(this))
{
    setObjectName(QStringLiteral("statusBanner"));
    label_->setObjectName(QStringLiteral("statusLabel"));
    // The banner repeats file names and server answers: never read them as markup.
    label_->setTextFormat(Qt::PlainText);
    label_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label_->setMinimumWidth(0);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(12, 6, 12, 6);
    layout->addWidget(label_, 1);
    setMinimumHeight(32);
    applyPalette(false);
}

void PerchStatusBanner::applyPalette(bool isError)
{
    showsError_ = isError;
    QPalette labelPalette = label_->palette();
    labelPalette.setColor(QPalette::WindowText, coloursFor(isError).text);
    label_->setPalette(labelPalette);
    update();
}

void PerchStatusBanner::paintEvent(QPaintEvent*)
{
    BannerColours const colours = coloursFor(showsError_);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath path;
    path.addRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 8, 8);
    painter.fillPath(path, colours.fill);
    painter.setPen(QPen(colours.border, 1));
    painter.drawPath(path);
}

} // namespace perchftp::app
