#include "util/error_text.h"

#include <errno.h>
#include <string.h>

#include <string>

#include <gtest/gtest.h>

#include "platform/system.h"

static bool Begins (const std::string &text, const std::string &start) {
    return text.compare (0, start.size (), start) == 0;
}

TEST (ErrorText, NameBlankAndMessage) {
    std::string text = Error_Text (2);
    EXPECT_TRUE (Begins (text, "[ERROR_FILE_NOT_FOUND] ")) << text;
    EXPECT_GT (text.size (), strlen ("[ERROR_FILE_NOT_FOUND] "));
    EXPECT_EQ (text.find_first_of ("\r\n"), std::string::npos);
}

TEST (ErrorText, FacilityStandsFirst) {
    EXPECT_TRUE (Begins (Error_Text (0x80070002), "(facility=Win32) [ERROR_FILE_NOT_FOUND] "))
        << Error_Text (0x80070002);
}

TEST (ErrorText, ZeroIsTheThreadsLastError) {
    System_Last_Error_Set (2);
    EXPECT_TRUE (Begins (Error_Text (0), "[ERROR_FILE_NOT_FOUND] "));
    System_Last_Error_Set (0);
    EXPECT_TRUE (Begins (Error_Text (0), "[ERROR_SUCCESS] ")) << Error_Text (0);
}

TEST (ErrorText, UnknownCode) {
    EXPECT_STREQ (Error_Text (0x0FFF7FF7), "--- ? ---");
    EXPECT_STREQ (Error_Text (60000), "--- ? ---");
}

TEST (ErrorText, NextCallOverwrites) {
    const char *first  = Error_Text (2);
    const char *second = Error_Text (5);
    EXPECT_EQ (first, second);
}

TEST (ErrorText, OfTheCLibrary) {
    EXPECT_STREQ (C_Error_Text (ENOENT), "No such file or directory");
    errno = ENOENT;
    EXPECT_STREQ (C_Error_Text (0), "No such file or directory");
    EXPECT_STRNE (C_Error_Text (EACCES), "");
}
