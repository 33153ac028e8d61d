#pragma once

// While it lives, a start of Qt that gets no display ends the program with one line on standard
// error that says what is missing, and status 1. Qt itself would abort. What else Qt says meanwhile
// is written at the end of this object.
class DisplayWatch {
  public:
    DisplayWatch();
    ~DisplayWatch();
    DisplayWatch(const DisplayWatch&) = delete;
    DisplayWatch& operator=(const DisplayWatch&) = delete;
};
