#include "ui/parameter_dialog.h"

#include <QInputDialog>

#include "engine/command.h"
#include "ui/text.h"

namespace lumo::ui {

bool AskParameters(QWidget* parent, engine::CLumoscriptView&, std::string_view name,
                   std::string& params, bool& makeDefault) {
    if (!engine::FindCommand(name)) return false;
    bool ok = false;
    const QString text = QInputDialog::getText(parent, ToQt(name), QStringLiteral("Parameters"),
                                               QLineEdit::Normal, ToQt(params), &ok);
    if (!ok) return false;
    params = FromQt(text);
    makeDefault = false;
    return true;
}

}  // namespace lumo::ui
