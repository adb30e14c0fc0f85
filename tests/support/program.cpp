#include "tests/support/program.h"

#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>

#include "platform/system.h"

static bool Is_Windows () { return System_Separator () == '\\'; }

std::string Quoted (const std::string &name) { return Is_Windows () ? "\"" + name + "\"" : "'" + name + "'"; }

std::string Program_Scratch (const Temporary_Directory &directory) {
    return directory.File ("scratch") + System_Separator ();
}

std::string Audit_Name () {
    char        date[32];
    std::time_t now = std::time (nullptr);
    std::strftime (date, sizeof date, "%d%b%Y", std::localtime (&now));
    return "Tagwright_" + std::string (date) + ".dat";
}

static std::string Without_Returns (std::string text) {
    for (size_t place; (place = text.find ('\r')) != std::string::npos;) text.erase (place, 1);
    return text;
}

std::string Program_Built () { return std::filesystem::absolute (TAGWRIGHT_PROGRAM).make_preferred ().string (); }

void Write_User_Tables (const Temporary_Directory &directory) {
    std::filesystem::path tables = std::filesystem::path ("Kestrelbay") / "DICOM Tables";
    std::filesystem::create_directories (directory.path / tables);
    directory.Write ((tables / "version.txt").string (), std::string ("9999"));
}

Program_Result Program_Run_Built (const Temporary_Directory &directory, const std::string &arguments) {
    std::string folder        = directory.File ("Kestrelbay") + System_Separator ();
    std::string configuration = folder + "Tagwright.ini";
    if (!std::filesystem::exists (configuration)) {
        std::filesystem::create_directories (folder);
        std::ofstream (configuration) << "scratch = " << Program_Scratch (directory) << '\n';
    }
    Write_User_Tables (directory);
    return Program_Run_Copy (Program_Built (), directory, arguments);
}

Program_Result Program_Run_Copy (const std::string &program, const Temporary_Directory &directory,
                                 const std::string &arguments) {
    std::string output = directory.File ("output.txt"), errors = directory.File ("errors.txt");
    std::string command = Quoted (program) + " " + arguments + " > " + Quoted (output) + " 2> " + Quoted (errors);
    std::string audit   = Program_Scratch (directory) + Audit_Name ();
    size_t      before  = Read_Whole (audit).size ();

    // The status that std::system gives is the program's on Windows and a coded one on Linux.
    Program_Result result = {};
    std::string    status = directory.File ("status.txt");
    if (Is_Windows ()) {
        result.status = std::system (("set APPDATA=" + directory.path + "&& " + command).c_str ());
    } else {
        command       = "APPDATA=" + Quoted (directory.path) + " " + command + "; echo $? > " + Quoted (status);
        result.status = std::system (command.c_str ()) ? -1 : std::atoi (Read_Whole (status).c_str ());
    }
    result.output = Without_Returns (Read_Whole (output));
    result.errors = Without_Returns (Read_Whole (errors));
    result.audit  = Read_Whole (audit);
    result.audit.erase (0, before);
    return result;
}
