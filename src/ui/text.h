#pragma once

// Texts between the core, whose texts are bytes, and Qt. Bytes are shown as UTF-8; what is no UTF-8
// shows as U+FFFD.

#include <QString>
#include <string>
#include <string_view>

namespace lumo::ui {

inline QString ToQt(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}
inline std::string FromQt(const QString& text) {
    return text.toStdString();
}

/// For a text of a button or an item that must not take "&" for a mnemonic.
inline QString Literally(QString text) {
    return text.replace(QLatin1Char('&'), QLatin1String("&&"));
}

/// The visible text of an action or a button: without its mnemonic.
QString VisibleText(QString text);

/// "Script file (*.whs)|*.whs|All files (*.*)|*.*||" in the form of Qt's file dialogs. Patterns
/// match in any case of letters.
QString FileFilter(std::string_view pattern);

}  // namespace lumo::ui
