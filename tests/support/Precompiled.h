#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#ifdef _WIN32
#include <comdef.h>
#include <comip.h>
#include <windows.h>
#endif

#include <gtest/gtest.h>
