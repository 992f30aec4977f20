#include "ui/theme.h"

#include <QApplication>
#include <QPainter>
#include <QPalette>
#include <QProxyStyle>
#include <QStyleFactory>
#include <QStyleOption>

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

/// Buttons of dialogs without the small pictures that look alike in every theme; and, on a dark
/// ground, outlines that can be seen: those of Fusion are darker than the ground.
class CalmStyle : public QProxyStyle {
  public:
    CalmStyle(const QString& base, bool outlines)
        : QProxyStyle(QStyleFactory::create(base)), outlines_(outlines) {}

    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* data) const override {
        if (hint == SH_DialogButtonBox_ButtonsHaveIcons) return 0;
        return QProxyStyle::styleHint(hint, option, widget, data);
    }

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override {
        QProxyStyle::drawPrimitive(element, option, painter, widget);
        if (!outlines_ || option->state.testFlag(State_HasFocus)) return;
        const QRectF frame = QRectF(option->rect).adjusted(0.5, 0.5, -0.5, -0.5);
        if (element == PE_IndicatorCheckBox || element == PE_FrameLineEdit) {
            Begin(*option, *painter);
            painter->drawRoundedRect(frame, 2, 2);
            painter->restore();
        } else if (element == PE_IndicatorRadioButton) {
            Begin(*option, *painter);
            painter->drawEllipse(frame);
            painter->restore();
        }
    }

    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                            QPainter* painter, const QWidget* widget) const override {
        QProxyStyle::drawComplexControl(control, option, painter, widget);
        if (!outlines_ || control != CC_SpinBox || option->state.testFlag(State_HasFocus)) return;
        Begin(*option, *painter);
        painter->drawRoundedRect(QRectF(option->rect).adjusted(0.5, 0.5, -0.5, -0.5), 2, 2);
        painter->restore();
    }

  private:
    static void Begin(const QStyleOption& option, QPainter& painter) {
        painter.save();
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setBrush(Qt::NoBrush);
        painter.setPen(option.palette.color(QPalette::Mid));
    }

    bool outlines_;
};

}  // namespace

void ApplyTheme(Theme theme) {
    // The style and the colours that the desktop gave the program.
    static const QString desktopStyle = QApplication::style()->name();
    static const QPalette desktopPalette = QApplication::palette();
    if (theme == Theme::OfDesktop) {
        QApplication::setStyle(new CalmStyle(desktopStyle, false));
        QApplication::setPalette(desktopPalette);
        return;
    }
    QApplication::setStyle(new CalmStyle(QStringLiteral("Fusion"), theme == Theme::Dark));
    QApplication::setPalette(
        theme == Theme::Dark ? Colours({0x2b, 0x2d, 0x30}, {0x1f, 0x20, 0x23}, {0xe4, 0xe5, 0xe7},
                                       {0x3a, 0x3d, 0x41}, {0x2f, 0x73, 0xc8})
                             : Colours({0xf3, 0xf3, 0xf4}, {0xff, 0xff, 0xff}, {0x1c, 0x1d, 0x1f},
                                       {0xf9, 0xf9, 0xfa}, {0x2a, 0x6f, 0xc4}));
}

}  // namespace lumo::ui
