#pragma once

#include <QSet>
#include <QString>

namespace lumo::ui {

/// Deals out the underlined letters of a dialog, each once.
class Mnemonics {
  public:
    /// `taken` are letters that buttons have.
    explicit Mnemonics(const QString& taken);

    /// The label, its own "&" made literal, with a mnemonic if a letter is left: the first of a
    /// word if possible.
    QString Mark(const QString& label);

  private:
    QSet<QChar> taken_;
};

}  // namespace lumo::ui
