#include "ui/theme.h"

#include <QApplication>
#include <QPalette>
#include <QStyle>
#include <QStyleFactory>

namespace lumo::ui {
namespace {

QPalette Colours(QColor window, QColor base, QColor text, QColor button, QColor highlight) {
    QPalette palette(button, window);
    const auto mixed = [&](qreal amount) {
        return QColor::fromRgbF(
            static_cast<float>(text.redF() * amount + window.redF() * (1 - amount)),
            static_cast<float>(text.greenF() * amount + window.greenF() * (1 - amount)),
            static_cast<float>(text.blueF() * amount + window.blueF() * (1 - amount)));
    };
    palette.setColor(QPalette::Window, window);
    palette.setColor(QPalette::WindowText, text);
    palette.setColor(QPalette::Base, base);
    palette.setColor(QPalette::AlternateBase, mixed(0.06));
    palette.setColor(QPalette::Text, text);
    palette.setColor(QPalette::ButtonText, text);
    palette.setColor(QPalette::BrightText, Qt::red);
    palette.setColor(QPalette::ToolTipBase, base);
    palette.setColor(QPalette::ToolTipText, text);
    palette.setColor(QPalette::PlaceholderText, mixed(0.5));
    palette.setColor(QPalette::Highlight, highlight);
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, highlight.lighter(130));
    palette.setColor(QPalette::Mid, mixed(0.25));
    for (const QPalette::ColorRole role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, mixed(0.42));
    palette.setColor(QPalette::Disabled, QPalette::Highlight, mixed(0.25));
    palette.setColor(QPalette::Disabled, QPalette::HighlightedText, mixed(0.7));
    return palette;
}

}  // namespace

void ApplyTheme(Theme theme) {
    // The style and the colours that the desktop gave the program.
    static const QString desktopStyle = QApplication::style()->name();
    static const QPalette desktopPalette = QApplication::palette();
    if (theme == Theme::OfDesktop) {
        QApplication::setStyle(QStyleFactory::create(desktopStyle));
        QApplication::setPalette(desktopPalette);
        return;
    }
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QApplication::setPalette(
        theme == Theme::Dark ? Colours({0x2b, 0x2d, 0x30}, {0x1f, 0x20, 0x23}, {0xe4, 0xe5, 0xe7},
                                       {0x3a, 0x3d, 0x41}, {0x2f, 0x73, 0xc8})
                             : Colours({0xf3, 0xf3, 0xf4}, {0xff, 0xff, 0xff}, {0x1c, 0x1d, 0x1f},
                                       {0xf9, 0xf9, 0xfa}, {0x2a, 0x6f, 0xc4}));
}

}  // namespace lumo::ui
