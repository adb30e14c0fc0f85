// From the program's bytes to the system's characters. The texts are mostly UTF-8, but values of old files may be in the
// single-byte code of the machine they came from. Each sequence is judged for itself, so a run that is cut in two
// between characters has the same characters as the whole.
#include "platform/utf8.h"
#include "platform/win32/window_private.h"

// The manifest makes UTF-8 the code page of the process, so the one of the system is asked of its locale.
static UINT System_Code_Page (void) {
    static UINT page;
    if (page) return page;

    DWORD number = 0;
    GetLocaleInfoW (LOCALE_SYSTEM_DEFAULT, LOCALE_IDEFAULTANSICODEPAGE | LOCALE_RETURN_NUMBER,
                    reinterpret_cast<LPWSTR> (&number), sizeof number / sizeof (wchar_t));
    page = number && number != CP_UTF8 && IsValidCodePage (number) ? number : 1252;
    return page;
}

static int Put_Character (uint32_t character, wchar_t *result) {
    if (UTF8_Is_Control (character)) character = ' ';
    if (character < 0x10000) {
        result[0] = (wchar_t)character;
        return 1;
    }
    result[0] = (wchar_t)(0xD800 + ((character - 0x10000) >> 10));
    result[1] = (wchar_t)(0xDC00 + ((character - 0x10000) & 0x3FF));
    return 2;
}

// A character of the system's code page: one byte, or two in some of them. The bytes taken. What the page has no
// character for becomes a control there.
static int Put_Foreign (const char *text, int left, wchar_t *result) {
    UINT    page  = System_Code_Page ();
    int     taken = left > 1 && IsDBCSLeadByteEx (page, (BYTE)text[0]) ? 2 : 1;
    wchar_t found[2];

    if (taken == 2 && MultiByteToWideChar (page, MB_ERR_INVALID_CHARS, text, 2, found, 2) != 1) taken = 1;
    int count = taken == 2 ? 1 : MultiByteToWideChar (page, 0, text, 1, found, 2);
    Put_Character (count == 1 && !UTF8_Is_Control (found[0]) ? found[0] : UTF8_UNKNOWN, result);
    return taken;
}

int Text_To_UTF16 (const char *text, int length, wchar_t *result) {
    int count = 0;
    for (int i = 0; i < length;) {
        uint32_t character = 0;
        int      taken     = UTF8_Character (text + i, text + length, &character);
        if (taken) {
            count += Put_Character (character, result + count);
        } else {
            taken = Put_Foreign (text + i, length - i, result + count);
            count++;
        }
        i += taken;
    }
    return count;
}
