#include "ui/icons.h"

#include <QApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>
#include <sstream>

namespace lumo::ui {
namespace {

constexpr double kGrid = 24;  // side of the drawings
constexpr double kPen = 1.7;

/// M x y: move, L x y: line, C six numbers: curve, O x y r: circle, Z: close.
const char* Drawing(Glyph glyph) {
    switch (glyph) {
        case Glyph::New:
            return "M 6 3 L 14 3 L 18 7 L 18 21 L 6 21 Z M 14 3 L 14 7 L 18 7";
        case Glyph::Open:
            return "M 3 19 L 3 5 L 9 5 L 11 8 L 21 8 L 21 19 Z M 3 12 L 21 12";
        case Glyph::Save:
            return "M 4 4 L 17 4 L 20 7 L 20 20 L 4 20 Z M 8 4 L 8 9 L 15 9 L 15 4 "
                   "M 7 20 L 7 13 L 17 13 L 17 20";
        case Glyph::Undo:
            return "M 9 5 L 4 10 L 9 15 M 4 10 L 14 10 C 18 10 20 12 20 15 C 20 18 18 20 14 20 "
                   "L 11 20";
        case Glyph::Cut:
            return "O 7 18 2.6 O 17 18 2.6 M 8.5 15.8 L 16 4 M 15.5 15.8 L 8 4";
        case Glyph::Copy:
            return "M 8 8 L 19 8 L 19 21 L 8 21 Z M 5 16 L 5 4 L 15 4";
        case Glyph::Paste:
            return "M 9 5 L 6 5 L 6 21 L 18 21 L 18 5 L 15 5 M 9 3 L 15 3 L 15 7 L 9 7 Z "
                   "M 9 12 L 15 12 M 9 16 L 15 16";
        case Glyph::Picture:
            return "M 3 5 L 21 5 L 21 19 L 3 19 Z M 3 16 L 9 11 L 13 15 L 16 12 L 21 16 "
                   "O 15.5 9 1.4";
        case Glyph::Reload:
            return "M 19 12 C 19 16 16 19 12 19 C 8 19 5 16 5 12 C 5 8 8 5 12 5 "
                   "C 15 5 17.5 6.5 19 9 M 19 4 L 19 9 L 14 9";
        case Glyph::TestOne:
            return "M 6 5 L 15 12 L 6 19 Z M 19 5 L 19 19";
        case Glyph::TestAll:
            return "M 4 6 L 11 12 L 4 18 Z M 13 6 L 20 12 L 13 18 Z";
        case Glyph::RunOnSample:
            return "M 3 5 L 21 5 L 21 19 L 3 19 Z M 10 9 L 15 12 L 10 15 Z";
        case Glyph::Run:
            return "O 12 12 9 M 10 8 L 16 12 L 10 16 Z";
        case Glyph::Stop:
            return "O 12 12 9 M 9 9 L 15 9 L 15 15 L 9 15 Z";
    }
    return "";
}

QPainterPath PathOf(Glyph glyph) {
    QPainterPath path;
    std::istringstream words(Drawing(glyph));
    words.imbue(std::locale::classic());
    char letter = 0;
    const auto point = [&words] {
        double x = 0, y = 0;
        words >> x >> y;
        return QPointF(x, y);
    };
    while (words >> letter) {
        if (letter == 'M') path.moveTo(point());
        if (letter == 'L') path.lineTo(point());
        if (letter == 'Z') path.closeSubpath();
        if (letter == 'C') {
            const QPointF first = point(), second = point(), end = point();
            path.cubicTo(first, second, end);
        }
        if (letter == 'O') {
            const QPointF centre = point();
            double radius = 0;
            words >> radius;
            path.addEllipse(centre, radius, radius);
        }
    }
    return path;
}

class GlyphEngine : public QIconEngine {
  public:
    explicit GlyphEngine(Glyph glyph) : path_(PathOf(glyph)) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        const auto group = mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->translate(rect.topLeft());
        painter->scale(rect.width() / kGrid, rect.height() / kGrid);
        painter->setPen(QPen(QApplication::palette().color(group, QPalette::ButtonText), kPen,
                             Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter->setBrush(Qt::NoBrush);
        painter->drawPath(path_);
        painter->restore();
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap drawn(size);
        drawn.fill(Qt::transparent);
        QPainter painter(&drawn);
        paint(&painter, QRect(QPoint(0, 0), size), mode, state);
        return drawn;
    }
    QIconEngine* clone() const override { return new GlyphEngine(*this); }

  private:
    QPainterPath path_;
};

}  // namespace

QIcon GlyphIcon(Glyph glyph) {
    return QIcon(new GlyphEngine(glyph));
}

}  // namespace lumo::ui
