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

/// Every format that can be read, where a picture is named.
inline constexpr std::string_view kPictureFilter =
    "Image files "
    "|*.jpg;*.jpeg;*.tif;*.tiff;*.bmp;*.png;*.gif;*.pcx;*.tga;*.psd;*.wmf;*.emf|All files "
    "(*.*)|*.*||";

/// The path that the user picks, native; none if nothing was picked.
std::optional<std::string> AskOpenPath(QWidget& window, const FileQuestion& question);
inline std::optional<std::string> AskOpenPath(const Desk& desk, const FileQuestion& question) {
    return AskOpenPath(desk.window, question);
}
/// The same for a file to be written; the dialog asks before an existing one is taken.
std::optional<std::string> AskSavePath(QWidget& window, const FileQuestion& question);
inline std::optional<std::string> AskSavePath(const Desk& desk, const FileQuestion& question) {
    return AskSavePath(desk.window, question);
}

void Tell(QWidget& window, std::string_view text, std::string_view caption = "Lumoscript");
inline void Tell(const Desk& desk, std::string_view text, std::string_view caption = "Lumoscript") {
    Tell(desk.window, text, caption);
}
bool AskYesNo(const Desk& desk, std::string_view question);

}  // namespace lumo::ui
