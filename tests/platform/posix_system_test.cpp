// What Linux does behind platform/system.h.
#include "platform/system.h"

#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <signal.h>
#include <stdlib.h>
#include <string.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/utsname.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "tests/platform/posix_process.h"
#include "tests/support/temporary.h"
#include "util/error_text.h"
#include "util/file.h"

static mode_t Mode (const std::string &path) {
    struct stat facts;
    return lstat (path.c_str (), &facts) ? 0 : facts.st_mode & 07777;
}

// --- exit status and paths -------------------------------------------------

TEST (PosixSystem, ExitStatusHasEightBits) {
    EXPECT_EQ (System_Exit_Status (0), 0);
    EXPECT_EQ (System_Exit_Status (12), 12);
    EXPECT_EQ (System_Exit_Status (254), 254);
    EXPECT_EQ (System_Exit_Status (255), 254);
    EXPECT_EQ (System_Exit_Status (256), 254);
    EXPECT_EQ (System_Exit_Status (INT_MAX), 254);
    EXPECT_EQ (System_Exit_Status (-1), 255);
    EXPECT_EQ (System_Exit_Status (-3), 255);
    EXPECT_EQ (System_Exit_Status (INT_MIN), 255);
}

TEST (PosixSystem, SeparatorsAndLineEnd) {
    EXPECT_EQ (System_Separator (), '/');
    EXPECT_EQ (System_Is_Separator ('/'), 1);
    EXPECT_EQ (System_Is_Separator ('\\'), 0);
    EXPECT_STREQ (System_Line_End (), "\n");
    EXPECT_EQ (System_Directory_Limit (), 4095u);
}

// An environment variable's value while a test runs; none takes it away.
class Variable {
public:
    Variable (const char *variable, const char *value) : name (variable) {
        const char *old = getenv (name);
        was_set         = old != nullptr;
        if (old) before = old;
        if (value) setenv (name, value, 1);
        else unsetenv (name);
    }

    ~Variable () {
        if (was_set) setenv (name, before.c_str (), 1);
        else unsetenv (name);
    }

private:
    const char *name;
    bool        was_set;
    std::string before;
};

static std::string User_Path (const char *appdata, const char *xdg, const char *home) {
    Variable first ("APPDATA", appdata), second ("XDG_DATA_HOME", xdg), third ("HOME", home);
    char     path[SYSTEM_PATH_SIZE] = "untouched";
    int      found                  = System_User_Data_Path (path, sizeof path);
    EXPECT_EQ (found, path[0] ? 1 : 0);
    return path;
}

TEST (PosixSystem, UserDataPathByEnvironment) {
    EXPECT_EQ (User_Path ("/app", "/xdg", "/home/me"), "/app/");
    EXPECT_EQ (User_Path ("/app/", "/xdg", "/home/me"), "/app/");
    EXPECT_EQ (User_Path (nullptr, "/xdg", "/home/me"), "/xdg/");
    EXPECT_EQ (User_Path ("", "/xdg/", "/home/me"), "/xdg/");
    EXPECT_EQ (User_Path (nullptr, nullptr, "/home/me"), "/home/me/.local/share/");
    EXPECT_EQ (User_Path (nullptr, "", "/home/me/"), "/home/me/.local/share/");
    EXPECT_EQ (User_Path (nullptr, "relative", "/home/me"), "/home/me/.local/share/");
    EXPECT_EQ (User_Path (nullptr, nullptr, nullptr), "");
    EXPECT_EQ (User_Path (std::string (5000, 'x').c_str (), nullptr, nullptr), "");
}

TEST (PosixSystem, PathsThatDoNotFitAreRefused) {
    Variable appdata ("APPDATA", "/1234");
    char     path[7];
    EXPECT_EQ (System_User_Data_Path (path, 7), 1);
    EXPECT_STREQ (path, "/1234/");
    EXPECT_EQ (System_User_Data_Path (path, 6), 0);
    EXPECT_STREQ (path, "");
    EXPECT_EQ (System_User_Data_Path (path, 0), 0);
    EXPECT_EQ (System_Install_Path (path, 7), 0);
    EXPECT_EQ (System_Scratch_Path (path, 7), 0);
}

TEST (PosixSystem, ScratchPathNamesTheUser) {
    char path[SYSTEM_PATH_SIZE];
    EXPECT_EQ (System_Scratch_Path (path, sizeof path), 1);
    EXPECT_EQ (path, "/tmp/tagwright-" + std::to_string (geteuid ()) + "/");
}

static std::string Output (const std::string &command, int *status = nullptr) {
    std::string text;
    FILE       *pipe = popen (command.c_str (), "r");
    for (int c; pipe && (c = fgetc (pipe)) != EOF;) text += static_cast<char> (c);
    int result = pipe ? pclose (pipe) : -1;
    if (status) *status = result;
    return text;
}

