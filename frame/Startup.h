// The steps of the program's start, for the program itself, its tests and its benchmarks.
#pragma once

// Makes what the window needs: the file types, the application object and its menu bar. Call it
// before InitializeFramework.
void EarlyStartup();

// Opens the window. Give it to InitializeFramework, which calls it when the window can be opened.
void LateStartup();
