// The rows of the list editor.

#include <QDropEvent>
#include <QFile>
#include <QMimeData>
#include <QSignalBlocker>
#include <QStyle>
#include <QUrl>
#include <algorithm>

#include "io/image_list.h"
#include "io/input.h"
#include "platform/files.h"
#include "platform/paths.h"
#include "ui/list_editor.h"
#include "ui/text.h"

namespace lumo::ui {
namespace {

constexpr int kLineRole = Qt::UserRole, kMissingRole = Qt::UserRole + 1;

std::string LineOf(const QListWidgetItem& item) {
    return item.data(kLineRole).toByteArray().toStdString();
}

/// The list takes names; the files stay where they are.
void AcceptAsCopy(QDropEvent& event) {
    event.setDropAction(Qt::CopyAction);
    event.accept();
}

}  // namespace

ListRows::ListRows(const engine::CLumoscriptView& view, QWidget* parent)
    : QListWidget(parent), view_(view) {
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setDragDropMode(QAbstractItemView::InternalMove);
    setEditTriggers(QAbstractItemView::EditKeyPressed | QAbstractItemView::DoubleClicked);
    setUniformItemSizes(true);
    setAccessibleName(QStringLiteral("Files and folders of the Image list"));
    connect(this, &QListWidget::itemChanged, this, &ListRows::TakeTyped);
    connect(model(), &QAbstractItemModel::rowsMoved, this, &ListRows::Edited);
}

std::vector<std::string> ListRows::Lines() const {
    std::vector<std::string> lines;
    lines.reserve(static_cast<std::size_t>(count()));
    for (int row = 0; row < count(); ++row) lines.push_back(LineAt(row));
    return lines;
}

std::string ListRows::LineAt(int row) const {
    return LineOf(*item(row));
}

void ListRows::SetLineAt(int row, const std::string& line) {
    Show(*item(row), line);
    Q_EMIT Edited();
}

void ListRows::SetLines(const std::vector<std::string>& lines) {
    {
        const QSignalBlocker quiet(this);
        clear();
        Insert(lines);
        clearSelection();
        setCurrentRow(count() > 0 ? 0 : -1);
    }
    Q_EMIT Edited();
}

void ListRows::Insert(const std::vector<std::string>& lines) {
    const std::vector<int> selected = SelectedRows();
    int row = selected.empty() ? count() : selected.back() + 1;
    {
        const QSignalBlocker quiet(this);
        clearSelection();
        const int first = row;
        for (const std::string& line : lines) {
            if (line.empty()) continue;
            auto* added = new QListWidgetItem;
            Show(*added, line);
            insertItem(row++, added);
        }
        if (row > first) {
            selectionModel()->select({model()->index(first, 0), model()->index(row - 1, 0)},
                                     QItemSelectionModel::Select);
            setCurrentItem(item(row - 1), QItemSelectionModel::Select);
        }
    }
    Q_EMIT Edited();
}

std::vector<int> ListRows::SelectedRows() const {
    std::vector<int> rows;
    for (const QModelIndex& index : selectionModel()->selectedRows()) rows.push_back(index.row());
    std::ranges::sort(rows);
    return rows;
}

std::vector<ListRows::Run> ListRows::SelectedRuns() const {
    std::vector<Run> runs;
    for (const int row : SelectedRows()) {
        if (runs.empty() || runs.back().last + 1 != row) runs.push_back({row, row});
        runs.back().last = row;
    }
    return runs;
}

void ListRows::RemoveSelected() {
    const std::vector<Run> runs = SelectedRuns();
    if (runs.empty()) return;
    {
        const QSignalBlocker quiet(this);
        for (auto run = runs.rbegin(); run != runs.rend(); ++run)
            model()->removeRows(run->first, run->last - run->first + 1);
        setCurrentRow(std::min(runs.front().first, count() - 1));
    }
    Q_EMIT Edited();
}

/// The row beside each run of selected ones goes to its other side: thousands move as fast as one.
void ListRows::MoveSelected(int step) {
    std::vector<Run> runs = SelectedRuns();
    if (runs.empty()) return;
    if (step < 0 ? runs.front().first == 0 : runs.back().last + 1 == count()) return;
    if (step > 0) std::ranges::reverse(runs);
    {
        const QSignalBlocker quiet(this);
        for (const Run& run : runs) {
            const int from = step < 0 ? run.first - 1 : run.last + 1;
            const int to = step < 0 ? run.last : run.first;
            insertItem(to, takeItem(from));
        }
    }
    Q_EMIT Edited();
}

bool ListRows::IsMissing(int row) const {
    return item(row)->data(kMissingRole).toBool();
}

/// Bytes that are no text are shown, but cannot be typed: such a line is not edited.
void ListRows::Show(QListWidgetItem& item, const std::string& line) {
    showing_ = true;
    const QByteArray bytes(line.data(), static_cast<qsizetype>(line.size()));
    item.setData(kLineRole, bytes);
    item.setText(ToQt(platform::Printable(line)));
    const bool comment = io::IsListComment(line);
    QFont italic = font();
    italic.setItalic(comment);
    item.setFont(italic);
    item.setIcon({});
    item.setToolTip({});
    item.setData(kMissingRole, false);
    if (!comment) {
        const io::ListEntry entry = io::ParseListLine(line);
        const std::string path = io::NativePath(view_, entry.path);
        const bool missing =
            !(entry.isFolder ? platform::FolderExists(path) : platform::FileExists(path));
        item.setData(kMissingRole, missing);
        if (missing)
            item.setToolTip(entry.isFolder ? QStringLiteral("There is no such folder")
                                           : QStringLiteral("There is no such file"));
        item.setIcon(style()->standardIcon(missing          ? QStyle::SP_MessageBoxWarning
                                           : entry.isFolder ? QStyle::SP_DirIcon
                                                            : QStyle::SP_FileIcon));
    }
    // A row takes no drop itself: what is dropped goes between the rows.
    Qt::ItemFlags flags = Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemIsDragEnabled;
    if (item.text().toUtf8() == bytes) flags |= Qt::ItemIsEditable;
    item.setFlags(flags);
    showing_ = false;
}

/// What a list cannot hold as a line is taken back.
void ListRows::TakeTyped(QListWidgetItem* item) {
    if (showing_) return;
    const std::string before = LineOf(*item), typed = FromQt(item->text().trimmed());
    const bool fits = !typed.empty() && typed != "END";
    Show(*item, fits ? typed : before);
    if (fits && typed != before) Q_EMIT Edited();
}

void ListRows::dragEnterEvent(QDragEnterEvent* event) {
    if (event->mimeData()->hasUrls())
        AcceptAsCopy(*event);
    else
        QListWidget::dragEnterEvent(event);
}

void ListRows::dragMoveEvent(QDragMoveEvent* event) {
    if (event->mimeData()->hasUrls())
        AcceptAsCopy(*event);
    else
        QListWidget::dragMoveEvent(event);
}

void ListRows::dropEvent(QDropEvent* event) {
    if (!event->mimeData()->hasUrls()) {
        QListWidget::dropEvent(event);
        Q_EMIT Edited();
        return;
    }
    std::vector<std::string> paths;
    for (const QUrl& url : event->mimeData()->urls())
        if (url.isLocalFile()) paths.push_back(QFile::encodeName(url.toLocalFile()).toStdString());
    AcceptAsCopy(*event);
    if (!paths.empty()) Q_EMIT Dropped(paths);
}

}  // namespace lumo::ui
