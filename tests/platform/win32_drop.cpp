// Wine doesn't take the list of a drop along to another process, so it is put there.
#include "tests/platform/win32_drop.h"

#include <shlobj.h>

// Memory of the window's process with these bytes.
static void *Memory_Of_Other (HWND window, const void *bytes, size_t size) {
    DWORD process = 0;
    GetWindowThreadProcessId (window, &process);
    HANDLE other  = OpenProcess (PROCESS_VM_OPERATION | PROCESS_VM_WRITE, FALSE, process);
    void  *memory = VirtualAllocEx (other, nullptr, size, MEM_COMMIT, PAGE_READWRITE);
    if (memory && !WriteProcessMemory (other, memory, bytes, size, nullptr)) memory = nullptr;
    CloseHandle (other);
    return memory;
}

int Drop_Post (HWND window, const std::vector<std::wstring> &names) {
    DROPFILES facts = {};
    facts.pFiles    = sizeof facts;
    facts.fWide     = TRUE;
    std::string list (reinterpret_cast<const char *> (&facts), sizeof facts);
    for (const std::wstring &name : names)
        list.append (reinterpret_cast<const char *> (name.c_str ()), (name.size () + 1) * sizeof (wchar_t));
    list.append (2 * sizeof (wchar_t), '\0'); // One would end the list, but an empty one must have one for its name.

    void *memory = Memory_Of_Other (window, list.data (), list.size ());
    return memory && PostMessageW (window, WM_DROPFILES, reinterpret_cast<WPARAM> (memory), 0);
}
