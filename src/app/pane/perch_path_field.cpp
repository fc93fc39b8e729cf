#include "app/pane/perch_path_field.hpp"

#include "app/pane/perch_file_pane_controller.hpp"

#include <QApplication>
#include <QMouseEvent>

namespace perchftp::app {

PerchPathField::PerchPathField(QWidget* parent) : QLineEdit(parent) {}

void PerchPathField::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && m_doubleClickTarget && m_doubleClickAction) {
        m_doubleClickAction(this);
        event->accept();
        return;
    }
    QLineEdit::mouseDoubleClickEvent(event);
}

PerchPathFieldClickMonitor::PerchPathFieldClickMonitor(PerchFilePaneController* pane)
    : QObject(pane), m_pane(pane)
{
    qApp->installEventFilter(this);
}

PerchPathFieldClickMonitor::~PerchPathFieldClickMonitor()
{
    if (qApp != nullptr) {
        qApp->removeEventFilter(this);
    }
}

bool PerchPathFieldClickMonitor::eventFilter(QObject* watched, QEvent* event)
{
    // The pane's widgets go with its view, which a window may destroy before the pane.
    if (event->type() != QEvent::MouseButtonDblClick || !m_pane || m_pane->view() == nullptr) {
        return false;
    }
    auto const* mouse = static_cast<QMouseEvent*>(event);
    auto const* receiver = qobject_cast<QWidget*>(watched);
    PerchPathField const* field = m_pane->pathField();
    if (mouse->button() != Qt::LeftButton || receiver == nullptr || field == nullptr || field->window() == nullptr
        || receiver->window() != field->window()) {
        return false;
    }
    QPoint const inField = field->mapFromGlobal(mouse->globalPosition().toPoint());
    if (!field->isVisible() || !field->rect().contains(inField)) {
        return false;
    }
    m_pane->pathFieldDoubleClicked();
    return true;
}

} // namespace perchftp::app
