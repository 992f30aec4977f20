#include "ui/insert_info.h"

#include <QMenu>

#include "io/parse_line.h"
#include "ui/text.h"

namespace lumo::ui {

QToolButton* MakeInsertInfo(const std::function<void(const QString& macro)>& insert) {
    auto* button = new QToolButton;
    button->setText(QStringLiteral("Insert info"));
    button->setToolTip(QStringLiteral("Puts a name, date, size or counter into the text"));
    button->setPopupMode(QToolButton::InstantPopup);
    auto* menu = new QMenu(button);
    for (const io::OfferedMacro& offered : io::OfferedMacros()) {
        const QString macro = ToQt(offered.macro);
        QAction* const action = menu->addAction(macro + QLatin1Char('\t') + ToQt(offered.meaning));
        QObject::connect(action, &QAction::triggered, button, [insert, macro] { insert(macro); });
    }
    button->setMenu(menu);
    return button;
}

}  // namespace lumo::ui