class PosixInstallPath : public testing::Test {
protected:
    void SetUp () override {
        std::filesystem::create_directories (directory.File ("bin"));
        std::filesystem::create_directories (share);
        std::filesystem::copy_file (PLATFORM_CHILD, directory.File ("bin/child"));
    }

    std::string Found () { return Output (bin + "child install-path"); }

    Temporary_Directory directory;
    std::string         bin   = directory.path + "bin/";
    std::string         share = directory.path + "share/tagwright/";
};

TEST_F (PosixInstallPath, WithoutDataItIsTheSystems) { EXPECT_EQ (Found (), "/usr/share/tagwright/"); }

TEST_F (PosixInstallPath, TablesBesideTheProgram) {
    std::filesystem::create_directory (bin + "DICOM Tables");
    EXPECT_EQ (Found (), bin);
}

TEST_F (PosixInstallPath, ConfigurationBesideTheProgramComesBeforeShare) {
    directory.Write ("bin/Tagwright.ini", std::string ());
    directory.Write ("share/tagwright/Tagwright.ini", std::string ());
    EXPECT_EQ (Found (), bin);
}

TEST_F (PosixInstallPath, ConfigurationInShare) {
    directory.Write ("share/tagwright/Tagwright.ini", std::string ());
    EXPECT_EQ (Found (), bin + "../share/tagwright/");
}

TEST_F (PosixInstallPath, TablesInShare) {
    std::filesystem::create_directory (share + "DICOM Tables");
    EXPECT_EQ (Found (), bin + "../share/tagwright/");
}

TEST_F (PosixInstallPath, ProgramCalledByALinkIsFoundWhereItLies) {
    directory.Write ("bin/Tagwright.ini", std::string ());
    std::filesystem::create_symlink (bin + "child", directory.File ("link"));
    EXPECT_EQ (Output (directory.File ("link") + " install-path"), bin);
}

// --- directories and files -------------------------------------------------

class PosixFiles : public testing::Test {
protected:
    void SetUp () override {
        name = directory.Write ("file", std::string ("twelve bytes"));
        std::filesystem::create_directory (directory.File ("directory"));
        std::filesystem::create_symlink (name, directory.File ("link"));
        std::filesystem::create_symlink (directory.File ("none"), directory.File ("dangling"));
        ASSERT_EQ (mkfifo (directory.File ("fifo").c_str (), 0600), 0);

        struct sockaddr_un address = {};
        address.sun_family         = AF_UNIX;
        memcpy (address.sun_path, directory.File ("socket").c_str (), directory.File ("socket").size () + 1);
        int descriptor = socket (AF_UNIX, SOCK_STREAM, 0);
        ASSERT_EQ (bind (descriptor, reinterpret_cast<struct sockaddr *> (&address), sizeof address), 0);
        close (descriptor);
    }

    std::string Path (const char *below) const { return directory.File (below); }

    Temporary_Directory directory;
    std::string         name;
};

TEST_F (PosixFiles, IsDirectory) {
    EXPECT_EQ (System_Is_Directory (directory.path.c_str ()), 1);
    EXPECT_EQ (System_Is_Directory (Path ("directory").c_str ()), 1);
    EXPECT_EQ (System_Is_Directory (name.c_str ()), 0);
    EXPECT_EQ (System_Is_Directory (Path ("none").c_str ()), 0);
    EXPECT_EQ (System_Is_Directory (""), 0);
}

TEST_F (PosixFiles, FileExistsSetsTheErrorWhenNot) {
    for (const char *there : {"file", "link", "directory", "fifo", "socket"})
        EXPECT_EQ (System_File_Exists (Path (there).c_str ()), 1);
    System_Last_Error_Set (0);
    EXPECT_EQ (System_File_Exists (Path ("none").c_str ()), 0);
    EXPECT_EQ (System_Last_Error (), static_cast<unsigned> (ENOENT));
    EXPECT_EQ (System_File_Exists (Path ("dangling").c_str ()), 0);
    EXPECT_EQ (System_File_Exists (Path ("file/below").c_str ()), 0);
    EXPECT_EQ (System_Last_Error (), static_cast<unsigned> (ENOTDIR));
}

TEST_F (PosixFiles, SizeOfRegularFilesOnly) {
    int64_t size = -1;
    EXPECT_EQ (System_File_Size_Of (name.c_str (), &size), 1);
    EXPECT_EQ (size, 12);
    for (const char *other : {"directory", "fifo", "socket", "none"})
        EXPECT_EQ (System_File_Size_Of (Path (other).c_str (), &size), 0);
}

