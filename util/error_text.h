// Texts for error codes of the system and of the C library.
#pragma once

// Facility label, "[NAME]", a blank and the system's message; "--- ? ---" when the system has none. Code 0 means the
// thread's last error. Static buffer: valid until the next call.
const char *Error_Text (unsigned code);

// The C library's message; code 0 means its current error number.
const char *C_Error_Text (int code);
