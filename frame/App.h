#pragma once

#include "platform/application/Application.h"

// The application object. All behaviour is the platform's.
class App : public Application {};
