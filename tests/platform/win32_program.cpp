#include "tests/platform/win32_program.h"

#include <filesystem>
#include <fstream>
#include <string.h>

#include "app/start_up.h"
#include "platform/system.h"
#include "tests/platform/win32_drop.h"
#include "tests/support/program.h"

// --- pixels ----------------------------------------------------------------

// The screen's own bytes are blue, green and red.
static uint32_t Swapped (uint32_t pixel) { return (pixel & 0xFF) << 16 | (pixel & 0xFF00) | (pixel >> 16 & 0xFF); }

uint32_t Shot::At (int x, int y) const {
    if (x < 0 || y < 0 || x >= width || y >= height) return 0xFFFFFFFF;
    return Swapped (pixels[(size_t)y * (size_t)width + (size_t)x]);
}

bool Shot::operator== (const Shot &other) const {
    return width == other.width && height == other.height && pixels == other.pixels;
}

int Shot::Count (uint32_t colour, int x, int y, int w, int h) const {
    int count = 0;
    for (int row = y; row < y + h; row++)
        for (int column = x; column < x + w; column++) count += At (column, row) == colour;
    return count;
}

int Shot::Count_Others (uint32_t colour, int x, int y, int w, int h) const {
    return w * h - Count (colour, x, y, w, h);
}

// A bitmap with a positive height begins at its lowest row.
static BITMAPINFO Bitmap_Of (int width, int height) {
    BITMAPINFO facts              = {};
    facts.bmiHeader.biSize        = sizeof facts.bmiHeader;
    facts.bmiHeader.biWidth       = width;
    facts.bmiHeader.biHeight      = height;
    facts.bmiHeader.biPlanes      = 1;
    facts.bmiHeader.biBitCount    = 32;
    facts.bmiHeader.biCompression = BI_RGB;
    return facts;
}

Shot Shot_Take (HWND window) {
    RECT client = {};
    GetClientRect (window, &client);
    Shot shot;
    shot.width  = client.right;
    shot.height = client.bottom;
    if (shot.width < 1 || shot.height < 1) return shot;

    BITMAPINFO facts  = Bitmap_Of (shot.width, shot.height);
    void      *bits   = nullptr;
    HDC        screen = GetDC (window);
    HDC        memory = CreateCompatibleDC (screen);
    HBITMAP    bitmap = CreateDIBSection (screen, &facts, DIB_RGB_COLORS, &bits, nullptr, 0);
    HGDIOBJ    before = SelectObject (memory, bitmap);
    BitBlt (memory, 0, 0, shot.width, shot.height, screen, 0, 0, SRCCOPY);
    GdiFlush ();
    shot.pixels.resize ((size_t)shot.width * (size_t)shot.height);
    memcpy (shot.pixels.data (), bits, shot.pixels.size () * sizeof shot.pixels[0]);
    SelectObject (memory, before);
    DeleteObject (bitmap);
    DeleteDC (memory);
    ReleaseDC (window, screen);
    return shot;
}

// --- life ------------------------------------------------------------------

static void Write_Configuration (const Temporary_Directory &directory) {
    std::string folder = directory.File ("Kestrelbay\\");
    if (std::filesystem::exists (folder + "Tagwright.ini")) return;
    std::filesystem::create_directories (folder);
    std::ofstream (folder + "Tagwright.ini") << "scratch = " << Program_Scratch (directory) << '\n';
}

Shown_Program::Shown_Program (const Temporary_Directory &place, const std::string &arguments) : directory (place) {
    Write_Configuration (directory);
    if (Start (arguments)) Find_Window ();
}

Shown_Program::~Shown_Program () {
    if (!process) return;
    if (WaitForSingleObject (process, 0) != WAIT_OBJECT_0) {
        TerminateProcess (process, 99);
        WaitForSingleObject (process, PROGRAM_LIMIT);
    }
    CloseHandle (process);
}

static HANDLE Inherited_File (const std::string &name) {
    SECURITY_ATTRIBUTES inherit = {sizeof inherit, nullptr, TRUE};
    return CreateFileA (name.c_str (), FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherit, CREATE_ALWAYS, 0,
                        nullptr);
}

bool Shown_Program::Start (const std::string &arguments) {
    char before[SYSTEM_PATH_SIZE] = "";
    GetEnvironmentVariableA ("APPDATA", before, sizeof before);
    std::string         command = "\"" + Program_Built () + "\" " + arguments;
    HANDLE              console = Inherited_File (directory.File ("console.txt"));
    STARTUPINFOA        startup = {};
    PROCESS_INFORMATION facts   = {};
    startup.cb                  = sizeof startup;
    startup.dwFlags             = STARTF_USESTDHANDLES;
    startup.hStdOutput = startup.hStdError = console;

    SetEnvironmentVariableA ("APPDATA", directory.path.c_str ());
    bool started =
        CreateProcessA (nullptr, command.data (), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &facts) != 0;
    SetEnvironmentVariableA ("APPDATA", before[0] ? before : nullptr);
    CloseHandle (console);
    if (!started) return false;
    CloseHandle (facts.hThread);
    process    = facts.hProcess;
    identifier = facts.dwProcessId;
    return true;
}

