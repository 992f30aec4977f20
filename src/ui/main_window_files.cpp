// Files that the window opens beside Scripts and samples: lists, logs, the Temp folder, and what is
// dropped on it.

#include <QDragEnterEvent>
#include <QFile>
#include <QMimeData>
#include <QStatusBar>
#include <QTimer>
#include <QUrl>

#include "io/input.h"
#include "io/start_setup.h"
#include "ops/files/empty_temp.h"
#include "platform/files.h"
#include "script/fields.h"
#include "script/names.h"
#include "settings/recent.h"
#include "settings/settings_store.h"
#include "ui/dropped_files.h"
#include "ui/list_editor.h"
#include "ui/main_window.h"
#include "ui/text.h"
#include "ui/text_window.h"

namespace lumo::ui {

void MainWindow::ShowTextFileOf(std::string_view title, std::string_view filter,
                                std::string folder) {
    const auto path =
        AskOpenPath(desk_, {.title = title, .filter = filter, .folder = std::move(folder)});
    if (!path) return;
    if (ToQt(*path).endsWith(QLatin1String(".lst"), Qt::CaseInsensitive)) {
        settings::AddRecentList(view_.settings, *path);
        UpdateRecent();
    }
    ShowTextFile(desk_, *path);
}

void MainWindow::OpenRecentList(int n) {
    settings::RecentFiles& recent = view_.settings.recentLists;
    std::string& entry = recent[static_cast<std::size_t>(n - 1)];
    if (!platform::FileExists(entry)) {
        // The list that moves up into this place is opened in its stead.
        settings::RemoveRecent(recent, n);
        settings::SaveRecentLists(view_.settings);
    }
    const std::string path = entry;
    if (!path.empty()) {
        settings::AddRecentList(view_.settings, path);
        EditList(path);
    }
    UpdateRecent();
}

void MainWindow::EditList(const std::string& path) {
    if (const auto edited = EditImageList(this, view_, path)) {
        settings::AddRecentList(view_.settings, *edited);
        UpdateRecent();
    }
}

/// The one that the Script reads, else the one in use last, if it is there; else none.
std::string MainWindow::ListAtHand() const {
    const script::Script& script = view_.script.commands;
    if (const int start = script.Find(script::names::kStartImageLoop); start >= 0) {
        const script::Fields fields = script::ParseParams(script.ParamsAt(start));
        if (fields.Is(io::start::kLocation, io::start::kFromList))
            return io::NativePath(view_, fields.Text(io::start::kListPath));
    }
    const std::string& last = view_.settings.recentLists[0];
    return platform::FileExists(last) ? last : std::string();
}

void MainWindow::EmptyTempFolder() {
    if (!ui::AskYesNo(desk_, "Remove all images from the Temp folder?")) return;
    const auto removed = ops::files::EmptyTempFolderNow(view_);
    if (removed)
        statusBar()->showMessage(QStringLiteral("%1 images removed.").arg(*removed));
    else
        Tell(desk_, removed.Message());
}

// ---- Dropped files ------------------------------------------------------------------------------

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
    const bool busy = running_ || controlsClosed_ || IsWalking();
    if (!busy && event->mimeData()->hasUrls()) event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event) {
    const QList<QUrl> urls = event->mimeData()->urls();
    event->acceptProposedAction();
    if (urls.size() != 1 || !urls.front().isLocalFile()) return;
    // The program that was dragged from waits for the end of the drop; dialogs come after it.
    const std::string path = QFile::encodeName(urls.front().toLocalFile()).toStdString();
    QTimer::singleShot(0, this, [this, path] { OpenDropped(path); });
}

void MainWindow::OpenDropped(const std::string& path) {
    if (running_ || starting_ || IsWalking()) return;
    switch (KindOfDropped(path)) {
        case Dropped::Nothing:
            return;
        case Dropped::Image:
            OpenSamplePath(desk_, path, engine::SampleFrom::Drop);
            break;
        case Dropped::Script:
            files_.OpenPath(path, "Unable to find or open named script file, check file path?");
            break;
        case Dropped::Other:
            Tell(desk_, "Unsupported file type!", "Dropped files");
            break;
    }
    UpdateRecent();
    UpdateActions();
}

}  // namespace lumo::ui
