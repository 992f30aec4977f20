#include "ui/actions.h"

#include <QKeySequence>
#include <QWidget>
#include <utility>

#include "ui/icons.h"
#include "ui/text.h"

namespace lumo::ui {
namespace {

constexpr char kDeedProperty[] = "hasDeed";
constexpr char kHintProperty[] = "hint";

struct Row {
    Act act;
    const char* text;  // with its mnemonic
    const char* keys;  // in the form of QKeySequence; empty: none
    const char* hint;
};

constexpr Row kRows[] = {
    {Act::NewScript, "&New script", "Ctrl+N", "Begins a new script."},
    {Act::OpenScript, "&Open script...", "Ctrl+O", "Opens a script file."},
    {Act::SaveScript, "&Save script", "Ctrl+S", "Saves the script under its name."},
    {Act::SaveScriptAs, "Save&As...", "Ctrl+Shift+S", "Saves the script under another name."},
    {Act::LoadSubroutine, "&Load subroutine..", "", "Appends a subroutine file to the script."},
    {Act::SaveSubroutineAs, "Save&As...", "", "Saves the script as a subroutine file."},
    {Act::EditSubroutine, "&Open subroutine (to edit)...", "",
     "Opens a subroutine file as it is, without the markers of the image loop."},
    {Act::OpenSubroutineAsScript, "Open subroutine (as a s&cript)...", "",
     "Opens a subroutine file and gives it the markers of the image loop."},
    {Act::NewSubroutine, "&New subroutine", "", "Begins a new subroutine."},
    {Act::Exit, "E&xit", "Ctrl+Q", "Ends the program."},
    {Act::Undo, "&Undo", "Ctrl+Z", "Takes back the last change of the script."},
    {Act::Cut, "Cu&t (cmd to clipboard)", "Ctrl+X",
     "Puts the selected command on the clipboard and removes it."},
    {Act::Copy, "&Copy (cmd to clipboard)", "Ctrl+C",
     "Puts the selected command on the clipboard."},
    {Act::Paste, "&Paste (cmd from clipboard)", "Ctrl+V",
     "Inserts the command on the clipboard below the selected one."},
    {Act::EditCommand, "&Edit Cmd...", "F2",
     "Opens dialog window to edit parameters of currently selected Batch script cmd."},
    {Act::DeleteCommand, "&Delete", "Del", "Removes selected cmd from Batch script."},
    {Act::SwapUp, "S&wap Up", "Ctrl+Up",
     "Swaps positions of currently selected Batch cmd and one above."},
    {Act::SwapDown, "Swap Dow&n", "Ctrl+Down",
     "Swaps positions of currently selected Batch cmd and one below."},
    {Act::ImageList, "&Image list...", "",
     "Edits an Image list: that of the Script, or another one."},
    {Act::BatchLog, "&Batch.log", "Ctrl+L", "Shows the log of the last run."},
    {Act::ErrorLog, "Err&or.log", "Ctrl+Shift+L", "Shows the errors of the last run."},
    {Act::LogFile, "Lo&g file...", "", "Shows a log file."},
    {Act::ToolBar, "&Toolbar", "", "Shows or hides the toolbar."},
    {Act::StatusBar, "&Status Bar", "", "Shows or hides the status bar."},
    {Act::ScriptAsText, "S&cript (as text file)...", "", "Shows a script file as text."},
    {Act::ListAsText, "&Image list (as text file)...", "", "Shows an Image list as text."},
    {Act::FullScreenLeft, "Full screen (&left frame)", "Shift+F11",
     "Shows the image of the left frame on the whole screen."},
    {Act::FullScreenRight, "Full screen (&right frame)", "F11",
     "Shows the image of the right frame on the whole screen."},
    {Act::ThemeOfDesktop, "As the &desktop", "", "Takes the colours of the desktop."},
    {Act::ThemeLight, "&Light", "", "Dark texts on a light ground."},
    {Act::ThemeDark, "Da&rk", "", "Light texts on a dark ground."},
    {Act::FindCommand, "&Find command", "Ctrl+F", "Goes to the filter box of the commands."},
    {Act::AddSelection, "&Add selection to batch script...>>", "Ctrl+Return",
     "Places selected script cmd in left list box into Batch script in right list box (below "
     "current selection)."},
    {Act::RunBatch, "&Run Batch script...", "F5", "Begins full execution of current Batch script."},
    {Act::OpenImage, "&Open...", "Ctrl+I",
     "Opens single image file and displays in left and right frames."},
    {Act::ReloadImage, "&Reload", "Ctrl+R", "Copies originally opened image into left frame."},
    {Act::SaveRightImage, "&SaveAs (right frame image)...", "Ctrl+E",
     "Opens a file dialog to save the image in right frame."},
    {Act::SaveLeftImage, "SaveAs (&left frame image)...", "",
     "Opens a file dialog to save the image in left frame."},
    {Act::SetDefaultImage, "Set as &default on startup", "",
     "Makes this image the one that the program opens when it starts."},
    {Act::CopyToRight, "Copy to ri&ght frame", "Alt+Right",
     "Copies image in left frame into right frame."},
    {Act::CopyToLeft, "Copy to l&eft frame", "Alt+Left",
     "Copies image in right frame into left frame"},
    {Act::TestOne, "&Test (1)", "F6",
     "Executes the (1) selected Batch script cmd on right frame image (except Input/Output and "
     "execution logic commands)."},
    {Act::TestAll, "Test &All", "F7",
     "Executes all Batch script commands (except Input/Output cmds) on current right frame "
     "image."},
    {Act::RunOnSample, "Ru&n script...", "F8",
     "Reopens single image file and executes batch script on it only. Output commamds are not "
     "executed."},
    {Act::ImageInfo, "&Image info", "Ctrl+Shift+I", "Tells size and colours of the image."},
    {Act::FileProperties, "File &properties", "Alt+Return", "Tells of the file of the image."},
    {Act::ExifInfo, "&camera/scanner EXIF info (JPGs)", "",
     "Shows what the camera wrote into the file."},
    {Act::IptcInfo, "Image IPTC/&JPG_COM info (JPGs)", "",
     "Shows comments and captions in the file."},
    {Act::KeepErrorLog, "&Error.log", "", "Keeps Error.log during runs."},
    {Act::KeepBatchLog, "&Batch.log", "", "Keeps Batch.log during runs."},
    {Act::KeepDebugLog, "&Debug.log", "",
     "Keeps Debug.log, the commands of the image in hand, until the program ends."},
    {Act::ShowEachImage, "&Show each image", "",
     "Shows each image of a run in the right frame when it is opened."},
    {Act::Preferences, "&Preferences", "", "Folders, defaults and logs."},
    {Act::Writer, "&Writer", "", "How picture files are written."},
    {Act::Reader, "&Reader", "", "How picture files are read."},
    {Act::RenameFiles, "&Rename files...", "", "Renames many files at once."},
    {Act::ViewTemp, "&View Temp folder", "", "Opens the folder of temporary images."},
    {Act::EmptyTemp, "&Empty Temp folder", "", "Removes the temporary images."},
    {Act::Keys, "&Keyboard", "F1", "Lists the keys of all actions."},
    {Act::About, "&About Lumoscript", "", "Version and licence."},
};
static_assert(std::size(kRows) == static_cast<std::size_t>(Act::Count));

constexpr std::pair<Act, Glyph> kGlyphs[] = {
    {Act::NewScript, Glyph::New},
    {Act::OpenScript, Glyph::Open},
    {Act::SaveScript, Glyph::Save},
    {Act::Undo, Glyph::Undo},
    {Act::Cut, Glyph::Cut},
    {Act::Copy, Glyph::Copy},
    {Act::Paste, Glyph::Paste},
    {Act::OpenImage, Glyph::Picture},
    {Act::ReloadImage, Glyph::Reload},
    {Act::TestOne, Glyph::TestOne},
    {Act::TestAll, Glyph::TestAll},
    {Act::RunOnSample, Glyph::RunOnSample},
    {Act::RunBatch, Glyph::Run},
};

}  // namespace

Actions::Actions(QWidget* window) : QObject(window) {
    for (const Row& row : kRows) {
        auto* action = new QAction(QString::fromUtf8(row.text), window);
        if (*row.keys != '\0')
            action->setShortcut(QKeySequence::fromString(QString::fromLatin1(row.keys)));
        action->setProperty(kHintProperty, QString::fromUtf8(row.hint));
        actions_[static_cast<std::size_t>(row.act)] = action;
        Enable(row.act, false, QStringLiteral("not there yet"));
        window->addAction(action);
    }
    for (const auto& [act, glyph] : kGlyphs) {
        (*this)[act]->setIcon(GlyphIcon(glyph));
        (*this)[act]->setIconVisibleInMenu(false);
    }
}

void Actions::Bind(Act act, std::function<void()> deed) {
    QAction* action = (*this)[act];
    connect(action, &QAction::triggered, this, [deed = std::move(deed)] { deed(); });
    action->setProperty(kDeedProperty, true);
    bound_[static_cast<std::size_t>(act)] = true;
    Enable(act, true);
}

void Actions::BindToggle(Act act, bool on, std::function<void(bool)> deed) {
    QAction* action = (*this)[act];
    action->setCheckable(true);
    action->setChecked(on);
    connect(action, &QAction::triggered, this, std::move(deed));
    action->setProperty(kDeedProperty, true);
    bound_[static_cast<std::size_t>(act)] = true;
    Enable(act, true);
}

void Actions::Enable(Act act, bool enabled, const QString& reason) {
    QAction* action = (*this)[act];
    const bool possible = enabled && bound_[static_cast<std::size_t>(act)];
    QString hint = action->property(kHintProperty).toString();
    if (!possible && !reason.isEmpty()) hint += QStringLiteral(" (%1)").arg(reason);
    action->setStatusTip(hint);
    QString tip = VisibleText(action->text()).remove(QLatin1String("..."));
    if (!action->shortcut().isEmpty())
        tip += QStringLiteral(" (%1)").arg(action->shortcut().toString(QKeySequence::NativeText));
    action->setToolTip(tip + QLatin1Char('\n') + hint);
    action->setEnabled(possible);
}

bool HasDeed(const QAction& action) {
    return action.property(kDeedProperty).toBool();
}

}  // namespace lumo::ui