// Other windows of the title may be there: a user's own.
void Shown_Program::Find_Window () {
    Comes_True ([this] {
        for (HWND found = nullptr; (found = FindWindowExA (nullptr, found, nullptr, PROGRAM_TITLE)) != nullptr;) {
            DWORD owner = 0;
            GetWindowThreadProcessId (found, &owner);
            if (owner == identifier && IsWindowVisible (found)) window = found;
        }
        return window || WaitForSingleObject (process, 0) == WAIT_OBJECT_0;
    });
}

bool Shown_Program::Answers () const {
    DWORD_PTR answer;
    return SendMessageTimeoutA (window, WM_NULL, 0, 0, SMTO_NORMAL, PROGRAM_LIMIT, &answer) != 0;
}

long long Shown_Program::Wait () const {
    DWORD code = 0;
    if (WaitForSingleObject (process, PROGRAM_LIMIT) != WAIT_OBJECT_0) return -1;
    GetExitCodeProcess (process, &code);
    return code;
}

long long Shown_Program::Close () const {
    PostMessageA (window, WM_SYSCOMMAND, SC_CLOSE, 0);
    return Wait ();
}

static std::string Without_Returns (std::string text) {
    for (size_t place; (place = text.find ('\r')) != std::string::npos;) text.erase (place, 1);
    return text;
}

std::string Shown_Program::Console () const { return Without_Returns (Read_Whole (directory.File ("console.txt"))); }
std::string Shown_Program::Audit () const { return Read_Whole (Program_Scratch (directory) + Audit_Name ()); }

// --- drops -----------------------------------------------------------------

static std::wstring Wide (const std::string &text) {
    std::wstring wide (text.size () + 1, L'\0');
    int length = MultiByteToWideChar (CP_UTF8, 0, text.c_str (), (int)text.size (), wide.data (), (int)wide.size ());
    wide.resize ((size_t)length);
    return wide;
}

static int Refused (const std::string &console) {
    int refused = 0;
    for (size_t place = 0; (place = console.find ("not compared: ", place)) != std::string::npos; place++) refused++;
    return refused;
}

void Shown_Program::Post (const std::vector<std::string> &names) {
    std::vector<std::wstring> wide;
    for (const std::string &name : names) wide.push_back (Wide (name));
    Drop_Post (window, wide);
}

std::string Shown_Program::Drop (const std::vector<std::string> &names) {
    size_t      before = Console ().size ();
    std::string got;
    Post (names);
    Comes_True ([&] {
        got = Console ().substr (before);
        return got.find ("REPORT:  Done\n") != std::string::npos;
    });
    dropped += (int)names.size () - Refused (got);
    return got;
}

std::string Shown_Program::Compare (const std::string &a, const std::string &b) {
    return dropped % 2 ? Drop ({b, a}) : Drop ({a, b});
}

// --- keys and mouse --------------------------------------------------------

// The pointer works wherever the focus is, the keyboard doesn't.
void Shown_Program::Key (char digit) const {
    PostMessageA (window, WM_KEYDOWN, (WPARAM)digit, 1 | (LPARAM)MapVirtualKeyA ((UINT)digit, 0) << 16);
}

static void Mouse (DWORD flags, int delta = 0) {
    INPUT input        = {};
    input.type         = INPUT_MOUSE;
    input.mi.dwFlags   = flags;
    input.mi.mouseData = (DWORD)delta;
    SendInput (1, &input, sizeof input);
}

static POINT On_Screen (HWND window, int x, int y) {
    RECT client = {};
    GetClientRect (window, &client);
    POINT place = {x, client.bottom - 1 - y};
    ClientToScreen (window, &place);
    return place;
}

void Shown_Program::Point (int x, int y) const {
    POINT place      = On_Screen (window, x, y);
    INPUT input      = {};
    input.type       = INPUT_MOUSE;
    input.mi.dwFlags = MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE;
    input.mi.dx      = (place.x * 65536 + 32768) / GetSystemMetrics (SM_CXSCREEN);
    input.mi.dy      = (place.y * 65536 + 32768) / GetSystemMetrics (SM_CYSCREEN);
    SendInput (1, &input, sizeof input);
}

// Under Wine the display tells the program late of the movements before, and the pointer jumps back when it hears of them.
void Shown_Program::Rest (int x, int y) const {
    static const int CALM     = 6;
    POINT            place    = On_Screen (window, x, y), now;
    int              together = 0;
    Comes_True ([&] {
        bool there = Answers () && GetCursorPos (&now) && now.x == place.x && now.y == place.y;
        if (!there) Point (x, y);
        return (together = there ? together + 1 : 0) >= CALM;
    });
}

void Shown_Program::Press () const { Mouse (MOUSEEVENTF_LEFTDOWN); }
void Shown_Program::Release () const { Mouse (MOUSEEVENTF_LEFTUP); }

void Shown_Program::Click (int x, int y) const {
    Rest (x, y);
    Press ();
    Release ();
}

void Shown_Program::Wheel (int x, int y, int delta) const {
    Rest (x, y);
    Mouse (MOUSEEVENTF_WHEEL, delta);
}
