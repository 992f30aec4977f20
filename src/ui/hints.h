#pragma once

// The hint of each control of the main form.

namespace lumo::ui::hints {

inline constexpr char kImageGroup[] =
    "Single sample image is displayed and operated on in this area.";
inline constexpr char kLeftFrame[] =
    "No command operations done on image in this frame, dbl click for enlarged view";
inline constexpr char kRightFrame[] =
    "Command operations are executed on image in this frame, dbl click for enlarged view";
inline constexpr char kCopyToLeft[] = "Copies image in right frame into left frame";
inline constexpr char kCopyToRight[] = "Copies image in left frame into right frame.";
inline constexpr char kOpen[] = "Opens single image file and displays in left and right frames.";
inline constexpr char kReload[] = "Copies originally opened image into left frame.";
inline constexpr char kTestOne[] =
    "Executes the (1) selected Batch script cmd on right frame image (except Input/Output and "
    "execution logic commands).";
inline constexpr char kRunOnSample[] =
    "Reopens single image file and executes batch script on it only. Output commamds are not "
    "executed.";
inline constexpr char kTestAll[] =
    "Executes all Batch script commands (except Input/Output cmds) on current right frame image.";
inline constexpr char kSaveAs[] = "Opens a file dialog to save the image in right frame.";
inline constexpr char kRun[] = "Begins full execution of current Batch script.";
inline constexpr char kPanel[] = "Displays configured parameters of selected cmd in Batch script .";
inline constexpr char kAdd[] =
    "Places selected script cmd in left list box into Batch script in right list box (below "
    "current selection).";
inline constexpr char kSwapUp[] = "Swaps positions of currently selected Batch cmd and one above.";
inline constexpr char kSwapDown[] =
    "Swaps positions of currently selected Batch cmd and one below.";
inline constexpr char kEdit[] =
    "Opens dialog window to edit parameters of currently selected Batch script cmd.";
inline constexpr char kDelete[] = "Removes selected cmd from Batch script.";
inline constexpr char kTree[] = "Tree view with the basic selection of possible script commands.";
inline constexpr char kScriptList[] =
    "List of commands in current Batch script. Executed top to bottom.";
inline constexpr char kFilter[] = "Shows the commands whose names hold this text.";

}  // namespace lumo::ui::hints
