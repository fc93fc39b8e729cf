#include "app/protocol_selector.hpp"

#include <QKeyEvent>
#include <QWheelEvent>

namespace perchftp::app {

PerchProtocolSelector::PerchProtocolSelector(QWidget* parent)
    : QComboBox(parent)
{
    setFocusPolicy(Qt::StrongFocus);
}

void PerchProtocolSelector::wheelEvent(QWheelEvent* event)
{
    if (!hasFocus()) {
        event->ignore();
        return;
    }
    QComboBox::wheelEvent(event);
}

void PerchProtocolSelector::keyPressEvent(QKeyEvent* event)
{
    bool const isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isReturn && (event->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier) {
        emit returnPressed();
        event->accept();
        return;
    }
    QComboBox::keyPressEvent(event);
}

} // namespace perchftp::app
