#pragma once

#include <stdexcept>

// The exceptions of the platform. The logic catches none, so they end in UnhandledException.
class RuntimeException : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

class NilObjectException : public RuntimeException {
  public:
    using RuntimeException::RuntimeException;
};
