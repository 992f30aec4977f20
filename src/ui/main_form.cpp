#include "ui/main_form.h"

#include <QAction>
#include <QGroupBox>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>

#include "ui/command_tree.h"
#include "ui/elided_label.h"
#include "ui/hints.h"
#include "ui/image_frame.h"
#include "ui/parameter_panel.h"
#include "ui/progress_panel.h"
#include "ui/script_list.h"

namespace lumo::ui {
namespace {

constexpr double kSmallFont = 0.85;  // of the usual one, in the smallest layout

void Describe(QWidget* control, const char* hint, const QString& accessibleName) {
    const QString text = QString::fromUtf8(hint);
    control->setToolTip(text);
    control->setStatusTip(text);
    control->setAccessibleDescription(text);
    control->setAccessibleName(accessibleName);
}

}  // namespace

QPushButton* MainForm::NewButton(const QString& text, const char* hint,
                                 const QString& accessibleName) {
    auto* button = new QPushButton(text, this);
    button->setAutoDefault(false);
    button->setMinimumSize(1, 1);
    Describe(button, hint, accessibleName);
    return button;
}

MainForm::MainForm(QWidget* parent) : QWidget(parent) {
    // In the order in which Tab visits them; groups first, since they lie below their controls.
    imageGroup = new QGroupBox(QStringLiteral("Single image"), this);
    Describe(imageGroup, hints::kImageGroup, QStringLiteral("Single image"));
    panel = new ParameterPanel(this);
    Describe(panel, hints::kPanel, QStringLiteral("Selected Cmd info"));
    progress = new ProgressPanel(this);
    progress->setAccessibleName(QStringLiteral("Progress"));

    filter = new QLineEdit(this);
    filter->setPlaceholderText(QStringLiteral("Filter commands"));
    filter->setClearButtonEnabled(true);
    filter->setAcceptDrops(false);  // a file that is dropped here is for the window, as anywhere
    Describe(filter, hints::kFilter, QStringLiteral("Filter commands"));
    tree = new CommandTree(this);
    Describe(tree, hints::kTree, QStringLiteral("Commands"));
    add = NewButton(QStringLiteral(">>"), hints::kAdd, QStringLiteral("Add to batch script"));

    scriptTitle = new ElidedLabel(this);
    scriptTitle->setText(QStringLiteral("Batch script"));
    scriptList = new ScriptList(this);
    Describe(scriptList, hints::kScriptList, QStringLiteral("Batch script"));
    swapUp = NewButton(QStringLiteral("Swap &Up"), hints::kSwapUp, QStringLiteral("Swap Up"));
    edit = NewButton(QStringLiteral("Edit Cm&d..."), hints::kEdit, QStringLiteral("Edit command"));
    swapDown =
        NewButton(QStringLiteral("Swap Do&wn"), hints::kSwapDown, QStringLiteral("Swap Down"));
    remove = NewButton(QStringLiteral("De&lete"), hints::kDelete, QStringLiteral("Delete"));

    leftCaption = new ElidedLabel(this);
    rightCaption = new ElidedLabel(this);
    leftFrame = new ImageFrame(this);
    Describe(leftFrame, hints::kLeftFrame, QStringLiteral("Sample image as opened"));
    rightFrame = new ImageFrame(this);
    Describe(rightFrame, hints::kRightFrame, QStringLiteral("Sample image as worked on"));
    open = NewButton(QStringLiteral("Ope&n..."), hints::kOpen, QStringLiteral("Open image"));
    reload = NewButton(QStringLiteral("&Reload >>"), hints::kReload,
                       QStringLiteral("Reload left image"));
    copyToRight = NewButton(QStringLiteral(">>"), hints::kCopyToRight,
                            QStringLiteral("Copy left image to the right"));
    copyToLeft = NewButton(QStringLiteral("<<"), hints::kCopyToLeft,
                           QStringLiteral("Copy right image to the left"));
    testOne = NewButton(QStringLiteral("Test (&1)"), hints::kTestOne,
                        QStringLiteral("Test selected command"));
    testAll = NewButton(QStringLiteral("Test &All"), hints::kTestAll,
                        QStringLiteral("Test all commands"));
    saveAs = NewButton(QStringLiteral("SaveAs..."), hints::kSaveAs,
                       QStringLiteral("Save right image as"));
    runOnSample = NewButton(QStringLiteral("Run scri&pt..."), hints::kRunOnSample,
                            QStringLiteral("Run script on the sample image"));
    run = NewButton(QStringLiteral("Run &Batch script ..."), hints::kRun,
                    QStringLiteral("Run Batch script"));
    QFont bold = run->font();
    bold.setBold(true);
    run->setFont(bold);
    setMinimumSize(480, 300);
}

QWidget* MainForm::ControlAt(Place place) const {
    switch (place) {
        case Place::Filter:
            return filter;
        case Place::Tree:
            return tree;
        case Place::Add:
            return add;
        case Place::ScriptTitle:
            return scriptTitle;
        case Place::ScriptList:
            return scriptList;
        case Place::SwapUp:
            return swapUp;
        case Place::SwapDown:
            return swapDown;
        case Place::Edit:
            return edit;
        case Place::Delete:
            return remove;
        case Place::ImageGroup:
            return imageGroup;
        case Place::LeftCaption:
            return leftCaption;
        case Place::RightCaption:
            return rightCaption;
        case Place::LeftFrame:
            return leftFrame;
        case Place::RightFrame:
            return rightFrame;
        case Place::Open:
            return open;
        case Place::Reload:
            return reload;
        case Place::CopyToRight:
            return copyToRight;
        case Place::CopyToLeft:
            return copyToLeft;
        case Place::TestOne:
            return testOne;
        case Place::TestAll:
            return testAll;
        case Place::SaveAs:
            return saveAs;
        case Place::RunOnSample:
            return runOnSample;
        case Place::Panel:
            return panel;
        case Place::Progress:
            return progress;
        case Place::Run:
            return run;
        case Place::Count:
            break;
    }
    return nullptr;
}

void MainForm::PlaceControls(int screenWidth) {
    const FormLayout& layout = LayoutForScreen(screenWidth);
    const bool small = &layout == &LayoutForScreen(0);
    QFont font = window()->font();
    if (small) font.setPointSizeF(font.pointSizeF() * kSmallFont);
    if (font != this->font()) setFont(font);
    progress->SetNarrow(small);
    for (int i = 0; i < static_cast<int>(Place::Count); ++i) {
        const auto place = static_cast<Place>(i);
        ControlAt(place)->setGeometry(PlaceOf(layout, place, size()));
    }
}

void MainForm::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    PlaceControls(screen()->geometry().width());
}

void TieToAction(QPushButton* button, QAction* action) {
    QObject::connect(button, &QPushButton::clicked, action, &QAction::trigger);
    const auto follow = [button, action] { button->setEnabled(action->isEnabled()); };
    QObject::connect(action, &QAction::changed, button, follow);
    follow();
}

}  // namespace lumo::ui
