// The system services on Linux. Error codes are errno values, and one of our own for what is a file only by name.
//
// The surprising part is the guard of the mappings: a file that shrinks while it is mapped makes the next access to the
// lost pages a fault, which would end the program. Our handler puts a page of zeros there instead and counts it.
#include "platform/system.h"

#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <pthread.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/utsname.h>
#include <time.h>
#include <unistd.h>

#include <atomic>

#include "platform/posix/private.h"

// Far above every errno. The plain codes for FIFOs, sockets and devices ("Illegal seek") would puzzle the user.
static const unsigned NOT_A_REGULAR_FILE = 0xF001;

int System_Exit_Status (int result) {
    if (result < 0) return 255;
    return result > 254 ? 254 : result;
}

// --- paths -----------------------------------------------------------------

char System_Separator (void) { return '/'; }

int System_Is_Separator (char c) { return c == '/'; }

const char *System_Line_End (void) { return "\n"; }

size_t System_Directory_Limit (void) { return PATH_MAX - 1; }

// first, middle and last, one behind the other. 0 when they do not fit.
static int Join (char *result, size_t size, const char *first, const char *middle, const char *last) {
    int length = snprintf (result, size, "%s%s%s", first, middle, last);
    if (length >= 0 && (size_t)length < size) return 1;
    if (size) result[0] = 0;
    errno = ENAMETOOLONG;
    return 0;
}

static int Folder_Holds (const char *folder, const char *name) {
    char path[SYSTEM_PATH_SIZE];
    return Join (path, sizeof path, folder, name, "") && System_File_Exists (path);
}

static int Is_Data_Folder (const char *folder) {
    return Folder_Holds (folder, "DICOM Tables") || Folder_Holds (folder, "Tagwright.ini");
}

int System_Program_Folder (char *result, size_t size) {
    ssize_t length = readlink ("/proc/self/exe", result, size);
    if (length <= 0 || (size_t)length >= size) return 0;
    result[length] = 0;
    char *last     = strrchr (result, '/');
    if (!last) return 0;
    last[1] = 0;
    return 1;
}

int System_Install_Path (char *result, size_t size) {
    char folder[SYSTEM_PATH_SIZE];
    char share[SYSTEM_PATH_SIZE];
    if (System_Program_Folder (folder, sizeof folder)) {
        if (Is_Data_Folder (folder)) return Join (result, size, folder, "", "");
        if (Join (share, sizeof share, folder, "../share/tagwright/", "") && Is_Data_Folder (share))
            return Join (result, size, share, "", "");
    }
    return Join (result, size, "/usr/share/tagwright/", "", "");
}

static const char *Environment (const char *name) {
    const char *value = getenv (name);
    return value && value[0] ? value : nullptr;
}

static int Path_From (char *result, size_t size, const char *directory, const char *behind) {
    size_t length = strlen (directory);
    return Join (result, size, directory, directory[length - 1] == '/' ? "" : "/", behind);
}

int System_User_Data_Path (char *result, size_t size) {
    const char *directory = Environment ("APPDATA");
    if (directory) return Path_From (result, size, directory, "");
    directory = Environment ("XDG_DATA_HOME");
    if (directory && directory[0] == '/') return Path_From (result, size, directory, ""); // A relative one is invalid.
    directory = Environment ("HOME");
    if (directory) return Path_From (result, size, directory, ".local/share/");
    if (size) result[0] = 0;
    errno = ENOENT;
    return 0;
}

int System_Scratch_Path (char *result, size_t size) {
    char user[24];
    snprintf (user, sizeof user, "%u", (unsigned)geteuid ());
    return Join (result, size, "/tmp/tagwright-", user, "/");
}

// --- directories and files -------------------------------------------------

int System_Is_Directory (const char *path) {
    struct stat facts;
    return !stat (path, &facts) && S_ISDIR (facts.st_mode);
}

int System_File_Exists (const char *path) {
    struct stat facts;
    return !stat (path, &facts);
}

// 1 for a regular file; else the last error says what it is instead.
static int Is_Regular (const struct stat *facts) {
    if (S_ISREG (facts->st_mode)) return 1;
    errno = S_ISDIR (facts->st_mode) ? EISDIR : (int)NOT_A_REGULAR_FILE;
    return 0;
}

int System_File_Size_Of (const char *path, int64_t *size) {
    struct stat facts;
    if (stat (path, &facts) || !Is_Regular (&facts)) return 0;
    *size = facts.st_size;
    return 1;
}

