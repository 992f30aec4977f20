#pragma once

#include <QString>
#include <QWidget>
#include <optional>
#include <string>
#include <string_view>

#include "engine/view.h"

namespace lumo::ui {

/// What the deeds of the window work on: the state, and the window that their dialogs belong to.
struct Desk {
    engine::CLumoscriptView& view;
    QWidget& window;
};

/// The place and the words of a file dialog; patterns as "Name|*.a;*.b|All files (*.*)|*.*||".
struct FileQuestion {
    std::string_view title;
    std::string_view filter;
    std::string folder;
    std::string name = {};            // proposed, for saving
    std::string_view extension = {};  // given to a name without one, for saving
};

/// The path that the user picks, native; none if nothing was picked.
std::optional<std::string> AskOpenPath(const Desk& desk, const FileQuestion& question);
/// The same for a file to be written; the dialog asks before an existing one is taken.
std::optional<std::string> AskSavePath(const Desk& desk, const FileQuestion& question);

void Tell(const Desk& desk, std::string_view text, std::string_view caption = "Lumoscript");
bool AskYesNo(const Desk& desk, std::string_view question);

}  // namespace lumo::ui