TEST_F (PosixFiles, DirectoryMakeIsOneLevel) {
    EXPECT_EQ (System_Directory_Make (Path ("new").c_str ()), 1);
    EXPECT_EQ (System_Directory_Make (Path ("new").c_str ()), 1);
    EXPECT_EQ (System_Directory_Make (Path ("none/new").c_str ()), 0);
    EXPECT_EQ (System_Last_Error (), static_cast<unsigned> (ENOENT));
    EXPECT_EQ (System_Directory_Make (name.c_str ()), 0);
    EXPECT_EQ (System_Last_Error (), static_cast<unsigned> (EEXIST));
}

TEST_F (PosixFiles, DeleteTakesFilesAndNoDirectories) {
    EXPECT_EQ (System_File_Delete (name.c_str ()), 1);
    EXPECT_EQ (System_File_Delete (name.c_str ()), 0);
    EXPECT_EQ (System_File_Delete (Path ("directory").c_str ()), 0);
    EXPECT_TRUE (std::filesystem::exists (Path ("directory")));
}

TEST_F (PosixFiles, PrivateDirectoryIsForItsUserOnly) {
    mode_t before = umask (0);
    EXPECT_EQ (System_Private_Directory_Make (Path ("private/").c_str ()), 1);
    umask (before);
    EXPECT_EQ (Mode (Path ("private")), 0700u);
    EXPECT_EQ (System_Private_Directory_Make (Path ("private").c_str ()), 1);
}

TEST_F (PosixFiles, PrivateDirectoryIsTightened) {
    for (mode_t mode : {0777u, 0755u, 0710u, 0701u, 01777u, 0500u}) {
        chmod (Path ("directory").c_str (), mode);
        EXPECT_EQ (System_Private_Directory_Make (Path ("directory/").c_str ()), 1);
        EXPECT_EQ (Mode (Path ("directory")), 0700u);
    }
}

TEST_F (PosixFiles, PrivateDirectoryIsRefusedWhenPlanted) {
    std::filesystem::create_directory_symlink (Path ("directory"), Path ("planted"));
    for (const char *planted : {"planted", "planted/", "planted///", "file", "fifo", "dangling"}) {
        EXPECT_EQ (System_Private_Directory_Make (Path (planted).c_str ()), 0) << planted;
        EXPECT_EQ (System_Last_Error (), static_cast<unsigned> (ENOTDIR)) << planted;
    }
    EXPECT_EQ (System_Private_Directory_Make (Path ("none/private/").c_str ()), 0);
    EXPECT_EQ (System_Private_Directory_Make (std::string (5000, 'x').c_str ()), 0);
    EXPECT_EQ (System_Last_Error (), static_cast<unsigned> (ENAMETOOLONG));
}

TEST_F (PosixFiles, PrivateDirectoryOfAnotherUserIsRefused) {
    std::string others = "/usr/"; // The superuser's; as superuser, one that is given away.
    if (!geteuid ()) {
        others = Path ("directory");
        ASSERT_EQ (chown (others.c_str (), 54321, 54321), 0);
    }
    EXPECT_EQ (System_Private_Directory_Make (others.c_str ()), 0);
    EXPECT_EQ (System_Last_Error (), static_cast<unsigned> (EPERM));
}

// --- listing and copying ---------------------------------------------------

struct Names {
    std::multiset<std::string> names;
    size_t                     limit = 100;
};

static int Collect (void *context, const char *name) {
    Names *names = static_cast<Names *> (context);
    names->names.insert (name);
    return names->names.size () < names->limit;
}

TEST_F (PosixFiles, ListingNamesWhatIsDirectlyInIt) {
    directory.Write ("directory/below", std::string ("x"));
    for (const std::string &path : {directory.path, directory.path.substr (0, directory.path.size () - 1)}) {
        Names names;
        EXPECT_EQ (System_Directory_List (path.c_str (), Collect, &names), 1);
        EXPECT_EQ (names.names,
                   (std::multiset<std::string> {"dangling", "directory", "fifo", "file", "link", "socket"}));
    }
}

TEST_F (PosixFiles, ListingEndsWhenAsked) {
    Names names;
    names.limit = 2;
    EXPECT_EQ (System_Directory_List (directory.path.c_str (), Collect, &names), 1);
    EXPECT_EQ (names.names.size (), 2u);
}

TEST_F (PosixFiles, ListingNeedsADirectory) {
    Names names;
    EXPECT_EQ (System_Directory_List (Path ("none").c_str (), Collect, &names), 0);
    EXPECT_EQ (System_Last_Error (), static_cast<unsigned> (ENOENT));
    EXPECT_EQ (System_Directory_List (name.c_str (), Collect, &names), 0);
    EXPECT_EQ (System_Last_Error (), static_cast<unsigned> (ENOTDIR));
    EXPECT_TRUE (names.names.empty ());
}

