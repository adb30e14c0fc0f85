// The Windows name that stands for an error of this system, so that a report reads alike on both. Where nothing
// corresponds there is no name.
#include "platform/system.h"

#include <errno.h>

struct Error_Name {
    unsigned    code;
    const char *name;
};

// clang-format off
static const Error_Name NAMES[] = {
    {0,            "[ERROR_SUCCESS]"},
    {EPERM,        "[ERROR_PRIVILEGE_NOT_HELD]"},
    {ENOENT,       "[ERROR_FILE_NOT_FOUND]"},
    {EINTR,        "[ERROR_OPERATION_ABORTED]"},
    {EIO,          "[ERROR_IO_DEVICE]"},
    {ENXIO,        "[ERROR_BAD_UNIT]"},
    {E2BIG,        "[ERROR_BAD_ENVIRONMENT]"},
    {ENOEXEC,      "[ERROR_BAD_FORMAT]"},
    {EBADF,        "[ERROR_INVALID_HANDLE]"},
    {ECHILD,       "[ERROR_WAIT_NO_CHILDREN]"},
    {EAGAIN,       "[ERROR_RETRY]"},
    {ENOMEM,       "[ERROR_NOT_ENOUGH_MEMORY]"},
    {EACCES,       "[ERROR_ACCESS_DENIED]"},
    {EFAULT,       "[ERROR_NOACCESS]"},
    {EBUSY,        "[ERROR_BUSY]"},
    {EEXIST,       "[ERROR_FILE_EXISTS]"},
    {EXDEV,        "[ERROR_NOT_SAME_DEVICE]"},
    {ENODEV,       "[ERROR_DEV_NOT_EXIST]"},
    {ENOTDIR,      "[ERROR_PATH_NOT_FOUND]"},
    {EISDIR,       "[ERROR_DIRECTORY_NOT_SUPPORTED]"},
    {EINVAL,       "[ERROR_INVALID_PARAMETER]"},
    {ENFILE,       "[ERROR_TOO_MANY_OPEN_FILES]"},
    {EMFILE,       "[ERROR_TOO_MANY_OPEN_FILES]"},
    {ETXTBSY,      "[ERROR_SHARING_VIOLATION]"},
    {EFBIG,        "[ERROR_FILE_TOO_LARGE]"},
    {ENOSPC,       "[ERROR_DISK_FULL]"},
    {ESPIPE,       "[ERROR_SEEK_ON_DEVICE]"},
    {EROFS,        "[ERROR_WRITE_PROTECT]"},
    {EMLINK,       "[ERROR_TOO_MANY_LINKS]"},
    {EPIPE,        "[ERROR_BROKEN_PIPE]"},
    {EDEADLK,      "[ERROR_POSSIBLE_DEADLOCK]"},
    {ENAMETOOLONG, "[ERROR_FILENAME_EXCED_RANGE]"},
    {ENOSYS,       "[ERROR_CALL_NOT_IMPLEMENTED]"},
    {ENOTEMPTY,    "[ERROR_DIR_NOT_EMPTY]"},
    {ELOOP,        "[ERROR_CANT_RESOLVE_FILENAME]"},
    {EOVERFLOW,    "[ERROR_ARITHMETIC_OVERFLOW]"},
    {EILSEQ,       "[ERROR_NO_UNICODE_TRANSLATION]"},
    {EOPNOTSUPP,   "[ERROR_NOT_SUPPORTED]"},
    {ETIMEDOUT,    "[ERROR_TIMEOUT]"},
    {ECONNREFUSED, "[ERROR_CONNECTION_REFUSED]"},
    {ECONNABORTED, "[ERROR_CONNECTION_ABORTED]"},
    {ENETUNREACH,  "[ERROR_NETWORK_UNREACHABLE]"},
    {EHOSTUNREACH, "[ERROR_HOST_UNREACHABLE]"},
    {ENOTCONN,     "[ERROR_NOT_CONNECTED]"},
    {EDQUOT,       "[ERROR_DISK_QUOTA_EXCEEDED]"},
    {ECANCELED,    "[ERROR_CANCELLED]"},
    {ENOMEDIUM,    "[ERROR_NOT_READY]"},
    {0xF001,       "[ERROR_BAD_FILE_TYPE]"},     // Not a regular file.
};
// clang-format on

const char *System_Error_Name (unsigned code) {
    for (const Error_Name &entry : NAMES)
        if (entry.code == code) return entry.name;
    return nullptr;
}
