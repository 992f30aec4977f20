#include "ui/mnemonics.h"

#include "ui/text.h"

namespace lumo::ui {

Mnemonics::Mnemonics(const QString& taken) {
    for (const QChar letter : taken) taken_.insert(letter.toLower());
}

QString Mnemonics::Mark(const QString& label) {
    for (const bool atWords : {true, false}) {
        for (qsizetype i = 0; i < label.size(); ++i) {
            if (!label[i].isLetterOrNumber()) continue;
            if (atWords && i > 0 && label[i - 1].isLetterOrNumber()) continue;
            const QChar letter = label[i].toLower();
            if (taken_.contains(letter)) continue;
            taken_.insert(letter);
            return Literally(label.left(i)) + QLatin1Char('&') + Literally(label.mid(i));
        }
    }
    return Literally(label);
}

}  // namespace lumo::ui
