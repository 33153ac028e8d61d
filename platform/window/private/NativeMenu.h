// Qt's menu bar, built from the program's.
#pragma once

class QMenuBar;
class MenuBar;

// Adds the menus to `native`. Qt's items live as long as it does.
void BuildMenuBar(QMenuBar& native, const MenuBar& menus);
