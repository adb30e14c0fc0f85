// Buffered reading. Small reads come from one buffer, large ones go straight to where they are wanted.
#include "util/file.h"

#include "util/memory.h"

static const char *const MODULE = "file";

// --- faults made by tests --------------------------------------------------

struct Fault {
    long     countdown;
    unsigned error;
};

static Fault faults[FILE_OPERATIONS];

int File_Watched;

void File_Fail_At (File_Operation operation, long n, unsigned error) {
    faults[operation] = {n, error};
    File_Watched      = 0;
    for (const Fault &fault : faults) File_Watched |= fault.countdown > 0;
}

// 1 when this operation is the one that fails; the last error is set then.
static int Fails_Now (File_Operation operation) {
    Fault *fault = &faults[operation];
    if (fault->countdown <= 0 || --fault->countdown > 0) return 0;
    unsigned error = fault->error;
    File_Fail_At (operation, 0, error);
    System_Last_Error_Set (error);
    return 1;
}

// --- reading ---------------------------------------------------------------

File *File_Open (const char *name) {
    if (Fails_Now (FILE_OPEN)) return nullptr;
    System_File *system = System_File_Open (name);
    if (!system) return nullptr;
    File *file = static_cast<File *> (Memory_Malloc (nullptr, HERE ("file", 1, sizeof *file), sizeof *file));
    if (!file) {
        System_File_Close (system);
        System_Last_Error_Set (System_Memory_Error ());
        return nullptr;
    }
    file->system       = system;
    file->size         = System_File_Size (system);
    file->position     = 0;
    file->buffer_start = 0;
    file->buffer_count = 0;
    return file;
}

void File_Close (File *file) {
    if (!file) return;
    System_File_Close (file->system);
    Memory_Free (file);
}

int File_Seek (File *file, int64_t position) {
    if (Fails_Now (FILE_SEEK) || position < 0) return 0;
    file->position = position;
    return 1;
}

int64_t File_Tell_Watched (const File *file) { return Fails_Now (FILE_TELL) ? -1 : file->position; }

// As many of the count bytes at position as the buffer holds from there on.
static size_t Take_Buffered (const File *file, int64_t position, char *destination, size_t count) {
    int64_t offset = position - file->buffer_start;
    if (offset < 0 || (uint64_t)offset >= file->buffer_count) return 0;
    size_t there = file->buffer_count - (size_t)offset;
    if (there > count) there = count;
    memcpy (destination, file->buffer + offset, there);
    return there;
}

static int Fill (File *file, int64_t position) {
    file->buffer_count = 0;
    int64_t got        = System_File_Read (file->system, position, file->buffer, sizeof file->buffer);
    if (got < 0) return 0;
    file->buffer_start = position;
    file->buffer_count = (size_t)got;
    return 1;
}

// Bytes delivered, or -1. Leaves the position alone.
static int64_t Read_At (File *file, int64_t position, char *destination, size_t count) {
    size_t done = Take_Buffered (file, position, destination, count);
    if (done == count) return (int64_t)count;
    if (count - done >= sizeof file->buffer) {
        int64_t got = System_File_Read (file->system, position + (int64_t)done, destination + done, count - done);
        return got < 0 ? -1 : (int64_t)done + got;
    }
    if (!Fill (file, position + (int64_t)done)) return -1;
    done += Take_Buffered (file, position + (int64_t)done, destination + done, count - done);
    return (int64_t)done;
}

int64_t File_Read (File *file, void *destination, size_t count) {
    if (Fails_Now (FILE_READ)) {
        if (faults[FILE_READ].error) return -1;
        count /= 2;
    }
    if (count > (uint64_t)(INT64_MAX - file->position)) count = (size_t)(INT64_MAX - file->position);
    int64_t got = Read_At (file, file->position, static_cast<char *> (destination), count);
    if (got > 0) file->position += got;
    return got;
}

int File_Map (File *file, size_t length, System_Mapping *mapping) {
    if (Fails_Now (FILE_MAP) || !System_File_Map (file->system, file->position, length, mapping)) return 0;
    file->position += (int64_t)length;
    return 1;
}
