#pragma once

#include <QWidget>

#include "ui/form_layout.h"

class QAction;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace lumo::ui {

class CommandTree;
class ElidedLabel;
class ImageFrame;
class ParameterPanel;
class ProgressPanel;
class ScriptList;

/// All controls of the program, placed in proportion to the form.
class MainForm : public QWidget {
    Q_OBJECT

  public:
    explicit MainForm(QWidget* parent = nullptr);

    QLineEdit* filter;
    CommandTree* tree;
    QPushButton* add;
    ElidedLabel* scriptTitle;
    ScriptList* scriptList;
    QPushButton *swapUp, *swapDown, *edit, *remove;
    QGroupBox* imageGroup;
    ElidedLabel *leftCaption, *rightCaption;
    ImageFrame *leftFrame, *rightFrame;
    QPushButton *open, *reload, *copyToRight, *copyToLeft;
    QPushButton *testOne, *testAll, *saveAs, *runOnSample;
    ParameterPanel* panel;
    ProgressPanel* progress;
    QPushButton* run;

    /// Places all controls; the layout is that for screens of this width.
    void PlaceControls(int screenWidth);

  protected:
    void resizeEvent(QResizeEvent* event) override;

  private:
    QWidget* ControlAt(Place place) const;
    QPushButton* NewButton(const QString& text, const char* hint, const QString& accessibleName);
};

/// The button does what the action does, and is enabled when it is.
void TieToAction(QPushButton* button, QAction* action);

}  // namespace lumo::ui
