#pragma once

// Watches the start of Qt. While an object of this class lives, a start that gets no display ends
// the program with status 1 and one line on standard error, made of all that Qt said. Qt itself
// would abort. If the start succeeds, the destructor writes what Qt said.
class DisplayWatch {
  public:
    DisplayWatch();
    ~DisplayWatch();
    DisplayWatch(const DisplayWatch&) = delete;
    DisplayWatch& operator=(const DisplayWatch&) = delete;
};
