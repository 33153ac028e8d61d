#pragma once

#include <stdexcept>

// A call that the kit doesn't carry out. It tells why in one line.
struct Refusal : std::runtime_error {
    using std::runtime_error::runtime_error;
};
