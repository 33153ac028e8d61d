#pragma once

// While it lives, a start of Qt that finds no display ends the program with status 1 and one line
// on standard error that says what is missing. Qt itself would abort. Qt's other messages are held
// back and written when this object is destroyed.
class DisplayWatch {
  public:
    DisplayWatch();
    ~DisplayWatch();
    DisplayWatch(const DisplayWatch&) = delete;
    DisplayWatch& operator=(const DisplayWatch&) = delete;
};