TEST_F (PosixFiles, CopyHasTheSameBytes) {
    for (size_t size : {0u, 1u, 65536u, 200000u}) {
        std::string bytes;
        for (size_t i = 0; i < size; i++) bytes += static_cast<char> (i * 7 + i / 251);
        std::string from = directory.Write ("from", bytes);
        EXPECT_EQ (System_File_Copy (from.c_str (), Path ("to").c_str ()), 1);
        EXPECT_EQ (Read_Whole (Path ("to")), bytes);
        unlink (Path ("to").c_str ());
    }
}

TEST_F (PosixFiles, CopyNeverReplaces) {
    directory.Write ("other", std::string ("mine"));
    for (const char *there : {"other", "directory", "fifo", "dangling", "link"}) {
        EXPECT_EQ (System_File_Copy (name.c_str (), Path (there).c_str ()), 0);
        EXPECT_EQ (System_Last_Error (), static_cast<unsigned> (EEXIST)) << there;
    }
    EXPECT_EQ (Read_Whole (Path ("other")), "mine");
    EXPECT_EQ (Read_Whole (name), "twelve bytes");
}

TEST_F (PosixFiles, CopyTakesRegularFilesOnly) {
    for (const char *from : {"none", "directory", "fifo", "socket"}) {
        EXPECT_EQ (System_File_Copy (Path (from).c_str (), Path ("to").c_str ()), 0);
        EXPECT_FALSE (std::filesystem::exists (Path ("to"))) << from;
    }
    EXPECT_EQ (System_File_Copy (name.c_str (), Path ("none/to").c_str ()), 0);
    EXPECT_EQ (System_Last_Error (), static_cast<unsigned> (ENOENT));
}

// A limit for the size of files stands for a full disk.
TEST_F (PosixFiles, CopyThatFailsLeavesNothing) {
    std::string from = directory.Write ("from", std::string (200000, 'x'));
    EXPECT_EQ (In_Child ([&] {
                   struct rlimit limit = {100000, 100000};
                   signal (SIGXFSZ, SIG_IGN);
                   setrlimit (RLIMIT_FSIZE, &limit);
                   if (System_File_Copy (from.c_str (), Path ("to").c_str ())) return 1;
                   return System_Last_Error () == EFBIG ? 0 : 2;
               }),
               0);
    EXPECT_FALSE (std::filesystem::exists (Path ("to")));
}

// --- reading files ---------------------------------------------------------

TEST_F (PosixFiles, OpenTakesRegularFilesAndLinksToThem) {
    for (const char *there : {"file", "link"}) {
        System_File *file = System_File_Open (Path (there).c_str ());
        ASSERT_NE (file, nullptr);
        EXPECT_EQ (System_File_Size (file), 12);
        System_File_Close (file);
    }
    System_File_Close (nullptr);
}

TEST_F (PosixFiles, OpenRefusesWhatIsNoRegularFileWithoutWaiting) {
    EXPECT_EQ (System_File_Open (Path ("directory").c_str ()), nullptr);
    EXPECT_STREQ (Error_Text (0), "[ERROR_DIRECTORY_NOT_SUPPORTED] Is a directory");
    for (const std::string &other :
         {Path ("fifo"), Path ("socket"), std::string ("/dev/null"), std::string ("/dev/zero")}) {
        EXPECT_EQ (System_File_Open (other.c_str ()), nullptr) << other;
        EXPECT_STREQ (Error_Text (0), "[ERROR_BAD_FILE_TYPE] Not a regular file") << other;
    }
    for (const char *missing : {"none", "dangling"}) {
        EXPECT_EQ (System_File_Open (Path (missing).c_str ()), nullptr);
        EXPECT_STREQ (Error_Text (0), "[ERROR_FILE_NOT_FOUND] No such file or directory");
    }
}

TEST_F (PosixFiles, OpenSaysThatAccessIsDenied) {
    chmod (name.c_str (), 0);
    chmod (directory.path.c_str (), 0755);
    EXPECT_EQ (In_Child ([this] {
                   if (!geteuid () && setresuid (54321, 54321, 54321)) return 2;
                   if (System_File_Open (name.c_str ())) return 3;
                   return strcmp (Error_Text (0), "[ERROR_ACCESS_DENIED] Permission denied") ? 4 : 0;
               }),
               0);
}

TEST_F (PosixFiles, OpenFilesAreNotInherited) {
    System_File *file  = System_File_Open (name.c_str ());
    int          found = 0;
    for (int descriptor = 3; descriptor < 100; descriptor++) {
        struct stat one, other;
        if (fstat (descriptor, &one) || stat (name.c_str (), &other) || one.st_ino != other.st_ino ||
            one.st_dev != other.st_dev)
            continue;
        found++;
        EXPECT_TRUE (fcntl (descriptor, F_GETFD) & FD_CLOEXEC);
    }
    EXPECT_EQ (found, 1);
    System_File_Close (file);
}

