#pragma once

// The editor of Image lists: the files and folders of a batch, in the order in which they are
// taken.

#include <QDialog>
#include <QListWidget>
#include <optional>
#include <string>
#include <vector>

#include "engine/view.h"

class QBoxLayout;
class QLabel;
class QPushButton;

namespace lumo::ui {

/// The lines of an Image list, each an item that holds its bytes. Rows can be dragged; files and
/// folders can be dropped.
class ListRows : public QListWidget {
    Q_OBJECT

  public:
    explicit ListRows(const engine::CLumoscriptView& view, QWidget* parent = nullptr);

    std::vector<std::string> Lines() const;
    void SetLines(const std::vector<std::string>& lines);
    /// Below the last selected row, or at the end; the new rows become the selection.
    void Insert(const std::vector<std::string>& lines);
    std::string LineAt(int row) const;
    void SetLineAt(int row, const std::string& line);
    /// In ascending order.
    std::vector<int> SelectedRows() const;
    void RemoveSelected();
    /// One place up or down, all together; nothing where the first or last of them cannot go on.
    void MoveSelected(int step);
    /// Whether there was no such file or folder when the line was shown; never for a comment.
    bool IsMissing(int row) const;

  Q_SIGNALS:
    void Dropped(const std::vector<std::string>& paths);
    /// The lines or their order have changed.
    void Edited();

  protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

  private:
    /// Selected rows without a gap between them.
    struct Run {
        int first, last;
    };
    std::vector<Run> SelectedRuns() const;
    void Show(QListWidgetItem& item, const std::string& line);
    void TakeTyped(QListWidgetItem* item);

    const engine::CLumoscriptView& view_;
    bool showing_ = false;
};

class ListEditor : public QDialog {
    Q_OBJECT

  public:
    explicit ListEditor(const engine::CLumoscriptView& view, QWidget* parent = nullptr);

    /// Shows a list file. One that is not there yet begins empty under that name; one that cannot
    /// be read, or is no list, is told, and what was shown stays.
    bool Open(const std::string& path);
    /// Of the list that is shown; empty before it has a name.
    const std::string& Path() const { return path_; }
    ListRows& Rows() { return *rows_; }
    /// Files and folders, each as its line; what no line can name is told.
    void AddPaths(const std::vector<std::string>& paths);

    void reject() override;

  private:
    void BuildButtons(QBoxLayout& column, QBoxLayout& line);
    void AddFiles();
    void AddFolder();
    void AddComment();
    void SwitchSubfolders();
    void New();
    void OpenOther();
    bool Save();
    bool SaveAs();
    bool Write(const std::string& path);
    /// False if the user wants to stay.
    bool MayLeave();
    bool HasChanges() const { return rows_->Lines() != saved_; }
    std::string Folder() const;
    void ShowState();
    void ShowButtons();

    const engine::CLumoscriptView& view_;
    ListRows* rows_;
    QLabel* summary_;
    QPushButton* subfolders_ = nullptr;
    QPushButton* up_ = nullptr;
    QPushButton* down_ = nullptr;
    QPushButton* remove_ = nullptr;
    std::string path_;
    std::vector<std::string> saved_;
};

/// Shows the editor with this list, or with a new one for an empty path, until the user closes it.
/// The path of the list that was shown last, if there is such a file.
std::optional<std::string> EditImageList(QWidget* parent, const engine::CLumoscriptView& view,
                                         const std::string& path);

}  // namespace lumo::ui
