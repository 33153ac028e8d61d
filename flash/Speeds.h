#pragma once

#include <string_view>

// The speeds that the window offers, in bits per second. The kit refuses any other, since the
// window would skip it in a setting file.
inline constexpr std::string_view kSpeeds[] = {"2400",   "4800",   "7200",   "9600",  "14400",
                                               "19200",  "28800",  "38400",  "57600", "76800",
                                               "115200", "230400", "460800", "921600"};
