// The time that this process has spent computing.
#pragma once

// Seconds in its own code. The system's work for it is left out: how long pages of new memory take to come depends on who
// else wants some.
double Process_User_Seconds ();
