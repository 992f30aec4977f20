#pragma once

#include <QGroupBox>
#include <array>

#include "ui/elided_label.h"

namespace lumo::ui {

/// What the selected command will do, in nine lines.
class ParameterPanel : public QGroupBox {
    Q_OBJECT

  public:
    static constexpr int kLines = 9;

    explicit ParameterPanel(QWidget* parent);

    /// Lines ended by line feeds; those behind the ninth follow it on its line.
    void SetText(const QString& text);
    /// The lines as they are shown, without empty ones at the end.
    QString Text() const;

  protected:
    void changeEvent(QEvent* event) override;

  private:
    void LimitLines();

    std::array<ElidedLabel*, kLines> lines_{};
};

}  // namespace lumo::ui
