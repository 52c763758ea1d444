// console_record.h: the texts that the program under test writes to its console, as they reach the control.
#pragma once
#include <windows.h>

void console_record_watch();  // from now on, for the whole program

// Forgets all and takes that thread for the user-interface thread, which is never held.
void console_record_start(DWORD user_interface_thread);
