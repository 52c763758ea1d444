// window_search.h: windows of this process and of others: find them and read what they show.
#pragma once
#include <windows.h>

#include <functional>
#include <string>
#include <vector>

#include "platform/base.h"

inline constexpr i32 PATIENCE_S = 40;
inline constexpr const char *DIALOG_CLASS = "#32770";  // dialogs and message boxes of the system

// Waits until the condition holds; false when its time is up.
bool wait_until(const std::function<bool()> &condition, i32 seconds = PATIENCE_S);

// The name of its class.
std::string window_class(HWND window);

// What it shows, UTF-8.
std::string window_text(HWND window);

// All windows on top, visible or not.
std::vector<HWND> windows_on_top();

// All windows in a window, at any depth.
std::vector<HWND> windows_below(HWND window);

// The visible ones on top that belong to a process, or to any when it is 0, and are of a class, or of any
// when it is empty.
std::vector<HWND> windows_of_process(DWORD process, const std::string &name);

// The first of them; null when there is none.
HWND window_of_process(DWORD process, const std::string &name);
