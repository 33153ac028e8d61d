#pragma once

#include "kit/Images.h"

// The images of a build, in the order in which it names them. `build` is a list of images, or a
// folder: one with such a list under the name flash_args (ESP-IDF, Arduino's core for the ESP32),
// an environment's build folder of PlatformIO with its idedata.json, or the project of either.
// Throws a Refusal where there is no build, or more than one.
std::vector<Image> ReadBuild(const std::filesystem::path& build);