TEST_F (PosixFiles, ReadAtAnyPosition) {
    System_File *file      = System_File_Open (name.c_str ());
    char         bytes[32] = "";
    EXPECT_EQ (System_File_Read (file, 0, bytes, 6), 6);
    EXPECT_STREQ (bytes, "twelve");
    EXPECT_EQ (System_File_Read (file, 7, bytes, sizeof bytes), 5);
    EXPECT_EQ (std::string (bytes, 5), "bytes");
    EXPECT_EQ (System_File_Read (file, 12, bytes, 1), 0);
    EXPECT_EQ (System_File_Read (file, 1000, bytes, 1), 0);
    EXPECT_EQ (System_File_Read (file, 0, bytes, 0), 0);
    EXPECT_EQ (System_File_Read (file, -1, bytes, 1), -1);
    EXPECT_EQ (System_Last_Error (), static_cast<unsigned> (EINVAL));
    System_File_Close (file);
}

// A regular file whose first page can't be read: the memory of this process.
TEST_F (PosixFiles, WhatCannotBeReadFailsInSmallAndLargeReads) {
    File             *file = File_Open ("/proc/self/mem");
    std::vector<char> bytes (3 * FILE_BUFFER_SIZE, 'x');
    ASSERT_NE (file, nullptr);
    for (size_t count : {size_t (1), bytes.size ()}) {
        System_Last_Error_Set (0);
        EXPECT_EQ (File_Read (file, bytes.data (), count), -1) << count;
        EXPECT_EQ (System_Last_Error (), static_cast<unsigned> (EIO));
        EXPECT_EQ (File_Tell (file), 0);
    }
    ASSERT_EQ (File_Seek (file, static_cast<int64_t> (reinterpret_cast<uintptr_t> (name.c_str ()))), 1);
    EXPECT_EQ (File_Read (file, bytes.data (), 4), 4) << "a failure leaves the file usable";
    EXPECT_EQ (std::string (bytes.data (), 4), name.substr (0, 4));
    File_Close (file);
}

// --- mapping ---------------------------------------------------------------

static const size_t PAGE = static_cast<size_t> (sysconf (_SC_PAGESIZE));

TEST_F (PosixFiles, MapRefusesWhatIsNotInTheFile) {
    System_File   *file    = System_File_Open (name.c_str ());
    System_Mapping mapping = {};
    EXPECT_EQ (System_File_Map (file, -1, 1, &mapping), 0);
    EXPECT_EQ (System_File_Map (file, 0, 0, &mapping), 0);
    EXPECT_EQ (System_File_Map (file, 0, 13, &mapping), 0);
    EXPECT_EQ (System_File_Map (file, 12, 1, &mapping), 0);
    EXPECT_EQ (System_File_Map (file, INT64_MAX, SIZE_MAX, &mapping), 0);
    EXPECT_EQ (System_Last_Error (), static_cast<unsigned> (EINVAL));
    std::filesystem::resize_file (name, 100); // Grown since it was opened.
    EXPECT_EQ (System_File_Map (file, 0, 13, &mapping), 0);
    EXPECT_EQ (System_File_Map (file, 11, 1, &mapping), 1);
    EXPECT_EQ (mapping.bytes[0], 's');
    System_File_Unmap (&mapping);
    EXPECT_EQ (mapping.base, nullptr);
    System_File_Unmap (&mapping);
    System_File_Close (file);

    directory.Write ("empty", std::string ());
    file = System_File_Open (Path ("empty").c_str ());
    EXPECT_EQ (System_File_Map (file, 0, 1, &mapping), 0);
    System_File_Close (file);
}

TEST_F (PosixFiles, ShrunkFileReadsAsZeroAndIsCounted) {
    std::string    large   = directory.Write ("large", std::string (5 * PAGE, 'x'));
    System_File   *file    = System_File_Open (large.c_str ());
    System_Mapping mapping = {};
    ASSERT_EQ (System_File_Map (file, 0, 5 * PAGE, &mapping), 1);
    EXPECT_EQ (mapping.bytes[4 * PAGE], 'x');
    EXPECT_EQ (System_Map_Faults (), 0);
    std::filesystem::resize_file (large, PAGE + PAGE / 2);

    size_t kept = 0, zero = 0;
    for (size_t i = 0; i < 5 * PAGE; i++) {
        kept += mapping.bytes[i] == 'x';
        zero += mapping.bytes[i] == 0;
    }
    EXPECT_EQ (kept, PAGE + PAGE / 2);
    EXPECT_EQ (zero, 3 * PAGE + PAGE / 2);
    EXPECT_EQ (System_Map_Faults (), 3);
    EXPECT_EQ (System_Map_Faults (), 0);
    EXPECT_EQ (mapping.bytes[4 * PAGE], 0); // The page is there now.
    EXPECT_EQ (System_Map_Faults (), 0);
    System_File_Unmap (&mapping);
    System_File_Close (file);
}

