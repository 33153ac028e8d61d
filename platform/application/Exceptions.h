#pragma once

#include <stdexcept>

// What the platform raises. Nothing in the logic catches one: it ends in UnhandledException.
class RuntimeException : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

class NilObjectException : public RuntimeException {
  public:
    using RuntimeException::RuntimeException;
};
