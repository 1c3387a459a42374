#include "host/Language.h"

HINSTANCE CLang::GetResourceHandle(HINSTANCE instance) {
    return instance;
}
