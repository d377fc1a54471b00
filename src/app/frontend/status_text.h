#pragma once

// The status text belongs to the menu-bar shell, which the terminal front end shares.
#include "menubar/status_text.h"