// Another process may make the directory at the same time, so only the result counts.
int System_Directory_Make (const char *path) {
    if (!mkdir (path, 0777)) return 1;
    int error = errno;
    if (System_Is_Directory (path)) return 1;
    errno = error;
    return 0;
}

int System_File_Delete (const char *path) { return !unlink (path); }

static int Is_Self_Or_Parent (const char *name) { return !strcmp (name, ".") || !strcmp (name, ".."); }

int System_Directory_List (const char *path, System_Directory_Action action, void *context) {
    DIR *directory = opendir (path);
    if (!directory) return 0;

    struct dirent *entry;
    for (errno = 0; (entry = readdir (directory)); errno = 0)
        if (!Is_Self_Or_Parent (entry->d_name) && !action (context, entry->d_name)) break;
    int error = entry ? 0 : errno;
    closedir (directory);
    errno = error;
    return !error;
}

int System_Private_Directory_Make (const char *path) {
    char   plain[SYSTEM_PATH_SIZE]; // A separator at the end would make lstat follow a symbolic link.
    size_t length = strlen (path);
    while (length > 1 && path[length - 1] == '/') length--;
    if (length >= sizeof plain) {
        errno = ENAMETOOLONG;
        return 0;
    }
    memcpy (plain, path, length);
    plain[length] = 0;

    struct stat facts;
    if (mkdir (plain, 0700) && errno != EEXIST) return 0;
    if (lstat (plain, &facts)) return 0;
    if (!S_ISDIR (facts.st_mode)) {
        errno = ENOTDIR;
        return 0;
    }
    if (facts.st_uid != geteuid ()) {
        errno = EPERM;
        return 0;
    }
    // The name can't be exchanged in between: it is ours, and /tmp lets only the owner rename it.
    return (facts.st_mode & 07777) == 0700 || !chmod (plain, 0700);
}

// --- views of mapped files -------------------------------------------------

// One view a file, of all of it, shared by the file and its mappings: a system allows only some 65,000 views to a
// process, and a file may hold more large values than that. The fault handler looks the views up, so they stand in blocks that
// never move or vanish, and an end of 0 marks a free one.
struct View {
    std::atomic<uintptr_t> start;
    std::atomic<uintptr_t> end;
    long                   uses;
};

static const int VIEWS_IN_BLOCK = 64;

struct View_Block {
    View                      views[VIEWS_IN_BLOCK];
    std::atomic<View_Block *> next;
};

static View_Block       view_blocks;
static pthread_mutex_t  view_lock = PTHREAD_MUTEX_INITIALIZER;
static std::atomic<int> map_faults;
static int              guard_installed;
static struct sigaction guard_previous;

static int Is_In_View (uintptr_t address) {
    for (View_Block *block = &view_blocks; block; block = block->next.load ())
        for (View &view : block->views) {
            uintptr_t end = view.end.load ();
            if (address < end && address >= view.start.load () && end == view.end.load ()) return 1;
        }
    return 0;
}

static void Pass_On (int number, siginfo_t *information, void *context) {
    if (guard_previous.sa_flags & SA_SIGINFO) {
        guard_previous.sa_sigaction (number, information, context);
    } else if (guard_previous.sa_handler != SIG_DFL && guard_previous.sa_handler != SIG_IGN) {
        guard_previous.sa_handler (number);
    } else if (information->si_code > 0) {
        sigaction (SIGBUS, &guard_previous, nullptr);  // The access happens again, and meets what stood here before.
    } else if (guard_previous.sa_handler == SIG_DFL) { // Sent by a process: it does not happen again by itself.
        sigaction (SIGBUS, &guard_previous, nullptr);
        raise (SIGBUS);
    }
}

// Runs in the middle of any access: only calls that are safe there.
static void Guard (int number, siginfo_t *information, void *context) {
    int       error   = errno;
    uintptr_t address = (uintptr_t)information->si_addr;
    uintptr_t page    = (uintptr_t)sysconf (_SC_PAGESIZE);
    if (information->si_code > 0 && Is_In_View (address)) {
        void *start = (void *)(address / page * page);
        if (mmap (start, page, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED, -1, 0) == start) {
            map_faults++;
            errno = error;
            return;
        }
    }
    errno = error;
    Pass_On (number, information, context);
}

