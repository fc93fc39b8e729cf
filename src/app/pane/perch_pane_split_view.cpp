#include "app/pane/perch_pane_split_view.hpp"

#include "app/pane/pane_icons.hpp"

#include <QPainter>
#include <QToolButton>

namespace perchftp::app {

namespace {

QColor const kStripColour = QColor::fromRgbF(0.02f, 0.02f, 0.02f);

QToolButton* makeArrowButton(QWidget* parent, PaneIcon icon, QString const& toolTip)
{
    auto* button = new QToolButton(parent);
    button->setIcon(paneIcon(icon));
    button->setIconSize(QSize(18, 18));
    button->setToolTip(toolTip);
    button->setAccessibleName(toolTip);
    button->setFixedSize(PerchPaneSplitHandle::kArrowWidth, PerchPaneSplitHandle::kArrowHeight);
    button->setCursor(Qt::ArrowCursor);
    // Reached with Tab and pressed with Space; a click leaves the focus in the pane it came from.
    button->setFocusPolicy(Qt::TabFocus);
    return button;
}

} // namespace

PerchPaneSplitHandle::PerchPaneSplitHandle(Qt::Orientation orientation, QSplitter* parent)
    : QSplitterHandle(orientation, parent),
      m_rightArrow(makeArrowButton(this, PaneIcon::ArrowRight, tr("Upload the local selection"))),
      m_leftArrow(makeArrowButton(this, PaneIcon::ArrowLeft, tr("Download the remote selection")))
{
    placeArrows();
}

void PerchPaneSplitHandle::paintEvent(QPaintEvent*)
{
    // Only the edge strips are drawn; the middle shows the window behind the lane.
    QPainter painter(this);
    painter.fillRect(QRect(0, 0, kStripWidth, height()), kStripColour);
    painter.fillRect(QRect(width() - kStripWidth, 0, kStripWidth, height()), kStripColour);
}

void PerchPaneSplitHandle::resizeEvent(QResizeEvent* event)
{
    QSplitterHandle::resizeEvent(event);
    placeArrows();
}

void PerchPaneSplitHandle::placeArrows()
{
    // The right arrow sits at the lane's centre, the left arrow below it.
    int const left = (width() - kArrowWidth) / 2;
    int const rightTop = (height() - kArrowHeight) / 2;
    m_rightArrow->move(left, rightTop);
    m_leftArrow->move(left, rightTop + kArrowHeight + kArrowGap);
}

PerchPaneSplitView::PerchPaneSplitView(QWidget* parent) : QSplitter(Qt::Horizontal, parent)
{
    setHandleWidth(PerchPaneSplitHandle::kThickness);
    setChildrenCollapsible(false);
}

QToolButton* PerchPaneSplitView::rightArrowButton() const
{
    PerchPaneSplitHandle const* lane = laneBetweenPanes();
    return lane != nullptr ? lane->rightArrowButton() : nullptr;
}

QToolButton* PerchPaneSplitView::leftArrowButton() const
{
    PerchPaneSplitHandle const* lane = laneBetweenPanes();
    return lane != nullptr ? lane->leftArrowButton() : nullptr;
}

void PerchPaneSplitView::setPositionOfDivider(int position, int index)
{
    moveSplitter(position, index + 1);
}

QSplitterHandle* PerchPaneSplitView::createHandle()
{
    auto* handle = new PerchPaneSplitHandle(orientation(), this);
    connect(handle->rightArrowButton(), &QToolButton::clicked, this, &PerchPaneSplitView::rightArrowClicked);
    connect(handle->leftArrowButton(), &QToolButton::clicked, this, &PerchPaneSplitView::leftArrowClicked);
    return handle;
}

PerchPaneSplitHandle* PerchPaneSplitView::laneBetweenPanes() const
{
    return count() >= 2 ? qobject_cast<PerchPaneSplitHandle*>(handle(1)) : nullptr;
}

} // namespace perchftp::app
