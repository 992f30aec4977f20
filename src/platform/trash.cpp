#include "platform/trash.h"

#include <gio/gio.h>

#include <memory>

#include "platform/system_error.h"

namespace lumo::platform {
namespace {

struct Unreference {
    void operator()(GFile* file) const { g_object_unref(file); }
};

int ErrorNumberOf(const GError& error) {
    if (error.domain != G_IO_ERROR) return EIO;
    switch (error.code) {
        case G_IO_ERROR_NOT_FOUND:
            return ENOENT;
        case G_IO_ERROR_PERMISSION_DENIED:
            return EACCES;
        case G_IO_ERROR_NOT_SUPPORTED:
            return ENOTSUP;
        case G_IO_ERROR_NO_SPACE:
            return ENOSPC;
        case G_IO_ERROR_READ_ONLY:
            return EROFS;
        case G_IO_ERROR_FILENAME_TOO_LONG:
            return ENAMETOOLONG;
        case G_IO_ERROR_BUSY:
            return EBUSY;
        case G_IO_ERROR_NOT_DIRECTORY:
            return ENOTDIR;
        default:
            return EIO;
    }
}

}  // namespace

Status MoveToTrash(const std::string& path) {
    if (path.empty()) return SystemError(path, ENOENT);
    // The local files of the library itself: others would look for services of a desktop.
    const std::unique_ptr<GFile, Unreference> file(
        g_vfs_get_file_for_path(g_vfs_get_local(), path.c_str()));
    GError* error = nullptr;
    if (g_file_trash(file.get(), nullptr, &error) != FALSE) return Done{};
    const int number = ErrorNumberOf(*error);
    Error failure = PathError(path, error->message, number);
    g_error_free(error);
    return failure;
}

}  // namespace lumo::platform
