#pragma once

#include <QElapsedTimer>
#include <QGroupBox>
#include <QTimer>

#include "engine/user_interface.h"

class QLabel;
class QProgressBar;

namespace lumo::ui {

class ElidedLabel;

/// How far a run is: its four counts, a bar, the time that has gone and is still to come, and the
/// status field.
class ProgressPanel : public QGroupBox {
    Q_OBJECT

  public:
    explicit ProgressPanel(QWidget* parent);

    /// Packs everything closer together, for the smallest layout.
    void SetNarrow(bool narrow);

    /// The clock starts, and the counts are those of no image.
    void Begin();
    /// The clock stops; counts and times stay to be read.
    void End();
    void ShowCounts(const engine::RunCounts& counts);
    void SetStatus(const QString& text);
    QString Status() const;

  private:
    void ShowTimes();
    QLabel* AddCount(const QString& caption, int row, int column);

    engine::RunCounts counts_;
    QLabel* total_;
    QLabel* current_;
    QLabel* saved_;
    QLabel* errors_;
    QProgressBar* bar_;
    QLabel* elapsed_;
    QLabel* remaining_;
    QLabel* remainingCaption_;
    ElidedLabel* status_;
    QElapsedTimer clock_;
    QTimer tick_;
};

}  // namespace lumo::ui