TEST_F (PosixFiles, ShrunkFileIsFoundAmongManyViews) {
    std::vector<System_Mapping> mappings (300);
    for (size_t i = 0; i < mappings.size (); i++) {
        System_File *file =
            System_File_Open (directory.Write ("f" + std::to_string (i), std::string (2 * PAGE, 'x')).c_str ());
        ASSERT_EQ (System_File_Map (file, 1, 2 * PAGE - 1, &mappings[i]), 1);
        System_File_Close (file);
    }
    for (size_t i : {0, 63, 64, 299}) {
        std::filesystem::resize_file (Path (("f" + std::to_string (i)).c_str ()), 0);
        EXPECT_EQ (mappings[i].bytes[PAGE], 0);
        EXPECT_EQ (System_Map_Faults (), 1);
    }
    EXPECT_EQ (mappings[1].bytes[0], 'x');
    for (System_Mapping &mapping : mappings) System_File_Unmap (&mapping);
}

TEST_F (PosixFiles, MappingsOfAFileShareOneView) {
    System_File   *file  = System_File_Open (name.c_str ());
    System_Mapping first = {}, second = {};
    ASSERT_EQ (System_File_Map (file, 0, 6, &first), 1);
    ASSERT_EQ (System_File_Map (file, 7, 5, &second), 1);
    EXPECT_EQ (first.base, second.base);
    EXPECT_EQ (reinterpret_cast<uintptr_t> (first.base) % PAGE, 0u);
    System_File_Close (file);
    System_File_Unmap (&first);
    EXPECT_EQ (memcmp (second.bytes, "bytes", 5), 0);
    System_File_Unmap (&second);
}

// Pages of files in the memory of this process.
static long Shared_Pages () {
    long  size = 0, resident = 0, shared = 0;
    FILE *file = fopen ("/proc/self/statm", "r");
    if (file) {
        EXPECT_EQ (fscanf (file, "%ld %ld %ld", &size, &resident, &shared), 3);
        fclose (file);
    }
    return shared;
}

TEST_F (PosixFiles, PagesThatWereLookedAtAreGivenBack) {
    static const size_t LENGTH = 8 << 20;

    std::string    large = directory.Write ("large", std::string (LENGTH, 'x'));
    System_File   *file  = System_File_Open (large.c_str ());
    System_Mapping view  = {};
    long           sum = 0, before = Shared_Pages ();
    ASSERT_EQ (System_File_Map (file, 1, LENGTH - 1, &view), 1);
    for (size_t i = 0; i < LENGTH - 1; i += 512) sum += view.bytes[i];
    EXPECT_EQ (sum, 'x' * static_cast<long> (LENGTH / 512));
    EXPECT_GE (Shared_Pages () - before, static_cast<long> (LENGTH / PAGE) - 64);
    System_View_Release (view.bytes, LENGTH - 1);
    System_View_Release (view.bytes + 5, 0);
    System_View_Release (view.bytes + 5, 100); // No whole page.
    EXPECT_LE (Shared_Pages () - before, 64);
    EXPECT_EQ (view.bytes[0], 'x');
    EXPECT_EQ (view.bytes[LENGTH - 2], 'x');
    System_File_Unmap (&view);
    System_File_Close (file);
}

class PosixGuard : public testing::Test {
protected:
    // What a child wrote, or "signal N".
    std::string Run (const std::string &previous, const std::string &fault) {
        std::string name   = directory.Write ("mapped", std::string (100, 'x'));
        int         status = 0;
        std::string text   = Output (
              std::string ("exec '") + PLATFORM_CHILD + "' guard " + previous + " " + fault + " " + name, &status);
        return WIFSIGNALED (status) ? "signal " + std::to_string (WTERMSIG (status)) : text;
    }

    const std::string   killed = "signal " + std::to_string (SIGBUS);
    Temporary_Directory directory;
};

TEST_F (PosixGuard, OurFaultsGoOnWhoeverWasThereBefore) {
    for (const char *previous : {"default", "ignore", "plain", "full"})
        EXPECT_EQ (Run (previous, "ours"), "went on with 0") << previous;
}

TEST_F (PosixGuard, OtherFaultsGoToThePreviousHandler) {
    EXPECT_EQ (Run ("default", "foreign"), killed);
    EXPECT_EQ (Run ("ignore", "foreign"), killed);
    EXPECT_EQ (Run ("plain", "foreign"), "plain");
    EXPECT_EQ (Run ("full", "foreign"), "full");
}

