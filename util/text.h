// Small operations on texts that several modules need.
#pragma once

#include <stddef.h>
#include <stdint.h>

// 1 when text matches pattern as a whole: "*" is any run, "?" any one character, all else itself, case-sensitive.
// Linear in text for each "*" (no recursion).
int Text_Match (const char *pattern, const char *text);

// Removes leading and trailing blanks and tabs in place; returns text.
char *Text_Trim (char *text);

// Appends formatted text at *used in a buffer of size bytes; what doesn't fit is cut. *used ends at the terminating zero.
void Text_Append (char *buffer, size_t size, size_t *used, const char *format, ...) __attribute__ ((format (printf, 4, 5)));

// Copies at most size - 1 bytes and terminates. 1 when all of it fitted.
int Text_Copy (char *destination, size_t size, const char *source);

// Decimal text to number: leading blanks, sign and digits as strtoll and strtod read them; what is out of range
// saturates, what is no number is 0.
int32_t Text_To_Integer (const char *text);
int64_t Text_To_Long    (const char *text);
double  Text_To_Double  (const char *text);

// A number cut to 32 bits toward zero; outside of them (and for what is no number) -2147483648.
int32_t Text_Truncate (double number);

// A path in its pieces. They point into path and are not terminated.
struct Text_Path {
    const char *directory;  size_t directory_length;    // With its last separator; 0 when there is none.
    const char *base;       size_t base_length;
    const char *extension;  size_t extension_length;    // With its dot.
};
void Text_Split_Path (const char *path, Text_Path *pieces);
