// Files dropped on the window of another process, as a program does from which they are dragged.
#pragma once

#include <string>
#include <vector>

#include <windows.h>

// 1 when the list of full paths is on its way to the window.
int Drop_Post (HWND window, const std::vector<std::wstring> &names);
