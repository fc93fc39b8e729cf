#include "app/dark_appearance.hpp"

#include <QApplication>
#include <QPalette>
#include <QStyleFactory>

namespace perchftp::app {

void applyDarkAppearance(QApplication& application)
{
    application.setStyle(QStyleFactory::create(QStringLiteral("Fusion")));

    QColor const window(0x26, 0x28, 0x2c);
    QColor const base(0x1c, 0x1d, 0x20);
    QColor const text(0xe6, 0xe8, 0xeb);
    QColor const muted(0x8b, 0x90, 0x98);
    QColor const accent(0x33, 0x75, 0xd1);

    QPalette palette;
    palette.setColor(QPalette::Window, window);
    palette.setColor(QPalette::WindowText, text);
    palette.setColor(QPalette::Base, base);
    palette.setColor(QPalette::AlternateBase, QColor(0x2c, 0x2e, 0x33));
    palette.setColor(QPalette::ToolTipBase, QColor(0x33, 0x35, 0x3a));
    palette.setColor(QPalette::ToolTipText, text);
    palette.setColor(QPalette::PlaceholderText, muted);
    palette.setColor(QPalette::Text, text);
    palette.setColor(QPalette::Button, QColor(0x3a, 0x3d, 0x43));
    palette.setColor(QPalette::ButtonText, text);
    palette.setColor(QPalette::BrightText, QColor(0xff, 0x6b, 0x6b));
    palette.setColor(QPalette::Light, QColor(0x4a, 0x4d, 0x54));
    palette.setColor(QPalette::Midlight, QColor(0x40, 0x43, 0x49));
    palette.setColor(QPalette::Mid, QColor(0x30, 0x32, 0x37));
    palette.setColor(QPalette::Dark, QColor(0x18, 0x19, 0x1b));
    palette.setColor(QPalette::Shadow, Qt::black);
    palette.setColor(QPalette::Highlight, accent);
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, QColor(0x5a, 0x9b, 0xf0));
    palette.setColor(QPalette::LinkVisited, QColor(0x9a, 0x7b, 0xe0));
    for (auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, muted);
    }
    palette.setColor(QPalette::Disabled, QPalette::Button, QColor(0x30, 0x32, 0x37));
    palette.setColor(QPalette::Disabled, QPalette::Highlight, QColor(0x44, 0x47, 0x4d));
    application.setPalette(palette);
}

} // namespace perchftp::app