TEST_F (PosixGuard, SentSignalsGoToThePreviousHandler) {
    EXPECT_EQ (Run ("default", "sent"), killed);
    EXPECT_EQ (Run ("ignore", "sent"), "went on with 0");
    EXPECT_EQ (Run ("plain", "sent"), "plain");
    EXPECT_EQ (Run ("full", "sent"), "full");
}

// --- facts -----------------------------------------------------------------

TEST (PosixSystem, ComputerName) {
    char name[256], expected[256];
    ASSERT_EQ (gethostname (expected, sizeof expected), 0);
    EXPECT_EQ (System_Computer_Name (name, sizeof name), 1);
    EXPECT_STREQ (name, expected);
    EXPECT_EQ (System_Computer_Name (name, 1), 0);
    EXPECT_EQ (System_Computer_Name (name, 0), 0);
}

TEST (PosixSystem, VersionIsTheKernels) {
    System_Version version;
    struct utsname names;
    EXPECT_EQ (System_Version_Get (&version), 1);
    uname (&names);
    EXPECT_EQ (version.platform, 3);
    EXPECT_EQ (version.major, atoi (names.release));
    EXPECT_EQ (std::string (names.release).find (std::to_string (version.major) + "." + std::to_string (version.minor)),
               0u);
    EXPECT_EQ (version.has_service_pack, 0);
}

TEST (PosixSystem, ProcessorsAreCounted) {
    System_Processor processor = {0, 1, 1};
    System_Processor_Get (&processor);
    EXPECT_GE (processor.count, 1u);
    struct utsname names;
    uname (&names);
    EXPECT_EQ (processor.type, strcmp (names.machine, "x86_64") ? 0u : 8664u);
}

TEST (PosixSystem, ConsoleIsUnbufferedStandardOutput) {
    int ends[2];
    ASSERT_EQ (pipe (ends), 0);
    EXPECT_EQ (In_Child ([&ends] {
                   dup2 (ends[1], 1);
                   if (!System_Console_Open ()) return 2;
                   printf ("at once");
                   return 0; // By _exit, which writes out nothing.
               }),
               0);
    char text[8] = "";
    close (ends[1]);
    EXPECT_EQ (read (ends[0], text, 7), 7);
    EXPECT_STREQ (text, "at once");
    close (ends[0]);
}

// --- errors ----------------------------------------------------------------

TEST (PosixSystem, LastErrorIsErrno) {
    System_Last_Error_Set (ENOSPC);
    EXPECT_EQ (errno, ENOSPC);
    errno = EIO;
    EXPECT_EQ (System_Last_Error (), static_cast<unsigned> (EIO));
}

TEST (PosixSystem, ErrorMessagesAreTheCLibrarys) {
    char text[64];
    EXPECT_EQ (System_Error_Message (ENOENT, text, sizeof text), 1);
    EXPECT_STREQ (text, "No such file or directory");
    EXPECT_EQ (System_Error_Message (0, text, sizeof text), 1);
    EXPECT_STREQ (text, "Success");
    EXPECT_EQ (System_Error_Message (ENOENT, text, 8), 1);
    EXPECT_STREQ (text, "No such");
    EXPECT_EQ (System_Error_Message (4000, text, sizeof text), 0);
    EXPECT_EQ (System_Error_Message (0xFFFFFFFF, text, sizeof text), 0);
}

TEST (PosixSystem, ErrorNamesAreTheOnesOfWindows) {
    const struct {
        int         code;
        const char *name;
    } names[] = {{0, "[ERROR_SUCCESS]"},
                 {ENOENT, "[ERROR_FILE_NOT_FOUND]"},
                 {EACCES, "[ERROR_ACCESS_DENIED]"},
                 {EEXIST, "[ERROR_FILE_EXISTS]"},
                 {ENOTDIR, "[ERROR_PATH_NOT_FOUND]"},
                 {ENOMEM, "[ERROR_NOT_ENOUGH_MEMORY]"},
                 {ENOSPC, "[ERROR_DISK_FULL]"},
                 {EROFS, "[ERROR_WRITE_PROTECT]"},
                 {EMFILE, "[ERROR_TOO_MANY_OPEN_FILES]"},
                 {EINVAL, "[ERROR_INVALID_PARAMETER]"},
                 {ENAMETOOLONG, "[ERROR_FILENAME_EXCED_RANGE]"},
                 {EIO, "[ERROR_IO_DEVICE]"},
                 {ETIMEDOUT, "[ERROR_TIMEOUT]"}};
    for (const auto &one : names) EXPECT_STREQ (System_Error_Name (static_cast<unsigned> (one.code)), one.name);
    EXPECT_EQ (System_Error_Name (ESRCH), nullptr);
    EXPECT_EQ (System_Error_Name (4000), nullptr);
    for (unsigned code = 0; code < 70000; code++) {
        const char *name = System_Error_Name (code);
        if (!name) continue;
        EXPECT_EQ (strncmp (name, "[ERROR_", 7), 0);
        EXPECT_EQ (name[strlen (name) - 1], ']');
    }
}

