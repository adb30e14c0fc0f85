// Small operations on texts.
#include "util/text.h"

#include <float.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "platform/system.h"

// After a "*" only the place of the last one is kept: whatever an earlier one could give up, the last one can take.
int Text_Match (const char *pattern, const char *text) {
    const char *star  = nullptr;
    const char *retry = nullptr;
    while (*text) {
        if (*pattern == '*') {
            star  = pattern++;
            retry = text;
        } else if (*pattern == '?' || *pattern == *text) {
            pattern++;
            text++;
        } else if (star) {
            pattern = star + 1;
            text    = ++retry;
        } else {
            return 0;
        }
    }
    while (*pattern == '*') pattern++;
    return !*pattern;
}

static int Is_Blank (char c) { return c == ' ' || c == '\t'; }

char *Text_Trim (char *text) {
    size_t start = 0;
    size_t end   = strlen (text);
    while (Is_Blank (text[start])) start++;
    while (end > start && Is_Blank (text[end - 1])) end--;
    memmove (text, text + start, end - start);
    text[end - start] = 0;
    return text;
}

void Text_Append (char *buffer, size_t size, size_t *used, const char *format, ...) {
    if (*used >= size) return;
    va_list arguments;
    va_start (arguments, format);
    int length = vsnprintf (buffer + *used, size - *used, format, arguments);
    va_end (arguments);
    if (length < 0) buffer[*used] = 0;
    else *used += (size_t)length < size - *used ? (size_t)length : size - *used - 1;
}

int Text_Copy (char *destination, size_t size, const char *source) {
    if (!size) return 0;
    size_t length = strlen (source);
    size_t copied = length < size ? length : size - 1;
    memcpy (destination, source, copied);
    destination[copied] = 0;
    return copied == length;
}

static int Is_Digit (char c) { return c >= '0' && c <= '9'; }

int64_t Text_To_Long (const char *text) { return strtoll (text, nullptr, 10); }

int32_t Text_To_Integer (const char *text) {
    int64_t number = Text_To_Long (text);
    if (number > INT32_MAX) return INT32_MAX;
    return number < INT32_MIN ? INT32_MIN : (int32_t)number;
}

// strtod alone would also read "inf", "nan" and hexadecimal digits, and give infinity for what is too large.
double Text_To_Double (const char *text) {
    const char *digits = text + strspn (text, " \t\n\v\f\r");
    if (*digits == '+' || *digits == '-') digits++;
    int is_number = Is_Digit (digits[0]) || (digits[0] == '.' && Is_Digit (digits[1]));
    if (!is_number || (digits[0] == '0' && (digits[1] == 'x' || digits[1] == 'X'))) return 0;
    double number = strtod (text, nullptr);
    if (number > DBL_MAX) return DBL_MAX;
    return number < -DBL_MAX ? -DBL_MAX : number;
}

int32_t Text_Truncate (double number) {
    return number > -2147483649.0 && number < 2147483648.0 ? (int32_t)number : INT32_MIN;
}

// Where a drive ("C:") is part of a path, the name begins behind its colon.
static int Is_Drive_End (const char *path, const char *place) {
    return System_Separator () == '\\' && place == path + 2 && path[1] == ':';
}

// A dot at the start of a name is part of the base.
void Text_Split_Path (const char *path, Text_Path *pieces) {
    const char *end  = path + strlen (path);
    const char *base = end;
    while (base > path && !System_Is_Separator (base[-1]) && !Is_Drive_End (path, base)) base--;
    const char *dot = end;
    for (const char *c = base + 1; c < end; c++)
        if (*c == '.') dot = c;
    *pieces = {path, (size_t)(base - path), base, (size_t)(dot - base), dot, (size_t)(end - dot)};
}
