#include "ui/list_editor.h"

#include <QFileDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>
#include <QVBoxLayout>

#include "io/image_list.h"
#include "platform/files.h"
#include "platform/paths.h"
#include "ui/desk.h"
#include "ui/text.h"

namespace lumo::ui {
namespace {

constexpr std::string_view kListFilter = "Image list file (*.lst)|*.lst|All files (*.*)|*.*||";

QString Count(int number, const char* one, const char* many) {
    return QStringLiteral("%1 %2").arg(number).arg(QString::fromLatin1(number == 1 ? one : many));
}

std::string Encoded(const QString& path) {
    return QFile::encodeName(path).toStdString();
}

}  // namespace

ListEditor::ListEditor(const engine::CLumoscriptView& view, QWidget* parent)
    : QDialog(parent), view_(view), rows_(new ListRows(view)), summary_(new QLabel) {
    setSizeGripEnabled(true);
    auto* lines = new QVBoxLayout(this);
    auto* body = new QHBoxLayout;
    lines->addLayout(body, 1);
    body->addWidget(rows_, 1);
    auto* column = new QVBoxLayout;
    body->addLayout(column);
    lines->addWidget(summary_);
    auto* line = new QHBoxLayout;
    lines->addLayout(line);
    BuildButtons(*column, *line);

    connect(rows_, &ListRows::Edited, this, &ListEditor::ShowState);
    connect(rows_, &QListWidget::itemSelectionChanged, this, &ListEditor::ShowButtons);
    connect(rows_, &ListRows::Dropped, this, &ListEditor::AddPaths);
    const auto key = [this](const QKeySequence& keys, auto&& deed) {
        connect(new QShortcut(keys, this), &QShortcut::activated, this, deed);
    };
    key(QKeySequence::Save, [this] { Save(); });
    key(QKeySequence(Qt::CTRL | Qt::Key_Up), [this] { rows_->MoveSelected(-1); });
    key(QKeySequence(Qt::CTRL | Qt::Key_Down), [this] { rows_->MoveSelected(1); });
    auto* removal = new QShortcut(QKeySequence::Delete, rows_);
    removal->setContext(Qt::WidgetShortcut);  // an entry that is being typed has its own Del
    connect(removal, &QShortcut::activated, rows_, &ListRows::RemoveSelected);
    resize(QSize(720, 460).boundedTo(screen()->availableSize() * 0.9));
    ShowState();
}

void ListEditor::BuildButtons(QBoxLayout& column, QBoxLayout& line) {
    const auto add = [this](QBoxLayout& box, const char* text, const char* hint, auto deed) {
        auto* button = new QPushButton(QString::fromUtf8(text));
        button->setAutoDefault(false);
        button->setToolTip(QString::fromUtf8(hint));
        box.addWidget(button);
        connect(button, &QPushButton::clicked, this, deed);
        return button;
    };
    add(column, "Add &files...", "Adds pictures below the selected entry", [this] { AddFiles(); });
    add(column, "Add fol&der...", "Adds the pictures of a folder", [this] { AddFolder(); });
    add(column, "Add co&mment", "Adds a line that is not read", [this] { AddComment(); });
    column.addSpacing(8);
    subfolders_ = add(column, "Include su&bfolders", "Takes what lies below the folder too",
                      [this] { SwitchSubfolders(); });
    subfolders_->setCheckable(true);
    column.addSpacing(8);
    up_ = add(column, "Move &up", "One place up (Ctrl+Up)", [this] { rows_->MoveSelected(-1); });
    down_ =
        add(column, "Move do&wn", "One place down (Ctrl+Down)", [this] { rows_->MoveSelected(1); });
    remove_ = add(column, "&Remove", "Takes the selected entries out of the list (Del)",
                  [this] { rows_->RemoveSelected(); });
    column.addStretch(1);

    add(line, "&New", "Begins an empty list", [this] { New(); });
    add(line, "&Open...", "Opens another list", [this] { OpenOther(); });
    add(line, "&Save", "Saves the list (Ctrl+S)", [this] { Save(); });
    add(line, "Save&As...", "Saves the list under another name", [this] { SaveAs(); });
    line.addStretch(1);
    add(line, "&Close", "Closes the editor", [this] { reject(); });
}

void ListEditor::ShowState() {
    int files = 0, folders = 0, missing = 0;
    for (int row = 0; row < rows_->count(); ++row) {
        const std::string line = rows_->LineAt(row);
        if (io::IsListComment(line)) continue;
        ++(io::ParseListLine(line).isFolder ? folders : files);
        missing += rows_->IsMissing(row) ? 1 : 0;
    }
    QString summary =
        Count(files, "file", "files") + QStringLiteral(", ") + Count(folders, "folder", "folders");
    if (missing > 0) summary += QStringLiteral("; %1 not found").arg(missing);
    summary_->setText(summary);
    const QString name =
        path_.empty() ? QStringLiteral("unsaved") : ToQt(platform::Printable(path_));
    setWindowTitle(name + QStringLiteral("[*] - Image list"));
    setWindowModified(HasChanges());
    ShowButtons();
}

void ListEditor::ShowButtons() {
    const std::vector<int> selected = rows_->SelectedRows();
    int folders = 0, recursive = 0;
    for (const int row : selected) {
        const std::string line = rows_->LineAt(row);
        if (io::IsListComment(line)) continue;
        const io::ListEntry entry = io::ParseListLine(line);
        folders += entry.isFolder ? 1 : 0;
        recursive += entry.isFolder && entry.recursive ? 1 : 0;
    }
    subfolders_->setEnabled(folders > 0);
    subfolders_->setChecked(folders > 0 && recursive == folders);
    up_->setEnabled(!selected.empty() && selected.front() > 0);
    down_->setEnabled(!selected.empty() && selected.back() + 1 < rows_->count());
    remove_->setEnabled(!selected.empty());
}

// ---- Entries ------------------------------------------------------------------------------------

void ListEditor::AddPaths(const std::vector<std::string>& paths) {
    std::vector<std::string> lines, refused;
    for (const std::string& path : paths) {
        const auto line = platform::FolderExists(path) ? io::ListLineOfFolder(path, false)
                                                       : io::ListLineOfFile(path);
        if (line)
            lines.push_back(*line);
        else
            refused.push_back(platform::Printable(path));
    }
    rows_->Insert(lines);
    if (refused.empty()) return;
    std::string words =
        "An Image list has no line for a name with a line break or a blank at its end:";
    for (const std::string& path : refused) words += "\n" + path;
    Tell(*this, words);
}

void ListEditor::AddFiles() {
    QFileDialog dialog(this, QStringLiteral("Add to Image list"),
                       ToQt(view_.settings.folders.photos), FileFilter(kPictureFilter));
    dialog.setFileMode(QFileDialog::ExistingFiles);
    if (dialog.exec() != QDialog::Accepted) return;
    std::vector<std::string> paths;
    for (const QString& path : dialog.selectedFiles()) paths.push_back(Encoded(path));
    AddPaths(paths);
}

void ListEditor::AddFolder() {
    QFileDialog dialog(this, QStringLiteral("Choose image folder for input."),
                       ToQt(view_.settings.folders.photos));
    dialog.setFileMode(QFileDialog::Directory);
    dialog.setOption(QFileDialog::ShowDirsOnly);
    if (dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty())
        AddPaths({Encoded(dialog.selectedFiles().constFirst())});
}

void ListEditor::AddComment() {
    rows_->Insert({"; "});
    rows_->editItem(rows_->currentItem());
}

void ListEditor::SwitchSubfolders() {
    const bool recursive = subfolders_->isChecked();
    for (const int row : rows_->SelectedRows()) {
        const std::string line = rows_->LineAt(row);
        const io::ListEntry entry = io::ParseListLine(line);
        if (io::IsListComment(line) || !entry.isFolder || entry.recursive == recursive) continue;
        if (const auto changed = io::ListLineOfFolder(entry.path, recursive))
            rows_->SetLineAt(row, *changed);
    }
}

// ---- Files --------------------------------------------------------------------------------------

bool ListEditor::Open(const std::string& path) {
    std::vector<std::string> lines;
    if (platform::FileExists(path)) {
        const auto text = platform::ReadTextFile(path);
        if (!text) {
            Tell(*this, platform::Printable(path) + ": " + text.Message());
            return false;
        }
        const auto read = io::ListLines(*text);
        if (!read) {
            Tell(*this, "Not a valid Lumoscript image list!");
            return false;
        }
        lines = *read;
        std::erase(lines, "");
    }
    path_ = path;
    rows_->SetLines(lines);
    saved_ = rows_->Lines();
    ShowState();
    return true;
}

std::string ListEditor::Folder() const {
    return path_.empty() ? view_.settings.folders.lists : platform::GetFolderPath(path_);
}

void ListEditor::New() {
    if (!MayLeave()) return;
    path_.clear();
    saved_.clear();
    rows_->SetLines({});
}

void ListEditor::OpenOther() {
    if (!MayLeave()) return;
    const auto path = AskOpenPath(
        *this,
        {.title = "Open (Lumoscript Image list file)", .filter = kListFilter, .folder = Folder()});
    if (path) Open(*path);
}

bool ListEditor::Write(const std::string& path) {
    const std::vector<std::string> lines = rows_->Lines();
    const auto written =
        platform::WriteTextFile(path, io::ListText(lines), platform::Durability::Sync);
    if (!written) {
        Tell(*this, "Unable to save " + platform::Printable(path) + ": " + written.Message());
        return false;
    }
    path_ = path;
    saved_ = lines;
    ShowState();
    return true;
}

bool ListEditor::Save() {
    return path_.empty() ? SaveAs() : Write(path_);
}

bool ListEditor::SaveAs() {
    const auto path = AskSavePath(*this, {.title = "SaveAs (Lumoscript Image list file)",
                                          .filter = kListFilter,
                                          .folder = Folder(),
                                          .name = path_,
                                          .extension = "lst"});
    return path && Write(*path);
}

bool ListEditor::MayLeave() {
    if (!HasChanges()) return true;
    QMessageBox box(QMessageBox::Question, QStringLiteral("Lumoscript"),
                    QStringLiteral("The Image list has been changed. Save it?"),
                    QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, this);
    box.setDefaultButton(QMessageBox::Save);
    const int answer = box.exec();
    if (answer == QMessageBox::Save) return Save();
    return answer == QMessageBox::Discard;
}

void ListEditor::reject() {
    if (MayLeave()) QDialog::reject();
}

std::optional<std::string> EditImageList(QWidget* parent, const engine::CLumoscriptView& view,
                                         const std::string& path) {
    ListEditor editor(view, parent);
    if (!path.empty() && !editor.Open(path)) return std::nullopt;
    editor.exec();
    if (editor.Path().empty() || !platform::FileExists(editor.Path())) return std::nullopt;
    return editor.Path();
}

}  // namespace lumo::ui
