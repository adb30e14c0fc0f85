// A process in which a test is a plain user without a default scratch directory, whoever runs it.
#pragma once

#include <functional>
#include <string>
#include <vector>

// The superuser becomes a user who has no directory yet; anybody else's is put aside meanwhile. plain is the directory's
// name without the separator at its end. before is called first, by whoever runs the test.
using Plain_User_Test = std::function<void (const std::string &plain)>;
void Without_Default_Scratch (const Plain_User_Test &what, const Plain_User_Test &before = nullptr);

extern std::vector<std::string> boxes; // "caption|text" of those shown meanwhile.

// That the directory could not be made was told once.
void Expect_One_Box (const std::string &plain);
