// Runs the built program as a user does, through the system's command interpreter.
#pragma once

#include <string>

#include "tests/support/temporary.h"

struct Program_Result {
    int         status;
    std::string output; // Standard output and standard error, with line feeds as line ends.
    std::string errors;
    std::string audit; // What the audit file in Program_Scratch received meanwhile, as it stands in the file.
};

// Gives the user whose data stand in the directory definition tables of the newest version, but empty ones: so none are
// copied, and none are warned about.
void Write_User_Tables (const Temporary_Directory &directory);

// The user's own directory is looked for in the test's one, which is given tables; arguments are written as the
// interpreter wants them. Where the test has no configuration file there, one is written that names Program_Scratch: the
// default scratch directory belongs to the user, whose other runs write there at the same time.
Program_Result Program_Run_Built (const Temporary_Directory &directory, const std::string &arguments);

// The same with a copy of the program, which has other data beside it, and with the directory as it is.
Program_Result Program_Run_Copy (const std::string &program, const Temporary_Directory &directory,
                                 const std::string &arguments);
std::string    Program_Built (); // The name of the built one.

std::string Quoted (const std::string &name); // For an argument with blanks.

// The scratch directory of Program_Run_Built, with its separator, and the name of today's audit file.
std::string Program_Scratch (const Temporary_Directory &directory);
std::string Audit_Name ();
