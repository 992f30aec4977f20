#pragma once

#include <functional>

namespace lumo::test {

/// A program that asks this has no other fonts than those of tests/data/fonts, from its start on,
/// so that text has the same pixels on every machine: "Lumo Test Sans" (book, bold, oblique; Latin,
/// Greek, Cyrillic, Hebrew, Arabic) and "Lumo Test Asian" (twenty letters). Always true.
bool HasTestFonts();

/// Runs `body` on a thread for which there is no font at all.
void WithoutFonts(const std::function<void()>& body);

/// True if the libraries that draw letters are those with which the golden pictures were made.
/// Others may fit letters to pixels a little differently.
bool FontLibrariesOfGoldens();

}  // namespace lumo::test