TEST (PosixSystem, ErrorTextWithoutNameHasTheMessageOnly) { EXPECT_STREQ (Error_Text (ESRCH), " No such process"); }

TEST (PosixSystem, ErrorTextHasTheLabelOfItsFacility) {
    const char *const labels[] = {"",
                                  "(facility=RPC) ",
                                  "(facility=Dispatch) ",
                                  "(facility=Storage) ",
                                  "(facility=ITF) ",
                                  "",
                                  "",
                                  "(facility=Win32) ",
                                  "(facility=Windows) ",
                                  "(facility=SSPI) ",
                                  "(facility=Control) ",
                                  "(facility=CERT) ",
                                  "(facility=Internet) ",
                                  "",
                                  ""};
    for (unsigned facility = 0; facility < 15; facility++)
        EXPECT_EQ (Error_Text (facility << 16 | ENOENT),
                   labels[facility] + std::string ("[ERROR_FILE_NOT_FOUND] No such file or directory"));
    EXPECT_STREQ (Error_Text (0xF0070002), "(facility=Win32) [ERROR_FILE_NOT_FOUND] No such file or directory");
    EXPECT_STREQ (Error_Text (0x01070002), "[ERROR_FILE_NOT_FOUND] No such file or directory");
    EXPECT_STREQ (Error_Text (0x00070000 | 4000), "--- ? ---");
}

// --- threads and registry --------------------------------------------------

TEST (PosixSystem, ThreadsHaveTheirOwnIdentifiers) {
    uint64_t    mine = System_Thread_Identifier (), other = mine;
    std::thread thread ([&] { other = System_Thread_Identifier (); });
    thread.join ();
    EXPECT_NE (mine, other);
    EXPECT_EQ (System_Thread_Identifier (), mine);
    uint64_t    next = other;
    std::thread later ([&] { next = System_Thread_Identifier (); });
    later.join ();
    EXPECT_NE (next, other);
}

TEST (PosixSystem, MutexWaitsNoLongerThanAsked) {
    System_Mutex *mutex = System_Mutex_Create ();
    EXPECT_EQ (System_Mutex_Wait (mutex, 0), SYSTEM_WAIT_ENTERED);
    System_Wait none = SYSTEM_WAIT_ENTERED, negative = SYSTEM_WAIT_ENTERED, some = SYSTEM_WAIT_ENTERED;
    std::thread thread ([&] {
        none     = System_Mutex_Wait (mutex, 0);
        negative = System_Mutex_Wait (mutex, -5);
        some     = System_Mutex_Wait (mutex, 999);
    });
    thread.join ();
    EXPECT_EQ (none, SYSTEM_WAIT_TIMEOUT);
    EXPECT_EQ (negative, SYSTEM_WAIT_TIMEOUT);
    EXPECT_EQ (some, SYSTEM_WAIT_TIMEOUT);
    System_Mutex_Release (mutex);
    System_Mutex_Release (mutex); // Once too often does no harm.
    System_Mutex_Destroy (mutex);
    System_Mutex_Destroy (nullptr);
}

TEST (PosixSystem, ThereIsNoRegistry) {
    System_Registry_Key key = 0;
    char                text[8];
    EXPECT_EQ (System_Registry_Open (System_Registry_Root (), "SOFTWARE", &key), static_cast<unsigned> (ENOENT));
    EXPECT_NE (System_Registry_Close (key), 0u);
    EXPECT_EQ (System_Registry_Read (key, "Path", text, sizeof text), static_cast<unsigned> (ENOENT));
}

// --- memory ----------------------------------------------------------------

TEST (PosixSystem, PagesStandAtMultiplesOfTheirSizeAndAreZero) {
    static const size_t SIZE = 2 * 1024 * 1024;

    char *pages[5];
    for (char *&one : pages) {
        one = static_cast<char *> (System_Pages_Take (SIZE));
        ASSERT_NE (one, nullptr);
        EXPECT_EQ ((uintptr_t)one % SIZE, 0u);
        EXPECT_EQ (std::count (one, one + SIZE, 0), (ptrdiff_t)SIZE);
        memset (one, 1, SIZE);
    }
    for (char *one : pages) System_Pages_Return (one, SIZE);
    EXPECT_EQ (System_Pages_Take ((size_t)1 << 60), nullptr);
}