static int Guard_Install (void) {
    if (guard_installed) return 1;
    struct sigaction action = {};
    action.sa_sigaction     = Guard;
    action.sa_flags         = SA_SIGINFO | SA_ONSTACK | SA_NODEFER;
    sigemptyset (&action.sa_mask);
    guard_installed = !sigaction (SIGBUS, &action, &guard_previous);
    return guard_installed;
}

// A free place for a view, or none.
static View *View_Place (void) {
    View_Block *block = &view_blocks;
    for (;;) {
        for (View &view : block->views)
            if (!view.end.load ()) return &view;
        if (!block->next.load ()) break;
        block = block->next.load ();
    }
    View_Block *fresh = static_cast<View_Block *> (calloc (1, sizeof (View_Block)));
    if (!fresh) return nullptr;
    block->next.store (fresh);
    return &fresh->views[0];
}

static View *View_Create (int descriptor, size_t size) {
    if (!Guard_Install ()) return nullptr;
    View *view = View_Place ();
    if (!view) return nullptr;
    void *base = mmap (nullptr, size, PROT_READ, MAP_PRIVATE, descriptor, 0);
    if (base == MAP_FAILED) return nullptr;
    view->uses = 1;
    view->start.store ((uintptr_t)base);
    view->end.store ((uintptr_t)base + size);
    return view;
}

static void View_Release (View *view) {
    if (--view->uses) return;
    uintptr_t start = view->start.load ();
    uintptr_t end   = view->end.load ();
    view->end.store (0);
    munmap ((void *)start, end - start);
}

static View *View_Find (uintptr_t start) {
    for (View_Block *block = &view_blocks; block; block = block->next.load ())
        for (View &view : block->views)
            if (view.end.load () && view.start.load () == start) return &view;
    return nullptr;
}

int System_Map_Faults (void) { return map_faults.exchange (0); }

// --- reading files ---------------------------------------------------------

struct System_File {
    int     descriptor;
    int64_t size;
    View   *view; // None until something is mapped; the file holds one use of it.
};

