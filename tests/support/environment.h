// The environment of the test's own process.
#pragma once

#include <string>

void Environment_Set (const std::string &name, const std::string &value); // An empty value removes it.