// What is no regular file is refused before it is opened, since opening a device can already do something. It may be
// exchanged in between, so the open file is asked again, and is opened without waiting for a FIFO's other end.
static int Open_Regular (const char *name, struct stat *facts) {
    if (stat (name, facts) || !Is_Regular (facts)) return -1;
    int descriptor = open (name, O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (descriptor < 0) return -1;
    if (!fstat (descriptor, facts) && Is_Regular (facts)) return descriptor;
    int error = errno;
    close (descriptor);
    errno = error;
    return -1;
}

System_File *System_File_Open (const char *name) {
    struct stat facts;
    int         descriptor = Open_Regular (name, &facts);
    if (descriptor < 0) return nullptr;
    System_File *file = static_cast<System_File *> (malloc (sizeof *file));
    if (!file) {
        close (descriptor);
        errno = ENOMEM;
        return nullptr;
    }
    file->descriptor = descriptor;
    file->size       = facts.st_size;
    file->view       = nullptr;
    return file;
}

void System_File_Close (System_File *file) {
    if (!file) return;
    pthread_mutex_lock (&view_lock);
    if (file->view) View_Release (file->view);
    pthread_mutex_unlock (&view_lock);
    close (file->descriptor);
    free (file);
}

int64_t System_File_Size (const System_File *file) { return file->size; }

int64_t System_File_Read (System_File *file, int64_t position, void *destination, size_t count) {
    static const size_t LARGEST = 1 << 30; // The system reads at most some 2 GB at once.

    char  *bytes = static_cast<char *> (destination);
    size_t done  = 0;
    while (done < count) {
        size_t  part = count - done < LARGEST ? count - done : LARGEST;
        ssize_t got  = pread (file->descriptor, bytes + done, part, position + (int64_t)done);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return -1;
        done += (size_t)got;
        if (!got || ((size_t)got < part && position + (int64_t)done == file->size)) break; // At the end, as it was.
    }
    return (int64_t)done;
}

int System_File_Map (System_File *file, int64_t position, size_t length, System_Mapping *mapping) {
    if (position < 0 || position > file->size || !length || length > (uint64_t)(file->size - position)) {
        errno = EINVAL;
        return 0;
    }
    pthread_mutex_lock (&view_lock);
    if (!file->view) file->view = View_Create (file->descriptor, (size_t)file->size);
    View *view = file->view;
    if (view) view->uses++;
    pthread_mutex_unlock (&view_lock);
    if (!view) return 0;
    mapping->base  = (void *)view->start.load ();
    mapping->size  = (size_t)file->size;
    mapping->bytes = static_cast<const uint8_t *> (mapping->base) + position;
    return 1;
}

void System_File_Unmap (System_Mapping *mapping) {
    if (!mapping->base) return;
    pthread_mutex_lock (&view_lock);
    View *view = View_Find ((uintptr_t)mapping->base);
    if (view) View_Release (view);
    pthread_mutex_unlock (&view_lock);
    *mapping = {};
}

void System_View_Release (const void *bytes, size_t count) {
    uintptr_t page  = (uintptr_t)sysconf (_SC_PAGESIZE);
    uintptr_t start = ((uintptr_t)bytes + page - 1) / page * page;
    uintptr_t end   = ((uintptr_t)bytes + count) / page * page;
    if (start < end) madvise ((void *)start, end - start, MADV_DONTNEED);
}

// --- memory ----------------------------------------------------------------

// Large pages start at multiples of their size, so twice as much is asked for and what is too much returned.
void *System_Pages_Take (size_t size) {
    void *base = mmap (nullptr, 2 * size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (base == MAP_FAILED) return nullptr;
    char  *start = static_cast<char *> (base);
    size_t front = (size - (uintptr_t)base % size) % size;
    if (front) munmap (start, front);
    if (front < size) munmap (start + front + size, size - front);
    madvise (start + front, size, MADV_HUGEPAGE);
    return start + front;
}

void System_Pages_Return (void *pages, size_t size) { munmap (pages, size); }

// --- copying files ---------------------------------------------------------

static int Write_All (int descriptor, const char *bytes, size_t count) {
    while (count) {
        ssize_t written = write (descriptor, bytes, count);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) {
            if (!written) errno = ENOSPC;
            return 0;
        }
        bytes += written;
        count -= (size_t)written;
    }
    return 1;
}

static int Copy_Bytes (System_File *from, int to) {
    char    bytes[65536];
    int64_t position = 0;
    for (;;) {
        int64_t count = System_File_Read (from, position, bytes, sizeof bytes);
        if (count <= 0) return !count;
        if (!Write_All (to, bytes, (size_t)count)) return 0;
        position += count;
    }
}

// What a full disk or a server refuses may be told as late as at the closing.
static int Copy_To (System_File *from, const char *to) {
    int descriptor = open (to, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (descriptor < 0) return 0;
    int copied = Copy_Bytes (from, descriptor);
    int error  = errno;
    if (close (descriptor) && copied) {
        copied = 0;
        error  = errno;
    }
    if (!copied) unlink (to);
    errno = error;
    return copied;
}

int System_File_Copy (const char *from, const char *to) {
    System_File *source = System_File_Open (from);
    if (!source) return 0;
    int copied = Copy_To (source, to);
    int error  = errno;
    System_File_Close (source);
    errno = error;
    return copied;
}

// --- log files -------------------------------------------------------------

// Opening and closing cost several times what a line costs, so the descriptors of the last files stay. What the name stands
// for is asked before each line: a file that was removed, renamed, replaced or given other permissions is opened anew. Only
// regular files are kept, since the reader of a FIFO waits for its end.
struct Kept_File {
    char         path[SYSTEM_PATH_SIZE];
    int          descriptor; // -1 for none.
    struct statx facts;      // When it was opened.
};

static const int       KEPT_FILES             = 3; // Trace, audit and error log.
static Kept_File       kept_files[KEPT_FILES] = {{"", -1, {}}, {"", -1, {}}, {"", -1, {}}};
static int             kept_next;
static pthread_mutex_t kept_lock = PTHREAD_MUTEX_INITIALIZER;

static Kept_File *Kept_Find (const char *path) {
    for (Kept_File &kept : kept_files)
        if (kept.descriptor >= 0 && !strcmp (kept.path, path)) return &kept;
    return nullptr;
}

static void Kept_Close (Kept_File *kept) {
    if (kept->descriptor >= 0) close (kept->descriptor);
    kept->descriptor = -1;
}

// Which file it is and who may do what with it. Not its times: a system that is asked for them must give the next write a
// time of its own, and that costs as much as the question.
static int Identity (int directory, const char *path, int flags, struct statx *facts) {
    return statx (directory, path, flags, STATX_TYPE | STATX_MODE | STATX_INO | STATX_UID | STATX_GID, facts);
}

static int Is_Same_File (const struct statx *a, const struct statx *b) {
    return a->stx_dev_major == b->stx_dev_major && a->stx_dev_minor == b->stx_dev_minor && a->stx_ino == b->stx_ino &&
           a->stx_mode == b->stx_mode && a->stx_uid == b->stx_uid && a->stx_gid == b->stx_gid;
}

// Takes over the descriptor.
static void Keep (const char *path, int descriptor) {
    Kept_File *kept = Kept_Find (path);
    if (!kept) kept = &kept_files[kept_next++ % KEPT_FILES];
    Kept_Close (kept);
    if (strlen (path) >= sizeof kept->path || Identity (descriptor, "", AT_EMPTY_PATH, &kept->facts) ||
        !S_ISREG (kept->facts.stx_mode)) {
        close (descriptor);
        return;
    }
    strcpy (kept->path, path);
    kept->descriptor = descriptor;
}

// A full disk, or a limit of a file's size, takes the beginning of a line and no more. It is cut off again, since the next
// line would be joined to it; unless somebody else has written behind it meanwhile. 1 when something of it stays.
static int Take_Back (int descriptor, off_t start, off_t end) {
    struct stat facts;
    return lseek (descriptor, 0, SEEK_CUR) != end || fstat (descriptor, &facts) || facts.st_size != end ||
           ftruncate (descriptor, start);
}

// 1 when the bytes stand in the file, be it in part; 0 when none of them does. Only the write says where the file ended.
static int Append (int descriptor, const char *bytes, size_t count) {
    ssize_t first;
    do first = write (descriptor, bytes, count);
    while (first < 0 && errno == EINTR);
    if (first == (ssize_t)count) return 1;
    if (first <= 0) return 0;
    off_t end = lseek (descriptor, 0, SEEK_CUR);
    if (Write_All (descriptor, bytes + first, count - (size_t)first)) return 1;
    int error = errno;
    int stays = Take_Back (descriptor, end - first, end);
    errno     = error;
    return stays;
}

// The default scratch directory is the user's own, but it may have been open to others before: links that they have left
// there must not lead the log into another file of the user's, nor may a FIFO hold the program up.
static int Open_Private (const char *path) {
    struct stat facts;
    int descriptor = open (path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | O_NOCTTY | O_NOFOLLOW | O_NONBLOCK, 0666);
    if (descriptor < 0) return -1;
    if (!fstat (descriptor, &facts) && S_ISREG (facts.st_mode) && facts.st_nlink == 1 && facts.st_uid == geteuid ())
        return descriptor;
    close (descriptor);
    errno = EPERM;
    return -1;
}

static int Open_For_Appending (const char *path) {
    char scratch[64];
    if (System_Scratch_Path (scratch, sizeof scratch) && !strncmp (path, scratch, strlen (scratch)))
        return Open_Private (path);
    return open (path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | O_NOCTTY, 0666);
}

int System_Append (const char *path, const void *bytes, size_t count) {
    int descriptor = Open_For_Appending (path);
    if (descriptor < 0) return 0;
    int written = Append (descriptor, static_cast<const char *> (bytes), count);
    pthread_mutex_lock (&kept_lock);
    Keep (path, descriptor);
    pthread_mutex_unlock (&kept_lock);
    return written;
}

int System_Append_Again (const char *path, const void *bytes, size_t count) {
    struct statx facts;
    int          written = 0;
    pthread_mutex_lock (&kept_lock);
    Kept_File *kept = Kept_Find (path);
    if (kept) {
        if (!Identity (AT_FDCWD, path, 0, &facts) && Is_Same_File (&facts, &kept->facts))
            written = Append (kept->descriptor, static_cast<const char *> (bytes), count);
        else Kept_Close (kept);
    }
    pthread_mutex_unlock (&kept_lock);
    return written;
}

void System_Append_End (void) {
    pthread_mutex_lock (&kept_lock);
    for (Kept_File &kept : kept_files) Kept_Close (&kept);
    pthread_mutex_unlock (&kept_lock);
}

// --- facts for the banner --------------------------------------------------

void System_Now (const char *format, char *result, size_t size) {
    time_t    now = time (nullptr);
    struct tm local;
    if (!localtime_r (&now, &local) || !strftime (result, size, format, &local)) result[0] = 0;
}

int System_Computer_Name (char *result, size_t size) {
    if (!size || gethostname (result, size)) return 0;
    result[size - 1] = 0;
    return 1;
}

int System_Version_Get (System_Version *version) {
    struct utsname names;
    *version          = {};
    version->platform = 3;
    if (uname (&names) < 0) return 0;
    return sscanf (names.release, "%9d.%9d.%9d", &version->major, &version->minor, &version->build) >= 1;
}

// Type and OEM identifier are the numbers that Windows gives these processors.
void System_Processor_Get (System_Processor *processor) {
    long           count = sysconf (_SC_NPROCESSORS_ONLN);
    struct utsname names;
    processor->count = count > 0 ? (unsigned)count : 1;
    processor->type  = 0;
    processor->oem   = 0xFFFF;
    if (uname (&names) < 0) return;
    if (!strcmp (names.machine, "x86_64")) {
        processor->type = 8664;
        processor->oem  = 9;
    } else if (!strcmp (names.machine, "aarch64")) {
        processor->oem = 12;
    }
}

// --- console ---------------------------------------------------------------

static System_Console_Hook console_hook;

void System_Console_Hook_Set (System_Console_Hook hook) { console_hook = hook; }

int System_Console_Open (void) {
    if (console_hook) return console_hook ();
    fflush (stdout);
    return !setvbuf (stdout, nullptr, _IONBF, 0);
}

// --- errors ----------------------------------------------------------------

unsigned System_Last_Error (void) { return (unsigned)errno; }

void System_Last_Error_Set (unsigned code) { errno = (int)code; }

unsigned System_Memory_Error (void) { return ENOMEM; }

// What stands above the low 16 bits says where a code came from, as on Windows; the error itself stands in them.
int System_Error_Message (unsigned code, char *result, size_t size) {
    unsigned    error = code & 0xFFFF;
    const char *text  = error == NOT_A_REGULAR_FILE ? "Not a regular file" : strerror ((int)error);
    if (!strncmp (text, "Unknown error", 13)) return 0;
    snprintf (result, size, "%s", text);
    return 1;
}

// --- threads ---------------------------------------------------------------

// The system's own number: pthread's is given to the next thread as soon as one has ended.
uint64_t System_Thread_Identifier (void) { return (uint64_t)gettid (); }

struct System_Mutex {
    pthread_mutex_t mutex;
};

// As on Windows: the owner may enter again, and a thread that ends inside leaves it to the next one.
System_Mutex *System_Mutex_Create (void) {
    System_Mutex *mutex = static_cast<System_Mutex *> (malloc (sizeof *mutex));
    if (!mutex) return nullptr;
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init (&attributes);
    pthread_mutexattr_settype (&attributes, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutexattr_setrobust (&attributes, PTHREAD_MUTEX_ROBUST);
    int error = pthread_mutex_init (&mutex->mutex, &attributes);
    pthread_mutexattr_destroy (&attributes);
    if (!error) return mutex;
    free (mutex);
    errno = error;
    return nullptr;
}

System_Wait System_Mutex_Wait (System_Mutex *mutex, int milliseconds) {
    struct timespec limit;
    if (milliseconds < 0) milliseconds = 0;
    clock_gettime (CLOCK_MONOTONIC, &limit);
    limit.tv_sec += milliseconds / 1000;
    limit.tv_nsec += milliseconds % 1000 * 1000000L;
    if (limit.tv_nsec >= 1000000000L) {
        limit.tv_sec++;
        limit.tv_nsec -= 1000000000L;
    }
    int error = pthread_mutex_clocklock (&mutex->mutex, CLOCK_MONOTONIC, &limit);
    if (error == EOWNERDEAD) error = pthread_mutex_consistent (&mutex->mutex);
    if (!error) return SYSTEM_WAIT_ENTERED;
    errno = error;
    return error == ETIMEDOUT ? SYSTEM_WAIT_TIMEOUT : SYSTEM_WAIT_FAILED;
}

void System_Mutex_Release (System_Mutex *mutex) { pthread_mutex_unlock (&mutex->mutex); }

void System_Mutex_Destroy (System_Mutex *mutex) {
    if (!mutex) return;
    pthread_mutex_destroy (&mutex->mutex);
    free (mutex);
}

// --- registry --------------------------------------------------------------

System_Registry_Key System_Registry_Root (void) { return 0; }

unsigned System_Registry_Open (System_Registry_Key, const char *, System_Registry_Key *) { return ENOENT; }

unsigned System_Registry_Close (System_Registry_Key) { return EBADF; }

unsigned System_Registry_Read (System_Registry_Key, const char *, char *, size_t) { return ENOENT; }
